# A seller "alice" whose auction's picture lies in "Listing Pics"; the location is kept in lower case,
# the picture's name as she chose it. Her FTP account is not filled in yet. The network waits 3 seconds.
mkdir -p "$XDG_CONFIG_HOME/lotwright" "$XDG_DATA_HOME/lotwright" "Listing Pics"
printf '[Lotwright/Network]\ntimeout=3\n' > "$XDG_CONFIG_HOME/lotwright/settings.ini"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
day() { echo "(julianday('$1') - julianday('1899-12-30'))"; }
sqlite3 "$store" <<SQL
UPDATE setup SET Userid = 'alice', ebay_image_loc = 'http://pics.example.com/~alice/';
DELETE FROM seller;
INSERT INTO seller (Item, Title, username, site, "End", Pic_location, Pic_name)
VALUES ('4001', 'Teapot', 'alice', 'eBay', $(day '2026-11-25 18:00:00'), 'listing pics/teapot.jpg', 'Teapot.jpg');
SQL
cp "$LW_E2E_DIR/image_files/teapot.jpg" "Listing Pics/teapot.jpg"
