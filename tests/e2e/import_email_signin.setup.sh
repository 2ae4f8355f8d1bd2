# A bidder "tester" who won an auction of harbour_lights; the site asks for a sign-in first.
mkdir -p "$XDG_DATA_HOME/lotwright" "$XDG_CONFIG_HOME/lotwright"
printf '[Lotwright/Hosts]\nitem=127.0.0.1:9\nsignin=127.0.0.1:%s\n' "$LW_E2E_PORT" > "$XDG_CONFIG_HOME/lotwright/settings.ini"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'tester', Password = 'secret';
  UPDATE misc SET servername_email = '127.0.0.1:$LW_E2E_PORT';
  DELETE FROM seller; DELETE FROM bidder;
  INSERT INTO bidder (Item, Title, username, site, Id, Seller_id, Completed, [End])
    VALUES ('4012345678', 'Brass lantern', 'tester', 'eBay', 'tester', 'harbour_lights', -1, julianday('2026-11-21 18:00:00') - julianday('1899-12-30'))"
