// The listing's commands that more than one of its units runs.
#pragma once

namespace lw {

class ListingScreen;

// Builds the item request from the Sell page and has the site validate it.
void validate_auction(ListingScreen& screen);
// Posts the validated request in hand, with only its verb changed.
void post_new_auction(ListingScreen& screen);
// The category number is the one thing looked at before the site sees an auction: without one a message
// says so, the focus goes to the box, and the command stops.
bool CategoryGiven(ListingScreen& screen);

}  // namespace lw
