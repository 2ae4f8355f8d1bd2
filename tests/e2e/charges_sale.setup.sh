# A seller "tester" who charges 8.25% tax on price, shipping and insurance, with three sold auctions: one
# taxable with shipping and insurance, one not taxable, and one taxable without insurance; and one more
# whose own costs are partly unknown.
mkdir -p "$XDG_DATA_HOME/lotwright" "$XDG_CONFIG_HOME/lotwright"
printf '[Lotwright/Hosts]\nitem=127.0.0.1:9\n' > "$XDG_CONFIG_HOME/lotwright/settings.ini"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'tester', Password = 'secret', Name = 'Test Seller',
    taxrate = 8.25, taxprice = -1, taxshipping = -1, taxinsurance = -1;
  DELETE FROM seller"
add() {
  sqlite3 "$store" "INSERT INTO seller (Item, Title, username, site, Id, Price, Ship_cost, insure_cost, taxable,
      Cost, actual_ship_cost, actual_insure_cost, actual_other_cost, apply_costpricetax, apply_actualshiptax,
      Quantity, Completed, total_tax, total_charges, total_purchase, [End])
    VALUES ('$1', '$2', 'tester', 'eBay', 'buyer_$1', $3, $4, $5, $6, $7, $8, $9, ${10}, ${11}, ${12}, 1, -1, 0,
      ${13}, 0, julianday('${14}') - julianday('1899-12-30'))"
}
# item title price ship insure taxable cost actual_ship actual_insure actual_other apply_cost apply_ship
#   total_charges end
add 4010000001 "Blue vase" 199900 45000 15000 -1 NULL NULL NULL NULL 0 0 265000 "2026-11-20 18:00:00"
add 4010000002 "Oak box" 250000 50000 10000 0 NULL NULL NULL NULL 0 0 310000 "2026-11-19 18:00:00"
add 4010000003 "Tin whistle" 100000 32000 NULL -1 NULL NULL NULL NULL 0 0 142000 "2026-11-18 18:00:00"
add 4010000004 "Brass bell" 120000 30000 NULL -1 40000 NULL 11000 NULL -1 -1 150000 "2026-11-17 18:00:00"
