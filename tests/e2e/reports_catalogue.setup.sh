# A store whose user id "ann" is set (no wizard), with her name and address in the setup row for the
# invoices and labels. The sales themselves are put in place by the script, through the store.
store="$XDG_DATA_HOME/lotwright/lw.mdb"
mkdir -p "$XDG_DATA_HOME/lotwright"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" <<'SQL'
UPDATE setup SET Userid = 'ann', Name = 'Ann Seller', address = '1 Main St' || char(13) || char(10) || 'Springfield';
DELETE FROM seller;
DELETE FROM bidder;
SQL
