# The bidder of the plain bid with one auction only, the tide clock: the lantern is not in the store yet.
. "$LW_E2E_DIR/bid_make.setup.sh"
sqlite3 "$store" "DELETE FROM bidder WHERE Item <> '4012345681'"
