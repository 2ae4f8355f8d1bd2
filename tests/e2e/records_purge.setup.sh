# A store whose user id is set (no wizard), with finished sales and unsold auctions of two user ids on
# both sides, and shipping and cost amounts to clean up. The two open auctions end last, so they lead the
# view; one has an apostrophe in its item number. Money is stored as ten-thousandths, dates as days since
# 1899-12-30.
store="$XDG_DATA_HOME/lotwright/lw.mdb"
mkdir -p "$XDG_DATA_HOME/lotwright"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" <<'SQL'
UPDATE setup SET Userid = 'seller1';
INSERT INTO seller (Item, Title, username, site, Id, Completed, Trans_comp, Ship_cost, actual_ship_cost, Cost,
                    actual_insure_cost, actual_other_cost, fee_ref_no, fee_insertion, fee_bold, fee_bin, "End")
VALUES ('7001', 'Unsold Vase', 'seller1', 'eBay', 'No Bids', -1, -1, 30000, 0, 20000, 10000, 0, 'R7', 3500, 0, 0, 46325),
       ('7002', 'Sold Bowl', 'seller1', 'eBay', 'buyer2', -1, -1, 45000, NULL, 60000, 0, 0, 'R8', 3500, 0, 0, 46326),
       ('7003', 'Open Jug', 'seller1', 'eBay', NULL, 0, 0, 50000, 25000, 10000, 0, 0, 'R10', 3500, 10000, 500, 46346),
       ('7004', 'Other Vase', 'seller2', 'eBay', 'No Bids', -1, -1, 30000, 0, 20000, 0, 0, 'R9', 3500, 0, 0, 46327),
       ('7005', 'Free Post', 'seller1', 'eBay', 'buyer3', -1, 0, 0, 0, 0, 0, 0, NULL, NULL, NULL, NULL, 46328),
       ('70''06', 'Quote Jug', 'seller1', 'eBay', NULL, 0, 0, 0, 0, 0, 0, 0, 'R11', 3500, 0, 0, 46345);
INSERT INTO bidder (Item, Title, username, site, Id, Completed, Trans_comp)
VALUES ('8001', 'Lost Lamp', 'seller1', 'eBay', 'someone', -1, -1),
       ('8002', 'Won Lamp', 'seller1', 'eBay', 'SELLER1', -1, -1),
       ('8003', 'Open Lamp', 'seller1', 'eBay', 'someone', 0, 0),
       ('8004', 'Their Lamp', 'seller2', 'eBay', 'someone', -1, -1);
SQL
