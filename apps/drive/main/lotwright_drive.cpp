// lotwright-drive [SCRIPT]: starts the program exactly as the desktop program starts, without a window,
// and takes the user's part from SCRIPT (or standard input).
#include <unistd.h>

#include <fstream>
#include <iostream>
#include <string>

#include "apps/drive/driver.h"
#include "core/primitives/settings.h"
#include "screen/main/main_form.h"
#include "screen/main/program.h"
#include "screen/main/startup.h"

namespace {

constexpr char kUsage[] =
    "Usage: lotwright-drive [SCRIPT]\n"
    "\n"
    "Runs Lotwright without a window and executes the commands of SCRIPT (standard input without one),\n"
    "one a line: set, click, rclick, dblclick, row, key, leave, tab, menu, answer, file, color, now,\n"
    "pump, tick, get, status, messages, grid, sql, clipboard, outside, exit.\n"
    "Exit status: 0, 2 when a command failed, 3 on an unhandled program error.\n";

// The directory of this program, for what ships beside it.
std::filesystem::path ProgramDir(const char* argv0) {
  std::error_code ec;
  auto self = std::filesystem::read_symlink("/proc/self/exe", ec);
  if (ec) self = std::filesystem::absolute(argv0, ec);
  return self.parent_path();
}

lw::ProgramFiles Files(const std::filesystem::path& dir) {
  lw::ProgramFiles files;
  files.shipped_store = lw::ShippedStorePath(dir);
  // Installed, the companion program lies beside this one; in the build tree it has its own folder.
  files.convert = dir / "lotwright-convert";
#ifdef LW_CONVERT_PATH
  if (!std::filesystem::exists(files.convert)) files.convert = LW_CONVERT_PATH;
#endif
#ifdef LW_HELP_PATH
  files.help = LW_HELP_PATH;
#endif
  if (auto installed = dir / "../share/lotwright/help/index.html"; std::filesystem::exists(installed))
    files.help = installed;
  return files;
}

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
    lw::EventQueue queue;
    lw::Settings settings(lw::Settings::DefaultPath());
    lw::Program program(driver, queue, settings, Files(ProgramDir(argv[0])));
    lw::CreateForms(program);
    lw::Driver::Program hooks;
    hooks.screen = &program.screen;
    hooks.clock = &program.clock;
    hooks.database = [&program] { return program.startup.db.get(); };
    hooks.exit_routine = [&program] {
      if (program.main) program.main->exit_program();
    };
    driver.Attach(std::move(hooks));
    int code = driver.Run([&program] { lw::Main(program); });
    // What the program started (the store's backup or conversion) finishes before the driver ends, so
    // that a script run after this one finds its work done.
    driver.WaitForStartedPrograms(std::chrono::seconds(120));
    return code;
  } catch (const std::exception& e) {
    std::cout << "fatal: " << e.what() << std::endl;
    return lw::Driver::kFatal;
  }
}
