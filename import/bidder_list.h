// The bidder list import: the mirror of the seller list import for the auctions the user bids on. It
// walks the page the same way but fills seven slots, keeps no previous record and merges into `bidder`.
#pragma once

#include "import/file_display.h"
#include "import/import_context.h"

namespace lw {

// Runs the import over the normalised page in the buffer.
void get_ebay_bidder_auctions(ImportContext& ctx, FileDisplay& buffer);
// Handles state.current_line; adjusts the counters and the slot array.
void parse_ebay_bidder_import_data(ImportContext& ctx, int& added, int& updated);

// Dispatch points for other sites; they do nothing.
void get_amazon_bidder_auctions(ImportContext& ctx);
void get_yahoo_bidder_auctions(ImportContext& ctx);

}  // namespace lw
