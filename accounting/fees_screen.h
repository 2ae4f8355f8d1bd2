// The fees on the main screen: the commands that fetch the account page, the walk that books it once
// the import has normalised it (`get_allfees`, reached by name from the import's dispatch and its
// manual fee menu), the five fee boxes of the details page and the removal of one auction's fees.
//
// The import owns the fetch: it sets its job flag through the routine `set_fees_pending`, and when the
// page has come in it leaves the normalised text in "\parsed_data.htm" and calls `get_allfees`.
#pragma once

namespace lw {

struct Program;

// Adds the fee boxes to the details page and registers the fee routines.
void RegisterFees(Program& program);

}  // namespace lw
