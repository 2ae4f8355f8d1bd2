. "$LW_E2E_DIR/listing_store.sh"
# An older tree of three categories in the store, loaded when the site's count was 3.
sqlite3 "$store" "INSERT INTO Categories (AppSiteId, Categoryid, CategoryLevel, CategoryName, CategoryParentId, LeafCategory)
  VALUES (0, 1, 1, 'Old Things', 1, 0), (0, 2, 2, 'Old Clocks', 1, -1), (0, 3, 2, 'Old Lamps', 1, -1);
  UPDATE Categoryupdate SET categories_last_updated = 'then', category_total = 3 WHERE siteId = 0"
