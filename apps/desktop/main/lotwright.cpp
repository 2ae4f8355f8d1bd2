// lotwright: the desktop program. The same program lotwright-drive runs, in Qt windows.

#include <QApplication>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>

#include "apps/common/assembly.h"
#include "apps/desktop/desktop.h"
#include "apps/desktop/environment.h"

namespace {

constexpr char kUsage[] =
    "Usage: lotwright [--database FILE]\n"
    "\n"
    "Lotwright keeps every auction of your eBay user ids in one store and walks each sale from the\n"
    "import through the letters, payment, shipping and feedback to the fees and the profit reports.\n"
    "\n"
    "  --database FILE  open the store FILE for this run, instead of the one the settings name\n"
    "  --help           show this help\n"
    "  --version        show the version\n"
    "\n"
    "The settings are in $XDG_CONFIG_HOME/lotwright/settings.ini; the first start installs an empty\n"
    "store in $XDG_DATA_HOME/lotwright. Without a display, lotwright-drive runs the same program from a\n"
    "script.\n";

}  // namespace

int main(int argc, char** argv) {
  std::optional<std::filesystem::path> database;
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "--help" || a == "-h") {
      std::cout << kUsage;
      return 0;
    }
    if (a == "--version") {
      std::cout << "lotwright " << LW_VERSION << "\n";
      return 0;
    }
    if (a == "--database") {
      if (i + 1 >= argc) {
        std::cerr << "lotwright: --database needs the store's file\n" << kUsage;
        return 2;
      }
      std::error_code ec;
      std::filesystem::path file = std::filesystem::absolute(argv[++i], ec);
      if (ec || !std::filesystem::is_regular_file(file, ec)) {
        std::cerr << "lotwright: there is no store " << argv[i] << "\n";
        return 2;
      }
      database = file;
      continue;
    }
    // Qt's own options (-platform, -style ...) are Qt's to read.
    if (!a.empty() && a[0] == '-' && a.rfind("--", 0) != 0) continue;
    std::cerr << "lotwright: unknown argument " << a << "\n" << kUsage;
    return 2;
  }
  if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY") && !std::getenv("QT_QPA_PLATFORM")) {
    std::cerr << "lotwright: no display to show the window on (DISPLAY is not set); lotwright-drive runs the "
                 "program without one\n";
    return 1;
  }

  lw::desktop::PrepareWebEngine();
  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Lotwright"));
  QApplication::setApplicationVersion(QStringLiteral(LW_VERSION));
  QApplication::setDesktopFileName(QStringLiteral("lotwright"));
  app.setQuitOnLastWindowClosed(false);

  lw::desktop::DesktopOptions options;
  options.files = lw::LocateProgramFiles(lw::CurrentExecutable());
  options.database = database;
  lw::desktop::Desktop desktop(std::move(options));
  return desktop.Run();
}
