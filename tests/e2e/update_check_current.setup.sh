# The settings and store of the newer-version test; this test's server offers the running version.
. "$LW_E2E_DIR/update_check_newer.setup.sh"
