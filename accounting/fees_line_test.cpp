// Reading the lines of the account page: each kind of line to its column, the lines that book nothing,
// the site's currencies under three locales, and the lines that cannot be read.
#include "accounting/fees_line.h"

#include <gtest/gtest.h>

#include "core/primitives/encoding.h"

namespace lw {
namespace {

const Regional& Us() {
  static const Regional r = Regional::FromLocale("en_US");
  return r;
}

Currency Cents(int64_t cents) {
  return Currency::FromScaled(cents * 100);
}

// A fee line as the normalised page has it: the cells of one row run together.
Text Fee(TextView title, TextView money = u"$0.30 $12.50") {
  return u"50000001 Nov-01-26" + Text(title) + u"4012345601--" + Text(money) + u"\r\n";
}
Text Credit(TextView title) {
  return u"50000002 Nov-09-26" + Text(title) + u"4012345601$0.30 $12.20\r\n";
}

TEST(FeeLine, EachKindGoesToItsColumn) {
  struct Case {
    const char16_t* title;
    const char16_t* column;
    bool credit;
  };
  for (Case c :
       {Case{u"Reserve price auction fee credit", u"fee_reserve_credit", true},
        Case{u"Insertion fee fixed price credit", u"fee_credit_insertion", true},
        Case{u"Insertion fee credit", u"fee_credit_insertion", true},
        Case{u"Insertion fee", u"fee_insertion", false}, Case{u"Final Value fee", u"fee_final_value", false},
        Case{u"Final value fee fixed price", u"fee_final_value_fixed", false},
        Case{u"Gallery fee", u"fee_gallery", false},
        Case{u"Featured Plus listing fee", u"fee_featured_plus", false},
        Case{u"Category Featured listing fee", u"fee_featured_plus", false},
        Case{u"10-day auction fee", u"fee_10day", false}, Case{u"Picture fee", u"fee_picture", false},
        Case{u"No-Sale Credit", u"fee_nosale_credit", true},
        Case{u"PicturePack fee", u"fee_picturepack", false},
        Case{u"Reserve price auction fee", u"fee_reserve", false},
        Case{u"Bold listing fee", u"fee_bold", false}, Case{u"Highlight fee", u"fee_highlight", false},
        Case{u"Home Page Featured listing fee", u"fee_home", false},
        Case{u"Buy-It-Now Listing Fee", u"fee_bin", false},
        Case{u"Scheduling fee", u"fee_scheduled", false}}) {
    SCOPED_TRACE(ToUtf8(c.title));
    std::optional<FeeCharge> charge = read_fee_line(c.credit ? Credit(c.title) : Fee(c.title), Us());
    ASSERT_TRUE(charge);
    EXPECT_EQ(Text(charge->column), Text(c.column));
    EXPECT_EQ(charge->item, u"4012345601");
    EXPECT_EQ(charge->ref, c.credit ? u"50000002" : u"50000001");
    EXPECT_EQ(charge->amount, Cents(30));
  }
}

TEST(FeeLine, RateLinesFreeDaysAndOtherCaseBookNothing) {
  EXPECT_FALSE(read_fee_line(u"50000020 Nov-02-26Insertion fee of $0.30 for starting price $10.00", Us()));
  EXPECT_FALSE(read_fee_line(u"50000021 Nov-09-26Final value fee of 5.25% for closing price $33.33", Us()));
  EXPECT_FALSE(read_fee_line(Credit(u"Insertion fee credit - Free Listing Day "), Us()));
  // The free listing day spares a credit only; a fee that mentions it is booked.
  EXPECT_EQ(Text(fee_column_of(u"1 Insertion fee - Free Listing Day 4--$1 $2")), u"fee_insertion");
  EXPECT_FALSE(read_fee_line(Fee(u"Final value fee"), Us()));
  EXPECT_FALSE(read_fee_line(Fee(u"insertion fee"), Us()));
  EXPECT_FALSE(read_fee_line(u"", Us()));
  EXPECT_FALSE(read_fee_line(u"Current Account Balance;$12.50", Us()));
}

TEST(FeeLine, SiteCurrenciesBecomeTheLocalesMoney) {
  const Regional gb = Regional::FromLocale("en_GB");
  const Regional nl = Regional::FromLocale("nl_NL");
  EXPECT_EQ(rewrite_fee_line(u"--GBP 0.25 GBP 12.25", Us()), u"--$0.25 $12.25");
  EXPECT_EQ(rewrite_fee_line(u"--US $1.00 -C$2.00 AU $3.00 -AU $4", gb), u"--£1.00 -£2.00 £3.00 -£4");
  EXPECT_EQ(rewrite_fee_line(u"-EUR 0.40 EUR 1.5 -GBP;x GBP;y -GBPz", nl), u"-€0,40 €1,5 -€x €y -€z");
  for (const Regional* r : {&Us(), &gb, &nl}) {
    std::optional<FeeCharge> charge = read_fee_line(Fee(u"Gallery fee", u"EUR 19.99 EUR 1,234.50"), *r);
    ASSERT_TRUE(charge);
    EXPECT_EQ(charge->amount, Cents(1999));
    // The credit before a negative amount is cut at the money: the amount is read as it stands.
    charge = read_fee_line(Fee(u"Gallery fee", u"-GBP 0.10 GBP 12.00"), *r);
    ASSERT_TRUE(charge);
    EXPECT_EQ(charge->amount, Cents(10));
  }
}

TEST(FeeLine, ReferenceAndItemAsThePageHasThem) {
  // The reference is the number the line starts with, blanks inside it skipped.
  std::optional<FeeCharge> charge =
      read_fee_line(u"500 00 017 Nov-01-26Picture fee4012345601--$0.15 $1.00", Us());
  ASSERT_TRUE(charge);
  EXPECT_EQ(charge->ref, u"50000017");
  // A line whose first digit went to the line before it has a shorter reference.
  charge = read_fee_line(u"0000017 Nov-01-26Picture fee4012345601--$0.15 $1.00", Us());
  ASSERT_TRUE(charge);
  EXPECT_EQ(charge->ref, u"17");
  charge = read_fee_line(u"Nov-01-26Picture fee 4012345601 --$0.15 $1.00", Us());
  ASSERT_TRUE(charge);
  EXPECT_EQ(charge->ref, u"0");
  EXPECT_EQ(charge->item, u" 4012345601 ");
  // The amount ends one character before the balance's symbol.
  charge = read_fee_line(Fee(u"Picture fee", u"$0.15$1.00"), Us());
  ASSERT_TRUE(charge);
  EXPECT_EQ(charge->amount, Currency::FromScaled(1000));
}

TEST(FeeLine, LinesThatCannotBeReadRaise) {
  auto number_of = [](const Text& line) {
    try {
      read_fee_line(line, Us());
    } catch (const RuntimeError& e) {
      return e.number();
    }
    return 0;
  };
  EXPECT_EQ(number_of(Fee(u"Gallery fee", u"")), err::kInvalidProcedureCall);                 // no money
  EXPECT_EQ(number_of(Fee(u"Gallery fee", u"$0.35")), err::kInvalidProcedureCall);            // no balance
  EXPECT_EQ(number_of(Fee(u"Gallery fee", u"$$1.00")), err::kTypeMismatch);                   // empty amount
  EXPECT_EQ(number_of(Fee(u"Gallery fee", u"$x.35 $1")), err::kTypeMismatch);                 // no number
  EXPECT_EQ(number_of(u"1 Gallery fee4012345601$0.35 $1.00"), err::kInvalidProcedureCall);    // no "--"
  EXPECT_EQ(number_of(u"1 --Gallery fee4012345601$0.35 $1.00"), err::kInvalidProcedureCall);  // "--" first
  EXPECT_EQ(number_of(u"1 No-Sale Credit4012345601"), err::kInvalidProcedureCall);  // no money at all
}

}  // namespace
}  // namespace lw
