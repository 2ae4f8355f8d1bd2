// The seller list import: walks the normalised list of the user's auctions line by line, fills eight
// slots per record and merges each finished record into the table `seller`. The line walk, the closing
// time test and the update announcements are shared with the bidder list import.
#pragma once

#include <functional>
#include <vector>

#include "import/file_display.h"
#include "import/import_context.h"

namespace lw {

// How a list page is walked: where the records begin and which lines end the list.
struct ListWalk {
  Text heading;  // searched from the top; the walk begins `offset` characters after it
  long offset = 0;
  std::vector<Text> leave_patterns;  // Like patterns of a line that ends the walk
  bool honour_stop_import = false;   // the seller side stops at once when its parser has failed
};

// Walks the lines of the buffer from the heading to "eBay Inc. All Rights Reserved", putting each line
// into state.current_line and calling `parse_line(added, updated)` for it. Returns false when the parser
// set stop_import (the caller then ends without its summary). Errors go to the caller.
bool walk_list_lines(ImportContext& ctx, FileDisplay& buffer, const ListWalk& walk,
                     const std::function<void(int&, int&)>& parse_line, int& added, int& updated);

// Asks whether to look at the Last Import page ("{first_line}" and the question under it): Yes shows it,
// No rebuilds the view.
void offer_last_import(ImportContext& ctx, const Text& title, const Text& first_line);
// The handler of a line the seller list or Dutch parser could not take: the half-written row dropped,
// the message with the Last Import page or the view, the Advanced Import Edit menu enabled.
void report_line_error(ImportContext& ctx);
// The handler of both line loops: status text by error number, the pointer restored.
void report_line_loop_error(ImportContext& ctx, int number);
// Runs a list import's line loop; any error that escapes it ends in the line loop's message.
void guard_line_loop(ImportContext& ctx, const std::function<void()>& loop);

// Whether an auction ending at `end` (site time) has ended by the computer's clock and the site's hour
// difference. The minute difference is not applied here.
bool auction_has_ended(const ImportContext& ctx, Date end);

// The two status texts of an update that goes ahead.
void announce_update(const ImportContext& ctx, const Text& item);

// The summary of both list imports.
Text import_summary(int added, int updated);

// Runs the import over the normalised page in the buffer.
void get_ebay_seller_auctions_2(ImportContext& ctx, FileDisplay& buffer);
// Handles state.current_line; adjusts the counters and the slot arrays, sets stop_import on failure.
void parse_ebay_seller_import_data_2(ImportContext& ctx, int& added, int& updated);
// Left from an earlier form of the parser; does nothing and nothing calls it.
void parse_ebay_seller_import_data(ImportContext& ctx);
// Repeats the last record with a further buyer's address in place of its id and e-mail.
void restore_previous_data(ImportState& state);

}  // namespace lw
