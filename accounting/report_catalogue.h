// The report catalogue: the entries of the report tree in the order select_report counts them, and for
// each report entry its layout, its status text, the texts it puts on the layout, and its queries,
// composed from the current record, the user id and the report dates.
#pragma once

#include <optional>
#include <span>

#include "core/primitives/types.h"

namespace lw {

inline constexpr int kReportEntryCount = 25;
inline constexpr int kMailingLabelEntry = 13;
inline constexpr int kInvoiceEntry = 2;

struct ReportEntry {
  const char16_t* caption;
  int parent;  // the entry it sits under, -1 at the top
};
// The tree in order; an entry's place in the list is its number.
std::span<const ReportEntry> ReportEntries();

// The status text of a group entry that has one ("nothing", "accounting"), or nothing.
std::optional<Text> GroupStatus(int index);
// Whether the entry uses the report dates (their frame is shown for it).
bool UsesReportDates(int index);

// What the queries are composed of. Dates are "mm/dd/yyyy".
struct ReportInputs {
  Text userid;
  Text email;
  Text item;
  Text title;
  Text d1, d2;
  Text today;
};

struct ReportChoice {
  Text layout;           // "invoice", "sale2datesfull" ...
  Text status;           // status panel 1 while it is built
  Text title;            // the layout's lblReportTitle; empty leaves the layout's own
  Text heading;          // the layout's lblHeading; empty hides it
  Text report_query;     // the layout's data source
  Text view_query;       // what the auction view would show; empty for none
  bool dated = false;    // the dates go into date1 and date2
  bool summary = false;  // the detail is hidden: only the totals print
};

// The report of entry `index` with its queries composed; nothing for a group entry or a number that is
// no entry. Values are quoted as the store's statements quote them, so an apostrophe in one raises the
// malformed-statement error (3075) here.
std::optional<ReportChoice> ComposeReport(int index, const ReportInputs& in);

}  // namespace lw
