// The texts the bid commands build: the address that posts the site's own bid form, filled in for the
// user, and the watch-list entry read from an item page's title.
#pragma once

#include "core/primitives/regional.h"
#include "core/primitives/types.h"

namespace lw {

// The bid form's query made into the address the browser is sent to. The first percent escape of the
// query is decoded wherever it occurs (that one only); the site's command field becomes the bid host's
// address, and the user id, pass value and quantity are put behind their empty fields. A form that
// carries another quantity than 1 keeps it.
Text BuildBidUrl(const Text& form_query, const Text& bid_base, const Text& userid, const Text& pass,
                 const Text& quantity);

// What the watch list takes from a title such as "eBay item 4012345678 (Ends Jun-15-03 18:00:00 PDT) -
// Brass Lantern": the item number, the title behind the last "-", and the 18 characters of the end. An
// apostrophe becomes "~", since the texts go into a statement. A title of another kind gives texts of
// the wrong kind, for the statement to refuse.
struct WatchEntry {
  Text item;
  Text title;
  Text end;
};
WatchEntry ParseWatchTitle(const Text& document_title, const Regional& regional);

}  // namespace lw
