# The sales and the mail account the mail tests share, sourced by their setup scripts: the letter tests'
# sales with buyer b1 keeping two ended auctions (7003 goes to another buyer), the SMTP server of the
# test as the mail server, a mail password that must never show, and a short network timeout.
. "$LW_E2E_DIR/letters_sales.sh"
sqlite3 "$store" <<SQL
UPDATE seller SET Email = 'b9@example.com', Id = 'buyer9' WHERE Item = '7003';
UPDATE setup SET emailusername = 'patseller', emailpassword = 'm41l-s3cret',
  smtphost = '127.0.0.1:${LW_E2E_SMTP_PORT:-9}', mailconnecttype = 0, mapi_compliant = 0;
SQL
printf '[Lotwright/Network]\ntimeout=3\n' >> "$XDG_CONFIG_HOME/lotwright/settings.ini"
# Stand-ins for the desktop's mail program and viewer, which record what they are given.
mkdir -p "$HOME/bin"
cp "$LW_E2E_DIR/mail_desktop_standin.sh" "$HOME/bin/xdg-email"
cp "$LW_E2E_DIR/mail_desktop_standin.sh" "$HOME/bin/xdg-open"
chmod +x "$HOME/bin/xdg-email" "$HOME/bin/xdg-open"
