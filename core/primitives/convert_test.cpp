#include "core/primitives/convert.h"

#include <gtest/gtest.h>

#include <ctime>

#include "core/primitives/encoding.h"

namespace lw {
namespace {

class Convert : public ::testing::Test {
 protected:
  Regional us = Regional::FromLocale("en_US");
  Regional gb = Regional::FromLocale("en_GB");
  Regional nl = Regional::FromLocale("nl_NL");

  static int ErrorOf(auto&& call) {
    try {
      call();
    } catch (const RuntimeError& e) {
      return e.number();
    }
    return 0;
  }
  static int ThisYear() {
    std::time_t now = std::time(nullptr);
    std::tm tm{};
    localtime_r(&now, &tm);
    return tm.tm_year + 1900;
  }
};

TEST_F(Convert, NumbersFromTextFollowTheLocale) {
  EXPECT_EQ(CDbl(u"  12.5 ", us), 12.5);
  EXPECT_EQ(CDbl(u"$1,234.50", us), 1234.5);
  EXPECT_EQ(CDbl(u"($5.25)", us), -5.25);
  EXPECT_EQ(CDbl(u"-$5", us), -5);
  EXPECT_EQ(CDbl(u"$-5", us), -5);
  EXPECT_EQ(CDbl(u"5-", us), -5);
  EXPECT_EQ(CDbl(u".5", us), 0.5);
  EXPECT_EQ(CDbl(u"1.5E3", us), 1500);
  EXPECT_EQ(CDbl(u"\u00A31,000.25", gb), 1000.25);
  EXPECT_EQ(CDbl(u"1.234,50", nl), 1234.5);
  EXPECT_EQ(CDbl(u"\u20AC 1.234,50", nl), 1234.5);
  EXPECT_EQ(CDbl(u"1.234,50 \u20AC-", nl), -1234.5);
  // The point is a thousands mark on a Dutch system.
  EXPECT_EQ(CDbl(u"12.50", nl), 1250);
}

TEST_F(Convert, NumbersFromOtherValues) {
  EXPECT_EQ(CDbl(true, us), -1);
  EXPECT_EQ(CDbl(false, us), 0);
  EXPECT_EQ(CDbl(Date(46348.5), us), 46348.5);
  EXPECT_EQ(CDbl(Currency::FromScaled(12345), us), 1.2345);
  EXPECT_EQ(CCur(2.5, us), Currency::FromScaled(25000));
  EXPECT_EQ(CCur(true, us), Currency::FromScaled(-10000));
}

TEST_F(Convert, NumberFailures) {
  for (const char16_t* bad : {u"", u"   ", u"12abc", u"abc", u"-", u"$", u"1..2", u"--5", u"(5-)", u"5 6",
                              u"1,,000", u"1e", u"12.5.3"})
    EXPECT_EQ(ErrorOf([&] { CDbl(bad, us); }), err::kTypeMismatch) << ToUtf8(bad);
  EXPECT_EQ(ErrorOf([&] { CDbl(u"1.234,5", us); }), err::kTypeMismatch);
  EXPECT_EQ(ErrorOf([&] { CCur(u"$5", nl); }), err::kTypeMismatch);
  EXPECT_EQ(ErrorOf([&] { CCur(u"12,50 x", nl); }), err::kTypeMismatch);
  EXPECT_EQ(ErrorOf([&] { CDbl(Variant(), us); }), err::kInvalidUseOfNull);
  EXPECT_EQ(ErrorOf([&] { CCur(Variant(), us); }), err::kInvalidUseOfNull);
  EXPECT_EQ(ErrorOf([&] { CDbl(u"1e400", us); }), err::kOverflow);
  EXPECT_EQ(ErrorOf([&] { CCur(u"1e20", us); }), err::kOverflow);
  EXPECT_EQ(CDbl(u"1e-400", us), 0);
}

TEST_F(Convert, MoneyFromTextIsExact) {
  EXPECT_EQ(CCur(u"0.1", us), Currency::FromScaled(1000));
  EXPECT_EQ(CCur(u"1,234.5678", us), Currency::FromScaled(12345678));
  // Beyond four places halves go to the even neighbour, decided on the written digits.
  EXPECT_EQ(CCur(u"2.00005", us), Currency::FromScaled(20000));
  EXPECT_EQ(CCur(u"2.00015", us), Currency::FromScaled(20002));
  EXPECT_EQ(CCur(u"2.000050001", us), Currency::FromScaled(20001));
  EXPECT_EQ(CCur(u"-0,99995", nl), Currency::FromScaled(-10000));
  EXPECT_EQ(CCur(u"922337203685477.5807", us), Currency::FromScaled(INT64_MAX));
}

TEST_F(Convert, DatesInTheLocaleOrder) {
  EXPECT_EQ(CDate(u"11/22/2026", us), MakeDate(2026, 11, 22));
  EXPECT_EQ(CDate(u"22/11/2026", gb), MakeDate(2026, 11, 22));
  EXPECT_EQ(CDate(u"22-11-2026", nl), MakeDate(2026, 11, 22));
  EXPECT_EQ(CDate(u"2/1/2026", us), MakeDate(2026, 2, 1));
  EXPECT_EQ(CDate(u"2/1/2026", gb), MakeDate(2026, 1, 2));
  EXPECT_EQ(CDate(u"2.1.2026", nl), MakeDate(2026, 1, 2));
  EXPECT_EQ(CDate(u"2 1 2026", nl), MakeDate(2026, 1, 2));
  // An impossible reading under the locale order falls back on the others.
  EXPECT_EQ(CDate(u"13/1/2005", us), MakeDate(2005, 1, 13));
  EXPECT_EQ(CDate(u"1/13/2005", gb), MakeDate(2005, 1, 13));
  EXPECT_EQ(CDate(u"2026-11-22", gb), MakeDate(2026, 11, 22));
  EXPECT_EQ(CDate(u"2026/2/3", us), MakeDate(2026, 2, 3));
  EXPECT_EQ(CDate(u"11/22", us), MakeDate(ThisYear(), 11, 22));
  EXPECT_EQ(CDate(u"22/11", gb), MakeDate(ThisYear(), 11, 22));
  EXPECT_EQ(CDate(u"11/2026", us), MakeDate(2026, 11, 1));
}

TEST_F(Convert, DatesWithoutYearTakeTheProgramClockYear) {
  Clock clock;
  clock.Fix(MakeDate(2028, 6, 15, 9, 30));
  EXPECT_EQ(CDate(u"22 nov", us, clock), MakeDate(2028, 11, 22));
  EXPECT_EQ(CDate(u"29/2", gb, clock), MakeDate(2028, 2, 29));
  EXPECT_EQ(CDate(u"1/2/2005", gb, clock), MakeDate(2005, 2, 1));
  clock.Fix(MakeDate(2027, 6, 15));
  EXPECT_EQ(ErrorOf([&] { CDate(u"29/2", gb, clock); }), err::kTypeMismatch);
  EXPECT_EQ(CDate(46348.5, us, clock).serial, 46348.5);
}

TEST_F(Convert, TwoDigitYearsPivotAtThirty) {
  EXPECT_EQ(CDate(u"1/1/30", us), MakeDate(1930, 1, 1));
  EXPECT_EQ(CDate(u"1/1/99", us), MakeDate(1999, 1, 1));
  EXPECT_EQ(CDate(u"1/1/00", us), MakeDate(2000, 1, 1));
  EXPECT_EQ(CDate(u"1/1/29", us), MakeDate(2029, 1, 1));
  EXPECT_EQ(CDate(u"22-nov-05", gb), MakeDate(2005, 11, 22));
}

TEST_F(Convert, DatesWithMonthNames) {
  EXPECT_EQ(CDate(u"22 nov 2026", us), MakeDate(2026, 11, 22));
  EXPECT_EQ(CDate(u"Nov 22, 2026", us), MakeDate(2026, 11, 22));
  EXPECT_EQ(CDate(u"NOVEMBER 22 2026", gb), MakeDate(2026, 11, 22));
  EXPECT_EQ(CDate(u"2026 Nov 22", us), MakeDate(2026, 11, 22));
  EXPECT_EQ(CDate(u"Sunday, November 22, 2026", us), MakeDate(2026, 11, 22));
  EXPECT_EQ(CDate(u"Mar 5", us), MakeDate(ThisYear(), 3, 5));
  EXPECT_EQ(CDate(u"22-mrt-2005", nl), MakeDate(2005, 3, 22));
  EXPECT_EQ(CDate(u"22 Mrt 2005", nl), MakeDate(2005, 3, 22));
  EXPECT_EQ(CDate(u"22 maart 2005", nl), MakeDate(2005, 3, 22));
  EXPECT_EQ(CDate(u"zondag 22 november 2026", nl), MakeDate(2026, 11, 22));
  // Month names belong to the locale's language only.
  EXPECT_EQ(ErrorOf([&] { CDate(u"22-Mrt-2005", us); }), err::kTypeMismatch);
  EXPECT_EQ(ErrorOf([&] { CDate(u"Mar 22 2005", nl); }), err::kTypeMismatch);
  EXPECT_EQ(ErrorOf([&] { CDate(u"Oct 22 2005", nl); }), err::kTypeMismatch);
  EXPECT_FALSE(IsDate(u"Mrt 22 2005", us));
  EXPECT_TRUE(IsDate(u"Mrt 22 2005", nl));
}

TEST_F(Convert, DatesWithTimes) {
  EXPECT_EQ(CDate(u"11/22/2026 10:30", us), MakeDate(2026, 11, 22, 10, 30));
  EXPECT_EQ(CDate(u"11/22/2026 10:30:15 PM", us), MakeDate(2026, 11, 22, 22, 30, 15));
  EXPECT_EQ(CDate(u"11/22/2026 12:05am", us), MakeDate(2026, 11, 22, 0, 5));
  EXPECT_EQ(CDate(u"11/22/2026 12:05 p", us), MakeDate(2026, 11, 22, 12, 5));
  EXPECT_EQ(CDate(u"22-11-2026 14:05:09", nl), MakeDate(2026, 11, 22, 14, 5, 9));
  EXPECT_EQ(CDate(u"Nov-22-26 18:00:00", us), MakeDate(2026, 11, 22, 18));
  // A time alone is day 0 plus the time.
  EXPECT_EQ(CDate(u"18:00", us).serial, 0.75);
  EXPECT_EQ(CDate(u"6 PM", us).serial, 0.75);
  EXPECT_EQ(CDate(u"6:00:00 PM", us).serial, 0.75);
}

TEST_F(Convert, DateFailures) {
  for (const char16_t* bad : {u"",
                              u"5",
                              u"abc",
                              u"31/31/2000",
                              u"2/30/2026",
                              u"22//11/2026",
                              u"22/11/2026/",
                              u"/22/11/2026",
                              u"1/2/3/4",
                              u"25:00",
                              u"10:60",
                              u"13:00 PM",
                              u"1:2:3:4",
                              u"10:30 10:30",
                              u"Nov",
                              u"Nov Dec 5",
                              u"22 nov 2026 x",
                              u"11/22/2026 10:",
                              u"1/1/10000",
                              u"2026-11-22T10:30",
                              u"22?11?2026"})
    EXPECT_EQ(ErrorOf([&] { CDate(bad, us); }), err::kTypeMismatch) << ToUtf8(bad);
  EXPECT_EQ(ErrorOf([&] { CDate(Variant(), us); }), err::kInvalidUseOfNull);
  EXPECT_EQ(ErrorOf([&] { CDate(1e12, us); }), err::kOverflow);
  EXPECT_EQ(CDate(46348.25, us).serial, 46348.25);
}

TEST_F(Convert, TextOfValues) {
  EXPECT_EQ(CStr(12.5, us), u"12.5");
  EXPECT_EQ(CStr(12.5, nl), u"12,5");
  EXPECT_EQ(CStr(0.1 + 0.2, us), u"0.3");
  EXPECT_EQ(CStr(-1.0 / 3, us), u"-0.333333333333333");
  EXPECT_EQ(CStr(123456789012345.0, us), u"123456789012345");
  EXPECT_EQ(CStr(1e20, us), u"1E+20");
  EXPECT_EQ(CStr(0.00001, us), u"1E-05");
  EXPECT_EQ(CStr(Currency::FromScaled(12345678), us), u"1234.5678");
  EXPECT_EQ(CStr(Currency::FromScaled(-5000), nl), u"-0,5");
  EXPECT_EQ(CStr(true, us), u"True");
  EXPECT_EQ(CStr(false, nl), u"False");
  EXPECT_EQ(CStr(MakeDate(2026, 11, 22), us), u"11/22/2026");
  EXPECT_EQ(CStr(MakeDate(2026, 11, 22, 18, 5, 9), us), u"11/22/2026 6:05:09 PM");
  EXPECT_EQ(CStr(MakeDate(2026, 11, 22, 18, 5, 9), gb), u"22/11/2026 18:05:09");
  EXPECT_EQ(CStr(Date(0.75), nl), u"18:00:00");
  EXPECT_EQ(ErrorOf([&] { CStr(Variant(), us); }), err::kInvalidUseOfNull);
  // What CStr writes reads back.
  EXPECT_EQ(CDbl(CStr(-1234.0625, nl), nl), -1234.0625);
  EXPECT_EQ(CDate(CStr(MakeDate(2026, 1, 2, 3, 4, 5), us), us), MakeDate(2026, 1, 2, 3, 4, 5));
}

TEST_F(Convert, IsNumericAndIsDate) {
  EXPECT_TRUE(IsNumeric(u"$1,234.50", us));
  EXPECT_FALSE(IsNumeric(u"$1,234.50", nl));
  EXPECT_FALSE(IsNumeric(u"12 apples", us));
  EXPECT_FALSE(IsNumeric(Variant(), us));
  EXPECT_TRUE(IsNumeric(Date(1), us));
  EXPECT_TRUE(IsDate(u"22/11/2026", gb));
  EXPECT_FALSE(IsDate(u"22/22/2026", gb));
  EXPECT_FALSE(IsDate(Variant(), us));
  EXPECT_FALSE(IsDate(12.5, us));
  EXPECT_TRUE(IsDate(MakeDate(2026, 1, 1), us));
}

TEST_F(Convert, NamedDateFormats) {
  Date d = MakeDate(2026, 11, 22, 18, 5, 9);
  Date day = MakeDate(2026, 11, 22);
  EXPECT_EQ(Format(d, u"Short Date", us), u"11/22/2026");
  EXPECT_EQ(Format(d, u"short date", gb), u"22/11/2026");
  EXPECT_EQ(Format(d, u"short date", nl), u"22-11-2026");
  EXPECT_EQ(Format(d, u"long date", us), u"Sunday, November 22, 2026");
  EXPECT_EQ(Format(d, u"Long Date", gb), u"22 November 2026");
  EXPECT_EQ(Format(d, u"long date", nl), u"zondag 22 november 2026");
  EXPECT_EQ(Format(d, u"medium date", us), u"22-Nov-26");
  EXPECT_EQ(Format(MakeDate(2005, 3, 5), u"medium date", nl), u"5-mrt-05");
  EXPECT_EQ(Format(d, u"general date", us), u"11/22/2026 6:05:09 PM");
  EXPECT_EQ(Format(d, u"GENERAL DATE", gb), u"22/11/2026 18:05:09");
  EXPECT_EQ(Format(d, u"general date", nl), u"22-11-2026 18:05:09");
  EXPECT_EQ(Format(day, u"general date", us), u"11/22/2026");
  EXPECT_EQ(Format(Date(0.25), u"general date", us), u"6:00:00 AM");
  // Text that reads as a date is formatted as one.
  EXPECT_EQ(Format(u"22 nov 2026", u"long date", gb), u"22 November 2026");
  EXPECT_EQ(Format(u"not a date", u"long date", gb), u"not a date");
}

TEST_F(Convert, LocalesWithTheSymbolAfterTheAmount) {
  Regional de = Regional::FromLocale("de_DE");
  EXPECT_EQ(Format(1234.5, u"currency", de), u"1.234,50 \u20AC");
  EXPECT_EQ(Format(-1234.5, u"currency", de), u"-1.234,50 \u20AC");
  EXPECT_EQ(CDbl(u"-1.234,50 \u20AC", de), -1234.5);
  EXPECT_EQ(CDate(u"Sonntag, 22. November 2026", de), MakeDate(2026, 11, 22));
  EXPECT_EQ(CDate(u"22. M\u00E4rz 2026", de), MakeDate(2026, 3, 22));
  // The words a long date carries besides the names read back too.
  Regional es = Regional::FromLocale("es_ES");
  EXPECT_EQ(Format(MakeDate(2026, 11, 22), u"long date", es), u"domingo, 22 de noviembre de 2026");
  EXPECT_EQ(CDate(u"domingo, 22 de noviembre de 2026", es), MakeDate(2026, 11, 22));
  EXPECT_EQ(ErrorOf([&] { CDate(u"22 del noviembre 2026", es); }), err::kTypeMismatch);
  // A no-break space groups thousands; an ordinary blank typed in its place reads the same.
  Regional fr = Regional::FromLocale("fr_FR");
  EXPECT_EQ(Format(1234.5, u"standard", fr), u"1\u00A0234,50");
  EXPECT_EQ(CCur(u"1 234,50 \u20AC", fr), Currency::FromScaled(12345000));
  // Year-first short dates from ICU read back and print as they are.
  Regional sv = Regional::FromLocale("sv_SE");
  EXPECT_EQ(Format(MakeDate(2026, 11, 2), u"short date", sv), u"2026-11-02");
  EXPECT_EQ(CDate(u"26-11-02", sv), MakeDate(2026, 11, 2));
}

TEST_F(Convert, NamedNumberFormats) {
  EXPECT_EQ(Format(1234.5, u"general number", us), u"1234.5");
  EXPECT_EQ(Format(1234.5, u"General Number", nl), u"1234,5");
  EXPECT_EQ(Format(1234.5, u"currency", us), u"$1,234.50");
  EXPECT_EQ(Format(-1234.5, u"currency", us), u"($1,234.50)");
  EXPECT_EQ(Format(-1234.5, u"Currency", gb), u"-\u00A31,234.50");
  EXPECT_EQ(Format(1234.5, u"currency", nl), u"\u20AC 1.234,50");
  EXPECT_EQ(Format(-1234.5, u"currency", nl), u"\u20AC -1.234,50");
  EXPECT_EQ(Format(Currency::FromScaled(12345), u"currency", us), u"$1.23");
  EXPECT_EQ(Format(Currency::FromScaled(12350), u"currency", us), u"$1.24");
  EXPECT_EQ(Format(-0.001, u"currency", us), u"$0.00");
  EXPECT_EQ(Format(1234.5, u"fixed", us), u"1234.50");
  EXPECT_EQ(Format(1234.5, u"standard", nl), u"1.234,50");
  EXPECT_EQ(Format(0.125, u"percent", us), u"12.50%");
  EXPECT_EQ(Format(0, u"yes/no", us), u"No");
  EXPECT_EQ(Format(-1, u"true/false", us), u"True");
}

TEST_F(Convert, NumberPictures) {
  EXPECT_EQ(Format(0, u"#######0.00", us), u"0.00");
  EXPECT_EQ(Format(0, u"#######0.00", nl), u"0,00");
  EXPECT_EQ(Format(1234.5, u"$###,##0.00", us), u"$1,234.50");
  EXPECT_EQ(Format(1234.5, u"$###,##0.00", nl), u"$1.234,50");
  EXPECT_EQ(Format(1234567.891, u"$#,##0.00", us), u"$1,234,567.89");
  EXPECT_EQ(Format(-1234.5, u"$#,##0.00", us), u"-$1,234.50");
  EXPECT_EQ(Format(999.5, u"#,##0", us), u"1,000");
  EXPECT_EQ(Format(0.4, u"#,##0", us), u"0");
  // Rounding is on the decimal value, halves away from zero.
  EXPECT_EQ(Format(2.675, u"0.00", us), u"2.68");
  EXPECT_EQ(Format(1.005, u"0.00", us), u"1.01");
  EXPECT_EQ(Format(-2.5, u"0", us), u"-3");
  EXPECT_EQ(Format(-0.001, u"0.00", us), u"0.00");
  EXPECT_EQ(Format(Currency::FromScaled(-12345), u"0.00", us), u"-1.23");
  EXPECT_EQ(Format(1.5, u"0.0#", us), u"1.5");
  EXPECT_EQ(Format(1.555, u"0.0#", us), u"1.56");
  EXPECT_EQ(Format(5, u"#.##", us), u"5.");
  EXPECT_EQ(Format(123456789, u"000-00-0000", us), u"123-45-6789");
  EXPECT_EQ(Format(7, u"000", us), u"007");
  EXPECT_EQ(Format(1234567, u"0", us), u"1234567");
  EXPECT_EQ(Format(1234567, u"#,##0,", us), u"1,235");
  EXPECT_EQ(Format(0.256, u"0.0%", us), u"25.6%");
  EXPECT_EQ(Format(1234.5, u"0.00E+00", us), u"1.23E+03");
  EXPECT_EQ(Format(0.00012, u"0.0E-0", us), u"1.2E-4");
  EXPECT_EQ(Format(5, u"\"Qty \"0", us), u"Qty 5");
  // Sections: positive; negative; zero.
  EXPECT_EQ(Format(-5, u"0;(0);\\Z\\e\\r\\o", us), u"(5)");
  EXPECT_EQ(Format(0, u"0;(0);\\Z\\e\\r\\o", us), u"Zero");
  EXPECT_EQ(Format(5, u"0;(0);\\Z\\e\\r\\o", us), u"5");
  EXPECT_EQ(Format(-5, u"0;;\"none\"", us), u"-5");
  // Text that reads as a number, dates as their serial, and text that reads as neither.
  EXPECT_EQ(Format(u"1234,5", u"#,##0.00", nl), u"1.234,50");
  EXPECT_EQ(Format(u"$12.5", u"0.00", us), u"12.50");
  EXPECT_EQ(Format(Date(2.5), u"0.00", us), u"2.50");
  EXPECT_EQ(Format(u"n/a", u"0.00", us), u"n/a");
  EXPECT_EQ(Format(Variant(), u"0.00", us), u"");
  EXPECT_EQ(Format(Variant(), u"long date", us), u"");
}

TEST_F(Convert, DatePictures) {
  Date d = MakeDate(2026, 11, 22, 18, 5, 9);
  EXPECT_EQ(Format(d, u"d-mmm-yy", us), u"22-Nov-26");
  EXPECT_EQ(Format(d, u"d-mmm-yyyy", nl), u"22-nov-2026");
  EXPECT_EQ(Format(MakeDate(2026, 3, 5), u"d-mmm-yy", nl), u"5-mrt-26");
  EXPECT_EQ(Format(d, u"HH:MM", us), u"18:05");
  EXPECT_EQ(Format(d, u"hh:mm:ss", gb), u"18:05:09");
  EXPECT_EQ(Format(d, u"mm/dd/yyyy", us), u"11/22/2026");
  // The slash stays a slash whatever the locale writes between date parts.
  EXPECT_EQ(Format(MakeDate(2026, 1, 2), u"mm/dd/yyyy", nl), u"01/02/2026");
  EXPECT_EQ(Format(MakeDate(2026, 1, 2), u"dd/mm/yy", nl), u"02/01/26");
  EXPECT_EQ(Format(d, u"YYYY-MM-DD HH:MM:SS", us), u"2026-11-22 18:05:09");
  EXPECT_EQ(Format(MakeDate(2026, 1, 2), u"DD", us), u"02");
  EXPECT_EQ(Format(MakeDate(2026, 1, 2), u"MM", us), u"01");
  EXPECT_EQ(Format(d, u"h:mm AM/PM", us), u"6:05 PM");
  EXPECT_EQ(Format(MakeDate(2026, 1, 2, 0, 30), u"hh:nn am/pm", us), u"12:30 am");
  EXPECT_EQ(Format(d, u"nn:ss", us), u"05:09");
  EXPECT_EQ(Format(d, u"mm:ss", us), u"05:09");
  EXPECT_EQ(Format(d, u"dddd d mmmm yyyy", nl), u"zondag 22 november 2026");
  EXPECT_EQ(Format(d, u"ddd, mmm d", us), u"Sun, Nov 22");
  EXPECT_EQ(Format(d, u"\"day\" y \\q q", us), u"day 326 q 4");
  EXPECT_EQ(Format(46348.75, u"mm/dd/yyyy hh:nn", us), u"11/22/2026 18:00");
  EXPECT_EQ(Format(u"22-11-2026 14:05", u"yyyy-mm-dd hh:nn", nl), u"2026-11-22 14:05");
  EXPECT_EQ(ErrorOf([&] { Format(1e300, u"dd/mm/yyyy", us); }), err::kOverflow);
}

}  // namespace
}  // namespace lw
