# One user id and one auction, under a Dutch locale.
mkdir -p "$XDG_DATA_HOME/lotwright"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'tester'; DELETE FROM seller"
sqlite3 "$store" "INSERT INTO seller (Item, Title, username, site, Id, Start, [End]) VALUES ('901', 'Lamp', 'tester', 'eBay', 'koper', julianday('2026-11-16 09:30:00') - julianday('1899-12-30'), julianday('2026-11-23 16:30:00') - julianday('1899-12-30'))"
