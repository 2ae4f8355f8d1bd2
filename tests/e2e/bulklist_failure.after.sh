. "$LW_E2E_DIR/listing_api_recorded.sh"
show_log
for n in 001 002 003 004 005; do grep -aho "<Title>.*</Title>" "$api/$n-AddItem.xml"; done
