# The update server is the loopback FTP server; the last check was long ago. The network
# waits 2 seconds.
mkdir -p "$XDG_CONFIG_HOME/lotwright" "$XDG_DATA_HOME/lotwright"
printf '[Lotwright/Hosts]\nupdate=127.0.0.1:%s\n[Lotwright/Network]\ntimeout=2\n[Lotwright/Database]\nlastupdatecheck=10/01/2026\n' \
  "$LW_E2E_FTP_PORT" > "$XDG_CONFIG_HOME/lotwright/settings.ini"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'alice'"
