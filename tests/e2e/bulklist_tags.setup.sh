QUEUED=1
. "$LW_E2E_DIR/bulklist_store.sh"
