# A seller's list page saved from the site earlier, in the user's home folder, and a store with no rows.
store="$XDG_DATA_HOME/lotwright/lw.mdb"
mkdir -p "$XDG_DATA_HOME/lotwright" "$XDG_CONFIG_HOME/lotwright"
# The browser page shows the auction on show at the item host: a closed port on the loopback.
printf '[Lotwright/Hosts]\nitem=127.0.0.1:9\n' > "$XDG_CONFIG_HOME/lotwright/settings.ini"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'lotseller'; DELETE FROM seller; DELETE FROM bidder"
cp "$LW_E2E_DIR/pages/seller_list.html" "$HOME/my selling.htm"
cp "$LW_E2E_DIR/pages/bidder_list.html" "$HOME/my bidding.html"
