# A bidder "alice" whose list host refuses connections (the discard port); the seller list comes from
# the loopback server.
bidder_list_port=9
. "$LW_E2E_DIR/download_bidder.setup.sh"
