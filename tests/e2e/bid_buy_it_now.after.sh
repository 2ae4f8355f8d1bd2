# The Buy It Now page, its filled-in form; the floats' bid page, and their form with its own quantity.
bash "$LW_E2E_DIR/bid_requests.sh"
