. "$LW_E2E_DIR/listing_store.sh"
