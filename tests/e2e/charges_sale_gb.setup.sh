# The same seller and sales as charges_sale, under another locale.
. "$LW_E2E_DIR/charges_sale.setup.sh"
