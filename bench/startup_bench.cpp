// Start-up to a ready main screen (store open, splash gone, Form_Load and Form_Activate done) on a store
// of 30,000 seller rows, all in the default view.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "screen/main/main_form.h"
#include "screen/main/startup.h"

namespace {

namespace fs = std::filesystem;

// The user's part: every question gets its first button, modal forms close at once.
class QuietUi : public lw::Ui {
 public:
  lw::MsgAnswer MsgBox(const lw::Text&, const lw::Text&, lw::MsgButtons b, lw::MsgIcon) override {
    return lw::ButtonsOf(b).front();
  }
  std::optional<lw::FileDialogAnswer> ShowOpen(const lw::FileDialogRequest&) override { return std::nullopt; }
  std::optional<lw::FileDialogAnswer> ShowSave(const lw::FileDialogRequest&) override { return std::nullopt; }
  std::optional<lw::Colour> ChooseColour(lw::Colour) override { return std::nullopt; }
  void SetWaitCursor(bool) override {}
  void ShowModal(lw::Form& form) override { form.Unload(); }
  void PopupMenu(lw::Form&, lw::Menu&) override {}
  void SetClipboardText(const lw::Text&) override {}
  void ClearClipboard() override {}
  lw::Text ClipboardText() override { return {}; }
  void OpenHelp(const fs::path&, int) override {}
  void OpenAddress(const lw::Text&) override {}
  void StartProgram(const fs::path&, const std::vector<lw::Text>&) override {}
  [[noreturn]] void EndProcess(int code) override { throw lw::ProcessEnd{code}; }
};

struct Fixture {
  fs::path dir;
  Fixture() {
    dir = fs::temp_directory_path() / ("lw_startup_bench_" + std::to_string(::getpid()));
    fs::remove_all(dir);
    fs::create_directories(dir / "data" / "lotwright");
    setenv("XDG_DATA_HOME", (dir / "data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (dir / "config").c_str(), 1);
    fs::path store = dir / "data" / "lotwright" / "lw.mdb";
    fs::copy_file(LW_SHIPPED_STORE, store);
    sqlite3* db = nullptr;
    sqlite3_open(store.c_str(), &db);
    sqlite3_exec(
        db,
        "UPDATE setup SET Userid = 'bench';"
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 30000) "
        "INSERT INTO seller (Item, Title, username, site, Price, \"End\", Completed, pending) "
        "SELECT 100000000 + i, 'Auction number ' || i, 'bench', 'eBay', i * 10000, 46000 + i / 100.0, "
        "0, 0 FROM n;",
        nullptr, nullptr, nullptr);
    sqlite3_close(db);
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
