// The update check on the main screen: the tick of `MhClock_current_time` and the help menu's "Check for
// Updates" start it, the status bar shows how it goes, and a newer version is offered with a question.
#include <chrono>
#include <memory>

#include "core/primitives/text.h"
#include "core/update/update_check.h"
#include "screen/main/main_form.h"
#include "screen/main/main_parts.h"

namespace lw {

void RegisterUpdateCheck(MainForm& form) {
  Program& p = form.program();
  MainForm* f = &form;
  UpdateCheckScreen screen;
  screen.status = [f](const Text& text) { f->SetStatus(text); };
  screen.ask = [f](const Text& text) {
    return f->ui().MsgBox(u"Update Available", text, MsgButtons::YesNo, MsgIcon::Question) == MsgAnswer::Yes;
  };
  screen.show_announcements = [f] { f->CallRoutine("view_lotwright_update_page"); };
  Program* program = &p;
  screen.server_ini = [program] { return program->DbFile(u"\\server.ini"); };
  // Kept alive by the handlers below, which live as long as the form.
  auto c =
      std::make_shared<UpdateCheck>(p.settings, p.regional, p.clock, p.startup.version, std::move(screen));
  // The fetch waits no longer than the page fetches do.
  double seconds = Val(p.settings.GetSetting(u"Lotwright", u"Network", u"timeout", u"60"));
  if (seconds > 0) c->set_timeout(std::chrono::milliseconds(static_cast<long long>(seconds * 1000)));

  ClockControl& clock = form.Get<ClockControl>(u"MhClock_current_time");
  auto ticked = std::move(clock.OnTick);
  clock.OnTick = [c, ticked](int number) {
    if (ticked) ticked(number);
    c->Tick(number);
  };
  p.routines.Register("check_for_update", [c] { c->check_for_update(); });
  p.routines.Register("check_updates_mnu", [c] { c->Menu(); });
}

}  // namespace lw
