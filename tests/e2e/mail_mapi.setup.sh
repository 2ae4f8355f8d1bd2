. "$LW_E2E_DIR/mail_sales.sh"
sqlite3 "$store" "UPDATE setup SET mapi_compliant = -1"
# The mail program refuses letters to b2.
echo 'b2@example.com' > "$HOME/xdg-email.refuse"
