#include "apps/common/store_convert.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

namespace lw {
namespace {

namespace fs = std::filesystem;

class StoreConvertTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("lw_convert_test_" + std::to_string(::getpid()) + "_" +
                                        ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_);
    store_ = dir_ / "lw.mdb";
    layout_ = dir_ / "schema.sql";
    Write(layout_,
          "PRAGMA journal_mode = WAL;\n"
          "CREATE TABLE seller (\"Item\" TEXT COLLATE NOCASE, \"Title\" TEXT COLLATE NOCASE,\n"
          "  \"pending\" YESNO INTEGER NOT NULL DEFAULT 0, \"Price\" MONEY INTEGER);\n"
          "CREATE TABLE misc (\"fontsizing\" YESNO INTEGER NOT NULL DEFAULT 0, \"note\" TEXT);\n"
          "CREATE INDEX seller_item ON seller (\"Item\");\n"
          "INSERT INTO misc VALUES (-1, 'seeded, with a comma');\n");
  }
  void TearDown() override { fs::remove_all(dir_); }

  static void Write(const fs::path& p, const std::string& text) {
    std::ofstream(p, std::ios::binary) << text;
  }
  static std::string Read(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
  }
  // Runs SQL on a file and returns the first column of every row, '|'-joined.
  static std::string Sql(const fs::path& file, const std::string& sql) {
    sqlite3* db = nullptr;
    sqlite3_open(file.c_str(), &db);
    std::string out;
    auto cb = [](void* o, int n, char** v, char**) {
      auto* s = static_cast<std::string*>(o);
      for (int i = 0; i < n; ++i) *s += std::string(v[i] ? v[i] : "NULL") + (i + 1 < n ? "," : "|");
      return 0;
    };
    char* err = nullptr;
    if (sqlite3_exec(db, sql.c_str(), cb, &out, &err) != SQLITE_OK) {
      out = std::string("error: ") + (err ? err : "?");
      sqlite3_free(err);
    }
    sqlite3_close(db);
    return out;
  }
  void MakeOldStore() {
    Sql(store_,
        "CREATE TABLE seller (\"Item\" TEXT COLLATE NOCASE, \"Title\" TEXT COLLATE NOCASE, \"Price\" MONEY "
        "INTEGER);"
        "INSERT INTO seller VALUES ('100', 'Old lamp', 125000), ('101', 'Blue vase', 99900);");
  }
  bool WorkFilesLeft() const {
    for (auto& e : fs::directory_iterator(dir_))
      if (e.path().string().find(".converting") != std::string::npos ||
          e.path().string().find(".partial") != std::string::npos)
        return true;
    return false;
  }

  fs::path dir_, store_, layout_;
};

TEST_F(StoreConvertTest, ConvertsAnOlderLayoutKeepingEveryRow) {
  MakeOldStore();
  auto missing = MissingLayout(store_, layout_);
  EXPECT_EQ(missing, (std::vector<std::string>{"seller.pending", "misc", "index seller_item"}));

  auto changes = ConvertStore(store_, layout_, false);
  EXPECT_EQ(changes, (std::vector<std::string>{"added column seller.pending", "added table misc",
                                               "added index seller_item"}));
  EXPECT_TRUE(MissingLayout(store_, layout_).empty());
  // Old rows are kept and the new yes/no column reads no, never Null.
  EXPECT_EQ(Sql(store_, "SELECT Item, Title, Price, pending FROM seller ORDER BY Item"),
            "100,Old lamp,125000,0|101,Blue vase,99900,0|");
  // The added column keeps the declared collation: text compares without regard to case.
  EXPECT_EQ(Sql(store_, "SELECT count(*) FROM seller WHERE Title = 'OLD LAMP'"), "1|");
  // A new table arrives with the layout's seed rows.
  EXPECT_EQ(Sql(store_, "SELECT fontsizing, note FROM misc"), "-1,seeded, with a comma|");
  EXPECT_FALSE(WorkFilesLeft());

  // A current store is left alone.
  auto before = Read(store_);
  EXPECT_TRUE(ConvertStore(store_, layout_, false).empty());
  EXPECT_EQ(Read(store_), before);
}

TEST_F(StoreConvertTest, AProgramStillHoldingTheStoreSeesTheConvertedOne) {
  MakeOldStore();
  // The program that starts the conversion may still have the store open, in WAL mode.
  sqlite3* held = nullptr;
  ASSERT_EQ(sqlite3_open(store_.c_str(), &held), SQLITE_OK);
  sqlite3_exec(held, "PRAGMA journal_mode = WAL; INSERT INTO seller VALUES ('102', 'Late row', 1)", nullptr,
               nullptr, nullptr);
  auto changes = ConvertStore(store_, layout_, true);
  EXPECT_FALSE(changes.empty());
  int rows = -1;
  auto count = [](void* out, int, char** v, char**) {
    *static_cast<int*>(out) = std::atoi(v[0]);
    return 0;
  };
  EXPECT_EQ(sqlite3_exec(held, "SELECT count(*) FROM seller WHERE pending = 0", count, &rows, nullptr),
            SQLITE_OK);
  EXPECT_EQ(rows, 3);
  sqlite3_close(held);
  EXPECT_EQ(Sql(store_, "SELECT count(*) FROM seller WHERE Item = '102'"), "1|");
  EXPECT_TRUE(MissingLayout(store_, layout_).empty());
}

TEST_F(StoreConvertTest, FailureLeavesTheStoreUntouched) {
  MakeOldStore();
  // A column that may not be empty but has nothing to fill the old rows with cannot be added.
  Write(layout_,
        "CREATE TABLE extra (x TEXT);\n"
        "CREATE TABLE seller (\"Item\" TEXT, \"Title\" TEXT, \"Price\" MONEY INTEGER, \"must\" TEXT NOT "
        "NULL);\n");
  auto before = Read(store_);
  EXPECT_THROW(ConvertStore(store_, layout_, true), ConvertError);
  EXPECT_EQ(Read(store_), before);
  EXPECT_EQ(Sql(store_, "SELECT count(*) FROM sqlite_master WHERE name = 'extra'"), "0|");
  EXPECT_FALSE(WorkFilesLeft());

  // A layout script with an error is reported, not half applied.
  Write(layout_, "CREATE TABLE seller (Item TEXT);\nCREATE TABLE oops (;\n");
  EXPECT_THROW(ConvertStore(store_, layout_, false), ConvertError);
  EXPECT_EQ(Read(store_), before);
}

TEST_F(StoreConvertTest, RefusesWhatIsNotAStore) {
  EXPECT_THROW(ConvertStore(store_, layout_, false), ConvertError);  // missing
  EXPECT_THROW(BackupStore(store_, MakeDate(2026, 11, 22)), ConvertError);
  EXPECT_THROW(CompactStore(store_), ConvertError);
  Write(store_, "this is a letter, not a database file, and it is long enough to have a header......");
  auto before = Read(store_);
  EXPECT_THROW(ConvertStore(store_, layout_, false), ConvertError);
  EXPECT_THROW(CompactStore(store_), ConvertError);
  EXPECT_EQ(Read(store_), before);
  MakeOldStore();  // fails on the garbage file too: nothing is created in its place
  EXPECT_EQ(Read(store_), before);
  fs::remove(store_);
  MakeOldStore();
  EXPECT_THROW(MissingLayout(store_, dir_ / "no-such.sql"), ConvertError);
}

TEST_F(StoreConvertTest, BackupIsADatedCopyBesideTheStore) {
  MakeOldStore();
  fs::path first = BackupStore(store_, MakeDate(2026, 11, 22, 15, 30));
  EXPECT_EQ(first, dir_ / "lw-2026-11-22.mdb");
  EXPECT_EQ(Sql(first, "SELECT Title FROM seller ORDER BY Item"), "Old lamp|Blue vase|");
  // A second backup the same day does not overwrite the first.
  Sql(store_, "DELETE FROM seller WHERE Item = '100'");
  fs::path second = BackupStore(store_, MakeDate(2026, 11, 22));
  EXPECT_EQ(second, dir_ / "lw-2026-11-22-2.mdb");
  EXPECT_EQ(Sql(first, "SELECT count(*) FROM seller"), "2|");
  EXPECT_EQ(Sql(second, "SELECT count(*) FROM seller"), "1|");
  EXPECT_FALSE(WorkFilesLeft());
  // A backup holds the passwords the store holds: for its owner alone.
  for (const fs::path& copy : {first, second})
    EXPECT_EQ(fs::status(copy).permissions(), fs::perms::owner_read | fs::perms::owner_write) << copy;
}

TEST_F(StoreConvertTest, CompactGivesBackTheSpaceOfDeletedRows) {
  MakeOldStore();
  Sql(store_,
      "CREATE TABLE big (x TEXT); WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE "
      "i < 2000) INSERT INTO big SELECT printf('%0500d', i) FROM n; DELETE FROM big;");
  auto before = fs::file_size(store_);
  CompactStore(store_);
  EXPECT_LT(fs::file_size(store_) * 4, before);
  EXPECT_EQ(Sql(store_, "SELECT count(*) FROM seller"), "2|");
  EXPECT_FALSE(WorkFilesLeft());
}

}  // namespace
}  // namespace lw
