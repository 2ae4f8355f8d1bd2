// The desktop program on a store of 30,000 seller rows, without a display: start-up to the first paint of
// the main window, and a jump of the grid from its first row to its last with the repaint. The resident
// memory after start-up is reported as a counter.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QTableView>
#include <QtCore/qtestsupport_core.h>

#include <fstream>
#include <memory>
#include <string>

#include "apps/desktop/desktop.h"
#include "apps/desktop/environment.h"
#include "apps/desktop/grid_view.h"
#include "apps/desktop/renderer.h"
#include "bench/bench_screen.h"
#include "screen/main/main_form.h"

namespace {

namespace fs = std::filesystem;
using lw::desktop::Desktop;

constexpr int kRows = 30000;

struct Fixture {
  fs::path dir;
  Fixture() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    lw::desktop::PrepareWebEngine();
    static int argc = 1;
    static char name[] = "desktop_bench";
    static char* argv[] = {name, nullptr};
    auto* app = new QApplication(argc, argv);
    app->setQuitOnLastWindowClosed(false);
    dir = lw::bench::PrepareBenchHome(
        "lw_desktop_bench_",
        "UPDATE setup SET Userid = 'bench';"
        "DELETE FROM seller;"
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 30000) "
        "INSERT INTO seller (Item, Title, username, site, Price, \"End\", Completed, pending) "
        "SELECT 100000000 + i, 'Auction number ' || i, 'bench', 'eBay', i * 10000, 46000 + i / 100.0, "
        "0, 0 FROM n;");
  }
  ~Fixture() { fs::remove_all(dir); }
  lw::desktop::DesktopOptions Options() const {
    lw::desktop::DesktopOptions o;
    o.settings_file = dir / "config" / "settings.ini";
    o.files = lw::ProgramFiles{LW_SHIPPED_STORE, "/bin/true", "help"};
    return o;
  }
};

Fixture& TheFixture() {
  static Fixture fixture;
  return fixture;
}

// Notes the first paint of a widget.
class FirstPaint : public QObject {
 public:
  bool painted = false;
  bool eventFilter(QObject*, QEvent* e) override {
    if (e->type() == QEvent::Paint) painted = true;
    return false;
  }
};

long ResidentKilobytes() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.rfind("VmRSS:", 0) == 0) return std::stol(line.substr(6));
  return 0;
}

void BM_StartupToFirstPaintedMainWindow(benchmark::State& state) {
  Fixture& fixture = TheFixture();
  long rss = 0;
  for (auto _ : state) {
    auto desktop = std::make_unique<Desktop>(fixture.Options());
    desktop->Start();
    QWidget* window = desktop->renderer().MainWindow();
    if (!window) {
      state.SkipWithError("no main window");
      break;
    }
    FirstPaint paint;
    window->installEventFilter(&paint);
    if (!QTest::qWaitFor([&] { return paint.painted; }, 10000)) {
      state.SkipWithError("the main window was never painted");
      break;
    }
    state.PauseTiming();
    const bool whole = desktop->program().main->seller_grid.RowCount() == kRows;
    rss = ResidentKilobytes();
    window->removeEventFilter(&paint);
    desktop->Quit(0);
    desktop.reset();
    QTest::qWait(50);  // what the windows left to be deleted
    if (!whole) {
      state.SkipWithError("the grid is not on the view");
      break;
    }
    state.ResumeTiming();
  }
  state.counters["rss_after_start_MB"] = static_cast<double>(rss) / 1024.0;
}
BENCHMARK(BM_StartupToFirstPaintedMainWindow)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);

void BM_GridJumpFirstToLastRowWithRepaint(benchmark::State& state) {
  Fixture& fixture = TheFixture();
  Desktop desktop(fixture.Options());
  desktop.Start();
  lw::MainForm& main = *desktop.program().main;
  auto* table = qobject_cast<QTableView*>(desktop.renderer().WidgetOf(main.seller_grid));
  if (!table || main.seller_grid.RowCount() != kRows) {
    state.SkipWithError("no grid of the whole view");
    return;
  }
  (void)QTest::qWaitFor([&] { return table->isVisible(); }, 5000);
  auto* model = dynamic_cast<lw::desktop::GridModel*>(table->model());
  size_t read = 0;
  // The jump is done once the grid has painted the rows it jumped to.
  FirstPaint paint;
  table->viewport()->installEventFilter(&paint);
  auto painted = [&] {
    paint.painted = false;
    return QTest::qWaitFor([&] { return paint.painted; }, 5000);
  };
  for (auto _ : state) {
    state.PauseTiming();
    desktop.Dispatch([&] { main.seller.MoveFirst(); });
    // Nothing of the end of the view is kept from the jump before: the rows come from the store.
    model->RowsChanged();
    painted();
    state.ResumeTiming();
    const size_t before = model->rows_read();
    desktop.Dispatch([&] { main.seller.MoveLast(); });
    if (!painted()) state.SkipWithError("the grid was not painted");
    read += model->rows_read() - before;
    if (table->currentIndex().row() != kRows - 1) state.SkipWithError("the grid did not follow the cursor");
  }
  // The rows read from the store for each jump: what the repaint showed, not the view.
  state.counters["rows_read_per_jump"] = benchmark::Counter(static_cast<double>(read), benchmark::Counter::kAvgIterations);
  desktop.Quit(0);
}
BENCHMARK(BM_GridJumpFirstToLastRowWithRepaint)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
