# A store whose user id is set (no wizard) with four auctions of that user on show, newest end first:
# one with fees, one plain, one with an empty item number and an unsubmitted one with an item of one blank.
# Money is stored as ten-thousandths and dates as days since 1899-12-30.
# The relist page goes to a closed port on the loopback.
mkdir -p "$XDG_CONFIG_HOME/lotwright" "$XDG_DATA_HOME/lotwright"
printf '[Lotwright/Hosts]\nrelist=127.0.0.1:9\nitem=127.0.0.1:9\n' > "$XDG_CONFIG_HOME/lotwright/settings.ini"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
day() { echo "(julianday('$1') - julianday('1899-12-30'))"; }
sqlite3 "$store" <<SQL
UPDATE setup SET Userid = 'seller1';
INSERT INTO seller (Item, Title, username, site, Start, "End", Price, Cost, Ship_cost, buyitnow, category_no,
                    Pic_name, Quantity, fee_ref_no, Id, Email)
VALUES ('5001', 'Oak Chair', 'seller1', 'eBay', $(day '2026-11-13 18:00:00'), $(day '2026-11-20 18:00:00'),
        250000, 40000, 30000, 200000, '11', 'chair.jpg', 1, 'F1', 'buyer9', 'b9@example.com');
INSERT INTO seller (Item, Title, username, site, "End", Price, Quantity)
VALUES ('5002', 'Tin Box', 'seller1', 'eBay', $(day '2026-11-19 18:00:00'), 50000, 2);
INSERT INTO seller (Item, Title, username, site, "End") VALUES ('', 'No Number', 'seller1', 'eBay', $(day '2026-11-18 18:00:00'));
INSERT INTO seller (Item, Title, username, site, "End", pending, Start)
VALUES (' ', 'Draft Lamp', 'seller1', 'eBay', $(day '2026-11-17 12:30:15'), -1, $(day '2026-11-10 08:00:00'));
INSERT INTO bidder (Item, Title, username, site, "End", Id) VALUES ('6001', 'Won Clock', 'seller1', 'eBay', $(day '2026-11-15 10:00:00'), 'seller1');
SQL
