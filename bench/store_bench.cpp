// The store under load: many different short statements, a large view opened and walked, and imports of
// many rows through a cursor against raw SQLite inserts of the same rows.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "core/primitives/encoding.h"
#include "core/store/store.h"

namespace {

namespace fs = std::filesystem;

double PeakMegabytes() {
  rusage u{};
  getrusage(RUSAGE_SELF, &u);
  return static_cast<double>(u.ru_maxrss) / 1024.0;
}

fs::path FreshStore(const std::string& name) {
  fs::path dir = fs::temp_directory_path() / ("lw-store-bench-" + std::to_string(::getpid()));
  fs::create_directories(dir);
  fs::path p = dir / (name + ".mdb");
  fs::remove(p);
  fs::copy_file(LW_SHIPPED_STORE, p);
  return p;
}

void RawExec(sqlite3* db, const char* sql) {
  char* msg = nullptr;
  if (sqlite3_exec(db, sql, nullptr, nullptr, &msg) != SQLITE_OK) {
    std::string m = msg ? msg : "?";
    sqlite3_free(msg);
    throw std::runtime_error(m);
  }
}

const std::string kDescription(600, 'd');

// 30,000 auctions of one user id, all in progress, each with a description of import size.
fs::path LargeStore() {
  static fs::path path = [] {
    fs::path p = FreshStore("large");
    sqlite3* db = nullptr;
    sqlite3_open(p.c_str(), &db);
    RawExec(db, "BEGIN");
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(
        db,
        "INSERT INTO seller (Item, username, site, Title, Description1, Price, \"End\", Id, Email, "
        "Quantity) VALUES (?, 'seller1', 'eBay', ?, ?, ?, ?, 'bidder', 'b@example.com', 1)",
        -1, &st, nullptr);
    for (int i = 0; i < 30000; ++i) {
      std::string item = std::to_string(4000000000LL + i),
                  title = "Auction title number " + std::to_string(i);
      sqlite3_bind_text(st, 1, item.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(st, 2, title.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(st, 3, kDescription.c_str(), -1, SQLITE_STATIC);
      sqlite3_bind_int64(st, 4, (i % 500) * 10000 + 9900);
      sqlite3_bind_double(st, 5, 46000.0 + i / 100.0);
      sqlite3_step(st);
      sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    RawExec(db, "COMMIT");
    sqlite3_close(db);
    return p;
  }();
  return path;
}

// (a) Translate and run 10,000 different short statements.
void BM_TenThousandStatements(benchmark::State& state) {
  fs::path p = FreshStore("short");
  auto db = lw::Database::OpenDatabase(p, lw::Regional::FromLocale("en_US"));
  db->Execute(u"INSERT INTO seller (Item, username, Title, Price) VALUES ('1', 'seller1', 'Vase', '2.50')");
  int64_t n = 0;
  for (auto _ : state) {
    for (int i = 0; i < 10000; ++i, ++n) {
      std::string v = std::to_string(n);
      switch (i % 4) {
        case 0:
          db->OpenRecordset(lw::T("Select * From seller where item = '" + v + "'"));
          break;
        case 1:
          db->Execute(lw::T("Update Seller set fee_insertion = fee_insertion + '0." +
                            std::to_string(n % 100) + "' where item = '" + v + "' and completed = yes"));
          break;
        case 2:
          db->OpenRecordset(lw::T("Select Count(*) AS n From seller where title like '*" + v + "*'"));
          break;
        default:
          db->OpenRecordset(lw::T("Select * From setup where Userid = 'user" + v + "'"));
      }
    }
  }
  state.counters["statements_per_s"] =
      benchmark::Counter(static_cast<double>(n), benchmark::Counter::kIsRate);
  state.counters["peak_MB"] = PeakMegabytes();
}
BENCHMARK(BM_TenThousandStatements)->Unit(benchmark::kMillisecond)->Iterations(3);

// (b) Open the default view of 30,000 rows, MoveLast, MoveFirst, read 100 rows whole.
void BM_LargeView(benchmark::State& state) {
  fs::path p = LargeStore();
  auto db = lw::Database::OpenDatabase(p, lw::Regional::FromLocale("en_US"));
  auto names = db->TableColumns(u"seller");
  int64_t rows = 0;
  for (auto _ : state) {
    auto rs = db->OpenRecordset(
        u"Select * From seller where Completed = no and pending = no and username = 'seller1' and site = "
        u"'eBay' "
        u"order by end desc");
    rs->MoveLast();
    rows = rs->RecordCount();
    rs->MoveFirst();
    for (int i = 0; i < 100 && !rs->Eof(); ++i) {
      for (const auto& n : names) benchmark::DoNotOptimize(rs->Fields(n));
      rs->MoveNext();
    }
  }
  state.counters["rows"] = static_cast<double>(rows);
  state.counters["peak_MB"] = PeakMegabytes();
}
BENCHMARK(BM_LargeView)->Unit(benchmark::kMillisecond)->Iterations(10);

// (c) 5,000 import-sized rows through AddNew/Update, against raw prepared inserts of the same rows.
void BM_AddNewUpdate(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    fs::path p = FreshStore("addnew");
    auto db = lw::Database::OpenDatabase(p, lw::Regional::FromLocale("en_US"));
    auto rs = db->OpenRecordset(u"Select * From seller where item = 'none'");
    state.ResumeTiming();
    for (int i = 0; i < 5000; ++i) {
      rs->AddNew();
      rs->SetField(u"Item", lw::Variant(lw::T(std::to_string(5000000000LL + i))));
      rs->SetField(u"username", lw::Variant(u"seller1"));
      rs->SetField(u"site", lw::Variant(u"eBay"));
      rs->SetField(u"Title", lw::Variant(lw::T("Imported auction " + std::to_string(i))));
      rs->SetField(u"Price", lw::Variant(lw::Currency::FromScaled(125000 + i)));
      rs->SetField(u"End", lw::Variant(lw::Date(46000.5 + i / 50.0)));
      rs->SetField(u"Id", lw::Variant(u"bidder"));
      rs->SetField(u"Email", lw::Variant(u"b@example.com"));
      rs->SetField(u"Reserve_met", lw::Variant(true));
      rs->SetField(u"Completed", lw::Variant(false));
      rs->SetField(u"lastupdated", lw::Variant(lw::Date(46000.25)));
      rs->SetField(u"Quantity", lw::Variant(1.0));
      rs->Update();
    }
  }
  state.counters["peak_MB"] = PeakMegabytes();
}
BENCHMARK(BM_AddNewUpdate)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_RawInsert(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    fs::path p = FreshStore("raw");
    sqlite3* db = nullptr;
    sqlite3_open(p.c_str(), &db);
    RawExec(db, "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL; PRAGMA wal_autocheckpoint = 4000;");
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(
        db,
        "INSERT INTO seller (Item, username, site, Title, Price, \"End\", Id, Email, Reserve_met, "
        "Completed, lastupdated, Quantity) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
        -1, &st, nullptr);
    state.ResumeTiming();
    for (int i = 0; i < 5000; ++i) {
      std::string item = std::to_string(5000000000LL + i), title = "Imported auction " + std::to_string(i);
      sqlite3_bind_text(st, 1, item.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(st, 2, "seller1", -1, SQLITE_STATIC);
      sqlite3_bind_text(st, 3, "eBay", -1, SQLITE_STATIC);
      sqlite3_bind_text(st, 4, title.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_int64(st, 5, 125000 + i);
      sqlite3_bind_double(st, 6, 46000.5 + i / 50.0);
      sqlite3_bind_text(st, 7, "bidder", -1, SQLITE_STATIC);
      sqlite3_bind_text(st, 8, "b@example.com", -1, SQLITE_STATIC);
      sqlite3_bind_int(st, 9, -1);
      sqlite3_bind_int(st, 10, 0);
      sqlite3_bind_double(st, 11, 46000.25);
      sqlite3_bind_double(st, 12, 1.0);
      sqlite3_step(st);
      sqlite3_reset(st);
    }
    state.PauseTiming();
    sqlite3_finalize(st);
    sqlite3_close(db);
    state.ResumeTiming();
  }
}
BENCHMARK(BM_RawInsert)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
