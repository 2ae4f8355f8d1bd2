. "$LW_E2E_DIR/listing_api_recorded.sh"
show_log
cd "$XDG_DATA_HOME/lotwright" && echo "working files:" && ls | grep -E "\.(xml|htm)$"
