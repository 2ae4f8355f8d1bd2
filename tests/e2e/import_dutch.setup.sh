# A seller "tester" with an ended Dutch auction, an ended Store Sale and an ordinary sale; the pages of
# their high bidders come from the loopback server.
mkdir -p "$XDG_DATA_HOME/lotwright" "$XDG_CONFIG_HOME/lotwright"
# The browser page shows the auction on show at the item host: a closed port on the loopback.
printf '[Lotwright/Hosts]\nitem=127.0.0.1:9\n' > "$XDG_CONFIG_HOME/lotwright/settings.ini"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'tester', pass1 = NULL;
  UPDATE misc SET servername_dutch = '127.0.0.1:$LW_E2E_PORT';
  DELETE FROM seller"
add() {
  sqlite3 "$store" "INSERT INTO seller (Item, Title, username, site, Id, Price, Quantity, Completed, Minbid, [End]) VALUES ('$1', '$2', 'tester', 'eBay', '$3', $4 * 10000, $5, -1, 10000, julianday('$6') - julianday('1899-12-30'))"
}
add 4019990001 "Glass marbles" "3 Dutch bids" 2 5 "2026-11-20 18:00:00"
add 4019990002 "Linen tea towels" "Store Sale" 0 3 "2026-11-19 18:00:00"
add 4019990003 "Oak box" "harbour_lights" 20 1 "2026-11-18 18:00:00"
