. "$LW_E2E_DIR/letters_sales.sh"
# The site's feedback page is the loopback server's; two comments are stored already.
printf '[Lotwright/Hosts]\nitem=127.0.0.1:9\nfeedback=127.0.0.1:%s\n' "$LW_E2E_PORT" \
  > "$XDG_CONFIG_HOME/lotwright/settings.ini"
sqlite3 "$store" "INSERT INTO bulk (feedback_comment) VALUES ('Great buyer'), ('Fast payment, thank you')"
