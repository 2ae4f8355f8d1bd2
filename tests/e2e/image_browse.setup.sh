# A seller "alice" with two auctions and no pictures yet; her web location ends in a slash. Two pictures
# wait in the folder "Listing Pics" of her home, where the driver runs.
mkdir -p "$XDG_CONFIG_HOME/lotwright" "$XDG_DATA_HOME/lotwright" "Listing Pics"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
day() { echo "(julianday('$1') - julianday('1899-12-30'))"; }
sqlite3 "$store" <<SQL
UPDATE setup SET Userid = 'alice', ebay_image_loc = 'http://pics.example.com/~alice/';
DELETE FROM seller;
INSERT INTO seller (Item, Title, username, site, "End") VALUES ('4001', 'Teapot', 'alice', 'eBay', $(day '2026-11-25 18:00:00'));
INSERT INTO seller (Item, Title, username, site, "End") VALUES ('4002', 'Marbles', 'alice', 'eBay', $(day '2026-11-24 18:00:00'));
SQL
cp "$LW_E2E_DIR/image_files/teapot.jpg" "Listing Pics/Teapot.JPG"
cp "$LW_E2E_DIR/image_files/marbles.gif" "Listing Pics/marbles.gif"
