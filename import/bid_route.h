// The background fetch as the bid commands of the browser page use it. A bid goes through the same
// transport and job flags as the imports: its done event finds the bid page by `bid_pending` and hands
// it to the routine "bid_page_done", which the bidding registers.
#pragma once

#include <functional>

#include "core/primitives/types.h"

namespace lw {

class ImportScreen;

struct BidRoute {
  // Clears the job flags and raises `bid_pending`, as every command sets its own flag.
  std::function<void()> raise_bid_pending;
  // Raises `bid_pending` and fetches the address in the background under the hourglass, its text
  // delivered without tags. The bid page is no import: it is not kept in the import's work files.
  std::function<void(const Text& address)> fetch;
  // The page of the last done event as it came, and the address that was fetched.
  std::function<Text()> page;
  std::function<Text()> address;
  // The text after the last "=" of the browser's last address.
  std::function<Text()> current_item;
};

BidRoute MakeBidRoute(ImportScreen& screen);

}  // namespace lw
