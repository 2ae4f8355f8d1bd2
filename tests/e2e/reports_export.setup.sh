# Ann's store of reports_catalogue with three sales in place (money in ten-thousandths, dates as days
# since 1899-12-30): 1001 Blue Vase (profit 16.50), 1002 Red Lamp with every cost 0 (profit 43.45),
# 1003 Green Jug (profit 7.85); and a folder for the exports.
. "$LW_E2E_DIR/reports_catalogue.setup.sh"
sqlite3 "$store" <<'SQL'
INSERT INTO seller (Item, Title, username, site, Id, Email, Name, Completed, Reserve_met, Price, Cost,
                    actual_ship_cost, actual_insure_cost, actual_other_cost, actual_total_tax, Ship_cost,
                    insure_cost, total_tax, fee_insertion, fee_final_value, fee_gallery, fee_credit_insertion,
                    "End")
VALUES ('1001', 'Blue Vase', 'ann', 'eBay', 'bob1', 'bob@example.com', 'Bob Buyer', -1, -1, 250000, 100000,
        40000, 10000, 5000, 0, 50000, 15000, 20000, 3500, 12500, 2500, -3500, 46083.5833333333),
       ('1002', 'Red Lamp', 'ann', 'eBay', 'bob1', 'bob@example.com', 'Bob Buyer', -1, -1, 400000, 0, 0, 0,
        0, 0, 60000, 0, 0, 5500, 20000, NULL, NULL, 46091.9999884259),
       ('1003', 'Green Jug', 'ann', 'eBay', 'carl', 'carl@example.com', 'Carl Client', -1, -1, 125000, 50000,
        30000, 0, 0, 7500, 40000, 0, 10000, 3000, 6000, NULL, NULL, 46092);
SQL
mkdir -p "$HOME/exports"
