// Where the browser page goes when it is entered, and what the status bar says about it. The request
// flags are taken in a fixed order; the first that is up wins, and with none up the page shows the
// current auction on its own site.
#pragma once

#include <array>
#include <optional>

#include "core/primitives/settings.h"
#include "core/primitives/types.h"
#include "screen/main/main_layout.h"

namespace lw {

struct BrowserContext {
  Text database_path;  // folder of the working files
  Text userid;
  Text password;
  Text servername_fees;  // host of the account pages, from the misc row
  Text feedback_url;
  Text item;  // Item of the side in view
  Text site;  // site of the current row: "eBay", "Yahoo", "Sold"
};

struct BrowserPlace {
  std::optional<BrowserTarget> target;  // nothing for the current auction's page
  Text address;                         // a URL, or a file path for the working files
  bool file = false;
  std::optional<Text> status;  // nothing: the status bar is left alone
};

// The tail of the account page's address that asks for the fees since the last invoice.
inline constexpr char16_t kAccountSinceLastInvoice[] =
    u"&acctpagetype=0&daysback=-1&startmonth=&startday=&startyear=&endmonth=&endday=&endyear=&pagination=0";

// The site's account page of a user id: the account host of the misc row, the page, and `tail`, which
// chooses the period.
Text AccountPageAddress(Text host, const Text& userid, const Text& password, TextView tail);

// Picks the target from the flags and builds its address. An unknown site gives no address and the
// browser status text, so the page is left where it was.
BrowserPlace ResolveBrowserTarget(const std::array<bool, kBrowserTargetCount>& flags, const BrowserContext& c,
                                  const Settings& settings);

}  // namespace lw
