. "$LW_E2E_DIR/mail_sales.sh"
