# The confirmation page was asked for with the amount as typed; the browser then sent the filled-in form.
bash "$LW_E2E_DIR/bid_requests.sh"
