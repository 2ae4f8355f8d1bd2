// lotwright-drive [SCRIPT]: starts the program exactly as the desktop program starts, without a window,
// and takes the user's part from SCRIPT (or standard input).

#include <fstream>
#include <iostream>
#include <string>

#include "apps/common/assembly.h"
#include "apps/drive/driver.h"

namespace {

constexpr char kUsage[] =
    "Usage: lotwright-drive [SCRIPT]\n"
    "\n"
    "Runs Lotwright without a window and executes the commands of SCRIPT (standard input without one),\n"
    "one a line: set, click, rclick, dblclick, row, resize, key, leave, tab, menu, answer, file, color,\n"
    "now, pump, tick, get, status, messages, grid, sql, clipboard, outside, exit.\n"
    "A tree takes click TREE \"A > B > C\" (captions from the top; the items on the way are opened).\n"
    "The report viewer answers get arv.pagecount and get arv.page(I), and takes click arv print or a page.\n"
    "Exit status: 0, 2 when a command failed, 3 on an unhandled program error.\n";

}  // namespace

int main(int argc, char** argv) {
  std::ifstream file;
  std::istream* script = &std::cin;
  if (argc > 2) {
    std::cerr << kUsage;
    return 2;
  }
  if (argc == 2) {
    std::string a = argv[1];
    if (a == "--help" || a == "-h") {
      std::cout << kUsage;
      return 0;
    }
    file.open(a);
    if (!file) {
      std::cerr << "lotwright-drive: cannot read " << a << "\n";
      return 2;
    }
    script = &file;
  }
  try {
    lw::Driver driver(*script, std::cout);
    // The same assembly the desktop program uses: forms, every subsystem's routines, shipped files.
    lw::Assembly assembly(driver);
    lw::Program& program = assembly.program();
    lw::Driver::Program hooks;
    hooks.screen = &program.screen;
    hooks.clock = &program.clock;
    hooks.database = [&program] { return program.startup.db.get(); };
    hooks.exit_routine = [&program] {
      if (program.main) program.main->exit_program();
    };
    driver.Attach(std::move(hooks));
    int code = driver.Run([&assembly] { assembly.Start(); });
    // What the program started (the store's backup or conversion) finishes before the driver ends, so
    // that a script run after this one finds its work done.
    driver.WaitForStartedPrograms(std::chrono::seconds(120));
    return code;
  } catch (const std::exception& e) {
    std::cout << "fatal: " << e.what() << std::endl;
    return lw::Driver::kFatal;
  }
}
