# A bidder "alice" whose lists come from the loopback server.
mkdir -p "$XDG_CONFIG_HOME/lotwright" "$XDG_DATA_HOME/lotwright"
printf '[Lotwright/Hosts]\nsignin=127.0.0.1:%s\nitem=127.0.0.1:9\n[Lotwright/Network]\ntimeout=3\n' "$LW_E2E_PORT" \
  > "$XDG_CONFIG_HOME/lotwright/settings.ini"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'alice', Password = 'secret';
  UPDATE misc SET servername_import = '127.0.0.1:$LW_E2E_PORT', servername_import1 = '127.0.0.1:${bidder_list_port:-$LW_E2E_PORT}';
  DELETE FROM seller; DELETE FROM bidder"
