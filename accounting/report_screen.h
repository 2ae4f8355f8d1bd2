// The Reports page of the main screen: the tree of available reports, the report dates, the page
// margins, the viewer `arv` and its toolbar, and the report commands of the contact page and the auction
// view. Its process-wide values live in ReportState, one for the run.
#pragma once

#include <cstdint>
#include <memory>

#include "core/primitives/types.h"

namespace lw {

struct Program;

struct ReportState {
  // True (-1) while select_report runs to export rather than to show.
  int16_t report_save_mode = 0;
  Text report_save_file;
  // The record source the last report's selection would give the auction view; empty for bidder reports.
  Text report_view_query;
  // The save dialog's choice of format (its filter, from 1) and the folder it opens in next.
  int report_save_filter = 1;
  Text report_save_folder;
};

// Builds the page's controls on the main form and registers load_report_list, select_report, the
// toolbar buttons, runreport's viewer and the printing of the current view.
void RegisterReports(Program& program);

}  // namespace lw
