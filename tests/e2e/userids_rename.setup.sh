# The same two user ids as userids_add: jan (first) and piet, each with an auction.
. "$LW_E2E_DIR/userids_add.setup.sh"
