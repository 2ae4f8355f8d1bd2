// The profit report over 30,000 sales: laid out alone, laid out and written as PDF, and laid out and
// written as a spreadsheet. Counters give the pages, pages per second and the process's peak memory.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <random>
#include <string>

#include "accounting/export.h"
#include "accounting/reports.h"
#include "core/primitives/encoding.h"
#include "core/store/store.h"

namespace {

namespace fs = std::filesystem;

constexpr int kSales = 30000;

double PeakMegabytes() {
  rusage u{};
  getrusage(RUSAGE_SELF, &u);
  return static_cast<double>(u.ru_maxrss) / 1024.0;
}

void RawExec(sqlite3* db, const char* sql) {
  char* msg = nullptr;
  if (sqlite3_exec(db, sql, nullptr, nullptr, &msg) != SQLITE_OK) {
    std::string m = msg ? msg : "?";
    sqlite3_free(msg);
    throw std::runtime_error(m);
  }
}

// A store of 30,000 finished sales of one user id with every money column filled (ten-thousandths).
struct SalesStore {
  fs::path dir;
  lw::Regional regional = lw::Regional::FromLocale("en_US");
  std::unique_ptr<lw::Database> db;

  SalesStore() {
    dir = fs::temp_directory_path() / ("lw-reports-bench-" + std::to_string(::getpid()));
    fs::create_directories(dir);
    fs::path path = dir / "lw.mdb";
    fs::remove(path);
    fs::copy_file(LW_SHIPPED_STORE, path);
    sqlite3* raw = nullptr;
    sqlite3_open(path.c_str(), &raw);
    RawExec(raw, "BEGIN");
    sqlite3_stmt* insert = nullptr;
    sqlite3_prepare_v2(
        raw,
        "INSERT INTO seller (Item, Title, username, site, Name, Id, Completed, Reserve_met, Price, "
        "Cost, actual_ship_cost, actual_insure_cost, actual_other_cost, actual_total_tax, Ship_cost, "
        "insure_cost, total_tax, fee_insertion, fee_final_value, fee_gallery, fee_credit_insertion, "
        "\"End\") VALUES (?, ?, 'ann', 'eBay', ?, ?, -1, -1, ?, ?, ?, 0, 0, ?, ?, 0, ?, 3500, ?, "
        "2500, 0, ?)",
        -1, &insert, nullptr);
    std::mt19937 rng(7);
    for (int i = 0; i < kSales; ++i) {
      std::string item = std::to_string(100000 + i);
      std::string title = "Item number " + std::to_string(i) + " in fair condition";
      std::string name = "Buyer " + std::to_string(i % 977);
      int64_t price = 10000 + static_cast<int64_t>(rng() % 5000000);
      sqlite3_bind_text(insert, 1, item.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(insert, 2, title.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(insert, 3, name.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(insert, 4, ("buyer" + std::to_string(i)).c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_int64(insert, 5, price);
      sqlite3_bind_int64(insert, 6, price / 3);
      sqlite3_bind_int64(insert, 7, (i % 5) * 10000);
      sqlite3_bind_int64(insert, 8, price / 20);
      sqlite3_bind_int64(insert, 9, 50000);
      sqlite3_bind_int64(insert, 10, price / 20);
      sqlite3_bind_int64(insert, 11, price / 12);
      sqlite3_bind_double(insert, 12, 46000.0 + i / 100.0);
      sqlite3_step(insert);
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    RawExec(raw, "COMMIT");
    sqlite3_close(raw);
    db = lw::Database::OpenDatabase(path, regional);
  }
  ~SalesStore() {
    db.reset();
    fs::remove_all(dir);
  }
};

SalesStore& Store() {
  static SalesStore store;
  return store;
}

lw::ReportDocument ProfitReport() {
  SalesStore& s = Store();
  auto r = lw::MakeReportLayout(u"profit100", lw::LayoutContext{lw::Date(46099)});
  r->page.left_margin = r->page.top_margin = 360;
  r->page.right_margin = r->page.bottom_margin = 720;
  r->data_source =
      u"SELECT * From seller Where (((seller.UserName) = 'ann')) and Reserve_met = true ORDER BY "
      u"Seller.Price DESC";
  return r->Run(*s.db, s.regional);
}

void Report(benchmark::State& state, size_t pages) {
  state.counters["pages"] = static_cast<double>(pages);
  state.counters["pages_per_s"] =
      benchmark::Counter(static_cast<double>(pages), benchmark::Counter::kIsIterationInvariantRate);
  state.counters["peak_MB"] = PeakMegabytes();
}

void BM_ProfitReportLaidOut(benchmark::State& state) {
  Store();
  size_t pages = 0;
  for (auto _ : state) {
    lw::ReportDocument doc = ProfitReport();
    pages = doc.pages.size();
    benchmark::DoNotOptimize(doc);
  }
  Report(state, pages);
}
BENCHMARK(BM_ProfitReportLaidOut)->Unit(benchmark::kMillisecond);

// Laid out and written to `name` in the store's folder by `write`.
template <void (*write)(const lw::ReportDocument&, const fs::path&)>
void Exported(benchmark::State& state, const char* name) {
  fs::path file = Store().dir / name;
  size_t pages = 0;
  for (auto _ : state) {
    lw::ReportDocument doc = ProfitReport();
    write(doc, file);
    pages = doc.pages.size();
  }
  Report(state, pages);
  state.counters["file_MB"] = static_cast<double>(fs::file_size(file)) / 1e6;
}

void BM_ProfitReportToPdf(benchmark::State& state) {
  Exported<lw::report_export::WritePdf>(state, "profit.pdf");
}
BENCHMARK(BM_ProfitReportToPdf)->Unit(benchmark::kMillisecond);

void BM_ProfitReportToSpreadsheet(benchmark::State& state) {
  Exported<lw::report_export::WriteSpreadsheet>(state, "profit.xls");
}
BENCHMARK(BM_ProfitReportToSpreadsheet)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
