# The three sales of reports_export, a sale without bids, and two bidders on item 1001 for the
# envelopes (one of them finished, which gets none).
. "$LW_E2E_DIR/reports_export.setup.sh"
sqlite3 "$store" <<'SQL'
UPDATE seller SET Address = '2 Oak Ave', Status_date = 46099, Payment = -1 WHERE Item = '1002';
UPDATE seller SET Address = '2 Oak Ave', Status_date = 46099 WHERE Item = '1001';
INSERT INTO seller (Item, Title, username, site, Id, Completed, Reserve_met, Price, "End")
VALUES ('1004', 'Tin Cup', 'ann', 'eBay', 'No Bids', -1, 0, 0, 46086);
INSERT INTO bidder (Item, Title, username, site, Name, Address, Trans_comp, Completed, Price, "End")
VALUES ('1001', 'Blue Vase', 'ann', 'eBay', 'Bob Buyer', '2 Oak Ave' || char(13) || char(10) || 'Rivertown', 0, -1,
        250000, 46083),
       ('1001', 'Blue Vase', 'ann', 'eBay', 'Eve Early', '5 Pine Rd', 0, -1, 250000, 46083),
       ('1001', 'Blue Vase', 'ann', 'eBay', 'Fay Finished', '6 Fir Rd', -1, -1, 250000, 46083);
SQL
