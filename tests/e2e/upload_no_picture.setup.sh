# A seller "alice" whose auction has no picture yet. The network waits 3 seconds.
mkdir -p "$XDG_CONFIG_HOME/lotwright" "$XDG_DATA_HOME/lotwright"
printf '[Lotwright/Network]\ntimeout=3\n' > "$XDG_CONFIG_HOME/lotwright/settings.ini"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'alice'; DELETE FROM seller;
  INSERT INTO seller (Item, Title, username, site) VALUES ('4001', 'Teapot', 'alice', 'eBay');"
