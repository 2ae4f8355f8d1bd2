// The site clock on the main screen: the time left of the auction on show with its colour and heading,
// the timer that counts it down, the site clock control and its date labels, the regional symbols of
// the money fields and the date edits of the details page.
#pragma once

#include <array>
#include <functional>

#include "core/primitives/types.h"
#include "screen/edits.h"

namespace lw {

class ImportScreen;
class MainForm;

// The controls of the details page that show the time left or take its colour, created on the main
// form where nothing else has made them yet.
void AddSiteClockControls(MainForm& form);

// RegisterSiteClock (auction_imports.h) registers the routines `calculate_time`, `locale_formatting`,
// `auction_end_time` and `auction_end_time_2` on the main form's data, runs `Timer1` every second and
// hooks the date edits.

}  // namespace lw
