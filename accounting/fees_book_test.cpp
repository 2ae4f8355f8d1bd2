// Booking charges into a real store installed from the shipped empty one: once per reference, to the
// cent, on the right auction, and never the reference without its amount.
#include "accounting/fees_book.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <filesystem>

#include "core/primitives/encoding.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

Currency Cents(int64_t cents) {
  return Currency::FromScaled(cents * 100);
}

FeeCharge Charge(const char16_t* column, const char16_t* item, const char16_t* ref, int64_t cents) {
  return FeeCharge{column, item, ref, Cents(cents)};
}

class FeeBookTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("lw_fee_book_" + std::to_string(::getpid()) + "_" +
                                        ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_);
    file_ = dir_ / "lw.mdb";
    fs::copy_file(fs::path(LW_BINARY_DIR) / "share" / "lw.mdb", file_);
  }
  void TearDown() override {
    cursor_.reset();
    db_.reset();
    fs::remove_all(dir_);
  }

  // Opens the store with these auctions of "tester" (and one of another user id) and the view on them.
  void Open(const char* extra_sql = nullptr) {
    if (extra_sql) RawSql(extra_sql);
    db_ = Database::OpenDatabase(file_, regional_);
    db_->Execute(u"Delete From seller");
    Add(u"4012345601", u"harbour_lights", u"tester", 1, u"null");
    Add(u"4012345602", u"Store Sale", u"tester", 0, u"null");
    Add(u"4012345603", u"Store Sale", u"tester", -1, u"null");
    Add(u"ab12", u"kate", u"tester", -1, u"null");
    Add(u"4012345609", u"kate", u"someone_else", -1, u"null");
    Add(u"4012345606", u"fan", u"tester", -1, u"'50000011 '");
    // The same item again, later in the view: the first row in the view's order takes the fees.
    Add(u"4012345601", u"second_buyer", u"tester", 9, u"null");
    cursor_ = db_->OpenRecordset(u"Select * From seller where username = 'tester' order by end desc");
  }
  void Add(const char16_t* item, const char16_t* id, const char16_t* user, int end_day,
           const char16_t* refs) {
    db_->Execute(
        u"INSERT INTO seller (Item, Id, username, site, Completed, fee_ref_no, fee_gallery, [End]) "
        u"VALUES ('" +
        Text(item) + u"', '" + id + u"', '" + user + u"', 'eBay', " +
        (Text(id) == u"Store Sale" && end_day == 0 ? u"false" : u"true") + u", " + refs + u", 1, #11/" +
        FromUtf8(std::to_string(10 + end_day)) + u"/2026#)");
  }
  void RawSql(const char* sql) {
    sqlite3* raw = nullptr;
    ASSERT_EQ(sqlite3_open(file_.c_str(), &raw), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(raw, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(raw);
    sqlite3_close(raw);
  }
  // A column of the row of `id`, read from the store afresh.
  Variant Value(const char16_t* id, const char16_t* column) {
    auto rs = db_->OpenRecordset(u"Select " + Text(column) + u" From seller where Id = '" + id + u"'");
    return rs->Fields(column);
  }

  fs::path dir_, file_;
  Regional regional_ = Regional::FromLocale("en_US");
  std::unique_ptr<Database> db_;
  std::unique_ptr<Recordset> cursor_;
};

TEST_F(FeeBookTest, EachReferenceOnceAndToTheCent) {
  Open();
  FeeBook book(*db_, *cursor_);
  EXPECT_TRUE(book.Book(Charge(u"fee_insertion", u"4012345606", u"50000031", 10)));
  EXPECT_TRUE(book.Book(Charge(u"fee_insertion", u"4012345606", u"50000032", 20)));
  for (const char16_t* ref : {u"50000033", u"50000034", u"50000035"})
    EXPECT_TRUE(book.Book(Charge(u"fee_final_value", u"4012345606", ref, 1999)));
  EXPECT_EQ(*Value(u"fan", u"fee_insertion").currency(), Cents(30));
  EXPECT_EQ(*Value(u"fan", u"fee_final_value").currency(), Cents(5997));
  EXPECT_EQ(*Value(u"fan", u"fee_ref_no").text(), u"50000035 50000034 50000033 50000032 50000031 50000011 ");
  // A reference already there, or inside one already there, is booked.
  EXPECT_FALSE(book.Book(Charge(u"fee_insertion", u"4012345606", u"50000031", 10)));
  EXPECT_FALSE(book.Book(Charge(u"fee_gallery", u"4012345606", u"5000001", 35)));
  EXPECT_EQ(*Value(u"fan", u"fee_insertion").currency(), Cents(30));
  EXPECT_EQ(*Value(u"fan", u"fee_gallery").currency(), Cents(100));
}

TEST_F(FeeBookTest, OnlyTheFirstAuctionOfTheViewWithThatVeryNumber) {
  Open();
  FeeBook book(*db_, *cursor_);
  EXPECT_TRUE(book.Book(Charge(u"fee_bold", u"4012345601", u"1", 100)));
  EXPECT_EQ(*Value(u"second_buyer", u"fee_bold").currency(), Cents(100));
  EXPECT_TRUE(Value(u"harbour_lights", u"fee_bold").IsNull());
  // Not in the view, another user id's, found only when case is ignored.
  EXPECT_FALSE(book.Book(Charge(u"fee_bold", u"4012345699", u"2", 100)));
  EXPECT_FALSE(book.Book(Charge(u"fee_bold", u"4012345609", u"3", 100)));
  EXPECT_FALSE(book.Book(Charge(u"fee_bold", u"AB12", u"4", 100)));
  EXPECT_TRUE(book.Book(Charge(u"fee_bold", u"ab12", u"5", 100)));
  // A Store Sale's stock row collects nothing; its sold copy does.
  EXPECT_FALSE(book.Book(Charge(u"fee_insertion", u"4012345602", u"6", 30)));
  EXPECT_TRUE(book.Book(Charge(u"fee_insertion", u"4012345603", u"7", 30)));
  EXPECT_EQ(db_->OpenRecordset(u"Select count(*) AS n From seller where fee_bold is not null")->Fields(u"n"),
            Variant(2));
  // An apostrophe makes a bad statement: the line fails and nothing is written.
  try {
    book.Book(Charge(u"fee_bold", u"40'12", u"8", 100));
    FAIL() << "an apostrophe in the item must fail";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), err::kSyntaxError);
  }
}

TEST_F(FeeBookTest, NeverTheReferenceWithoutItsAmount) {
  // The store refuses to add to the gallery fee after the reference has been written to the row.
  Open(
      "CREATE TRIGGER no_gallery BEFORE UPDATE OF fee_gallery ON seller "
      "BEGIN SELECT RAISE(ABORT, 'disk full'); END;");
  FeeBook book(*db_, *cursor_);
  EXPECT_THROW(book.Book(Charge(u"fee_gallery", u"4012345606", u"50000040", 35)), RuntimeError);
  EXPECT_EQ(*Value(u"fan", u"fee_ref_no").text(), u"50000011 ");
  EXPECT_EQ(*cursor_->Fields(u"fee_ref_no").text(), u"50000011 ");
  EXPECT_FALSE(db_->InTransaction());
  // The next line books as if the failed one had never been.
  EXPECT_TRUE(book.Book(Charge(u"fee_insertion", u"4012345606", u"50000041", 30)));
  EXPECT_EQ(*Value(u"fan", u"fee_ref_no").text(), u"50000041 50000011 ");
}

}  // namespace
}  // namespace lw
