# The same seller and sales as charges_sale.
. "$LW_E2E_DIR/charges_sale.setup.sh"
