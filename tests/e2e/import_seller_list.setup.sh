# A seller's list page saved from the site earlier, in the user's home folder, and a store with no rows.
store="$XDG_DATA_HOME/lotwright/lw.mdb"
mkdir -p "$XDG_DATA_HOME/lotwright"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'lotseller'; DELETE FROM seller; DELETE FROM bidder"
cp "$LW_E2E_DIR/pages/seller_list.html" "$HOME/my selling.htm"
cp "$LW_E2E_DIR/pages/bidder_list.html" "$HOME/my bidding.html"
