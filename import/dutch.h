// Dutch auctions and Store Sales: the list import leaves one placeholder row ("{n} Dutch bids" or
// "Store Sale") for a sale with several buyers. For an ended sale the site's list of high bidders gives
// one line per buyer; the seller's side turns each into a row of its own, the bidder's side finds the
// user's own line and takes quantity and price from it.
#pragma once

#include <functional>
#include <optional>

#include "core/primitives/types.h"
#include "import/file_display.h"
#include "import/import_context.h"

namespace lw {

// What the two commands read and set on the main form.
struct DutchScreen {
  Text servername_dutch;      // of the misc row
  std::optional<Text> pass1;  // of the setup row; nothing when Null
  std::array<Text, 2> Quantity_txt{};
  std::array<Text, 2> id_pnl{};
  Text dutch_item;
  Text txtIP;
  Text txtURL;
  bool import_cancelled = false;
  bool seller_dutch_pending = false;
  bool bidder_dutch_pending = false;
  Text auction_type = u"Seller";  // Auction_type_lst
  std::function<void()> clear_job_flags{};
  std::function<void()> clear_auctimp{};
  std::function<void()> save_data_changed{};
  std::function<void(int)> select_tab{};        // SSTab1.Tab
  std::function<void(const Text&)> navigate{};  // WebBrowser1.Navigate
};

// The line walk's running values, handed to the line parser by reference.
struct DutchWalk {
  double quantity_available = 0;
  double items_sold = 0;
  int buyers_added = 0;
  Currency item_price{};
  bool is_store_sale = false;
};

// The seller page's command on the current `seller` row. Returns the address navigated to, or nothing
// when a check refused.
std::optional<Text> import_dutch_btn_2(ImportContext& ctx, DutchScreen& screen);
// The bidder page's command on the current `Bidder` row. Returns the path put in txtURL for the
// fetch, or nothing when a check refused or the type in view is not "Bidder".
std::optional<Text> import_dutch_bidder_btn(ImportContext& ctx, DutchScreen& screen);

// The seller's high bidder page, tags removed, in the buffer; the placeholder or a buyer's row of the
// sale current in ctx.seller.
void get_seller_dutch_auctions(ImportContext& ctx, FileDisplay& buffer);
// One line of that page: one buyer. Failures go to the handler and end the line only.
void parse_seller_dutch_auctions(ImportContext& ctx, const Text& line, DutchWalk& walk);

// The bidder's page; the row current in ctx.bidder. Returns whether the user's line was found.
bool get_bidder_dutch_auctions(ImportContext& ctx, FileDisplay& buffer);
// Returns true when the line is the user's own and its quantity and price were stored.
bool parse_bidder_dutch_auctions(ImportContext& ctx, const Text& line);

// The rewriting both pages get before their lines are read; line ends come out as lone line feeds.
Text rewrite_dutch_page(const Text& text, bool bidder_page);

}  // namespace lw
