#include "import/site_time.h"

#include <cfenv>
#include <cmath>
#include <string>

#include "core/primitives/convert.h"
#include "core/primitives/datetime.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"

namespace lw {

namespace {

Text Number(int64_t n) {
  return T(std::to_string(n));
}

// The whole hours, ":" and the minutes left over, each as a plain number: 65 minutes read "1:5".
Text HoursAndMinutes(int64_t minutes) {
  int64_t whole_hours = minutes / 60;  // minutes are not negative here
  int64_t remainder = minutes - whole_hours * 60;
  return Number(whole_hours) + u":" + Number(remainder);
}

}  // namespace

Date site_now(Date now, const SiteClockOffsets& offsets) {
  return DateAdd(u"n", offsets.minute_difference, DateAdd(u"h", offsets.hour_difference, now));
}

SiteClockSetting calculate_time(Date now, const SiteClockOffsets& offsets, int clock_current_minute,
                                const Regional& regional) {
  SiteClockSetting s;
  s.site_now = site_now(now, offsets);
  s.hour_offset = static_cast<int>(-offsets.hour_difference);
  s.minute_offset = static_cast<int>(-offsets.minute_difference);
  // Past the full hour the clock control would carry the minutes into the next hour itself, so the
  // offset is taken from the hour's start instead.
  if (clock_current_minute + offsets.minute_difference >= 60)
    s.minute_offset = clock_current_minute + 60 - (clock_current_minute - s.minute_offset);
  s.todays_date = Format(Variant(now), u"long date", regional);
  s.ebays_date = Format(Variant(s.site_now), u"long date", regional);
  return s;
}

AuctionEndDisplay auction_end_time(Date end, Date now, const SiteClockOffsets& offsets) {
  int64_t minutes = DateDiff(u"n", site_now(now, offsets), end);
  double hours = static_cast<double>(minutes) / 60.0;
  AuctionEndDisplay d;
  if (hours < 0) {
    d.colour = kRed;
    d.heading = T("Ended");
    d.time_left = auction_end_time_2(end, now, offsets);
    return d;
  }
  d.colour = hours > 12 ? kGreen : hours >= 2 ? kBlue : kRed;
  d.heading = T("Ends in H:M");
  d.time_left = HoursAndMinutes(minutes);
  return d;
}

Text auction_end_time_2(Date end, Date now, const SiteClockOffsets& offsets) {
  double minutes = static_cast<double>(DateDiff(u"n", now, end)) - offsets.hour_difference * 60.0;
  double hours = minutes / 60.0;
  if (hours < 0) {
    // Whole days by the rounding of money conversions: halves go to the even number.
    int previous = std::fegetround();
    std::fesetround(FE_TONEAREST);
    double days = std::nearbyint(hours / 24.0);
    std::fesetround(previous);
    return Number(static_cast<int64_t>(std::fabs(days))) + u" days";
  }
  return HoursAndMinutes(static_cast<int64_t>(std::floor(minutes)));
}

bool IsDutchLanguage(TextView n) {
  return n == u"Dutch (Standard)" || n == u"Dutch (Belgian)" || n == u"Dutch (Belgium)" ||
         n == u"Dutch(Belgium)" || n == u"Dutch (Netherlands)" || n == u"Dutch(Netherlands)";
}

bool IsUnitedKingdomLanguage(TextView n) {
  return n == u"English (United Kingdom)" || n == u"English(United Kingdom)";
}

bool IsSpanishLanguage(TextView n) {
  return n == u"Spanish (Traditional Sort)";
}

LocaleFormatting locale_formatting(const Regional& regional) {
  LocaleFormatting f;
  const std::array<Text, 4> comma = {u"0,25", u"0,25", u"0,50", u"0,50"};
  const std::array<Text, 4> point = {u"0.25", u"0.25", u"0.50", u"0.50"};
  if (IsDutchLanguage(regional.language_name)) {
    f.currency_symbol = regional.currency_symbol;
    f.decimal_mark = regional.money_decimal_mark;
    f.nedit_values = comma;
  } else if (regional.language_name == u"English (United Kingdom)") {
    f.nedit_values = point;
  } else {
    f.currency_symbol = regional.currency_symbol;
    f.nedit_values = point;
  }
  const Text& sd = regional.short_date_format;
  f.day_first = !sd.empty() && (sd[0] == u'd' || sd[0] == u'D');
  return f;
}

std::optional<DataConversionMessage> convert_date(TextView language_name, Text& date,
                                                  const Regional& regional) {
  if (language_name == u"Dutch (Standard)") {
    date = Replace(date, u"Mar", u"Mrt");
    date = Replace(date, u"May", u"Mei");
    date = Replace(date, u"Oct", u"Okt");
    return std::nullopt;
  }
  if (language_name == u"Spanish (Traditional Sort)") {
    date = Replace(date, u"Jan", u"ene");
    date = Replace(date, u"Apr", u"abr");
    date = Replace(date, u"Aug", u"ago");
    date = Replace(date, u"Dec", u"dic");
    return std::nullopt;
  }
  DataConversionMessage m;
  m.title = T("Data Conversion Error");
  const Text crlf = u"\r\n";
  m.text = T("There was a data importation error. This could be a Regional Settings error.") + crlf +
           T("Please contact technical support and provide them with this information:") + crlf + crlf +
           T("Country Location is: ") + Text(language_name) + crlf + T("Date Format is: ") +
           regional.short_date_format + crlf + T("Currency Symbol is: ") + regional.currency_symbol + crlf +
           T("Decimal Separator is: ") + regional.money_decimal_mark;
  return m;
}

}  // namespace lw
