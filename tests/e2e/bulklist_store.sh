# Sourced by the bulk listing tests' setup: alice's store of listing_store.sh with two more auctions of
# hers, and one of bob's already queued. With QUEUED=1 alice's three auctions are queued too, each with
# the AddItem request its validation left (only the fields the site's stand-in reads), written as an
# SQL literal.
. "$LW_E2E_DIR/listing_store.sh"
day() { echo "(julianday('$1') - julianday('1899-12-30'))"; }
request() {
  printf "<?xml version='1.0' encoding='iso-8859-1'?>\r\n<request>\r\n<RequestUserId>%s</RequestUserId>\r\n<RequestPassword>secret</RequestPassword>\r\n<ErrorLevel>1</ErrorLevel>\r\n<DetailLevel>0</DetailLevel>\r\n<Verb>AddItem</Verb>\r\n<Title><![CDATA[%s]]></Title>\r\n<Category>%s</Category>\r\n<SiteId>0</SiteId>\r\n<UUID>%s</UUID>\r\n<Version>2</Version>\r\n</request>\r\n" "$@" | sed "s/'/''/g"
}
sqlite3 "$store" <<SQL
INSERT INTO seller (Item, username, site, Title, Description1, Quantity, Minbid, Length, pending, Completed, "End")
VALUES (' ', 'alice', 'eBay', 'Tin Box', 'A tin box.', 1, 50000, 5, -1, 0, $(day '2003-11-10 18:00:00'));
INSERT INTO seller (Item, username, site, Title, Description1, Quantity, Minbid, Length, pending, Completed, "End")
VALUES (' ', 'alice', 'eBay', 'Brass Lamp', 'A brass lamp.', 1, 150000, 7, -1, 0, $(day '2003-11-15 18:00:00'));
INSERT INTO seller (Item, username, site, Title, Quantity, pending, Completed, Bulk_list, Bulk_list_siteid, Bulk_data, "End")
VALUES (' ', 'bob', 'eBay', 'Bob''s Clock', 1, -1, 0, -1, 0, '$(request bob "Clock" 444 B0B0B0B0B0B0B0B0B0B0B0B0B0B0B0B0)',
        $(day '2003-11-12 18:00:00'));
SQL
if [[ "${QUEUED:-}" == 1 ]]; then
  sqlite3 "$store" <<SQL
UPDATE seller SET Bulk_list = -1, Bulk_list_siteid = 0, category_no = '111',
  Bulk_data = '$(request alice "Oak Chair" 111 0A0A0A0A0A0A0A0A0A0A0A0A0A0A0A0A)' WHERE Title = 'Oak Chair';
UPDATE seller SET Bulk_list = -1, Bulk_list_siteid = 0, category_no = '222',
  Bulk_data = '$(request alice "Tin Box" 222 0B0B0B0B0B0B0B0B0B0B0B0B0B0B0B0B)' WHERE Title = 'Tin Box';
UPDATE seller SET Bulk_list = -1, Bulk_list_siteid = 0, category_no = '333',
  Bulk_data = '$(request alice "Brass Lamp" 333 0C0C0C0C0C0C0C0C0C0C0C0C0C0C0C0C)' WHERE Title = 'Brass Lamp';
SQL
fi
