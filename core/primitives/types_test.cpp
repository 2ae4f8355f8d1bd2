#include "core/primitives/types.h"

#include <gtest/gtest.h>

#include "core/primitives/encoding.h"

namespace lw {
namespace {

TEST(Currency, WholeNumberRoundsHalvesToEven) {
  EXPECT_EQ(Currency::FromScaled(25000).ToWhole(), 2);
  EXPECT_EQ(Currency::FromScaled(35000).ToWhole(), 4);
  EXPECT_EQ(Currency::FromScaled(-25000).ToWhole(), -2);
  EXPECT_EQ(Currency::FromScaled(-35000).ToWhole(), -4);
  EXPECT_EQ(Currency::FromScaled(25001).ToWhole(), 3);
  EXPECT_EQ(Currency::FromScaled(24999).ToWhole(), 2);
}

TEST(Currency, FromDoubleKeepsFourPlacesHalvesToEven) {
  EXPECT_EQ(Currency::FromDouble(1.23456).scaled(), 12346);
  EXPECT_EQ(Currency::FromDouble(0.00005).scaled(), 0);  // half, 0 is even
  EXPECT_EQ(Currency::FromDouble(0.00015).scaled(), 2);  // half, 2 is even
  EXPECT_EQ(Currency::FromDouble(19.99).scaled(), 199900);
  EXPECT_EQ(Currency::FromDouble(-0.1).scaled(), -1000);
  EXPECT_THROW(Currency::FromDouble(1e300), RuntimeError);
}

TEST(Date, SerialDaysFromTheEpochOf1899) {
  EXPECT_EQ(MakeDate(1899, 12, 30).serial, 0);
  EXPECT_EQ(MakeDate(1900, 1, 1).serial, 2);
  EXPECT_EQ(MakeDate(2000, 1, 1).serial, 36526);
  EXPECT_DOUBLE_EQ(MakeDate(2000, 1, 1, 18, 0, 0).serial, 36526.75);
  CivilTime t = SplitDate(MakeDate(2024, 2, 29, 23, 59, 59));
  EXPECT_EQ(t.year, 2024);
  EXPECT_EQ(t.month, 2);
  EXPECT_EQ(t.day, 29);
  EXPECT_EQ(t.hour, 23);
  EXPECT_EQ(t.minute, 59);
  EXPECT_EQ(t.second, 59);
  EXPECT_EQ(Weekday(MakeDate(2026, 11, 22)), 1);  // a Sunday
  EXPECT_FALSE(HasTimePart(MakeDate(2026, 1, 1)));
}

TEST(Encoding, RoundTripsAndReplacesBadBytes) {
  Text t = FromUtf8("caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80");
  EXPECT_EQ(t.size(), 9u);  // the emoji takes a surrogate pair
  EXPECT_EQ(ToUtf8(t), "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80");
  EXPECT_EQ(FromUtf8("a\xFF"
                     "b"),
            Text(u"a\uFFFDb"));
  EXPECT_EQ(FromUtf8("\xE2\x82"), Text(u"\uFFFD\uFFFD"));
  EXPECT_EQ(FromCp1252("\x80\xA3\x93"), Text(u"\u20AC\u00A3\u201C"));
  EXPECT_EQ(ToCp1252(u"\u20AC\u00A3\u4E2D"), "\x80\xA3?");
}

}  // namespace
}  // namespace lw
