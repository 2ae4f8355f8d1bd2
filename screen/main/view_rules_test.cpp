// The texts of the views: status conditions, filter conditions, sort tails and the 16-bit row count.
#include "screen/main/view_rules.h"

#include <gtest/gtest.h>

#include "core/primitives/encoding.h"

namespace lw {
namespace {

int ErrorOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const RuntimeError& e) {
    return e.number();
  }
  return 0;
}

TEST(ViewRules, StatusConditionsOfBothSides) {
  const Text owner = u"username = 'ann' and site = 'eBay'";
  // All of a seller's rows, pending and template ones included; a bidder's leave the watched ones out.
  EXPECT_EQ(StatusCondition(true, kAllAuctions, u"ann", u"eBay"), u"where " + owner);
  EXPECT_EQ(StatusCondition(false, kAllAuctions, u"ann", u"eBay"), u"where watching = no and " + owner);
  EXPECT_EQ(StatusCondition(false, kWatching, u"ann", u"eBay"), u"where watching = yes and " + owner);
  // What a side does not offer has no condition, nor has a blank status; the list's texts count exactly.
  EXPECT_FALSE(StatusCondition(true, kWatching, u"ann", u"eBay"));
  EXPECT_FALSE(StatusCondition(false, kUnsubmitted, u"ann", u"eBay"));
  EXPECT_FALSE(StatusCondition(false, kTemplates, u"ann", u"eBay"));
  EXPECT_FALSE(StatusCondition(true, u"", u"ann", u"eBay"));
  EXPECT_FALSE(StatusCondition(true, u"all auctions", u"ann", u"eBay"));
}

TEST(ViewRules, AnApostropheNeverMakesAnotherStatement) {
  EXPECT_EQ(ErrorOf([] { StatusCondition(true, kAllAuctions, u"o'neil", u"eBay"); }), err::kSyntaxError);
  EXPECT_EQ(ErrorOf([] { StatusCondition(false, kAllAuctions, u"ann", u"e'Bay"); }), err::kSyntaxError);
  // A text field's value, and a value meant to close the quote and add a clause of its own.
  EXPECT_EQ(ErrorOf([] { FilterCondition(u"Title", u"=", u"'", u"", u"Bob's lamp", u"ann", u"eBay"); }),
            err::kSyntaxError);
  EXPECT_EQ(
      ErrorOf([] { FilterCondition(u"Title", u"like", u"'", u"*", u"x' or Title like '", u"ann", u"eBay"); }),
      err::kSyntaxError);
  // A bare value stays one word: quotes, blanks and brackets would let it grow into more statement.
  for (const char16_t* bad : {u"5'", u"5 or price > 0", u"(5)", u"\"5\"", u"5;"})
    EXPECT_EQ(ErrorOf([bad] { FilterCondition(u"Price", u"=", u"", u"", bad, u"ann", u"eBay"); }),
              err::kSyntaxError)
        << ToUtf8(bad);
  EXPECT_EQ(ErrorOf([] { FilterCondition(u"Title", u"=", u"'", u"", u"lamp", u"o'neil", u"eBay"); }),
            err::kSyntaxError);
}

TEST(ViewRules, FilterConditions) {
  EXPECT_EQ(FilterCondition(u"Title", u"like", u"'", u"*", u"lamp", u"ann", u"eBay"),
            u"where Title like '*lamp*' and username = 'ann' and site = 'eBay'");
  EXPECT_EQ(FilterCondition(u"Title", u"=", u"'", u"", u"Brass Lamp", u"ann", u"eBay"),
            u"where Title = 'Brass Lamp' and username = 'ann' and site = 'eBay'");
  // A numeric column keeps its wild cards too, without quotes.
  EXPECT_EQ(FilterCondition(u"Price", u"like", u"", u"*", u"5", u"ann", u"eBay"),
            u"where Price like *5* and username = 'ann' and site = 'eBay'");
  EXPECT_EQ(FilterCondition(u"Payment", u"=", u"", u"", u"yes", u"ann", u"eBay"),
            u"where Payment = yes and username = 'ann' and site = 'eBay'");

  ASSERT_NE(FindFilterField(u"Sale Price"), nullptr);
  EXPECT_FALSE(FindFilterField(u"Sale Price")->quoted);
  EXPECT_TRUE(FindFilterField(u"High Bidder ID")->quoted);
  EXPECT_EQ(Text(FindFilterField(u"High Bidder ID")->column), u"id");
  EXPECT_EQ(FindFilterField(u"Nothing"), nullptr);
}

TEST(ViewRules, SortTailsAndDirection) {
  // The stored direction starts empty, so the first click sorts descending.
  EXPECT_EQ(FlipDirection(u""), u"desc");
  EXPECT_EQ(FlipDirection(u"desc"), u"asc");
  EXPECT_EQ(FlipDirection(u"asc"), u"desc");

  EXPECT_EQ(SortTail(true, 4, u"desc"), u" order by title desc");
  EXPECT_EQ(SortTail(true, kStatusChainColumn, u"asc"),
            u" Order by Contact asc, Response asc, Payment asc, status_date asc");
  EXPECT_EQ(SortTail(false, 4, u"desc"), u" order by completed desc");
  EXPECT_EQ(SortTail(false, 9, u"asc"), u"order by start asc");
  EXPECT_EQ(SortTail(false, 13, u"asc"), u" order by seller_id asc");

  // Headings without a sort, and columns the grid does not have.
  for (int col : {0, 1, 2}) EXPECT_FALSE(SortTail(true, col, u"asc")) << col;
  for (int col : {0, 1}) EXPECT_FALSE(SortTail(false, col, u"asc")) << col;
  EXPECT_FALSE(SortTail(true, 18, u"asc"));
  EXPECT_FALSE(SortTail(false, 17, u"asc"));
  EXPECT_FALSE(SortTail(true, -1, u"asc"));

  EXPECT_EQ(HeadingTip(true, 0), u"");
  EXPECT_EQ(HeadingTip(true, 99), u"");
}

TEST(ViewRules, RowCountIsSixteenBits) {
  EXPECT_EQ(RowsReturned(0), 0);
  EXPECT_EQ(RowsReturned(32767), 32767);
  EXPECT_EQ(ErrorOf([] { RowsReturned(32768); }), err::kOverflow);
  EXPECT_EQ(ErrorOf([] { RowsReturned(100000); }), err::kOverflow);
}

}  // namespace
}  // namespace lw
