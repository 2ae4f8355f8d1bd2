. "$LW_E2E_DIR/letters_sales.sh"
# Sales no letter can be written for, or whose values break the statements, all ended before the others:
# 7010 not yet ended, 7011 without bids, 7012 a Dutch auction whose buyers were not imported, 7013 a
# buyer's address with an apostrophe, 7014 an item number with one.
sqlite3 "$store" <<SQL
INSERT INTO seller (Item, Title, username, site, "End", Price, Quantity, Id, Email, Completed, Reserve_met)
VALUES
 ('7010', 'Teapot', 'seller1', 'eBay', $(day '2026-11-10 18:00:00'), 10000, 1, 'buyer4', 'b4@example.com', 0, -1),
 ('7011', 'Spoon', 'seller1', 'eBay', $(day '2026-11-10 17:00:00'), 0, 1, Null, 'No Bids', -1, 0),
 ('7012', 'Cups', 'seller1', 'eBay', $(day '2026-11-10 16:00:00'), 10000, 6, '3 Dutch bids', Null, -1, -1),
 ('7013', 'Fork', 'seller1', 'eBay', $(day '2026-11-10 15:00:00'), 10000, 1, 'buyer5', 'o''neil@example.com', -1, -1),
 ('70''14', 'Knife', 'seller1', 'eBay', $(day '2026-11-10 14:00:00'), 10000, 1, 'buyer6', 'b6@example.com', -1, -1);
SQL
