// The Sell page's controls: the auction's own fields bound to the current seller row, the listing
// settings, the posting buttons and the category tree's place, each in its frame with its caption, and
// the small rules the page keeps by itself (the PayPal address, the shipping terms that exclude each
// other, the regions that need "Site plus", the checkout frame, the schedule, the counter sample).
#pragma once

#include <functional>

#include "core/primitives/regional.h"
#include "core/primitives/types.h"

namespace lw {

class Form;
class DataControl;

inline constexpr int kPaybyCount = 11;
inline constexpr int kDisplayCount = 8;
inline constexpr int kPayShippingCount = 4;
inline constexpr int kOtherLocationCount = 9;

// What the page needs from outside itself.
struct SellPageHooks {
  const Regional* regional = nullptr;
  // The site's time as the screen shows it, for the schedule's time box.
  std::function<Date()> site_now;
  // A change of the schedule option: the time left of the auction on show is worked out again.
  std::function<void()> schedule_changed;
};

// Builds the page's controls on `form` (the main form, or a test's form) inside the frame
// `lister_page_fra`. Controls the form has already (the schedule's time box, the toolbar) are placed
// in the page rather than made again.
void BuildSellPage(Form& form, DataControl& seller, DataControl& setup, SellPageHooks hooks);

// The fixed lists and their start texts: what the main form does when it loads.
void FillListerLists(Form& form);

// Shows the counter sample of the text in counter_combo.
void change_counter_image(Form& form);

// The index of the selected option of a group, -1 when none is.
int SelectedOption(const Form& form, TextView name, int count);
// A box counts as ticked when its value is 1.
bool Ticked(const Form& form, TextView name, int index);

}  // namespace lw
