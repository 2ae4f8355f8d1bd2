# One user id and eight auctions ending around the fixed moment the script sets (2026-11-23 12:00:00):
# beyond 12 hours, exactly 12, 3, exactly 2, 1:59, exactly 0, one minute past and three days past.
mkdir -p "$XDG_DATA_HOME/lotwright"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'tester'; DELETE FROM seller"
add() {
  sqlite3 "$store" "INSERT INTO seller (Item, Title, username, site, Id, Start, [End]) VALUES ('$1', 'Lamp $1', 'tester', 'eBay', 'buyer', julianday('2026-11-16 09:30:00') - julianday('1899-12-30'), julianday('$2') - julianday('1899-12-30'))"
}
add 801 "2026-11-24 06:00:00"
add 802 "2026-11-24 00:00:00"
add 803 "2026-11-23 15:00:00"
add 804 "2026-11-23 14:00:00"
add 805 "2026-11-23 13:59:00"
add 806 "2026-11-23 12:00:00"
add 807 "2026-11-23 11:59:00"
add 808 "2026-11-20 12:00:00"
