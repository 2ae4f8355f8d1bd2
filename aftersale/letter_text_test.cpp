// The letters word for word: the headings that differ between one auction and several, the fixed column
// of the quantity, the tax lines that the last auction's mark decides, Null sums shown as nothing, money
// under the locale, and the blank lines an empty setup field leaves.
#include "aftersale/letter_text.h"

#include <gtest/gtest.h>

namespace lw {
namespace {

const Text R = kCrlf;

LetterSetup UserSetup() {
  LetterSetup s;
  s.userid = u"seller1";
  s.useremail = u"me@shop.example";
  s.name = u"Pat Seller";
  s.address = u"12 Mill Lane";
  s.signiture = u"Pat";
  s.sale_conditions = u"Pay in 7 days.";
  s.bidder_comments = u"I pay by cheque.";
  s.rec_payment_comment = u"Payment arrived.";
  s.sent_payment_comment = u"Cheque posted.";
  s.goods_sent_comment = u"Sent by post.";
  s.goods_received_comment = u"Arrived safely.";
  s.feedback_request = u"Please leave feedback.";
  s.taxprice = s.taxshipping = true;
  s.refurl = u"http://ref.example/?";
  return s;
}

Variant Money(int64_t cents) {
  return Variant(Currency::FromScaled(cents * 100));
}

std::vector<LetterAuction> TwoAuctions() {
  return {{u"7001", u"Oak Chair", u"1", Money(2500)}, {u"7002", u"Tin Box", u"2", Money(1000)}};
}

LetterFacts Facts(bool taxable = false) {
  return {u"buyer1", taxable, MakeDate(2026, 11, 21)};
}

// The lines of the auctions as the letter shows them, the quantity in column 57.
Text Line(const Text& item, const Text& title, const Text& qty) {
  return R + item + u"  " + title + Text(50 - title.size(), u' ') + u"Qty. " + qty;
}

TEST(LetterText, SellerWinningLetterOfSeveralAuctionsWithTheirTaxLines) {
  Regional us = Regional::FromLocale("en_US");
  LetterTotals t{Money(3500), Money(800), Money(150), Money(520), Money(40), 0.12f};
  EXPECT_EQ(LetterSubject(LetterKind::kWinning, true, TwoAuctions()), u"Ebay Item Numbers  7001 7002 ");
  Text expected =
      u"Ebay Auction Sale Notice from Ebay User: seller1" + R + u"At E-mail Address: me@shop.example" + R +
      R + u"Congratulations buyer1 you are a winning bidder on the following item(s): " +
      Line(u"7001", u"Oak Chair", u"1") + u"      Bid Price $25.00" + Line(u"7002", u"Tin Box", u"2") +
      u"      Bid Price $10.00" + R + R + u"Total Auction Bid Price is $35.00" + R +
      u"Tax on Auction Price is $5.20" + R + u"Total Shipping Amount is $8.00" + R +
      u"Tax on Shipping Amount is $0.40" + R + u"Total Insurance Amount is $1.50" + R + R +
      // The insurance tax has no line (taxinsurance is off) but is in the sum all the same.
      u"Total Auction Price (including any charges and tax where applicable) $50.22" + R + R +
      u"My mailing address is as follows: " + R + u"Pat Seller" + R + u"12 Mill Lane" + R + R +
      u"Pay in 7 days." + R + R + u"Pat" + R + R;
  EXPECT_EQ(LetterBody(LetterKind::kWinning, true, UserSetup(), TwoAuctions(), t, Facts(true), us), expected);
  EXPECT_EQ(LetterStatusNote(LetterKind::kWinning, true), u"Winning Bidder Letter mailed - ");
}

TEST(LetterText, AnUntaxedGroupPrintsNoTaxLinesButItsTotalKeepsEveryAmount) {
  Regional us = Regional::FromLocale("en_US");
  std::vector<LetterAuction> one{{u"7005", u"Mirror", u"1", Money(1200)}};
  LetterTotals t{Money(1200), Money(0), Money(0), Money(96), Money(0), 0};
  EXPECT_EQ(LetterSubject(LetterKind::kWinning, true, one), u"Ebay Item # 7005 Mirror");
  Text body = LetterBody(LetterKind::kWinning, true, UserSetup(), one, t, Facts(false), us);
  EXPECT_EQ(body.find(u"Tax on"), Text::npos);
  // No shipping in the whole group: no shipping line either.
  EXPECT_EQ(body.find(u"Shipping"), Text::npos);
  EXPECT_NE(body.find(R + u"Total Auction Bid Price is $12.00" + R + R + u"Total Auction Price $12.96" + R),
            Text::npos);
}

TEST(LetterText, MoneyFollowsTheLocale) {
  Regional nl = Regional::FromLocale("nl_NL");
  LetterTotals t{Money(3500), Money(800), Money(0), Money(0), Money(0), 0};
  Text body = LetterBody(LetterKind::kWinning, true, UserSetup(), TwoAuctions(), t, Facts(), nl);
  EXPECT_NE(body.find(u"Bid Price € 25,00"), Text::npos);
  EXPECT_NE(body.find(u"Total Auction Bid Price is € 35,00" + R), Text::npos);
  EXPECT_NE(body.find(u"Total Auction Price € 43,00" + R), Text::npos);
  Text payment = LetterBody(LetterKind::kPayment, false, UserSetup(), TwoAuctions(), t, Facts(), nl);
  EXPECT_NE(payment.find(u"below on zaterdag 21 november 2026" + Line(u"7001", u"Oak Chair", u"1")),
            Text::npos);
}

TEST(LetterText, BidderWinningLetterShowsShippingEvenAtZeroAndNullSumsAsNothing) {
  Regional us = Regional::FromLocale("en_US");
  LetterTotals zero{Money(3500), Money(0), Variant(), Variant(), Variant(), 0};
  Text body = LetterBody(LetterKind::kWinning, false, UserSetup(), TwoAuctions(), zero, Facts(), us);
  Text expected =
      u"Ebay Auction High Bidder Notice from Ebay User: seller1" + R + u"At E-mail Address: me@shop.example" +
      R + R + u"I believe I am the highest bidder for auction item/s: " + Line(u"7001", u"Oak Chair", u"1") +
      u"      Totaling $25.00" + Line(u"7002", u"Tin Box", u"2") + u"      Totaling $10.00" + R + R +
      u"Final Bid Amount is $35.00" + R + u"Total Shipping amount is $0.00" + R +
      u"Total Auction Price and Shipping $35.00" + R + R + u"My mailing address is as follows: " + R +
      u"Pat Seller" + R + u"12 Mill Lane" + R + R + u"I pay by cheque." + R + R +
      u"Please confirm the final auction price including shipping and payment options. " + R + R + u"Pat" +
      R + R;
  EXPECT_EQ(body, expected);
  EXPECT_EQ(LetterSubject(LetterKind::kWinning, false, {TwoAuctions()[0]}),
            u"Highest Bidder for Ebay Item #  7001 Oak Chair");
  EXPECT_EQ(LetterSubject(LetterKind::kWinning, false, TwoAuctions()), u"Ebay Item Numbers 7001 7002 ");

  LetterTotals none{Money(3500), Variant(), Variant(), Variant(), Variant(), 0};
  Text nulls = LetterBody(LetterKind::kWinning, false, UserSetup(), TwoAuctions(), none, Facts(), us);
  EXPECT_NE(nulls.find(R + u"Total Shipping amount is " + R + u"Total Auction Price and Shipping " + R),
            Text::npos);
}

// The other letters by side: their first line, the line the auctions follow, what comes after them,
// the subject headings and the log note.
TEST(LetterText, PaymentGoodsAndFeedbackLettersOnBothSides) {
  Regional us = Regional::FromLocale("en_US");
  LetterTotals t{Money(4300), Variant(), Variant(), Variant(), Variant(), 0};
  std::vector<LetterAuction> one{TwoAuctions()[0]};
  const Text head = u"seller1" + R + u"At E-mail Address: me@shop.example" + R + R;
  const Text date = u"Saturday, November 21, 2026";
  const Text line = Line(u"7001", u"Oak Chair", u"1") + R + R;
  struct Case {
    LetterKind kind;
    bool seller;
    Text body, one, several, note;
  };
  const Case cases[] = {
      {LetterKind::kPayment, true,
       u"Ebay Auction Payment Received Notice from Ebay User: " + head +
           u"Payment has been received for the Ebay auction item/s below.  " + line + u"Payment arrived." +
           R + R + u"Pat" + R + R,
       u"Payment received for Ebay Item no. 7001 Oak Chair", u"Payment received for Ebay Item #  7001 7002 ",
       u"Payment received letter mailed - "},
      {LetterKind::kPayment, false,
       u"Ebay Auction Payment Sent Notice from Ebay User: " + head +
           u"Payment has been sent for the Ebay auction item/s below on " + date + line +
           u"For the amount of $43.00 including shipping." + R + R + u"Cheque posted." + R + R +
           u"Thank you. " + R + u"Pat" + R + R,
       u"Payment sent for Ebay Item no. 7001 Oak Chair", u"Payment sent for Ebay Item #  7001 7002 ",
       u"Payment Sent Letter mailed - "},
      {LetterKind::kGoods, true,
       u"Ebay Auction Goods Shipped Notice from Ebay User: " + head +
           u"Goods from the Ebay auction item below have been shipped on " + date + line + u"Sent by post." +
           R + R + u"Pat" + R + R,
       u"Item shipped for Ebay Item no. 7001 Oak Chair", u"Item shipped for Ebay Item #   7001 7002 ",
       u"Goods sent letter mailed - "},
      {LetterKind::kGoods, false,
       u"Ebay Auction Goods Received Notice from Ebay User " + head +
           u"Goods from the Ebay auction item/s below have been received on " + date + line +
           u"Arrived safely." + R + R + u"Thank you. " + R + u"Pat" + R + R,
       u"Item received for Ebay Item no. 7001 Oak Chair", u"Item received for Ebay Item #   7001 7002 ",
       u"Goods Arrived Letter mailed - "},
      {LetterKind::kFeedback, true,
       u"Ebay Auction Feedback Request Notice from Ebay User: " + head +
           u"Transactions have been completed for the Ebay auction item/s below.  " + line +
           u"Please leave feedback." + R + R + u"Thank you. " + R + u"Pat" + R + R,
       u"Feedback Request for Ebay Item no. 7001 Oak Chair", u"Feedback Request for Ebay Item #  7001 7002 ",
       u"Request feedback letter mailed - "},
      {LetterKind::kFeedback, false,
       u"Ebay Auction Feedback Request Notice from Ebay User: " + head +
           u"Transactions have been completed for the Ebay auction item/s below." + line +
           u"Please leave feedback." + R + R + u"Thank you. " + R + u"Pat" + R + R,
       u"Feedback Request for Ebay Item no. 7001 Oak Chair", u"Feedback Request for Ebay Item #  7001 7002 ",
       u"Request feedback letter mailed - "},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(static_cast<int>(c.kind) * 2 + (c.seller ? 0 : 1));
    EXPECT_EQ(LetterBody(c.kind, c.seller, UserSetup(), one, t, Facts(), us), c.body);
    EXPECT_EQ(LetterSubject(c.kind, c.seller, one), c.one);
    EXPECT_EQ(LetterSubject(c.kind, c.seller, TwoAuctions()), c.several);
    EXPECT_EQ(LetterStatusNote(c.kind, c.seller), c.note);
  }
}

TEST(LetterText, EmptySetupFieldsLeaveTheirBlankLinesAndTheReferralLineEndsTheLetter) {
  Regional us = Regional::FromLocale("en_US");
  LetterSetup s = UserSetup();
  s.rec_payment_comment.clear();
  s.signiture.clear();
  std::vector<LetterAuction> one{TwoAuctions()[0]};
  Text body = LetterBody(LetterKind::kPayment, true, s, one, LetterTotals{}, Facts(), us);
  EXPECT_TRUE(body.ends_with(Line(u"7001", u"Oak Chair", u"1") + R + R + R + R + R + R));
  s.referralenabled = true;
  body = LetterBody(LetterKind::kPayment, true, s, one, LetterTotals{}, Facts(), us);
  EXPECT_TRUE(body.ends_with(R + R +
                             u"This letter was generated by LOTWRIGHT - get it now at: "
                             u"http://ref.example/?me@shop.example"));
}

TEST(LetterText, TheQuantityStandsInItsColumnUnlessTheTitleIsTooLong) {
  Regional us = Regional::FromLocale("en_US");
  const Text fifty(50, u'x');
  const Text sixty(60, u'y');
  std::vector<LetterAuction> lines{
      {u"1", fifty, u"1", Money(100)}, {u"2", sixty, u"3", Money(200)}, {u"3", Text(), Text(), Variant()}};
  EXPECT_EQ(AuctionLines(LetterKind::kGoods, true, lines, us), R + u"1  " + fifty + u"Qty. 1" + R + u"2  " +
                                                                   sixty + u"Qty. 3" + R + u"3  " +
                                                                   Text(50, u' ') + u"Qty. ");
  // The winning bid letter adds the price; a price of nothing shows nothing.
  EXPECT_EQ(AuctionLines(LetterKind::kWinning, false, {lines[2]}, us),
            R + u"3  " + Text(50, u' ') + u"Qty.       Totaling ");
}

}  // namespace
}  // namespace lw
