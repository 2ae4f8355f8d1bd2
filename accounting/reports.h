// The reports as other parts of the program use them: the layouts by name, ready for a data source
// and their texts, and the viewer they are shown in. Letters, envelopes and mailing labels print
// through these; a PDF of a laid-out report comes from export.h.
#pragma once

#include <memory>

#include "accounting/layout.h"
#include "core/primitives/datetime.h"

namespace lw {

struct Program;

// What a layout needs of the moment it is made: the day its date fields show and its day counts
// count to.
struct LayoutContext {
  Date today;
};

// The layouts: "invoice", "sale2datesfull", "profit100", "profit100combined", "auction_detail",
// "maillabelreport", "contactsummary_1", "contactsummary_2", "days_ended", "feedback",
// "feedback_bidder", "purch2datesfull", "purch2datessum", "envelopereport", "emailreport". Nothing for
// another name.
std::unique_ptr<layout::Report> MakeReportLayout(TextView name, const LayoutContext& context);

// Lays the report out over its data source in the program's store and shows it in the report viewer
// `arv`. Raises what the store raises for a bad query.
void runreport(Program& program, layout::Report& report);

}  // namespace lw
