// The auction views on the main form. RegisterViews (main_parts.h) builds the two grids' columns, hooks
// the type, status and site selectors, the filter box and the heading clicks, and registers the
// routines others call by name:
//   auction_filter     condition from type, status, user id and site; re-runs the view and its total
//   do_query           record source of the type's cursor = base + condition + tail, refreshed
//   records_returned   "Records Returned: {count}" in panel 1; above 32767 rows raises overflow (6)
//   sum_grid           "Total: {total}" in panel 2, the view's condition without its tail
//   save_data_changed  writes the pending edits of the type's cursor
//   lock_seller_grid   locks every column of seller_grid
//   print_filter_btn   hands the view to the report routine "print_current_auction_list"
// The routines raise their errors to the caller; the selectors' own handlers swallow them, so that a
// failed statement leaves the former view on show.
#pragma once

#include <cstdint>

#include "screen/grid.h"

namespace lw {

// The report routine print_filter_btn runs when the reports have registered it.
inline constexpr char kPrintViewRoutine[] = "print_current_auction_list";

// The background of a row: rows alternate between the grid's even colour (row 0, 2 ...) and its odd
// colour (row 1, 3 ...), which start-up sets from "Evengrid" and "Oddgrid".
int32_t GridRowColour(const Grid& grid, int row);

}  // namespace lw
