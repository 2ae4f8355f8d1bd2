// What the seller and bidder list imports need from the program: the store and its two screen cursors,
// the regional values, the clock and the site's time offsets, the selectors of the main screen, and the
// few things only a screen can do (status text, message boxes, the Last Import page, the view refresh,
// the Advanced Import Edit menu). The main form fills one of these and keeps it for the whole run, so the
// slot arrays below survive from one line of a page to the next as they must.
#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <optional>

#include "core/primitives/datetime.h"
#include "core/primitives/regional.h"
#include "core/primitives/types.h"
#include "core/store/store.h"
#include "import/site_time.h"
#include "screen/ui.h"

namespace lw {

// The parsers' memory between lines. Slots count from 1 as the page's columns do; index 0 is unused.
struct ImportState {
  // Seller list: item, start, end, price, title, high bidder, rating, e-mail.
  std::array<Text, 9> current_fields;
  // The last completed seller record; slot 4 is written when a price is read, not when a record ends.
  std::array<Text, 9> previous_fields;
  // Bidder list: item, start, end, price, title, high bidder, seller id or e-mail.
  std::array<Text, 8> bidder_fields;
  // The line being handled.
  Text current_line;
  // Set by the seller parser's error handler; the line loop stops at once when it sees it.
  bool stop_import = false;
};

class ImportRun;

struct ImportContext {
  Database& db;
  CursorSource& seller;  // the `seller` screen cursor, moved by the lookups
  CursorSource& bidder;  // the `Bidder` screen cursor
  const Regional& regional;
  Clock& clock;
  Ui& ui;
  SiteClockOffsets offsets;      // Ebay_hour_difference and Ebay_minute_difference of the misc row
  Text userid;                   // Userid_lst
  Text site;                     // site_lst
  Text setup_userid;             // Userid of the current setup row: the bidder side tells won from lost by it
  std::filesystem::path folder;  // the database folder, where parsed_data.htm is written

  // Status panel 1.
  std::function<void(const Text&)> status{};
  // Rebuilds the view once an import has moved the cursors about.
  std::function<void()> auction_filter{};
  // SSTab1 to tab 4 and show_last_import.
  std::function<void()> show_last_import{};
  // SSTab1 to tab 4, the browser left on the page it shows (the site's page the user signs in on).
  std::function<void()> show_browser_page{};
  // Enables Advanced_import_edit_mnu once an import has failed, so that the text can be mended.
  std::function<void(bool)> enable_advanced_edit{};

  ImportState state{};
  // The import run under way, when there is one.
  ImportRun* run = nullptr;

  void Status(const Text& text) const {
    if (status) status(text);
  }
};

// The writes of one import run in one store transaction. A list of thousands of rows is written at the
// cost of one commit instead of one each, and a run cut short (the program killed, the machine down)
// leaves the store as it was before the run, so the next run imports everything again. Whatever a run
// keeps by its own rules is made lasting: at its end, and at once on an error path before the message
// that tells of it (Keep), so nothing the user has been told is kept can be lost while the message is up.
class ImportRun {
 public:
  explicit ImportRun(ImportContext& ctx) : ctx_(ctx), outer_(ctx.run) {
    transaction_.emplace(ctx.db);
    ctx.run = this;
  }
  ~ImportRun() { ctx_.run = outer_; }  // a run not ended rolls back with its transaction
  ImportRun(const ImportRun&) = delete;
  ImportRun& operator=(const ImportRun&) = delete;

  // Commits what the run has written so far; what follows goes into a new transaction.
  void Keep() {
    End();
    transaction_.emplace(ctx_.db);
  }
  // Commits the run.
  void End() {
    if (!transaction_) return;
    // Gone afterwards whether the commit succeeds or not: a failed commit has rolled back already.
    struct Done {
      std::optional<StoreTransaction>& t;
      ~Done() { t.reset(); }
    } done{transaction_};
    transaction_->Commit();
  }

 private:
  ImportContext& ctx_;
  ImportRun* outer_;
  std::optional<StoreTransaction> transaction_;
};

}  // namespace lw
