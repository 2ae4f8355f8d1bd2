# The seller and the picture of the upload session.
. "$LW_E2E_DIR/upload_session.setup.sh"
