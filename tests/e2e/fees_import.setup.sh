# A seller "tester" with six auctions whose fees the account page on the loopback server lists: two
# ordinary sales, a Store Sale's stock row and one of its sold copies, a sale charged in pounds and euros,
# and one with amounts that binary fractions get wrong.
mkdir -p "$XDG_DATA_HOME/lotwright" "$XDG_CONFIG_HOME/lotwright"
# The browser page shows the auction on show at the item host: a closed port on the loopback.
printf '[Lotwright/Hosts]\nitem=127.0.0.1:9\n[Lotwright/Network]\ntimeout=5\n' > "$XDG_CONFIG_HOME/lotwright/settings.ini"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'tester', Password = 'secret';
  UPDATE misc SET servername_fees = '127.0.0.1:$LW_E2E_PORT';
  DELETE FROM seller"
add() {
  sqlite3 "$store" "INSERT INTO seller (Item, Title, username, site, Id, Price, Quantity, Completed, [End]) VALUES ('$1', '$2', 'tester', 'eBay', '$3', 10000 * $4, 1, $5, julianday('$6') - julianday('1899-12-30'))"
}
add 4012345601 "Blue glass vase" harbour_lights 33.33 -1 "2026-11-08 18:00:00"
add 4012345602 "Oak box" kitchen_kate 41 -1 "2026-11-09 18:00:00"
add 4012345603 "Linen tea towels" "Store Sale" 12.5 0 "2026-11-30 18:00:00"
add 4012345604 "Linen tea towels" "Store Sale" 12.5 -1 "2026-11-03 18:00:00"
add 4012345605 "Brass bell" towel_lover 8 -1 "2026-11-04 18:00:00"
add 4012345606 "Tin whistle" marble_fan 59.97 -1 "2026-11-12 18:00:00"
