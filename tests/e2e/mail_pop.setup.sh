. "$LW_E2E_DIR/mail_sales.sh"
sqlite3 "$store" "UPDATE setup SET mailconnecttype = 1, pophost = '127.0.0.1:$LW_E2E_POP3_PORT'"
