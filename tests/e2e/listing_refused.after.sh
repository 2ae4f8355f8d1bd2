cd "$XDG_DATA_HOME/lotwright" && echo "working files:" && ls | grep -E "\.(xml|htm)$"
