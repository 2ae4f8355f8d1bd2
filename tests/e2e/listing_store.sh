# Sourced by the listing tests' setup: a seller "alice" with one auction being composed, the XML
# interface on the loopback service "api" (or on a closed port when the test starts none), and a short
# network wait. Money is stored as ten-thousandths, dates as days since 1899-12-30.
mkdir -p "$XDG_CONFIG_HOME/lotwright" "$XDG_DATA_HOME/lotwright"
printf '[Lotwright/Hosts]\napi=http://127.0.0.1:%s\n[Lotwright/Network]\ntimeout=2\n' "${LW_E2E_API_PORT:-9}" \
  > "$XDG_CONFIG_HOME/lotwright/settings.ini"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" <<SQL
UPDATE setup SET Userid = 'alice', Password = 'secret', UserEmail = 'alice@example.com',
  description_footer = '<p>Thanks for looking!</p>', ebay_image_loc = 'http://www.example.com/pics/',
  Location = 'Springfield, IL';
DELETE FROM seller;
INSERT INTO seller (Item, username, site, Title, Description1, Quantity, Minbid, Reserve, Length, pending,
                    Completed, Pic_name, "End")
VALUES (' ', 'alice', 'eBay', 'Oak Chair', 'A sturdy <b>oak</b> chair.', 1, 99900, 0, 7, -1, 0, 'chair.jpg',
        (julianday('2003-11-20 18:00:00') - julianday('1899-12-30')));
SQL
