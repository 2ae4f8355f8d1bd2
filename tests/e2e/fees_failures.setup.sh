# The seller of fees_import on a site that asks for a sign-in first, answers some addresses never and
# others with a server failure or a garbled page; the network gives up after two seconds.
. "$LW_E2E_DIR/fees_import.setup.sh"
printf '[Lotwright/Hosts]\nitem=127.0.0.1:9\n[Lotwright/Network]\ntimeout=2\n' > "$XDG_CONFIG_HOME/lotwright/settings.ini"
sqlite3 "$XDG_DATA_HOME/lotwright/lw.mdb" "UPDATE setup SET Name = 'Test Seller'"
