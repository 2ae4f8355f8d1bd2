// The commands of one auction on the main screen: its description, its Dutch or Store Sale buyers and
// its seller's e-mail address. Each command reads what it needs from the main form into the plain
// structs of description.h, dutch.h and member_email.h, runs there, and writes flags, fields and the
// address boxes back in one place; the page that comes back goes through the same bridge to its parser.
#pragma once

#include "core/primitives/types.h"
#include "import/import_screen.h"

namespace lw {

// The parsers of an auction's own page, by the command that asked for it.
enum class DescriptionParser {
  seller,                   // get_ebay_seller_auction_description
  bidder,                   // get_ebay_bidder_auction_description
  seller_with_HTML,         // get_ebay_seller_auction_description_with_HTML
  seller_motors,            // get_ebay_seller_auction_description_ebaymotors
  bidder_motors,            // get_ebay_bidder_auction_description_ebaymotors
  seller_motors_with_HTML,  // get_ebay_seller_auction_description_ebaymotors_with_HTML
};

// The page in screen.buffer handed to its parser, with the main form's fields and the job flags read
// before and written back after. The dispatch of the fetch calls these; each is also a routine of the
// same name as the parser it runs.
void parse_description_page(ImportScreen& screen, DescriptionParser parser);
void parse_seller_dutch_page(ImportScreen& screen);  // get_seller_dutch_auctions
void parse_bidder_dutch_page(ImportScreen& screen);  // get_bidder_dutch_auctions
void parse_member_email_page(ImportScreen& screen);  // get_seller_email into seller_email_txt

// The routine name of a description parser.
const char* DescriptionParserName(DescriptionParser parser);

// The site clock and the time left on the details page (site_clock_screen.cpp).
void RegisterSiteClock(ImportScreen& screen);

}  // namespace lw
