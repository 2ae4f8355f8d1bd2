// The description import: one auction's own page gives what the list pages lack (category,
// description, starting bid, quantity, number of bids, location). Each parser cuts slices out of the
// page text between marker words and puts them into the fields of the row on show; nothing is stored
// until the user saves the row.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <vector>

#include "core/primitives/types.h"
#include "import/file_display.h"
#include "import/import_context.h"

namespace lw {

// The screen fields the parsers fill, by page: index 0 the seller page, index 1 the bidder page.
struct DescriptionFields {
  std::array<Text, 2> category_lbl{};
  std::array<Text, 2> Description1_txt{};
  std::array<Text, 2> Minbid_txt{};
  std::array<Text, 2> Quantity_txt{};
  std::array<double, 2> bids_lbl{};
  std::array<Text, 2> location_txt{};
  float ctRealInput1_1 = 0;  // the bidder page's current price
};

// The job flags of the four commands, with the cancel flag they all clear.
struct DescriptionFlags {
  bool import_cancelled = false;
  bool description_pending = false;
  bool description_html_pending = false;
  bool motors_description_pending = false;
  bool motors_description_html_pending = false;
};

// What the description commands need from the main form besides the import context.
struct DescriptionScreen {
  Text auction_type;  // Auction_type_lst: "Bidder" works on the Bidder cursor, anything else on seller
  Text txtIP;
  Text txtURL;
  DescriptionFields fields;
  DescriptionFlags flags;
  // Clears every job flag of the program (the four above and those of the other imports).
  std::function<void()> clear_job_flags{};
  // SSTab1.Tab
  std::function<void(int)> select_tab{};
};

// A slice of the page: from `skip` characters after the start marker up to the first end marker found.
struct Slice {
  Text start;
  long skip = 0;
  std::vector<Text> ends;
  long length_skip = -1;  // what the length subtracts; the skip itself unless a parser says otherwise
};

// Cuts a slice out of `text`: the start marker searched from position 0, the end markers in turn from
// the start marker's position, the last one taken even when it is not found. A missing marker or a
// negative length raises 380.
Text cut_slice(const Text& text, const Slice& slice);

enum class DescriptionCommand { plain, with_html, motors, motors_with_html };
enum class DescriptionFetch { download_auctions_2, download_auctions_3 };

// Steps 1 to 4 on the row on show: refuses without a current row (status and message, returns false),
// else shows tab 1, warns on the status line and puts the item page's path into txtURL.
bool description_import(ImportContext& ctx, DescriptionScreen& screen);

// One of the four list bar commands: clears the flags, sets its own, puts its host (`servername_desc`
// or `servername_ebaymotors` of the misc row) in txtIP and runs description_import. The fetch named by
// the result follows whether or not description_import went ahead.
DescriptionFetch run_description_command(ImportContext& ctx, DescriptionScreen& screen,
                                         DescriptionCommand command, const Text& servername_desc,
                                         const Text& servername_ebaymotors);

// The six parsers. The plain and motors ones read the normalised page in the buffer; the two "with
// HTML" ones read the page as it came and normalise it themselves. Each ends at its first failure with
// "Can't find all auction details" on the status line, keeping the fields filled so far.
void get_ebay_seller_auction_description(ImportContext& ctx, DescriptionScreen& screen, FileDisplay& buffer);
void get_ebay_bidder_auction_description(ImportContext& ctx, DescriptionScreen& screen, FileDisplay& buffer);
void get_ebay_seller_auction_description_with_HTML(ImportContext& ctx, DescriptionScreen& screen,
                                                   FileDisplay& buffer);
void get_ebay_seller_auction_description_ebaymotors(ImportContext& ctx, DescriptionScreen& screen,
                                                    FileDisplay& buffer);
void get_ebay_bidder_auction_description_ebaymotors(ImportContext& ctx, DescriptionScreen& screen,
                                                    FileDisplay& buffer);
void get_ebay_seller_auction_description_ebaymotors_with_HTML(ImportContext& ctx, DescriptionScreen& screen,
                                                              FileDisplay& buffer);

}  // namespace lw
