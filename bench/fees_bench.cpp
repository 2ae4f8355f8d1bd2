// Importing an account page of 20,000 fee lines over 5,000 auctions (about 1.3 MB of normalised text):
// reading the page from its work file, walking its lines, reading each line and booking it in the store,
// each booking in a transaction of its own, and the view read afresh at the end as the screen does.
// First into a store whose auctions have no fees, then again with every reference already booked. For
// scale, the same number of plain SQLite updates of the same table, each committed on its own with the
// store's journal settings.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "accounting/fees_book.h"
#include "accounting/fees_line.h"
#include "accounting/fees_walk.h"
#include "core/store/store.h"

namespace {

namespace fs = std::filesystem;

constexpr int kAuctions = 5000;
constexpr int kLinesPerAuction = 4;
constexpr char16_t kView[] = u"Select * From seller where username = 'lotseller' order by end desc ";

std::string Item(int i) {
  return std::to_string(4100000000LL + i);
}

// The page as the import leaves it: one line for each fee, the fees of an auction spread over the page
// as the site lists them by date.
std::string Page() {
  static const char* kFees[kLinesPerAuction][2] = {{"Insertion fee", "--$0.30 "},
                                                   {"Gallery fee", "--$0.35 "},
                                                   {"Final Value fee", "--$1.75 "},
                                                   {"Insertion fee credit", "$0.30 "}};
  std::string page =
      "eBay Account Status for lotseller\r\n\r\nRef #DateTitleItemCreditDebitBalanceFees and credits of this "
      "period\r\n";
  int ref = 50000000;
  for (int kind = 0; kind < kLinesPerAuction; ++kind)
    for (int i = 0; i < kAuctions; ++i) {
      std::string line = std::to_string(++ref) + " Nov-01-26" + kFees[kind][0] + Item(i) + kFees[kind][1] +
                         "$1" + std::to_string(i % 10) + ".00";
      if (line.size() % 2) line += ' ';  // every line whole: the walk takes two characters at a time
      page += line + "\r\n";
    }
  page += "Current Account Balance;$10.00\r\nCopyright 1995-2026 eBay Inc. All Rights Reserved.\r\n";
  return page;
}

struct Files {
  fs::path dir = fs::temp_directory_path() / ("lw_fees_bench_" + std::to_string(::getpid()));
  fs::path page = dir / "parsed_data.htm";
  fs::path empty = dir / "auctions.mdb";  // the auctions without fees
  fs::path store = dir / "lw.mdb";        // the store a run works on

  Files() {
    fs::remove_all(dir);
    fs::create_directories(dir);
    std::ofstream(page, std::ios::binary) << Page();
    fs::copy_file(LW_SHIPPED_STORE, empty);
    sqlite3* db = nullptr;
    sqlite3_open(empty.c_str(), &db);
    sqlite3_exec(db, "DELETE FROM seller; BEGIN", nullptr, nullptr, nullptr);
    for (int i = 0; i < kAuctions; ++i) {
      std::string sql = "INSERT INTO seller (Item, Title, username, site, Id, Completed, \"End\") VALUES ('" +
                        Item(i) + "', 'Vase " + std::to_string(i) + "', 'lotseller', 'eBay', 'buyer" +
                        std::to_string(i % 1700) + "', -1, " + std::to_string(46300 + i % 60) + ")";
      sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr);
    }
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(db);
  }
  ~Files() { fs::remove_all(dir); }

  void Fresh(const fs::path& from) const {
    for (const char* tail : {"", "-wal", "-shm"}) fs::remove(store.string() + tail);
    fs::copy_file(from, store);
  }
};

const Files& TheFiles() {
  static const Files files;
  return files;
}

const lw::Regional& Us() {
  static const lw::Regional r = lw::Regional::FromLocale("en_US");
  return r;
}

int ImportFees(lw::Database& db) {
  auto view = db.OpenRecordset(kView);
  lw::FeeBook book(db, *view);
  int booked = 0;
  lw::walk_fee_page(lw::load_fee_page(TheFiles().page), [&](const lw::Text& line) {
    try {
      std::optional<lw::FeeCharge> charge = lw::read_fee_line(line, Us());
      if (charge && book.Book(*charge)) ++booked;
    } catch (const lw::RuntimeError&) {
    }
  });
  view->Requery();
  return booked;
}

void BM_FeesFirstImport(benchmark::State& state) {
  const Files& f = TheFiles();
  int booked = 0;
  for (auto _ : state) {
    state.PauseTiming();
    f.Fresh(f.empty);
    auto db = lw::Database::OpenDatabase(f.store, Us());
    state.ResumeTiming();
    booked = ImportFees(*db);
  }
  if (booked != kAuctions * kLinesPerAuction) state.SkipWithError("not every fee was booked");
  state.counters["booked"] = booked;
}
BENCHMARK(BM_FeesFirstImport)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_FeesSecondImport(benchmark::State& state) {
  const Files& f = TheFiles();
  f.Fresh(f.empty);
  auto db = lw::Database::OpenDatabase(f.store, Us());
  ImportFees(*db);
  int booked = -1;
  for (auto _ : state) booked = ImportFees(*db);
  if (booked != 0) state.SkipWithError("a fee was booked twice");
  state.counters["booked"] = booked;
}
BENCHMARK(BM_FeesSecondImport)->Unit(benchmark::kMillisecond)->Iterations(1);

// As many updates as there are fee lines, each adding an amount and a reference by item number.
void BM_PlainSqliteUpdates(benchmark::State& state) {
  const Files& f = TheFiles();
  for (auto _ : state) {
    state.PauseTiming();
    f.Fresh(f.empty);
    sqlite3* db = nullptr;
    sqlite3_open(f.store.c_str(), &db);
    sqlite3_exec(db,
                 "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL; PRAGMA wal_autocheckpoint = 4000;",
                 nullptr, nullptr, nullptr);
    sqlite3_stmt* update = nullptr;
    sqlite3_prepare_v2(db,
                       "UPDATE seller SET fee_insertion = coalesce(fee_insertion, 0) + ?, "
                       "fee_ref_no = ? || coalesce(fee_ref_no, '') WHERE Item = ?",
                       -1, &update, nullptr);
    state.ResumeTiming();
    int ref = 50000000;
    for (int kind = 0; kind < kLinesPerAuction; ++kind)
      for (int i = 0; i < kAuctions; ++i) {
        const std::string refs = std::to_string(++ref) + " ";
        const std::string item = Item(i);
        sqlite3_bind_int64(update, 1, 3000);
        sqlite3_bind_text(update, 2, refs.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(update, 3, item.c_str(), -1, SQLITE_TRANSIENT);
        if (sqlite3_step(update) != SQLITE_DONE) state.SkipWithError("an update failed");
        sqlite3_reset(update);
      }
    state.PauseTiming();
    sqlite3_finalize(update);
    sqlite3_close(db);
    state.ResumeTiming();
  }
}
BENCHMARK(BM_PlainSqliteUpdates)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
