// Time left and its colours at the boundaries, the timer's count, the site clock, and the regional
// rewriting of dates and fields.
#include <gtest/gtest.h>

#include "core/primitives/datetime.h"
#include "import/site_time.h"

namespace lw {
namespace {

const Date kNow = MakeDate(2026, 3, 10, 12, 0, 0);

Date Plus(int minutes) {
  return DateAdd(u"n", minutes, kNow);
}

TEST(AuctionEndTime, ColourAndHeadingAtTheBoundaries) {
  SiteClockOffsets none;
  struct Case {
    int minutes;
    long colour;
    const char16_t* heading;
    const char16_t* text;
  };
  for (const Case& c :
       {Case{12 * 60 + 1, kGreen, u"Ends in H:M", u"12:1"}, Case{12 * 60, kBlue, u"Ends in H:M", u"12:0"},
        Case{2 * 60, kBlue, u"Ends in H:M", u"2:0"}, Case{119, kRed, u"Ends in H:M", u"1:59"},
        Case{0, kRed, u"Ends in H:M", u"0:0"}, Case{-1, kRed, u"Ended", u"0 days"}}) {
    AuctionEndDisplay d = auction_end_time(Plus(c.minutes), kNow, none);
    EXPECT_EQ(d.colour, c.colour) << c.minutes;
    EXPECT_EQ(d.heading, c.heading) << c.minutes;
    EXPECT_EQ(d.time_left, c.text) << c.minutes;
  }
  // The site clock counts: three hours behind, an end three hours ahead is six hours away.
  SiteClockOffsets behind{-3, 0};
  EXPECT_EQ(auction_end_time(Plus(180), kNow, behind).colour, kBlue);
  EXPECT_EQ(auction_end_time(Plus(180), kNow, behind).time_left, u"6:0");
  // The minute difference counts here as well.
  EXPECT_EQ(auction_end_time(Plus(10), kNow, SiteClockOffsets{0, 15}).heading, u"Ended");
}

TEST(AuctionEndTime2, HourDifferenceOnlyAndDaysSinceTheEnd) {
  EXPECT_EQ(auction_end_time_2(Plus(180), kNow, SiteClockOffsets{-3, 0}), u"6:0");
  EXPECT_EQ(auction_end_time_2(Plus(180), kNow, SiteClockOffsets{-3, 45}), u"6:0");
  EXPECT_EQ(auction_end_time_2(Plus(65), kNow, SiteClockOffsets{}), u"1:5");
  // Days since the end, halves to the even number.
  EXPECT_EQ(auction_end_time_2(Plus(-48 * 60), kNow, SiteClockOffsets{}), u"2 days");
  EXPECT_EQ(auction_end_time_2(Plus(-36 * 60), kNow, SiteClockOffsets{}), u"2 days");
  EXPECT_EQ(auction_end_time_2(Plus(-60 * 60), kNow, SiteClockOffsets{}), u"2 days");
  EXPECT_EQ(auction_end_time_2(Plus(-84 * 60), kNow, SiteClockOffsets{}), u"4 days");
}

TEST(SiteClock, NowAndClockOffsets) {
  Regional r = Regional::FromLocale("en_US");
  SiteClockOffsets offsets{2, 30};
  EXPECT_EQ(site_now(kNow, offsets), Plus(150));
  SiteClockSetting early = calculate_time(kNow, offsets, 10, r);
  EXPECT_EQ(early.hour_offset, -2);
  EXPECT_EQ(early.minute_offset, -30);
  // Past the hour the minute offset is taken from the hour's start.
  SiteClockSetting late = calculate_time(kNow, offsets, 40, r);
  EXPECT_EQ(late.minute_offset, 30);
  EXPECT_EQ(late.site_now, Plus(150));
  // Across midnight the two labels show different days.
  SiteClockSetting next_day = calculate_time(MakeDate(2026, 3, 10, 23, 0, 0), offsets, 0, r);
  EXPECT_FALSE(next_day.todays_date.empty());
  EXPECT_NE(next_day.todays_date, next_day.ebays_date);
}

Regional With(const char16_t* language, const char16_t* date_format, const char16_t* symbol,
              const char16_t* mark) {
  Regional r;
  r.language_name = language;
  r.short_date_format = date_format;
  r.currency_symbol = symbol;
  r.money_decimal_mark = mark;
  return r;
}

TEST(LocaleFormatting, GroupsAndDayFirst) {
  LocaleFormatting nl = locale_formatting(With(u"Dutch (Belgium)", u"d/MM/yyyy", u"\u20ac", u","));
  EXPECT_EQ(nl.currency_symbol, Text(u"\u20ac"));
  EXPECT_EQ(nl.decimal_mark, Text(u","));
  EXPECT_EQ(nl.nedit_values, (std::array<Text, 4>{u"0,25", u"0,25", u"0,50", u"0,50"}));
  EXPECT_TRUE(nl.day_first);

  LocaleFormatting uk = locale_formatting(With(u"English (United Kingdom)", u"Dd/MM/yyyy", u"\u00a3", u"."));
  EXPECT_FALSE(uk.currency_symbol.has_value());
  EXPECT_FALSE(uk.decimal_mark.has_value());
  EXPECT_EQ(uk.nedit_values[2], u"0.50");
  EXPECT_TRUE(uk.day_first);  // a capital D counts as day first too

  LocaleFormatting us = locale_formatting(With(u"English (United States)", u"M/d/yyyy", u"$", u"."));
  EXPECT_EQ(us.currency_symbol, Text(u"$"));
  EXPECT_FALSE(us.decimal_mark.has_value());
  EXPECT_EQ(us.nedit_values[0], u"0.25");
  EXPECT_FALSE(us.day_first);
  EXPECT_TRUE(locale_formatting(With(u"x", u"D-M-yy", u"$", u".")).day_first);
}

TEST(ConvertDate, DutchSpanishAndTheMessageForTheRest) {
  Regional r = With(u"Dutch (Standard)", u"d-M-yyyy", u"\u20ac", u",");
  Text date = u"Mar-03-05 May Oct Jan";
  EXPECT_FALSE(convert_date(u"Dutch (Standard)", date, r).has_value());
  EXPECT_EQ(date, u"Mrt-03-05 Mei Okt Jan");

  date = u"Jan-01 Apr Aug Dec Mar";
  EXPECT_FALSE(convert_date(u"Spanish (Traditional Sort)", date, r).has_value());
  EXPECT_EQ(date, u"ene-01 abr ago dic Mar");

  // Any other name, even of the Dutch group, gets the message and keeps its date.
  date = u"Mar-03-05";
  auto message = convert_date(u"Dutch (Belgium)", date, r);
  ASSERT_TRUE(message.has_value());
  EXPECT_EQ(date, u"Mar-03-05");
  EXPECT_EQ(message->title, u"Data Conversion Error");
  EXPECT_EQ(message->text,
            u"There was a data importation error. This could be a Regional Settings error.\r\n"
            u"Please contact technical support and provide them with this information:\r\n\r\n"
            u"Country Location is: Dutch (Belgium)\r\nDate Format is: d-M-yyyy\r\n"
            u"Currency Symbol is: \u20ac\r\nDecimal Separator is: ,");
}

}  // namespace
}  // namespace lw
