# The same bidder and auctions as the plain bid.
. "$LW_E2E_DIR/bid_make.setup.sh"
