// lotwright-screenshots DIR [--wizard]: starts the desktop program on the store the settings name and
// renders its screens to PNG files in DIR: the main window on each page of SSTab1 and on each page of the
// Setup page, or (with --wizard, on a store with no user id yet) the first-start wizard over the main
// window. Runs without a display.

#include <QtCore/qtestsupport_core.h>
#include <QApplication>
#include <QPixmap>
#include <QTimer>

#include <filesystem>
#include <iostream>
#include <string>

#include "apps/desktop/desktop.h"
#include "apps/desktop/environment.h"
#include "apps/desktop/renderer.h"
#include "apps/desktop/web_view.h"
#include "screen/main/main_form.h"
#include "screen/main/small_forms.h"

namespace {

namespace fs = std::filesystem;
using lw::desktop::Desktop;

bool Save(QWidget& widget, const fs::path& file) {
  const bool ok = widget.grab().save(QString::fromStdString(file.string()), "PNG");
  std::cout << (ok ? "wrote " : "could not write ") << file.string() << "\n";
  return ok;
}

std::string Slug(const lw::Text& caption) {
  std::string out;
  for (char16_t c : caption) {
    if ((c >= u'a' && c <= u'z') || (c >= u'0' && c <= u'9')) {
      out += static_cast<char>(c);
    } else if (c >= u'A' && c <= u'Z') {
      out += static_cast<char>(c - u'A' + u'a');
    } else if (c == u'(') {
      break;
    } else if (!out.empty() && out.back() != '-') {
      out += '-';
    }
  }
  while (!out.empty() && out.back() == '-') out.pop_back();
  return out;
}

bool ShootPages(Desktop& desktop, const fs::path& dir) {
  lw::MainForm& main = *desktop.program().main;
  QWidget* window = desktop.renderer().MainWindow();
  if (!window || !QTest::qWaitFor([window] { return window->isVisible(); }, 10000)) {
    std::cerr << "lotwright-screenshots: the main window did not come up\n";
    return false;
  }
  bool ok = true;
  for (int page = 0; page <= lw::kSetupPage; ++page) {
    auto& web = desktop.renderer().WebViewFor(main.WebBrowser1);
    const uint64_t pages_before = web.pages_complete();
    desktop.Dispatch([&main, page] { main.SSTab1.UserTab(page); });
    if (page == lw::kBrowserPage) {
      // The page in the web view, and then its first frame, which comes a little after it loaded.
      (void)QTest::qWaitFor([&web, pages_before] { return web.pages_complete() > pages_before; }, 15000);
      QTest::qWait(1500);
    } else {
      QTest::qWait(300);
    }
    const std::string name =
        "page-" + std::to_string(page) + "-" + Slug(main.SSTab1.page(page).caption) + ".png";
    ok = Save(*window, dir / name) && ok;
  }
  // The Setup page's own pages, then its Cancel, which unlocks the screen again.
  auto& sub = main.Get<lw::TabStrip>(u"setup_tabs");
  for (int i = 0; i < sub.Tabs(); ++i) {
    desktop.Dispatch([&sub, i] { sub.UserTab(i); });
    QTest::qWait(200);
    ok = Save(*window, dir / ("setup-" + std::to_string(i) + "-" + Slug(sub.page(i).caption) + ".png")) && ok;
  }
  desktop.Dispatch([&main] { main.Get(u"setup_btn", 2).UserClick(nullptr); });
  return ok;
}

bool ShootWizard(Desktop& desktop, const fs::path& dir) {
  lw::Program& program = desktop.program();
  QWidget* wizard = nullptr;
  if (!QTest::qWaitFor(
          [&] {
            wizard = program.wizard ? desktop.renderer().WindowOf(*program.wizard) : nullptr;
            return wizard && wizard->isVisible();
          },
          10000)) {
    std::cerr << "lotwright-screenshots: the wizard did not come up (is there a user id already?)\n";
    return false;
  }
  QTest::qWait(300);
  bool ok = Save(*wizard, dir / "wizard.png");
  if (QWidget* main = desktop.renderer().MainWindow()) ok = Save(*main, dir / "wizard-main-window.png") && ok;
  return ok;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2 || argc > 3 || (argc == 3 && std::string(argv[2]) != "--wizard")) {
    std::cerr << "Usage: lotwright-screenshots DIR [--wizard]\n";
    return 2;
  }
  const fs::path dir = argv[1];
  const bool wizard = argc == 3;
  std::error_code ec;
  fs::create_directories(dir, ec);
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  lw::desktop::PrepareWebEngine();
  QApplication app(argc, argv);
  app.setQuitOnLastWindowClosed(false);

  lw::desktop::DesktopOptions options;
  options.files = lw::LocateProgramFiles(lw::CurrentExecutable());
  Desktop desktop(std::move(options));
  bool ok = false;
  QTimer::singleShot(0, &app, [&] {
    ok = wizard ? ShootWizard(desktop, dir) : ShootPages(desktop, dir);
    desktop.Quit(ok ? 0 : 1);
  });
  desktop.Run();
  return ok ? 0 : 1;
}
