# A store of the older layout: the seller table has no pending column yet.
store="$XDG_DATA_HOME/lotwright/lw.mdb"
mkdir -p "$XDG_DATA_HOME/lotwright"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'tester', Password = 'secret', Name = 'Test User'; UPDATE seller SET username = 'tester'"
sqlite3 "$store" "ALTER TABLE seller DROP COLUMN pending; INSERT INTO seller (Item, Title, username, site) VALUES ('5150', 'Old Clock', 'tester', 'eBay')"
