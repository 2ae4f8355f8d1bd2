// The import's side of the main screen: the job flags and the import choices, the page buffer, and the
// import context over the screen's own cursors. One of these lives for the run; the import commands and
// the transports' completion events all work through it.
#pragma once

#include <memory>
#include <optional>

#include "core/primitives/types.h"
#include "import/file_display.h"
#include "import/import_context.h"

namespace lw {

struct Program;
class MainForm;
struct DownloadState;

// At most one job flag is set at a time: every command clears them all, then sets its own, and the
// completion event that arrives hands the page to the parser of whichever flag it finds.
struct ImportJobs {
  bool import_pending = false;
  bool email_pending = false;
  bool description_pending = false;
  bool description_html_pending = false;
  bool motors_description_pending = false;
  bool motors_description_html_pending = false;
  bool seller_dutch_pending = false;
  bool bidder_dutch_pending = false;
  bool fees_pending = false;
  bool bid_pending = false;

  // Set by the Cancel button of the days dialog, cleared by its import button and by every command.
  bool import_cancelled = false;
  // 1 from the days dialog's import button on; only the end of a browser-route import sets it back.
  int web_view_mode = 0;

  // The choices of the days dialog, kept as the texts the addresses take.
  Text import_days;
  Text import_completed;
  Text import_all;

  // Every job flag; import_cancelled and the choices stay.
  void ClearFlags();
};

class ImportScreen {
 public:
  explicit ImportScreen(Program& program);

  Program& program() const { return *program_; }
  MainForm& main() const;

  ImportJobs jobs;
  // The page being imported.
  FileDisplay buffer;
  // The member e-mail page that asked for a sign-in, asked for again after it by the same user.
  Text email_page_url;
  // The item of the Dutch auction or Store Sale whose buyers are being imported.
  Text dutch_item;

  // The context over the main form's `seller` and `Bidder` cursors. Built at first use, once the store
  // is open, and kept, so the parsers' memory between lines lasts the run; the selectors, the setup
  // row's user id and the site clock offsets are read afresh from the screen on every call.
  ImportContext& Context();

  // The misc row (the screen's own cursor on it, which the Setup page writes, else the one opened at
  // start) and the current user id's setup row; nullptr when there is none.
  Recordset* MiscRow() const;
  Recordset* SetupRow() const;
  // Ebay_hour_difference and Ebay_minute_difference of the misc row, read afresh.
  SiteClockOffsets Offsets() const;
  // A host of the misc row (`servername_import` ...) for a fetch; a column left empty gives the host the
  // shipped store holds there, the same for every fetch.
  Text MiscHost(TextView column) const;

  // The fetch side's own state: its transports and its dialog. Made by RegisterDownload.
  std::shared_ptr<DownloadState> download;

 private:
  Program* program_;
  std::optional<ImportContext> context_;
};

// A column of a row as text under the locale: nothing for Null, a missing column or no row.
std::optional<Text> RowValue(Recordset* row, TextView column, const Regional& regional);
// The same with nothing as the empty text.
Text RowText(Recordset* row, TextView column, const Regional& regional);
// A column of a row as a number; Null, text that is no number, a missing column or no row count as 0.
double RowNumber(Recordset* row, TextView column, const Regional& regional);

// Creates the import screen, keeps it in the program and registers every import routine.
ImportScreen& RegisterImport(Program& program);

// The units of the import screen, each registering its own routines.
// Fetching: the days dialog, the update command, both transports' routes and their dispatch, sign-in,
// the last import, the manual imports.
void RegisterDownload(ImportScreen& screen);
// The commands of one auction: descriptions, Dutch and Store Sale buyers, member e-mail addresses; and
// the site clock on the details page.
void RegisterAuctionImports(ImportScreen& screen);

}  // namespace lw
