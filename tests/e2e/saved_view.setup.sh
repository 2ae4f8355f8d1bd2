# An earlier run left a store with a second, ended auction and a saved view that shows only that one.
store="$XDG_DATA_HOME/lotwright/lw.mdb"
mkdir -p "$XDG_DATA_HOME/lotwright"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "INSERT INTO seller (Item, Title, username, site, Completed) VALUES ('7001', 'Brass Lamp', 'No Userid Set', 'eBay', -1)"
printf 'Seller\r\n"No Userid Set"\r\nAuctions in Progress\r\nSelect * From seller where Title = '"'"'Brass Lamp'"'"' order by end desc \r\neBay\r\n' \
  > "$XDG_DATA_HOME/lotwright/lw.ini"
