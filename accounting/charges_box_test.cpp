// The single-precision boxes: the money they show and store, and the text a user may type into them.
#include "accounting/charges_box.h"

#include <gtest/gtest.h>

#include "screen/testing.h"

namespace lw {
namespace {

Currency Cents(int64_t cents) {
  return Currency::FromScaled(cents * 100);
}

TEST(SingleMoney, StoresTheCentsItShows) {
  EXPECT_EQ(SingleDecimal(0.825f), 0.825);
  EXPECT_EQ(SingleToCurrency(19.99f), Cents(1999));
  EXPECT_EQ(SingleToCurrency(0.1f + 0.2f), Cents(30));
  EXPECT_EQ(SingleToCurrency(19.99f * 3), Cents(5997));
  EXPECT_EQ(SingleToCurrency(99999.99f), Cents(9999999));
  EXPECT_EQ(SingleToCurrency(-4.5f), Cents(-450));
  // Seven digits are all a single holds: above 100,000 the cents go, as accepted.
  EXPECT_EQ(SingleToCurrency(123456.78f), Cents(12345680));
  try {
    ToSingle(1e39);
    FAIL() << "a number beyond single precision must overflow";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), err::kOverflow);
  }
}

class ChargeBoxTest : public ::testing::Test {
 protected:
  ChargeBox& Box(const Regional& regional) {
    return ChargeBox::AddTo(screen_.form, u"charges", next_++, regional);
  }
  testing::TestScreen screen_;
  int next_ = 0;
};

TEST_F(ChargeBoxTest, ShowsTwoPlacesAndKeepsTheValue) {
  const Regional us = Regional::FromLocale("en_US");
  const Regional nl = Regional::FromLocale("nl_NL");
  ChargeBox& box = Box(us);
  int changes = 0;
  box.OnChange = [&changes] { ++changes; };
  box.SetSingle(19.99 * 8.25 * 0.01);
  EXPECT_EQ(box.text(), u"1.65");
  EXPECT_EQ(box.Property(u"value", {}), u"1.649175");
  EXPECT_EQ(changes, 1);
  // A half cent shows rounded up, as its seven digits read, not as the binary fraction below it.
  box.SetSingle(0.825);
  EXPECT_EQ(box.text(), u"0.83");
  box.SetAmount(Variant());
  EXPECT_EQ(box.text(), u"");
  EXPECT_EQ(box.Single(), 0.0f);

  ChargeBox& dutch = Box(nl);
  dutch.SetAmount(Variant(Cents(-1999)));
  EXPECT_EQ(dutch.text(), u"-19,99");
  dutch.SetText(u"4,5");
  EXPECT_EQ(dutch.Single(), 4.5f);
}

TEST_F(ChargeBoxTest, TakesNothingButNumbers) {
  const Regional nl = Regional::FromLocale("nl_NL");
  ChargeBox& box = Box(nl);
  box.UserSet(u"5,25");
  EXPECT_EQ(box.Single(), 5.25f);
  EXPECT_THROW(box.UserSet(u"5,2x"), UserRefused);
  EXPECT_EQ(box.text(), u"5,25");
  box.UserSet(u"");
  for (char16_t c : Text(u"-1x,5")) box.UserKey(0, c);
  EXPECT_EQ(box.text(), u"-1,5");
  EXPECT_EQ(box.Single(), -1.5f);
  // Text put in by code that is no number fails when read, with the error a conversion gives.
  box.SetText(u"abc");
  try {
    box.Single();
    FAIL() << "a text that is no number has no value";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), err::kTypeMismatch);
  }
}

}  // namespace
}  // namespace lw
