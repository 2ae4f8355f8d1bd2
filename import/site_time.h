// The site's clock and the time left of an auction. The site runs on its own clock; the two
// differences kept in the misc row (site time minus computer time) stand for its time zone.
#pragma once

#include <array>
#include <optional>

#include "core/primitives/regional.h"
#include "core/primitives/types.h"

namespace lw {

struct SiteClockOffsets {
  double hour_difference = 0;    // Ebay_hour_difference
  double minute_difference = 0;  // Ebay_minute_difference
};

// Now plus the hour and minute differences.
Date site_now(Date now, const SiteClockOffsets& offsets);

// What calculate_time sets: the site clock, the offsets of the site clock control and its two date
// labels in the long date form.
struct SiteClockSetting {
  Date site_now;
  int hour_offset = 0;  // MhClock_ebay_time
  int minute_offset = 0;
  Text todays_date;  // todays_date_lbl
  Text ebays_date;   // ebays_date_lbl
};
// `clock_current_minute` is the current minute the site clock control shows.
SiteClockSetting calculate_time(Date now, const SiteClockOffsets& offsets, int clock_current_minute,
                                const Regional& regional);

// Colours in the blue-green-red byte order of the screen.
inline constexpr long kGreen = 32768;
inline constexpr long kBlue = 0xFF0000;
inline constexpr long kRed = 255;

struct AuctionEndDisplay {
  long colour = kGreen;
  Text heading;    // Label1: "Ends in H:M" or "Ended"
  Text time_left;  // calculate_time_left_lbl
};
// The time left from the site clock to the auction's end, its colour and heading. An ended auction
// takes its text from auction_end_time_2, which counts from `now` (the computer's clock).
AuctionEndDisplay auction_end_time(Date end, Date now, const SiteClockOffsets& offsets);
// The time left as the timer refreshes it: the computer's clock less the hour difference only; the
// minute difference is not applied. An ended auction reads how many days ago it ended.
Text auction_end_time_2(Date end, Date now, const SiteClockOffsets& offsets);

// Language groups of the regional rewriting.
bool IsDutchLanguage(TextView language_name);
bool IsUnitedKingdomLanguage(TextView language_name);  // both spellings, as import compares them
bool IsSpanishLanguage(TextView language_name);

// What locale_formatting does to the money and date fields of the details page.
struct LocaleFormatting {
  std::optional<Text> currency_symbol;  // symbol of the money fields, when they are to take one
  std::optional<Text> decimal_mark;     // decimal mark of ctRealInput1(0), fee_txt, ctNEdit1
  std::array<Text, 4> nedit_values;     // ctNEdit1(0) to (3)
  bool day_first = false;               // ctDEdit1(1) to (4)
};
LocaleFormatting locale_formatting(const Regional& regional);

// The message convert_date shows when it cannot rewrite a date: title and text.
struct DataConversionMessage {
  Text title;
  Text text;
};
// Rewrites the month names of a site date for a Dutch or Spanish system in place; under any other
// language the date stays and the message to show is returned.
std::optional<DataConversionMessage> convert_date(TextView language_name, Text& date,
                                                  const Regional& regional);

}  // namespace lw
