# A seller "alice" with two auctions, the first with a picture in "pics"; her web location lacks its
# closing slash. Beside the picture lie files that are no good pictures: text, a JPEG cut after its first
# bytes, and a GIF whose header claims 65535 by 65535 pixels.
mkdir -p "$XDG_CONFIG_HOME/lotwright" "$XDG_DATA_HOME/lotwright" pics "Saved Pics"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
day() { echo "(julianday('$1') - julianday('1899-12-30'))"; }
sqlite3 "$store" <<SQL
UPDATE setup SET Userid = 'alice', ebay_image_loc = 'http://pics.example.com/alice';
DELETE FROM seller;
INSERT INTO seller (Item, Title, username, site, "End", Pic_location, Pic_name)
VALUES ('4001', 'Teapot', 'alice', 'eBay', $(day '2026-11-25 18:00:00'), 'pics/teapot.jpg', 'teapot.jpg');
INSERT INTO seller (Item, Title, username, site, "End") VALUES ('4002', 'Kettle', 'alice', 'eBay', $(day '2026-11-24 18:00:00'));
SQL
cp "$LW_E2E_DIR/image_files/teapot.jpg" pics/teapot.jpg
printf 'Item,Title\r\n4001,Teapot\r\n' > pics/notes.jpg
head -c 12 "$LW_E2E_DIR/image_files/teapot.jpg" > pics/cut.jpg
printf 'GIF89a\377\377\377\377\200\000\000' > pics/huge.gif
