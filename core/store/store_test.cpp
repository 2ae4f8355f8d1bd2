// The store's own contract: opening, the shipped rows, cursors and their edge cases, typed fields, edits,
// and bad statements that must fail with a number and change nothing.
#include <sqlite3.h>

#include <fstream>

#include "core/store/test_store.h"

namespace lw::testing {
namespace {

int ErrorOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const RuntimeError& e) {
    EXPECT_FALSE(e.description().empty());
    return e.number();
  }
  return 0;
}

TEST(StoreOpen, MissingFileAndNonStoreFile) {
  auto dir = std::filesystem::temp_directory_path() / ("lw-store-open-" + std::to_string(::getpid()));
  std::filesystem::create_directories(dir);
  Regional r = Regional::FromLocale("en_US");
  EXPECT_EQ(ErrorOf([&] { Database::OpenDatabase(dir / "absent.mdb", r); }), 3024);
  EXPECT_FALSE(std::filesystem::exists(dir / "absent.mdb"));  // never created
  EXPECT_EQ(ErrorOf([&] { Database::OpenDatabase(dir, r); }), 3024);
  std::ofstream(dir / "junk.mdb") << "this is no database at all, just some text that fills a page";
  EXPECT_EQ(ErrorOf([&] { Database::OpenDatabase(dir / "junk.mdb", r); }), 3343);
  std::filesystem::remove_all(dir);
}

TEST_F(StoreTest, ShippedStoreRowsAndLayout) {
  auto misc = Open("Select * From Misc");
  EXPECT_EQ(misc->Fields(u"Ebay_hour_difference"), Variant(0.0));
  EXPECT_EQ(misc->Fields(u"fontsizing"), Variant(false));
  EXPECT_FALSE(misc->Fields(u"servername_import").IsNull());
  auto setup = Open("Select * From Setup");
  EXPECT_EQ(Str(*setup, "Userid"), u"No Userid Set");
  EXPECT_EQ(Str(*setup, "countrylocation"), u"0");
  EXPECT_EQ(setup->Fields(u"mapi_compliant"), Variant(false));
  EXPECT_EQ(setup->Fields(u"taxrate"), Variant(0.0));
  auto seller = Open("Select * From seller");
  EXPECT_EQ(Str(*seller, "Item"), u" ");
  EXPECT_EQ(Str(*seller, "Title"), u"Sample Auction");
  EXPECT_EQ(seller->Fields(u"pending"), Variant(true));
  EXPECT_EQ(seller->Fields(u"total_tax"), Variant(Currency()));
  EXPECT_TRUE(seller->Fields(u"End").IsNull());
  EXPECT_EQ(Count("Select * From Categoryupdate where category_total = 0 and categories_last_updated = ''"),
            15);
  EXPECT_TRUE(db_->HasColumn(u"SELLER", u"trans_COMP"));
  EXPECT_FALSE(db_->HasColumn(u"bidder", u"pending"));
  EXPECT_EQ(db_->TableColumns(u"bulkstatuslog").size(), 5u);

  // The file is in WAL mode for every later opener too.
  sqlite3* raw = nullptr;
  ASSERT_EQ(sqlite3_open(path_.c_str(), &raw), SQLITE_OK);
  sqlite3_stmt* st = nullptr;
  sqlite3_prepare_v2(raw, "PRAGMA journal_mode", -1, &st, nullptr);
  ASSERT_EQ(sqlite3_step(st), SQLITE_ROW);
  EXPECT_STREQ(reinterpret_cast<const char*>(sqlite3_column_text(st, 0)), "wal");
  sqlite3_finalize(st);
  sqlite3_close(raw);
}

TEST_F(StoreTest, FieldsReadByTheirPlaceAreTheFieldsOfThatName) {
  Populate();
  auto rs = Open(
      "Select * From setup, seller where setup.userid = seller.username and seller.username = 'seller1' "
      "order by "
      "Item");
  int name = rs->FieldOrdinal(u"seller.Name"), title = rs->FieldOrdinal(u"TITLE");
  ASSERT_GE(name, 0);
  EXPECT_EQ(rs->FieldNames()[name], u"seller.Name");
  EXPECT_EQ(rs->FieldAt(name), rs->Fields(u"seller.Name"));
  EXPECT_EQ(rs->FieldAt(title), Variant(Text(u"Blue Vase")));
  EXPECT_EQ(rs->FieldOrdinal(u"no_such_column"), -1);
  EXPECT_THROW(rs->FieldAt(-1), RuntimeError);
  EXPECT_THROW(rs->FieldAt(static_cast<int>(rs->FieldNames().size())), RuntimeError);
}

TEST_F(StoreTest, OlderLayoutLacksAColumn) {
  db_.reset();
  sqlite3* raw = nullptr;
  ASSERT_EQ(sqlite3_open(path_.c_str(), &raw), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(raw, "ALTER TABLE seller DROP COLUMN pending", nullptr, nullptr, nullptr),
            SQLITE_OK);
  sqlite3_close(raw);
  db_ = Database::OpenDatabase(path_, regional_);
  auto rs = Open("Select * From seller");
  EXPECT_EQ(ErrorOf([&] { rs->Fields(u"pending"); }), 3265);
  EXPECT_EQ(ErrorOf([&] { Open("Select * From seller where pending = no"); }), 3061);
}

TEST_F(StoreTest, CursorMovesCountsAndPositions) {
  Populate();
  auto rs = Open("Select * From seller where username = 'seller1' order by item");
  EXPECT_FALSE(rs->Bof());
  EXPECT_EQ(rs->AbsolutePosition(), 0);
  rs->MoveLast();
  EXPECT_EQ(rs->RecordCount(), 8);
  EXPECT_EQ(rs->AbsolutePosition(), 7);
  EXPECT_EQ(Str(*rs, "item"), u"1007");
  rs->MoveNext();
  EXPECT_TRUE(rs->Eof());
  EXPECT_EQ(rs->AbsolutePosition(), -1);
  EXPECT_EQ(ErrorOf([&] { rs->Fields(u"Item"); }), 3021);
  EXPECT_EQ(ErrorOf([&] { rs->MoveNext(); }), 3021);
  rs->MoveFirst();
  rs->MovePrevious();
  EXPECT_TRUE(rs->Bof());
  EXPECT_EQ(ErrorOf([&] { rs->MovePrevious(); }), 3021);
  rs->SetAbsolutePosition(2);
  EXPECT_EQ(Str(*rs, "Item"), u"1002");
  EXPECT_EQ(ErrorOf([&] { rs->SetAbsolutePosition(8); }), 3001);
  EXPECT_EQ(ErrorOf([&] { rs->Fields(u"no_such_column"); }), 3265);

  auto empty = Open("Select * From seller where item = 'none'");
  EXPECT_TRUE(empty->Eof());
  EXPECT_TRUE(empty->Bof());
  EXPECT_EQ(empty->RecordCount(), 0);
  EXPECT_EQ(ErrorOf([&] { empty->MoveLast(); }), 3021);
}

TEST_F(StoreTest, LookupsFindTheFirstOfTwoRowsWithOneItem) {
  Populate();
  auto rs = Open("Select * From seller where item = '1001'");
  EXPECT_EQ(Str(*rs, "id"), u"buyer1");
  auto all = Open("Select * From seller order by end desc");
  all->FindFirst(u"Item = '1001'");
  EXPECT_FALSE(all->NoMatch());
  EXPECT_EQ(Str(*all, "Id"), u"buyer1");
  all->FindNext(u"Item = '1001'");
  EXPECT_EQ(Str(*all, "Id"), u"buyer2");
  all->FindNext(u"Item = '1001'");
  EXPECT_TRUE(all->NoMatch());
  EXPECT_EQ(Str(*all, "Id"), u"buyer2");
  // No blank between the closing quote and "and".
  all->FindFirst(u"Item = '1001'and email = 'other@example.com'");
  EXPECT_FALSE(all->NoMatch());
  EXPECT_EQ(Str(*all, "Id"), u"buyer2");
  auto here = all->Bookmark();
  all->FindFirst(u"Item = '1001'and email = 'nobody@example.com'");
  EXPECT_TRUE(all->NoMatch());
  EXPECT_EQ(all->Bookmark(), here);  // the cursor stays where it was
  all->MoveFirst();
  all->SetBookmark(here);
  EXPECT_EQ(Str(*all, "Id"), u"buyer2");
  // Criteria are held to the cursor's own condition.
  auto lamp = Open("Select * From seller where item = '1002'");
  lamp->FindFirst(u"item = '1001'");
  EXPECT_TRUE(lamp->NoMatch());
  EXPECT_EQ(ErrorOf([&] { all->FindFirst(u"Item = '1001"); }), 3075);
  EXPECT_EQ(ErrorOf([&] { all->FindFirst(u"nosuch = 1"); }), 3061);
}

TEST_F(StoreTest, AddNewEditUpdateDelete) {
  Populate();
  auto rs = Open("Select * From seller where username = 'seller1' order by item");
  rs->AddNew();
  rs->SetField(u"Item", Variant(u"1010"));
  rs->SetField(u"username", Variant(u"seller1"));
  rs->SetField(u"price", Variant(u"12.34"));
  rs->SetField(u"End", Variant(u"11/30/2026 8:15:00 PM"));
  rs->SetField(u"Completed", Variant(-1));
  EXPECT_EQ(rs->Fields(u"Price"), Variant(Currency::FromScaled(123400)));
  EXPECT_EQ(ErrorOf([&] { rs->SetField(u"Price", Variant(u"twelve")); }), 3421);
  EXPECT_EQ(ErrorOf([&] { rs->SetField(u"nosuch", Variant(1)); }), 3265);
  rs->Update();
  EXPECT_EQ(Str(*rs, "Item"), u"1001");  // the current row stays
  rs->SetBookmark(rs->LastModified());
  EXPECT_EQ(rs->Fields(u"End"), Variant(MakeDate(2026, 11, 30, 20, 15, 0)));
  EXPECT_EQ(rs->Fields(u"Duplicated"), Variant(false));  // never Null
  EXPECT_EQ(rs->Fields(u"Completed"), Variant(true));
  EXPECT_TRUE(rs->Fields(u"Reserve").IsNull());
  rs->MoveLast();
  EXPECT_EQ(rs->RecordCount(), 9);

  rs->FindFirst(u"item = '1002'");
  rs->Edit();
  rs->SetField(u"Title", Variant(u"Red Lamp, boxed"));
  rs->CancelUpdate();
  EXPECT_EQ(Str(*rs, "Title"), u"Red Lamp");
  EXPECT_EQ(ErrorOf([&] { rs->Update(); }), 3020);
  EXPECT_EQ(ErrorOf([&] { rs->SetField(u"Title", Variant(u"x")); }), 3020);
  rs->Edit();
  rs->SetField(u"Title", Variant(u"Red Lamp, boxed"));
  rs->SetField(u"Reserve", Variant());
  rs->Update();
  EXPECT_EQ(Count("Select * From seller where title = 'red lamp, BOXED'"), 1);

  rs->Delete();
  EXPECT_EQ(ErrorOf([&] { rs->Fields(u"Item"); }), 3167);
  rs->MoveNext();
  EXPECT_EQ(Str(*rs, "Item"), u"1003");
  EXPECT_EQ(Count("Select * From seller where item = '1002'"), 0);

  // A join is read-only.
  auto join = Open("Select * From seller, setup where setup.userid = seller.username");
  EXPECT_EQ(ErrorOf([&] { join->Edit(); }), 3027);
  auto agg = Open("Select Count(*) AS n From seller");
  EXPECT_EQ(agg->Fields(u"n"), Variant(11.0));  // ten rows, the sample row, one added, one deleted
  EXPECT_EQ(ErrorOf([&] { agg->AddNew(); }), 3027);
}

TEST_F(StoreTest, AnEditedRowReadsBackAsAFreshFetchWouldGiveIt) {
  Populate();
  // Every kind of column, a Null, a yes/no set from Null, text beyond the first plane and an emptied memo.
  auto rs = Open("Select * From seller where item = '1003'");
  rs->Edit();
  rs->SetField(u"Price", Variant(u"19.999"));
  rs->SetField(u"End", Variant(u"12/24/2026 6:30:00 PM"));
  rs->SetField(u"Quantity", Variant(u"3"));
  rs->SetField(u"Completed", Variant());
  rs->SetField(u"Title", Variant(Text(u"Jug \U0001F3FA and ") + Text(1, u'\xD800') + u" end"));
  rs->SetField(u"Comments", Variant(Text()));
  rs->SetField(u"Reserve", Variant());
  rs->Update();
  auto fresh = Open("Select * From seller where item = '1003'");
  for (const auto& name : rs->FieldNames()) {
    SCOPED_TRACE(ToUtf8(name));
    EXPECT_EQ(rs->Fields(name), fresh->Fields(name));
  }
  EXPECT_EQ(rs->Fields(u"Completed"), Variant(false));
  // A computed column, or a column shown twice, follows the change the edit wrote.
  auto computed = Open("Select price, price * 2 AS twice, price AS again From seller where item = '1002'");
  computed->Edit();
  computed->SetField(u"price", Variant(u"10.50"));
  computed->Update();
  EXPECT_EQ(computed->Fields(u"twice"), Variant(Currency::FromDouble(21)));
  EXPECT_EQ(computed->Fields(u"again"), Variant(Currency::FromDouble(10.5)));
}

TEST_F(StoreTest, BadStatementsFailWithANumberAndChangeNothing) {
  Populate();
  struct Case {
    const char* sql;
    int number;
  };
  const Case cases[] = {
      {"Update Seller set nosuch = 1 where item = '1001'", 3061},
      {"Update Seller set title = 'x' where nosuch = 1", 3061},
      {"Update Seller set title = 'O'Brien' where item = '1001'", 3075},
      {"Update Seller set title = 'open where item = '1001", 3075},
      {"Update Seller set title = 'x' where end = #13/45/2026#", 3075},
      {"Update Seller set price = 'a lot' where item = '1001'", 3464},
      {"Update Seller set status_date = 'someday' where item = '1001'", 3464},
      {"Update Nosuch set title = 'x'", 3078},
      {"Delete From seller, setup", 3075},
      {"drop table seller", 3075},
      {"Update Seller set title = 'x'; DELETE FROM seller", 3075},
      {"Select * From seller, setup where Name = 'x'", 3079},
      {"Select * From seller where foo(item) = 1", 3085},
      {"Select * From seller where Sum(price) > 1", 3096},
      {"INSERT INTO Bulk (feedback_comment, username) VALUES('a')", 3346},
      {"Select * From seller", 3065},
      {")))(((", 3075},
      {"", 3075},
  };
  int64_t before = Count("Select * From seller where title = 'x'");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.sql);
    EXPECT_EQ(ErrorOf([&] { Exec(c.sql); }), c.number);
  }
  EXPECT_EQ(Count("Select * From seller where title = 'x'"), before);
  EXPECT_EQ(Count("Select * From seller where username = 'seller1'"), 8);
  EXPECT_EQ(ErrorOf([&] { Open("Delete From seller"); }), 3219);
  // Statements too deep to emit are refused, not a crash.
  std::string chain = "Select * From seller where price > 0";
  for (int i = 0; i < 20000; ++i) chain += " + price";
  EXPECT_EQ(ErrorOf([&] { Open(chain); }), 3075);
  EXPECT_EQ(ErrorOf([&] { Open("Select * From seller where " + std::string(5000, '(') + "1"); }), 3075);
  EXPECT_EQ(ErrorOf([&] { Open("Select * From seller where price > " + std::string(60, '-') + "1"); }), 3075);
  std::string many = "Select * From seller where item <> 'x'";
  for (int i = 0; i < 300; ++i) many += " and item <> '" + std::to_string(i) + "'";
  EXPECT_EQ(Count(many), 11);  // a long flat list of conditions is fine
  std::string nested = "price";
  for (int i = 0; i < 22; ++i) nested = "(" + nested + " between price and 5)";
  EXPECT_EQ(ErrorOf([&] { Open("Select * From seller where " + nested); }), 3075);
}

TEST_F(StoreTest, DialectTyping) {
  Populate();
  // A yes/no literal against a comparison tests its truth; a bare yes/no column is a condition.
  EXPECT_EQ(Count("Select * From seller where (price > 20) = true"), 4);
  EXPECT_EQ(Count("Select * From seller where (price > 20) = false"), 6);
  EXPECT_EQ(Count("Select * From seller where reserve_met and not trans_comp"), 4);
  EXPECT_EQ(Count("Select * From seller where price between 10 and '30'"), 3);
  EXPECT_EQ(Count("Select * From seller where item in ('1001', '1002') and id is not null"), 2);
  EXPECT_EQ(Count("Select * From seller where name is null and username = 'seller1'"), 6);
  EXPECT_EQ(Count("Select * From seller where [Item] = \"1003\""), 1);
  EXPECT_EQ(Count("Select * From seller where title like 'B?ue*' and item like '100[1-4]'"), 3);
  EXPECT_EQ(Count("Select * From seller where item like '100#'"), 8);
  // Money keeps its cents exactly through arithmetic.
  Exec(
      "Update Seller set total_charges = price + ship_cost * 2 - '0.01' where item = '1001' and id = "
      "'buyer1'");
  auto rs =
      Open("Select price * 2 AS twice, total_charges, end + 1 AS next_day From seller where item = '1001'");
  EXPECT_EQ(rs->Fields(u"twice"), Variant(Currency::FromDouble(50)));
  EXPECT_EQ(rs->Fields(u"total_charges"), Variant(Currency::FromScaled(339900)));
  EXPECT_EQ(rs->Fields(u"next_day"), Variant(MakeDate(2026, 11, 21, 10, 0, 0)));
  // Yes/no values are stored as -1.
  auto truth = Open("Select Sum(Completed) AS n From seller where username = 'seller1'");
  EXPECT_EQ(truth->Fields(u"n"), Variant(-7.0));
}

TEST_F(StoreTest, QuotingHelpersAndDataSource) {
  EXPECT_EQ(Quoted(u"Blue Vase"), u"'Blue Vase'");
  EXPECT_EQ(ErrorOf([] { Quoted(u"O'Brien"); }), 3075);
  EXPECT_EQ(QuotedDoubling(u"O'Brien's"), u"'O''Brien''s'");
  Exec("Update Seller set title = " + ToUtf8(QuotedDoubling(u"Bob's vase")) + " where item = ' '");
  EXPECT_EQ(Count("Select * From seller where title = " + ToUtf8(QuotedDoubling(u"Bob's vase"))), 1);

  DataSource ds(*db_, u"seller");
  EXPECT_EQ(ErrorOf([&] { ds.recordset(); }), 91);
  ds.RecordSource = u"Select * From seller";
  ds.Refresh();
  EXPECT_EQ(ds.recordset().RecordCount(), 1);
  ds.RecordSource = u"Select * From seller where nosuch = 1";
  EXPECT_EQ(ErrorOf([&] { ds.Refresh(); }), 3061);
  EXPECT_EQ(ds.recordset().RecordCount(), 1);  // the old cursor stays
  Exec("INSERT INTO seller (Item) VALUES ('9')");
  ds.RecordSource = u"Select * From seller order by item desc";
  ds.Refresh();
  EXPECT_EQ(ds.recordset().RecordCount(), 2);
  EXPECT_EQ(Str(ds.recordset(), "Item"), u"9");
}

}  // namespace
}  // namespace lw::testing
