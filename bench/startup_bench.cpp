// Start-up to a ready main screen (store open, splash gone, Form_Load and Form_Activate done) on a store
// of 30,000 seller rows, all in the default view.
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

struct Fixture {
  fs::path dir;
  Fixture() {
    dir = lw::bench::PrepareBenchHome(
        "lw_startup_bench_",
        "UPDATE setup SET Userid = 'bench';"
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 30000) "
        "INSERT INTO seller (Item, Title, username, site, Price, \"End\", Completed, pending) "
        "SELECT 100000000 + i, 'Auction number ' || i, 'bench', 'eBay', i * 10000, 46000 + i / 100.0, "
        "0, 0 FROM n;");
  }
  ~Fixture() { fs::remove_all(dir); }
};

void BM_StartupToReadyScreen(benchmark::State& state) {
  static Fixture fixture;
  QuietUi ui;
  for (auto _ : state) {
    auto queue = std::make_unique<lw::EventQueue>();
    auto settings = std::make_unique<lw::Settings>(fixture.dir / "config" / "settings.ini");
    auto program = std::make_unique<lw::Program>(ui, *queue, *settings,
                                                 lw::ProgramFiles{LW_SHIPPED_STORE, "/bin/true", "help"});
    lw::CreateForms(*program);
    lw::Main(*program);
    if (program->main->status() != u"Couldn't import ini file. Default values loaded." ||
        program->main->Get(u"Title_txt", 0).text() != u"Auction number 30000")
      state.SkipWithError("the main screen did not come up on the view");
    // Closing the store is not part of start-up.
    state.PauseTiming();
    program.reset();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_StartupToReadyScreen)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
