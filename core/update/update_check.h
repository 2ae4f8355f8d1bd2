// The update check: once a week, and whenever the user asks, the program fetches "server.ini" from the
// maker's anonymous FTP server, reads the newest version from it and tells the user when it is newer
// than the one running. The screen supplies where the words go and the question it asks.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>

#include "core/primitives/datetime.h"
#include "core/primitives/regional.h"
#include "core/primitives/settings.h"
#include "core/primitives/types.h"

namespace lw {

// What the check needs of the screen.
struct UpdateCheckScreen {
  std::function<void(const Text&)> status;
  // "Update Available" with its text; true when the user answers Yes.
  std::function<bool(const Text& text)> ask;
  std::function<void()> show_announcements;
  // Where "server.ini" is fetched to: "{path}\server.ini".
  std::function<std::filesystem::path()> server_ini;
};

class UpdateCheck {
 public:
  // `version` is the running program's.
  UpdateCheck(Settings& settings, const Regional& regional, const Clock& clock, double version,
              UpdateCheckScreen screen);

  // The tick of the current-time clock: checks when the number is 0 or 30 and more than six days have
  // passed since the last check that found this version up to date.
  void Tick(int number);
  // "Check for Updates": checks again, however often it was done in this run.
  void Menu();
  // The check itself; once a run unless the menu asks again. The transfer waits `timeout` at most for
  // each answer of the server.
  void check_for_update();

  int checks() const { return checks_; }
  void set_timeout(std::chrono::milliseconds timeout) { timeout_ = timeout; }

 private:
  Settings& settings_;
  const Regional& regional_;
  const Clock& clock_;
  double version_;
  UpdateCheckScreen screen_;
  std::chrono::milliseconds timeout_{60000};
  int checks_ = 0;
};

// Whether a tick starts a check: its number is 0 or 30, and `today` is more than six days after the
// stored date (in short date form). A stored text that is no date does not stop the check.
bool UpdateCheckDue(int number, Date today, const Text& last_check, const Regional& regional);

// The newest version: the first item of the file, read as the comma-or-line-end input reads it. Raises
// 53 for a missing file, 62 for an empty one and 13 when the item is no number.
double ReadServerVersion(const std::filesystem::path& file);

}  // namespace lw
