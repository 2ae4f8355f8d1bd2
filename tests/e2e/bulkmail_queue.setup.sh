. "$LW_E2E_DIR/mail_sales.sh"
# Another user id's queued letter and two stored feedback comments share the table.
sqlite3 "$store" <<SQL
INSERT INTO setup (Userid, mailconnecttype) VALUES ('seller2', 0);
INSERT INTO bulk (username, site, bulkmail, emailtext_to, emailtext_subject, emailtext)
VALUES ('seller2', 'eBay', -1, 'x@example.com', 'Another user''s letter', 'Hello');
INSERT INTO bulk (feedback_comment) VALUES ('Fast payment, thank you'), ('Great buyer');
SQL
