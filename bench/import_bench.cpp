// Importing a seller list of 5,000 auctions (about 1.5 MB): as new rows into an empty store and again
// as updates of the same rows, both including normalisation and the store writes, each import run in
// one transaction; and, for scale, the same 5,000 rows inserted straight into SQLite, into the same table
// of the shipped store with the store's own journal settings, in one transaction. Peak memory of the
// process is reported as the counter peak_rss_mb, the page's size in bytes as page_mb.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "core/primitives/encoding.h"
#include "import/file_display.h"
#include "import/normalise.h"
#include "import/seller_list.h"
#include "import/seller_list_fuzzing.h"

namespace {

constexpr int kAuctions = 5000;

std::string Item(int i) {
  return std::to_string(1200000000 + i);
}

const std::string& PageBytes() {
  static const std::string page = lw::fuzzing::SellerListPage(kAuctions);
  return page;
}

const lw::Text& Page() {
  static const lw::Text page = lw::FromUtf8(PageBytes());
  return page;
}

void Import(lw::fuzzing::FuzzImport& env) {
  lw::FileDisplay buffer;
  buffer.set_text(Page());
  lw::parse_HTML(buffer, [](const lw::Text&) {});
  lw::pre_parse_HTML(buffer);
  lw::get_ebay_seller_auctions_2(*env.ctx, buffer);
}

void ReportMemory(benchmark::State& state) {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  state.counters["peak_rss_mb"] = static_cast<double>(usage.ru_maxrss) / 1024.0;
  state.counters["page_mb"] = static_cast<double>(PageBytes().size()) / 1e6;
}

int64_t ImportedRows(lw::Database& db) {
  auto rs = db.OpenRecordset(u"Select * From seller where pending = no");
  if (rs->Eof()) return 0;
  rs->MoveLast();
  return rs->RecordCount();
}

void BM_SellerListNewRows(benchmark::State& state) {
  lw::fuzzing::FuzzImport env;
  for (auto _ : state) {
    state.PauseTiming();
    env.Reset();
    state.ResumeTiming();
    Import(env);
  }
  if (ImportedRows(*env.db) != kAuctions) state.SkipWithError("not every auction was added");
  ReportMemory(state);
}
BENCHMARK(BM_SellerListNewRows)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_SellerListUpdates(benchmark::State& state) {
  lw::fuzzing::FuzzImport env;
  env.Reset();
  Import(env);
  for (auto _ : state) Import(env);
  if (ImportedRows(*env.db) != kAuctions) state.SkipWithError("the re-import added rows");
  ReportMemory(state);
}
BENCHMARK(BM_SellerListUpdates)->Unit(benchmark::kMillisecond)->Iterations(5);

// The same rows with the same columns, all in one transaction as an import run writes them.
void BM_RawSqliteInserts(benchmark::State& state) {
  lw::fuzzing::FuzzImport env;
  const std::filesystem::path path = env.dir / "raw.mdb";
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::remove(path);
    std::filesystem::remove(path.string() + "-wal");
    std::filesystem::remove(path.string() + "-shm");
    std::filesystem::copy_file(LW_SHIPPED_STORE, path);
    sqlite3* db = nullptr;
    sqlite3_open(path.c_str(), &db);
    sqlite3_exec(db,
                 "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL; PRAGMA wal_autocheckpoint = 4000;",
                 nullptr, nullptr, nullptr);
    sqlite3_stmt* insert = nullptr;
    sqlite3_prepare_v2(
        db,
        "INSERT INTO seller (Item, Start, \"End\", Length, Price, Title, Id, Email, Quantity, "
        "total_tax, total_charges, total_purchase, pending, username, site, rating, lastupdated, "
        "Reserve_met, Trans_comp, Completed) "
        "VALUES (?,?,?,?,?,?,?,?,1,0,0,0,0,'lotseller','eBay',?,?,-1,0,-1)",
        -1, &insert, nullptr);
    state.ResumeTiming();
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    for (int i = 0; i < kAuctions; ++i) {
      const std::string item = Item(i);
      const std::string title = "Vintage blue glass vase number " + std::to_string(i);
      const std::string buyer = "buyer" + std::to_string(i % 1700);
      const std::string email = buyer + "@example.com";
      sqlite3_bind_text(insert, 1, item.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_double(insert, 2, 46327.0 + i % 9);
      sqlite3_bind_double(insert, 3, 46336.0 + i % 9);
      sqlite3_bind_double(insert, 4, 7);
      sqlite3_bind_int64(insert, 5, (5 + i % 300) * 10000 + 5000);
      sqlite3_bind_text(insert, 6, title.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(insert, 7, buyer.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(insert, 8, email.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_double(insert, 9, i % 500);
      sqlite3_bind_double(insert, 10, 46348.5);
      if (sqlite3_step(insert) != SQLITE_DONE) state.SkipWithError("an insert failed");
      sqlite3_reset(insert);
    }
    if (sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr) != SQLITE_OK) state.SkipWithError("no commit");
    state.PauseTiming();
    sqlite3_finalize(insert);
    sqlite3_close(db);
    state.ResumeTiming();
  }
  ReportMemory(state);
}
BENCHMARK(BM_RawSqliteInserts)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

BENCHMARK_MAIN();
