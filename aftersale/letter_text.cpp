#include "aftersale/letter_text.h"

#include "core/primitives/convert.h"

namespace lw {
namespace {

// The quantity starts in this column behind the title; a longer title simply pushes it on.
constexpr size_t kTitleColumn = 50;

struct Wording {
  const char16_t* one;      // subject heading for one auction
  const char16_t* several;  // subject heading for several
  const char16_t* note;     // status log note
  const char16_t* first;    // the body's first line, before the user id
  const char16_t* intro;    // the line the auction lines follow
};

Wording WordingOf(LetterKind kind, bool seller) {
  switch (kind) {
    case LetterKind::kWinning:
      if (seller)
        return {u"Ebay Item # ", u"Ebay Item Numbers  ", u"Winning Bidder Letter mailed - ",
                u"Ebay Auction Sale Notice from Ebay User: ", u"Congratulations "};
      return {u"Highest Bidder for Ebay Item #  ", u"Ebay Item Numbers ", u"Winning Bidder Letter mailed - ",
              u"Ebay Auction High Bidder Notice from Ebay User: ",
              u"I believe I am the highest bidder for auction item/s: "};
    case LetterKind::kPayment:
      if (seller)
        return {u"Payment received for Ebay Item no. ", u"Payment received for Ebay Item #  ",
                u"Payment received letter mailed - ",
                u"Ebay Auction Payment Received Notice from Ebay User: ",
                u"Payment has been received for the Ebay auction item/s below.  "};
      return {u"Payment sent for Ebay Item no. ", u"Payment sent for Ebay Item #  ",
              u"Payment Sent Letter mailed - ", u"Ebay Auction Payment Sent Notice from Ebay User: ",
              u"Payment has been sent for the Ebay auction item/s below on "};
    case LetterKind::kGoods:
      if (seller)
        return {u"Item shipped for Ebay Item no. ", u"Item shipped for Ebay Item #   ",
                u"Goods sent letter mailed - ", u"Ebay Auction Goods Shipped Notice from Ebay User: ",
                u"Goods from the Ebay auction item below have been shipped on "};
      return {u"Item received for Ebay Item no. ", u"Item received for Ebay Item #   ",
              u"Goods Arrived Letter mailed - ", u"Ebay Auction Goods Received Notice from Ebay User ",
              u"Goods from the Ebay auction item/s below have been received on "};
    case LetterKind::kFeedback:
      break;
  }
  return {u"Feedback Request for Ebay Item no. ", u"Feedback Request for Ebay Item #  ",
          u"Request feedback letter mailed - ", u"Ebay Auction Feedback Request Notice from Ebay User: ",
          seller ? u"Transactions have been completed for the Ebay auction item/s below.  "
                 : u"Transactions have been completed for the Ebay auction item/s below."};
}

bool Positive(const Variant& v) {
  std::optional<double> n = NumberOf(v);
  return n && *n > 0;
}

// Money of a sum as the store gives it; text and Null count as nothing here.
Currency Amount(const Variant& v) {
  if (const Currency* c = v.currency()) return *c;
  std::optional<double> n = NumberOf(v);
  return n ? Currency::FromDouble(*n) : Currency();
}

// The lines that follow the auction lines, each ending in a line break.
Text Lines(std::initializer_list<Text> lines) {
  Text out;
  for (const Text& l : lines) out += l + kCrlf;
  return out;
}

Text SellerWinningTail(const LetterSetup& s, const LetterTotals& t, const LetterFacts& f, const Regional& r) {
  Text out = Lines({Text(), u"Total Auction Bid Price is " + LetterMoney(t.total_price, r)});
  if (f.taxable && s.taxprice && Positive(t.tax_on_price))
    out += Lines({u"Tax on Auction Price is " + LetterMoney(t.tax_on_price, r)});
  if (Positive(t.total_shipping))
    out += Lines({u"Total Shipping Amount is " + LetterMoney(t.total_shipping, r)});
  if (f.taxable && s.taxshipping && Positive(t.tax_on_shipping))
    out += Lines({u"Tax on Shipping Amount is " + LetterMoney(t.tax_on_shipping, r)});
  if (Positive(t.total_insurance))
    out += Lines({u"Total Insurance Amount is " + LetterMoney(t.total_insurance, r)});
  if (f.taxable && s.taxinsurance && t.tax_on_insurance > 0)
    out += Lines(
        {u"Tax on Insurance Amount is " + LetterMoney(Variant(static_cast<double>(t.tax_on_insurance)), r)});
  // Every total is in the sum, whether or not its line was printed.
  Currency all = Amount(t.total_price) + Amount(t.tax_on_price) + Amount(t.total_shipping) +
                 Amount(t.tax_on_shipping) + Amount(t.total_insurance) +
                 Currency::FromDouble(static_cast<double>(t.tax_on_insurance));
  Text label = f.taxable ? u"Total Auction Price (including any charges and tax where applicable) "
                         : u"Total Auction Price ";
  return out +
         Lines({Text(), label + LetterMoney(Variant(all), r), Text(), u"My mailing address is as follows: ",
                s.name, s.address, Text(), s.sale_conditions, Text(), s.signiture, Text()});
}

Text Tail(LetterKind kind, bool seller, const LetterSetup& s, const LetterTotals& t, const LetterFacts& f,
          const Regional& r) {
  switch (kind) {
    case LetterKind::kWinning:
      if (seller) return SellerWinningTail(s, t, f, r);
      return Lines(
          {Text(), u"Final Bid Amount is " + LetterMoney(t.total_price, r),
           u"Total Shipping amount is " + LetterMoney(t.total_shipping, r),
           u"Total Auction Price and Shipping " + LetterMoney(AddMoney(t.total_price, t.total_shipping), r),
           Text(), u"My mailing address is as follows: ", s.name, s.address, Text(), s.bidder_comments,
           Text(), u"Please confirm the final auction price including shipping and payment options. ", Text(),
           s.signiture, Text()});
    case LetterKind::kPayment:
      if (seller) return Lines({Text(), s.rec_payment_comment, Text(), s.signiture, Text()});
      return Lines({Text(), u"For the amount of " + LetterMoney(t.total_price, r) + u" including shipping.",
                    Text(), s.sent_payment_comment, Text(), u"Thank you. ", s.signiture, Text()});
    case LetterKind::kGoods:
      if (seller) return Lines({Text(), s.goods_sent_comment, Text(), s.signiture, Text()});
      return Lines({Text(), s.goods_received_comment, Text(), u"Thank you. ", s.signiture, Text()});
    case LetterKind::kFeedback:
      break;
  }
  return Lines({Text(), s.feedback_request, Text(), u"Thank you. ", s.signiture, Text()});
}

}  // namespace

Variant AddMoney(const Variant& a, const Variant& b) {
  if (a.IsNull() || b.IsNull()) return Variant();
  return Variant(Amount(a) + Amount(b));
}

Text LetterMoney(const Variant& amount, const Regional& r) {
  return Format(amount, u"currency", r);
}

Text LetterSubject(LetterKind kind, bool seller, const std::vector<LetterAuction>& auctions) {
  Wording w = WordingOf(kind, seller);
  if (auctions.size() < 2) {
    if (auctions.empty()) return w.one;
    return w.one + auctions.front().item + u" " + auctions.front().title;
  }
  Text subject = w.several;
  for (const LetterAuction& a : auctions) subject += a.item + u" ";
  return subject;
}

Text LetterStatusNote(LetterKind kind, bool seller) {
  return WordingOf(kind, seller).note;
}

Text AuctionLines(LetterKind kind, bool seller, const std::vector<LetterAuction>& auctions,
                  const Regional& r) {
  Text out;
  for (const LetterAuction& a : auctions) {
    out += kCrlf + a.item + u"  " + a.title;
    if (a.title.size() < kTitleColumn) out += Text(kTitleColumn - a.title.size(), u' ');
    out += u"Qty. " + a.quantity;
    if (kind == LetterKind::kWinning)
      out += u"     " + Text(seller ? u" Bid Price " : u" Totaling ") + LetterMoney(a.price, r);
  }
  return out;
}

Text LetterBody(LetterKind kind, bool seller, const LetterSetup& setup,
                const std::vector<LetterAuction>& auctions, const LetterTotals& totals,
                const LetterFacts& facts, const Regional& r) {
  Wording w = WordingOf(kind, seller);
  Text intro = w.intro;
  if (kind == LetterKind::kWinning && seller)
    intro += facts.high_bidder_id + u" you are a winning bidder on the following item(s): ";
  if ((kind == LetterKind::kPayment || kind == LetterKind::kGoods) && (!seller || kind == LetterKind::kGoods))
    intro += Format(Variant(facts.today), u"long date", r);
  Text body = w.first + setup.userid + kCrlf + u"At E-mail Address: " + setup.useremail + kCrlf + kCrlf +
              intro + AuctionLines(kind, seller, auctions, r) + kCrlf +
              Tail(kind, seller, setup, totals, facts, r);
  if (setup.referralenabled)
    body += u"This letter was generated by LOTWRIGHT - get it now at: " + setup.refurl + setup.useremail;
  return body;
}

}  // namespace lw
