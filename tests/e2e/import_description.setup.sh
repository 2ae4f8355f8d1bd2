# A seller "tester" whose item pages come from the loopback server: an ordinary and a motors auction,
# each once plain and once with the seller's own HTML; and one auction won on the bidder's side.
mkdir -p "$XDG_DATA_HOME/lotwright" "$XDG_CONFIG_HOME/lotwright"
# The browser page shows the auction on show at the item host: a closed port on the loopback.
printf '[Lotwright/Hosts]\nitem=127.0.0.1:9\n' > "$XDG_CONFIG_HOME/lotwright/settings.ini"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'tester';
  UPDATE misc SET servername_desc = '127.0.0.1:$LW_E2E_PORT', servername_ebaymotors = '127.0.0.1:$LW_E2E_PORT';
  DELETE FROM seller; DELETE FROM bidder"
add() {
  sqlite3 "$store" "INSERT INTO $1 (Item, Title, username, site, Id, [End]) VALUES ('$2', 'Lot $2', 'tester', 'eBay', 'someone', julianday('$3') - julianday('1899-12-30'))"
}
add seller 4012345678 "2026-11-29 18:30:00"
add seller 4012345679 "2026-11-28 18:30:00"
add seller 7012345678 "2026-11-27 18:30:00"
add seller 7012345679 "2026-11-26 18:30:00"
add seller 4012345670 "2026-11-25 18:30:00"
add bidder 4012345678 "2026-11-29 18:30:00"
