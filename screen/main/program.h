// The program context: every process-wide value of the running program, grouped by the part of the
// program that owns it, passed by reference to whatever needs it.
#pragma once

#include <array>
#include <filesystem>
#include <memory>
#include <vector>

#include "core/primitives/datetime.h"
#include "core/primitives/regional.h"
#include "core/primitives/settings.h"
#include "core/store/store.h"
#include "screen/main/main_layout.h"
#include "screen/main/routines.h"
#include "screen/screen.h"

namespace lw {

class HttpSession;
class MainForm;
class SplashForm;
class WizardForm;

// Where the program finds what ships with it.
struct ProgramFiles {
  std::filesystem::path shipped_store;  // the empty store installed for a new user
  std::filesystem::path convert;        // lotwright-convert
  std::filesystem::path help;           // the help set's index page
};

// Raises a flag for a scope and puts back what it was, also when the scope is left by an error: the
// settling flag while code changes a selector, so that the selector's handler leaves it alone.
class FlagRaised {
 public:
  explicit FlagRaised(bool& flag) : flag_(flag), was_(flag) { flag_ = true; }
  ~FlagRaised() { flag_ = was_; }
  FlagRaised(const FlagRaised&) = delete;
  FlagRaised& operator=(const FlagRaised&) = delete;

 private:
  bool& flag_;
  bool was_;
};

struct Program {
  Program(Ui& ui, EventQueue& queue, Settings& settings, ProgramFiles files)
      : screen(ui, queue), settings(settings), files(std::move(files)) {}
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  Screen screen;
  Settings& settings;
  ProgramFiles files;
  Clock clock;
  Regional regional = Regional::FromEnvironment();
  Routines routines;

  // Start-up and the store.
  struct Startup {
    Text database_path;  // folder of the store, lw.ini and every working file
    Text database_name;  // "\lw.mdb"
    double version = 4.01;
    Text quote = u"'";
    std::unique_ptr<Database> db;      // open for the whole run
    std::unique_ptr<Recordset> misc;   // "Select * From Misc"
    std::unique_ptr<Recordset> setup;  // "Select * From Setup"
    bool ini_import_failed = false;
    std::filesystem::path help_file;  // what the help menu opens
    // A store named on the command line: opened for this run instead of the one the settings name,
    // which stay as they are.
    std::filesystem::path command_line_store;
  } startup;

  // The view on show.
  struct View {
    Text base = u"Select * From seller ";
    Text condition;
    Text tail = u" order by end desc ";
    Text direction;             // "asc" or "desc" of the last heading sort; empty until the first
    Text quote;                 // the filter field's quote: "'" for a text column, else empty
    Text wild;                  // "*" under the comparison "like", else empty
    int16_t rows_returned = 0;  // the count of the last records_returned
  } view;

  // Regional values as the import and listing code compare them.
  struct Locale {
    Text currency_symbol;
    Text language_name;
    Text short_date_format;
    Text money_decimal_mark;
    Date site_now;
  } locale;

  // The main screen's flags.
  struct ScreenState {
    bool renaming = false;  // a user id is being renamed: page changes do nothing
    bool settling = false;  // a list selection is being changed by code: the selectors' handlers wait
    std::array<bool, kBrowserTargetCount> browser_request{};
    bool bulk_view = false;  // the Email page was entered for the bulk list
    // The browser page shows a page a command put there (the sign-in page): the next entry of the page
    // leaves it alone instead of showing the current auction.
    bool browser_page_held = false;
    Text feedback_url;
    Text password;  // the current user id's site password, for the My eBay and account pages
    // `fontsizing` of the misc row as the screen last activated: the screen's fonts follow the window.
    bool fontsizing = false;
  } main_screen;

  // The run's one HTTP session, whose cookies every transport shares: made by the first transport that
  // needs it, or handed in by a front end whose web view shares the cookies too.
  std::shared_ptr<HttpSession> http_session;

  // Objects the subsystems registered on the screen keep for the whole run.
  std::vector<std::shared_ptr<void>> subsystems;

  MainForm* main = nullptr;
  SplashForm* splash = nullptr;
  WizardForm* wizard = nullptr;

  // "{path}\name" for the database folder.
  std::filesystem::path DbFile(TextView name) const;
};

}  // namespace lw
