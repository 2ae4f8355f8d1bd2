# An earlier run left a store with a second, ended auction and a saved view that shows only that one.
store="$XDG_DATA_HOME/lotwright/lw.mdb"
mkdir -p "$XDG_DATA_HOME/lotwright"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'tester', Password = 'secret', Name = 'Test User'; UPDATE seller SET username = 'tester'"
sqlite3 "$store" "INSERT INTO seller (Item, Title, username, site, Completed) VALUES ('7001', 'Brass Lamp', 'tester', 'eBay', -1)"
printf 'Seller\r\n"tester"\r\nAuctions in Progress\r\nSelect * From seller where Title = '"'"'Brass Lamp'"'"' order by end desc \r\neBay\r\n' \
  > "$XDG_DATA_HOME/lotwright/lw.ini"
