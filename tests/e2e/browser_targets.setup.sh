# Every host the browser page may reach points at a closed port on the loopback, and the sample auction
# has an item number.
mkdir -p "$XDG_CONFIG_HOME/lotwright" "$XDG_DATA_HOME/lotwright"
{
  echo "[Lotwright/Hosts]"
  for key in item search myebay announce relist forum paypal yahoo yahoo_sold; do echo "$key=127.0.0.1:9"; done
} > "$XDG_CONFIG_HOME/lotwright/settings.ini"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'tester', Password = 'secret', Name = 'Test User'; UPDATE seller SET username = 'tester'"
sqlite3 "$store" "UPDATE seller SET Item = '4455' WHERE Title = 'Sample Auction'; UPDATE misc SET servername_fees = '127.0.0.1:9'"
