// The bidding tools of the browser page: the toolbar `ctToolBar1` from "Last Import" on, the bid with
// its Buy It Now question, and the watch list. A bid drives the site's own forms: the confirmation page
// is fetched in the background, its bid form read and filled in for the user, and the result sent to
// the browser view, where the site answers.
#pragma once

#include "core/primitives/types.h"
#include "import/bid_route.h"

namespace lw {

struct Program;
class MainForm;

class BidScreen {
 public:
  BidScreen(Program& program, BidRoute route);

  Program& program() const { return *program_; }
  MainForm& main() const;
  const BidRoute& route() const { return route_; }

  // The address being built for the browser.
  Text bid_url;

 private:
  Program* program_;
  BidRoute route_;
};

// "Make Bid": raises the bid's flag and shows the bid fields.
void make_bid(BidScreen& screen);
// The bid button: Buy It Now or a bid on the item on show, fetched in the background.
void bid_btn(BidScreen& screen);
// The done event of a bid's fetch: reads the bid form and sends the filled-in form to the browser.
void bid_page_done(BidScreen& screen);
// "Watch": adds the item page on show to the watch list.
void watch_auction(BidScreen& screen);

// Creates the bid screen, keeps it in the program, places the bid fields on the browser page and
// registers the toolbar's commands and the bid's done routine.
void RegisterBidding(Program& program, BidRoute route);

}  // namespace lw
