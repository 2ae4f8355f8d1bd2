// A change of the status selector on a main screen over 30,000 seller rows of one user id: the condition
// is rebuilt, the cursor refreshed, the rows counted and the total summed (auction_filter,
// records_returned, sum_grid), as the user sees it after choosing a status. Also a heading sort, which
// runs the same statement with another order.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "bench/bench_screen.h"
#include "screen/main/main_form.h"
#include "screen/main/startup.h"

namespace {

namespace fs = std::filesystem;

using lw::bench::QuietUi;

// 30,000 rows of user id "bench" in a mix of states: a quarter each in progress, ended and unpaid, ended
// and complete, and not yet submitted.
struct Screen {
  fs::path dir;
  QuietUi ui;
  std::unique_ptr<lw::EventQueue> queue;
  std::unique_ptr<lw::Settings> settings;
  std::unique_ptr<lw::Program> program;

  Screen() {
    dir = lw::bench::PrepareBenchHome(
        "lw_views_bench_",
        "UPDATE setup SET Userid = 'bench'; DELETE FROM seller;"
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 30000) "
        "INSERT INTO seller (Item, Title, username, site, Price, \"End\", Completed, Trans_comp, "
        "pending) SELECT 100000000 + i, 'Auction number ' || i, 'bench', 'eBay', i * 10000, "
        "46000 + i / 100.0, CASE WHEN i % 4 IN (1, 2) THEN -1 ELSE 0 END, "
        "CASE WHEN i % 4 = 2 THEN -1 ELSE 0 END, CASE WHEN i % 4 = 3 THEN -1 ELSE 0 END FROM n;");
    queue = std::make_unique<lw::EventQueue>();
    settings = std::make_unique<lw::Settings>(dir / "config" / "settings.ini");
    program = std::make_unique<lw::Program>(ui, *queue, *settings,
                                            lw::ProgramFiles{LW_SHIPPED_STORE, "/bin/true", "help"});
    lw::CreateForms(*program);
    lw::Main(*program);
  }
  ~Screen() {
    program.reset();
    fs::remove_all(dir);
  }
  lw::MainForm& main() { return *program->main; }
};

Screen& TheScreen() {
  static Screen screen;
  return screen;
}

// Choosing a status, again and again: the list fires its click each time the user picks the entry.
void StatusChange(benchmark::State& state, const char16_t* status, const char16_t* expected) {
  lw::MainForm& m = TheScreen().main();
  m.Auction_status_lst.SetText(status);
  for (auto _ : state) m.Auction_status_lst.OnClick();
  if (m.status() != expected) state.SkipWithError("the status change did not count the rows");
}

void BM_StatusChangeAllAuctions(benchmark::State& state) {
  StatusChange(state, u"All Auctions", u"Records Returned: 30000");
}
void BM_StatusChangeInProgress(benchmark::State& state) {
  StatusChange(state, u"Auctions in Progress", u"Records Returned: 7500");
}

void BM_HeadingSortAllAuctions(benchmark::State& state) {
  lw::MainForm& m = TheScreen().main();
  m.Auction_status_lst.SetText(u"All Auctions");
  for (auto _ : state) m.seller_grid.OnHeadClick(12);
  if (m.status() != u"Records Returned: 30000") state.SkipWithError("the sort did not count the rows");
}

// The parts of a status change on their own, over the 30,000 rows of "All Auctions".
void Routine(benchmark::State& state, const char* routine) {
  lw::MainForm& m = TheScreen().main();
  m.Auction_status_lst.SetText(u"All Auctions");
  for (auto _ : state) m.program().routines.Call(routine);
}
void BM_DoQuery(benchmark::State& state) {
  Routine(state, "do_query");
}
void BM_RecordsReturned(benchmark::State& state) {
  Routine(state, "records_returned");
}
void BM_SumGrid(benchmark::State& state) {
  Routine(state, "sum_grid");
}

BENCHMARK(BM_StatusChangeAllAuctions)->Unit(benchmark::kMillisecond)->UseRealTime()->Repetitions(5);
BENCHMARK(BM_StatusChangeInProgress)->Unit(benchmark::kMillisecond)->UseRealTime()->Repetitions(5);
BENCHMARK(BM_HeadingSortAllAuctions)->Unit(benchmark::kMillisecond)->UseRealTime()->Repetitions(5);
BENCHMARK(BM_DoQuery)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_RecordsReturned)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_SumGrid)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
