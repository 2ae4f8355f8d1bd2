# 32,768 rows of one user id: one more than a view can count.
store="$XDG_DATA_HOME/lotwright/lw.mdb"
mkdir -p "$XDG_DATA_HOME/lotwright"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" <<'SQL'
UPDATE setup SET Userid = 'ann';
DELETE FROM seller;
WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 32767)
INSERT INTO seller (Item, Title, username, site, Price, Completed, "End")
SELECT 100000 + i, 'Row ' || i, 'ann', 'eBay', 10000, 0, 45000 + i / 1000.0 FROM n;
INSERT INTO seller (Item, Title, username, site, Price, Completed, "End")
VALUES ('999999', 'The one too many', 'ann', 'eBay', 10000, -1, 44000);
SQL
