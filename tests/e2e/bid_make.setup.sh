# A bidder "alice" (pass value P1) with three auctions she bids on; the site's item and bid hosts are the
# loopback server.
mkdir -p "$XDG_CONFIG_HOME/lotwright" "$XDG_DATA_HOME/lotwright"
printf '[Lotwright/Hosts]\nitem=127.0.0.1:%s\nbid=127.0.0.1:%s\n[Lotwright/Network]\ntimeout=5\n' \
  "$LW_E2E_PORT" "$LW_E2E_PORT" > "$XDG_CONFIG_HOME/lotwright/settings.ini"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
day() { echo "(julianday('$1') - julianday('1899-12-30'))"; }
sqlite3 "$store" <<SQL
UPDATE setup SET Userid = 'alice', pass1 = 'P1';
DELETE FROM seller;
DELETE FROM bidder;
INSERT INTO bidder (Item, Title, username, site, "End") VALUES ('4012345678', 'Brass Ship''s Lantern', 'alice', 'eBay', $(day '2026-11-25 18:00:00'));
INSERT INTO bidder (Item, Title, username, site, "End") VALUES ('4012345680', 'Glass Floats', 'alice', 'eBay', $(day '2026-11-24 18:00:00'));
INSERT INTO bidder (Item, Title, username, site, "End") VALUES ('4012345681', 'Tide Clock', 'alice', 'eBay', $(day '2026-11-23 18:00:00'));
SQL
