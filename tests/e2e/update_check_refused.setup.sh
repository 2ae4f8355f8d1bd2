# The settings and store of the stalled-server test; this test's server refuses the anonymous logon.
. "$LW_E2E_DIR/update_check_stalled.setup.sh"
