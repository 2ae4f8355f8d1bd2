# A bidder "tester" who won an auction of harbour_lights, lost one, and is among the high bidders of a
# Dutch auction; the member and Dutch pages come from the loopback server.
mkdir -p "$XDG_DATA_HOME/lotwright" "$XDG_CONFIG_HOME/lotwright"
# The browser page shows the auction on show at the item host: a closed port on the loopback.
printf '[Lotwright/Hosts]\nitem=127.0.0.1:9\n' > "$XDG_CONFIG_HOME/lotwright/settings.ini"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'tester';
  UPDATE misc SET servername_email = '127.0.0.1:$LW_E2E_PORT', servername_dutch = '127.0.0.1:$LW_E2E_PORT';
  DELETE FROM seller; DELETE FROM bidder"
add() {
  sqlite3 "$store" "INSERT INTO bidder (Item, Title, username, site, Id, Seller_id, Completed, Quantity, Price, [End]) VALUES ('$1', 'Lot $1', 'tester', 'eBay', '$2', 'harbour_lights', -1, 1, 10000, julianday('$3') - julianday('1899-12-30'))"
}
add 4012345678 tester "2026-11-21 18:00:00"
add 4012345677 someone_else "2026-11-20 18:00:00"
add 4019990001 "2 Dutch bids" "2026-11-19 18:00:00"
