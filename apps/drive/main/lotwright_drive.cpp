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
    "one a line. A control is NAME, NAME(INDEX) or FORM.NAME(INDEX); words may be double-quoted.\n"
    "\n"
    "  set REF VALUE              type VALUE into a text box, choose it in a list, 1 or 0 for a check box\n"
    "  click REF [N|CAPTION]      click a control: a toolbar's button N, a list bar item, a grid heading N,\n"
    "                             a tree's item by its captions from the top (\"A > B > C\")\n"
    "  rclick REF [CAPTION]       right-click a control (the list bar's item CAPTION)\n"
    "  dblclick REF               double-click a control\n"
    "  row GRID N                 click row N (from 0) of a grid, making it the current record\n"
    "  resize GRID COLUMN WIDTH   drag a grid column's border to WIDTH twips\n"
    "  edit GRID ROW COLUMN VALUE type VALUE into a grid cell (row and column from 0)\n"
    "  key REF KEY                press Enter, Escape, Tab, Backspace, Delete, Space, F2...F11 or a "
    "character\n"
    "  leave REF                  move the focus out of a control\n"
    "  tab N                      switch SSTab1 to page N\n"
    "  menu NAME                  choose a menu entry by its control name\n"
    "  answer BUTTON              answer the next message box: Yes No OK Cancel Retry Ignore Abort\n"
    "  file PATH [FILTER]         answer the next file dialog (FILTER from 1); file cancel cancels it\n"
    "  color N                    answer the next colour dialog with colour N; color cancel cancels it\n"
    "  now \"YYYY-MM-DD HH:MM:SS\"  fix the clock at that moment\n"
    "  pump                       deliver transport and timer events until none is pending (30 s at most)\n"
    "  tick NAME [N]              fire a timer, or a clock control's tick with the number N\n"
    "  get REF[.PROP]             print a property (text, value, caption, visible, enabled, list(I) ...)\n"
    "                             the report viewer: get arv.pagecount, get arv.page(I)\n"
    "  status N                   print status bar panel N\n"
    "  messages                   print the message boxes shown since the last messages\n"
    "  grid NAME                  print the rows a grid shows\n"
    "  sql \"STATEMENT\"            run a statement on the store and print its rows or the rows affected\n"
    "  clipboard                  print the clipboard\n"
    "  outside                    print the dialogs, addresses, programs and popups asked for since the "
    "last\n"
    "  exit                       run the exit routine and end\n"
    "\n"
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
