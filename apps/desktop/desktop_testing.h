// Test support for the desktop program (included by tests only): one QApplication without a display for
// the test program, a fresh home with a store, and a user who acts on the widgets step by step while the
// program runs, from inside whatever loop the program waits in (a modal form, a message box).
#pragma once

#include <unistd.h>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "apps/desktop/desktop.h"
#include "apps/desktop/environment.h"
#include "apps/desktop/qt_convert.h"
#include "apps/desktop/renderer.h"
#include "screen/testing.h"

namespace lw::desktop::testing {

namespace fs = std::filesystem;

// The test program's one application, made at first need.
inline void EnsureApplication() {
  if (QApplication::instance()) return;
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // The tests see no scanner: otherwise every SANE backend of the machine is probed, slowly, and may
  // answer differently from one machine to the next.
  const fs::path sane = fs::temp_directory_path() / ("lw-desktop-sane-" + std::to_string(::getpid()));
  fs::create_directories(sane);
  std::ofstream(sane / "dll.conf").flush();
  qputenv("SANE_CONFIG_DIR", QByteArray::fromStdString(sane.string()));
  PrepareWebEngine();
  static int argc = 1;
  static char name[] = "lw_desktop_tests";
  static char* argv[] = {name, nullptr};
  auto* app = new QApplication(argc, argv);
  app->setQuitOnLastWindowClosed(false);
}

// Runs SQLite's own SQL on a store file.
inline void Sql(const fs::path& store, const std::string& sql) {
  sqlite3* db = nullptr;
  char* error = nullptr;
  bool ok = sqlite3_open(store.c_str(), &db) == SQLITE_OK &&
            sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &error) == SQLITE_OK;
  std::string why = error ? error : "";
  sqlite3_free(error);
  sqlite3_close(db);
  if (!ok) throw std::runtime_error("sql on the test store: " + why);
}

// One lot of the user id in the store, an oak chair sold at $25.00 that ends on day `end`.
inline void OneLot(const fs::path& store, int end, bool completed) {
  Sql(store,
      "DELETE FROM seller;"
      "INSERT INTO seller (Item, Title, username, site, Price, \"End\", Completed, pending) "
      "VALUES (100000001, 'Oak chair', 'lotseller', 'eBay', 250000, " +
          std::to_string(end) + ", " + (completed ? "1" : "0") + ", 0);");
}

// The lines of the renderer's check, one a line: empty while every widget shows the model.
inline std::string Joined(const std::vector<std::string>& lines) {
  std::string out;
  for (const auto& l : lines) out += l + "\n";
  return out;
}

// Ready once the program shows its main window.
inline std::function<bool()> MainWindowShown(Desktop& d) {
  return [&d] { return d.renderer().MainWindow() && d.renderer().MainWindow()->isVisible(); };
}

// The user clicks a row of the grid shown for this control, as the mouse does.
inline void ClickRow(Desktop& d, Control& grid, int row) {
  auto* rows = qobject_cast<QTableView*>(d.renderer().WidgetOf(grid));
  ASSERT_NE(rows, nullptr);
  QTest::mouseClick(rows->viewport(), Qt::LeftButton, {},
                    rows->visualRect(rows->model()->index(row, 1)).center());
}

// The tests of the desktop program share the one application.
class DesktopTest : public ::testing::Test {
 protected:
  void SetUp() override { EnsureApplication(); }
};

// Hosts of the site for the tests: a closed port on the loopback, so that nothing leaves the machine.
inline std::string ClosedHosts(const std::string& except_key = "", const std::string& except_host = "") {
  std::string out = "[Lotwright/Hosts]\n";
  for (const char* key : {"signin", "item", "bid", "feedback", "search", "myebay", "announce", "relist",
                          "forum", "paypal", "yahoo", "yahoo_sold", "api", "update"})
    out += std::string(key) + "=" + (key == except_key ? except_host : "127.0.0.1:9") + "\n";
  return out;
}

// A fresh home for one test: its settings, and (unless `fresh`) the shipped store with a user id.
class Home {
 public:
  explicit Home(const std::string& test, bool fresh = false, const std::string& settings = ClosedHosts()) {
    dir = lw::testing::FreshTestHome("lw_desktop_", test);
    fs::create_directories(dir / "config" / "lotwright");
    std::ofstream(dir / "config" / "lotwright" / "settings.ini") << settings;
    store = dir / "data" / "lotwright" / "lw.mdb";
    if (!fresh) {
      fs::create_directories(store.parent_path());
      fs::copy_file(LW_SHIPPED_STORE, store);
      Sql(store,
          "UPDATE setup SET Userid = 'lotseller', Password = 'secret', Name = 'Lot Seller';"
          "UPDATE misc SET servername_import = '127.0.0.1:9', servername_import1 = '127.0.0.1:9', "
          "servername_desc = '127.0.0.1:9', servername_email = '127.0.0.1:9', servername_dutch = "
          "'127.0.0.1:9', "
          "servername_fees = '127.0.0.1:9', servername_ebaymotors = '127.0.0.1:9'");
    }
  }
  ~Home() {
    std::error_code ec;
    fs::remove_all(dir, ec);
  }
  DesktopOptions Options() const {
    DesktopOptions o;
    o.settings_file = dir / "config" / "lotwright" / "settings.ini";
    o.files =
        ProgramFiles{LW_SHIPPED_STORE, dir / "no-convert", fs::path(LW_SOURCE_DIR) / "share/help/index.html"};
    return o;
  }
  fs::path dir;
  fs::path store;
};

// The message box on show, if any.
inline QMessageBox* OpenBox() {
  for (QWidget* w : QApplication::topLevelWidgets())
    if (auto* box = qobject_cast<QMessageBox*>(w); box && box->isVisible()) return box;
  return nullptr;
}

// Presses a button of a message box as the user would.
inline void Press(QMessageBox& box, QMessageBox::StandardButton which) {
  QAbstractButton* b = box.button(which);
  ASSERT_NE(b, nullptr) << "the box has no such button";
  b->click();
}

// A user who acts on the widgets step by step while the program runs. Each step waits until it is
// ready, then acts; a step that opens a modal form or a message box leaves the next steps to act inside
// it. Play starts the program and runs it until it ends.
class User {
 public:
  explicit User(Desktop& desktop) : desktop_(desktop) {}

  // A step whose act is over before the next step begins.
  User& Then(std::string what, std::function<bool()> ready, std::function<void()> act) {
    steps_.push_back({std::move(what), std::move(ready), std::move(act), false});
    return *this;
  }
  User& Then(std::string what, std::function<void()> act) {
    return Then(
        std::move(what), [] { return true; }, std::move(act));
  }
  // A step whose act ends by opening something modal (a form, a message box): the next steps act in it.
  User& ThenOpening(std::string what, std::function<bool()> ready, std::function<void()> act) {
    steps_.push_back({std::move(what), std::move(ready), std::move(act), true});
    return *this;
  }
  // A message box appears: `check` looks at it and presses a button.
  User& OnBox(std::string what, std::function<void(QMessageBox&)> check) {
    return Then(
        std::move(what), [] { return OpenBox() != nullptr; }, [check] { check(*OpenBox()); });
  }

  // Starts the program and plays the steps; true once they are all done and the program has ended.
  // A step that is never ready ends the run after `limit_ms`, and says which.
  bool Play(int limit_ms = 60000) {
    QElapsedTimer clock;
    clock.start();
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] {
      if (clock.elapsed() > limit_ms) {
        stuck_ = next_ < steps_.size() ? steps_[next_].what : "the program did not end";
        desktop_.Quit(99);
        return;
      }
      if (posted_ || acting_ > 0 || next_ >= steps_.size() || !steps_[next_].ready()) return;
      // The act runs from a call of its own, not from this tick: a timer does not tick again while its
      // call is running, and an act may wait in a loop (a modal form, a message box) in which the next
      // steps must run. The step counts as done once its act has begun.
      posted_ = true;
      const size_t step = next_++;
      QTimer::singleShot(0, [this, step] {
        posted_ = false;
        const bool opens = steps_[step].opens;
        if (!opens) ++acting_;
        steps_[step].act();
        if (!opens) --acting_;
      });
    });
    tick.start(15);
    desktop_.Run();
    tick.stop();
    return stuck_.empty() && next_ == steps_.size();
  }
  const std::string& stuck() const { return stuck_; }

 private:
  struct Step {
    std::string what;
    std::function<bool()> ready;
    std::function<void()> act;
    bool opens;
  };
  Desktop& desktop_;
  std::vector<Step> steps_;
  size_t next_ = 0;
  bool posted_ = false;
  int acting_ = 0;  // acts running now that the next steps must wait for
  std::string stuck_;
};

}  // namespace lw::desktop::testing
