# Both bid pages were fetched; after the second the browser showed that page itself.
bash "$LW_E2E_DIR/bid_requests.sh"
