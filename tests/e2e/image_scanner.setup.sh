# The seller "alice" of the browse test with her two auctions, no pictures yet.
. "$LW_E2E_DIR/image_browse.setup.sh"
