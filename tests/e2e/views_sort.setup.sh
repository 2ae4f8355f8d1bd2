# The store of views_status, with steps of the sale and start dates for the sorts to order.
. "$LW_E2E_DIR/views_status.setup.sh"
# Steps of the sale on some rows, so that the status chain has something to order.
sqlite3 "$store" <<'SQL'
UPDATE seller SET Contact = -1, Status_date = 45102 WHERE Item = '101';
UPDATE seller SET Contact = -1, Response = -1, Status_date = 45100 WHERE Item = '102';
UPDATE seller SET Contact = -1, Response = -1, Payment = -1, Status_date = 45101 WHERE Item = '103';
UPDATE seller SET Contact = -1, Response = -1, Status_date = 45099 WHERE Item = '106';
SQL
sqlite3 "$store" <<'SQL'
UPDATE bidder SET Start = 44990 WHERE Item = '501';
UPDATE bidder SET Start = 44992 WHERE Item = '502';
UPDATE bidder SET Start = 44991 WHERE Item = '503';
SQL
