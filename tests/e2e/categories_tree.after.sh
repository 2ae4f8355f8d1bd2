. "$LW_E2E_DIR/listing_api_recorded.sh"
show_log
cat "$api/002-GetCategories.xml"; echo
