# The same store as views_status: auctions of every state for ann, and rows no view of hers may show.
. "$LW_E2E_DIR/views_status.setup.sh"
