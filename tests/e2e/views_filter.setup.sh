# A store with auctions of every state for user id "ann" on eBay, and rows of another user id and of
# another site that no view of ann's may show.
store="$XDG_DATA_HOME/lotwright/lw.mdb"
mkdir -p "$XDG_DATA_HOME/lotwright"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" <<'SQL'
UPDATE setup SET Userid = 'ann';
DELETE FROM seller;
INSERT INTO seller (Item, Title, username, site, Price, Completed, Trans_comp, pending, template, "End") VALUES
  ('101', 'Lamp running', 'ann', 'eBay', 100000, 0, 0, 0, 0, 45000),
  ('102', 'Vase ended unpaid', 'ann', 'eBay', 200000, -1, 0, 0, 0, 45001),
  ('103', 'Clock finished', 'ann', 'eBay', 300000, -1, -1, 0, 0, 45002),
  ('104', 'Draft not sent', 'ann', 'eBay', 400000, 0, 0, -1, 0, 45003),
  ('105', 'Coat template', 'ann', 'eBay', 500000, 0, 0, -1, -1, 45004),
  ('106', 'Ended but pending', 'ann', 'eBay', 600000, -1, 0, -1, 0, 45005),
  ('107', 'Running no price', 'ann', 'eBay', NULL, 0, 0, 0, 0, 45006),
  ('201', 'Bob lamp', 'bob', 'eBay', 10000000, 0, 0, 0, 0, 45007),
  ('301', 'Lamp elsewhere', 'ann', 'Yahoo', 20000000, 0, 0, 0, 0, 45008);
INSERT INTO bidder (Item, Title, username, site, Price, Completed, Trans_comp, watching, "End", Seller_id) VALUES
  ('501', 'Bid running', 'ann', 'eBay', 15000, 0, 0, 0, 45000, 'sam'),
  ('502', 'Won unpaid', 'ann', 'eBay', 25000, -1, 0, 0, 45001, 'sam'),
  ('503', 'Won and received', 'ann', 'eBay', 35000, -1, -1, 0, 45002, 'tom'),
  ('504', 'Only watched', 'ann', 'eBay', 45000, 0, 0, -1, 45003, 'tom'),
  ('505', 'Watched and ended', 'ann', 'eBay', 55000, -1, 0, -1, 45004, 'tom'),
  ('601', 'Bob bid', 'bob', 'eBay', 9990000, 0, 0, 0, 45005, 'sam');
SQL
