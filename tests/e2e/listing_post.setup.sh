# Alice's auction being composed, and a second one behind it.
. "$LW_E2E_DIR/listing_store.sh"
sqlite3 "$store" "INSERT INTO seller (Item, username, site, Title, Description1, Quantity, Minbid, Length, pending,
  Completed, \"End\") VALUES (' ', 'alice', 'eBay', 'Tin Box', 'A tin box.', 1, 50000, 5, -1, 0,
  (julianday('2003-11-10 18:00:00') - julianday('1899-12-30')))"
