# The sales the letter tests share, sourced by their setup scripts: user id "seller1" with its letter
# texts, and ended auctions of three buyers at different points of the walk. Money is stored as
# ten-thousandths, dates as days since 1899-12-30.
#   b1@example.com  7001, 7002, 7003 ended (the three combine), 7004 already contacted
#   b2@example.com  7005 ended with the reserve not met
#   b3@example.com  7006 and 7007 contacted, 7008 paid, 7009 completed
mkdir -p "$XDG_CONFIG_HOME/lotwright" "$XDG_DATA_HOME/lotwright"
printf '[Lotwright/Hosts]\nitem=127.0.0.1:9\n' > "$XDG_CONFIG_HOME/lotwright/settings.ini"
store="$XDG_DATA_HOME/lotwright/lw.mdb"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
day() { echo "(julianday('$1') - julianday('1899-12-30'))"; }
sqlite3 "$store" <<SQL
UPDATE setup SET Userid = 'seller1', Password = 'sitepass', UserEmail = 'me@shop.example', Name = 'Pat Seller',
  address = '12 Mill Lane, Springfield', Signiture = 'Pat', Sale_conditions = 'Payment within 7 days please.',
  Bidder_comments = 'I pay by cheque.', Rec_payment_comment = 'Your payment arrived, thank you.',
  Sent_payment_comment = 'The cheque is in the post.', Goods_sent_comment = 'Sent by parcel post.',
  Goods_received_comment = 'The item arrived safely.', feedback_request = 'Please leave feedback.',
  taxprice = -1, taxshipping = -1, taxinsurance = 0, referralenabled = 0, emailusername = 'Pat Seller',
  smtphost = '127.0.0.1:9', mailconnecttype = 0;
INSERT INTO seller (Item, Title, username, site, "End", Price, Ship_cost, insure_cost, price_tax, ship_tax, insure_tax,
                    taxable, Quantity, Id, Email, Completed, Reserve_met, Contact, Response, Payment, Trans_comp)
VALUES
 ('7001', 'Oak Chair', 'seller1', 'eBay', $(day '2026-11-18 18:00:00'), 250000, 50000, 15000, 20000, 4000, 1200, -1, 1,
  'buyer1', 'b1@example.com', -1, -1, 0, 0, 0, 0),
 ('7002', 'Tin Box', 'seller1', 'eBay', $(day '2026-11-18 17:00:00'), 100000, 30000, 0, Null, Null, Null, 0, 2,
  'buyer1', 'b1@example.com', -1, -1, 0, 0, 0, 0),
 ('7003', 'Brass lamp with a shade of green glass, boxed!!', 'seller1', 'eBay', $(day '2026-11-18 16:00:00'),
  400000, 0, 0, 32000, Null, Null, -1, 1, 'buyer1', 'b1@example.com', -1, -1, 0, 0, 0, 0),
 ('7004', 'Wall Clock', 'seller1', 'eBay', $(day '2026-11-18 15:00:00'), 90000, 10000, 0, Null, Null, Null, 0, 1,
  'buyer1', 'b1@example.com', -1, -1, -1, 0, 0, 0),
 ('7005', 'Mirror', 'seller1', 'eBay', $(day '2026-11-17 18:00:00'), 120000, 0, 0, Null, Null, Null, 0, 1,
  'buyer2', 'b2@example.com', -1, 0, 0, 0, 0, 0),
 ('7006', 'Vase', 'seller1', 'eBay', $(day '2026-11-16 18:00:00'), 60000, 8000, 0, Null, Null, Null, 0, 1,
  'buyer3', 'b3@example.com', -1, -1, -1, 0, 0, 0),
 ('7007', 'Jug', 'seller1', 'eBay', $(day '2026-11-16 17:00:00'), 30000, 8000, 0, Null, Null, Null, 0, 1,
  'buyer3', 'b3@example.com', -1, -1, -1, 0, 0, 0),
 ('7008', 'Bowl', 'seller1', 'eBay', $(day '2026-11-16 16:00:00'), 20000, 8000, 0, Null, Null, Null, 0, 3,
  'buyer3', 'b3@example.com', -1, -1, -1, -1, -1, 0),
 ('7009', 'Plate', 'seller1', 'eBay', $(day '2026-11-16 15:00:00'), 10000, 8000, 0, Null, Null, Null, 0, 1,
  'buyer3', 'b3@example.com', -1, -1, -1, -1, -1, -1);
SQL
# The bidder side: auctions seller1 bid on.
#   s1@example.com (shopkeeper)  8001, 8002 won and ended, no shipping entered
#   8003 won, the seller's address not yet known; 8004 lost to another bidder (s4@example.com)
sqlite3 "$store" <<SQL
INSERT INTO bidder (Item, Title, username, site, "End", Price, Quantity, Id, Seller_id, Seller_email, Completed,
                    Reserve_met)
VALUES
 ('8001', 'Camera', 'seller1', 'eBay', $(day '2026-11-19 18:00:00'), 550000, 1, 'seller1', 'shopkeeper',
  's1@example.com', -1, -1),
 ('8002', 'Lens', 'seller1', 'eBay', $(day '2026-11-19 17:00:00'), 200000, 1, 'seller1', 'shopkeeper',
  's1@example.com', -1, -1),
 ('8003', 'Tripod', 'seller1', 'eBay', $(day '2026-11-19 16:00:00'), 150000, 1, 'seller1', 'tripodshop', Null,
  -1, -1),
 ('8004', 'Flash', 'seller1', 'eBay', $(day '2026-11-19 15:00:00'), 90000, 1, 'otherbidder', 'flashshop',
  's4@example.com', -1, -1);
SQL
