. "$LW_E2E_DIR/mail_sales.sh"
sqlite3 "$store" "UPDATE setup SET mailconnecttype = 2"
