# Pages saved from the site earlier, in the user's home folder.
store="$XDG_DATA_HOME/lotwright/lw.mdb"
mkdir -p "$XDG_DATA_HOME/lotwright"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'lotbidder'; DELETE FROM seller; DELETE FROM bidder"
cp "$LW_E2E_DIR/pages/seller_list.html" "$HOME/my selling.htm"
cp "$LW_E2E_DIR/pages/bidder_list.html" "$HOME/my bidding.html"
# The same page with the month of the third auction's start and end misspelt.
sed -e 's/Nov-19-26 20:15:00/Nox-19-26 20:15:00/' -e 's/Nov-29-26 20:15:00/Nox-29-26 20:15:00/' \
  "$LW_E2E_DIR/pages/seller_list.html" > "$HOME/broken selling.htm"
