. "$LW_E2E_DIR/letters_sales.sh"
