# The maker's update server is the loopback FTP server (its version is the test's); the forum the
# announcements live on is a closed port. The network waits 3 seconds.
mkdir -p "$XDG_CONFIG_HOME/lotwright" "$XDG_DATA_HOME/lotwright"
printf '[Lotwright/Hosts]\nupdate=127.0.0.1:%s\nforum=127.0.0.1:9\n[Lotwright/Network]\ntimeout=3\n' "$LW_E2E_FTP_PORT" \
  > "$XDG_CONFIG_HOME/lotwright/settings.ini"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'alice'"
