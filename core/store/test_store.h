// A fresh copy of the shipped empty store in a folder of its own, filled with a few auctions, for the
// store's tests.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include <unistd.h>

#include "core/primitives/encoding.h"
#include "core/store/store.h"

namespace lw {
// Readable values in failure messages.
inline void PrintTo(const Variant& v, std::ostream* os) {
  switch (v.kind()) {
    case Variant::Kind::Null:
      *os << "Null";
      break;
    case Variant::Kind::Bool:
      *os << (*v.boolean() ? "True" : "False");
      break;
    case Variant::Kind::Number:
      *os << *v.number();
      break;
    case Variant::Kind::Currency:
      *os << "Currency(" << v.currency()->scaled() << "/10000)";
      break;
    case Variant::Kind::Date:
      *os << "Date(" << v.date()->serial << ")";
      break;
    case Variant::Kind::Text:
      *os << '"' << ToUtf8(*v.text()) << '"';
      break;
  }
}
}  // namespace lw

namespace lw::testing {

class StoreTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = std::filesystem::temp_directory_path() /
           ("lw-store-" + std::to_string(::getpid()) + "-" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::remove_all(dir_);
    std::filesystem::create_directories(dir_);
    path_ = dir_ / "lw.mdb";
    std::filesystem::copy_file(LW_BINARY_DIR "/share/lw.mdb", path_);
    regional_ = Regional::FromLocale("en_US");
    db_ = Database::OpenDatabase(path_, regional_);
  }
  void TearDown() override {
    db_.reset();
    std::filesystem::remove_all(dir_);
  }

  void Exec(const std::string& sql) { db_->Execute(T(sql)); }
  std::unique_ptr<Recordset> Open(const std::string& sql) { return db_->OpenRecordset(T(sql)); }
  int64_t Count(const std::string& sql) {
    auto rs = Open(sql);
    if (rs->Eof()) return 0;
    rs->MoveLast();
    return rs->RecordCount();
  }
  Text Str(const Recordset& rs, const std::string& field) {
    Variant v = rs.Fields(T(field));
    return v.text() ? *v.text() : u"<not text>";
  }

  // Auctions of two user ids on both sides, chosen so that each view, purge and report keeps a
  // different subset.
  void Populate() {
    Exec("INSERT INTO setup (Userid, Name, UserEmail) VALUES ('seller1', 'Sam Seller', 'sam@example.com')");
    Exec("INSERT INTO setup (Userid, Name) VALUES ('seller2', 'Sue Second')");
    const char* cols =
        "INSERT INTO seller (Item, username, site, Title, Completed, Reserve_met, Price, Email, Id, End, "
        "Trans_comp, Duplicated, Ship_cost, fee_ref_no, Name) VALUES ";
    const char* rows[] = {
        "('1001', 'seller1', 'eBay', 'Blue Vase', yes, yes, '25.00', 'buyer@example.com', 'buyer1', "
        "#11/20/2026 10:00:00#, no, no, '4.50', '55 INV123', 'Bea')",
        "('1001', 'seller1', 'eBay', 'Blue Vase', yes, yes, '30.00', 'other@example.com', 'buyer2', "
        "#11/20/2026 10:00:00#, no, yes, 0, Null, 'Otto')",
        "('1002', 'seller1', 'eBay', 'Red Lamp', no, no, 0, Null, Null, #12/24/2026#, no, no, 0, Null, Null)",
        "('1003', 'seller1', 'eBay', 'Green Jug', yes, no, 0, Null, 'No Bids', #10/01/2026#, yes, no, 0, "
        "Null, "
        "Null)",
        "('1004', 'seller1', 'eBay', 'Blue Vase', yes, yes, 0, 'buyer@example.com', 'buyer1', #10/02/2026#, "
        "no, no, 0, Null, Null)",
        "('1005', 'seller1', 'eBay', 'Blue Vase', yes, no, '12.00', 'buyer@example.com', 'buyer1', "
        "#10/03/2026#, no, no, 0, Null, Null)",
        "('1006', 'seller1', 'eBay', 'Blue Vase', yes, yes, '40.00', 'late@example.com', 'buyer3', "
        "#12/31/2026 23:59:00#, yes, no, 0, '77', Null)",
        "('1007', 'seller1', 'eBay', 'Blue Vase', yes, yes, '41.00', 'late@example.com', 'buyer3', "
        "#01/01/2027 00:00:00#, yes, no, 0, Null, Null)",
        "('2002', 'seller2', 'eBay', 'Tin Box', yes, no, 0, Null, 'No Bids', #11/01/2026#, yes, no, 0, Null, "
        "Null)",
        "('2003', 'seller2', 'eBay', 'Tin Cup', yes, yes, '5.00', 'x@example.com', 'x', #11/02/2026#, no, "
        "no, 0, "
        "Null, Null)",
    };
    for (auto* r : rows) Exec(std::string(cols) + r);
    Exec(
        "INSERT INTO bidder (Item, username, site, Title, Completed, Trans_comp, Price, Seller_email, Id, "
        "Seller_id, End, Name) VALUES ('2001', 'seller1', 'eBay', 'Brass Bell', yes, no, '8.00', "
        "'shop@example.com', 'seller1', 'bellshop', #11/10/2026#, 'Shop Keeper')");
    Exec(
        "INSERT INTO bidder (Item, username, site, Title, Completed, Trans_comp, Price, Id, End) VALUES "
        "('2004', 'seller1', 'eBay', 'Lost Bell', yes, yes, '9.00', 'someone', #11/11/2026#)");
    Exec(
        "INSERT INTO bidder (Item, username, site, Title, Completed, Trans_comp, Price, Id, End) VALUES "
        "('2005', 'seller2', 'eBay', 'Won Bell', yes, yes, '3.00', 'seller2', #11/11/2026#)");
    Exec(
        "INSERT INTO bulk (username, site, bulkmail, emailtext_to, emailtext_subject, emailtext) VALUES "
        "('seller1', 'eBay', yes, 'buyer@example.com', 'Your item', 'Hello')");
    Exec("INSERT INTO Bulk (feedback_comment) VALUES('Smooth trade')");
    Exec(
        "INSERT INTO bulkstatuslog (emailtext_subject, emailto, auction_number, auction_type, "
        "status_log_note) "
        "VALUES ('Your item', 'buyer@example.com', '1001', 'Seller', 'mail queued')");
    Exec(
        "INSERT INTO Categories (AppSiteId, Categoryid, CategoryLevel, CategoryName, CategoryParentId, "
        "LeafCategory) VALUES (0, 1, 1, 'Antiques', 1, no)");
    Exec(
        "INSERT INTO Categories (AppSiteId, Categoryid, CategoryLevel, CategoryName, CategoryParentId, "
        "LeafCategory) VALUES (0, 2, 1, 'Books', 2, no)");
    Exec(
        "INSERT INTO Categories (AppSiteId, Categoryid, CategoryLevel, CategoryName, CategoryParentId, "
        "LeafCategory) VALUES (0, 3, 2, 'Maps', 1, yes)");
  }

  std::filesystem::path dir_, path_;
  Regional regional_;
  std::unique_ptr<Database> db_;
};

}  // namespace lw::testing
