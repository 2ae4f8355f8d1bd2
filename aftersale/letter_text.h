// The words of the letters: subjects, bodies and log notes of the winning bid, payment, goods and
// feedback request letters, in the seller's and the bidder's version, from the user's setup row, the
// auctions combined into the letter and their totals. Nothing here touches the screen or the store.
#pragma once

#include <vector>

#include "core/primitives/regional.h"
#include "core/primitives/types.h"

namespace lw {

enum class LetterKind { kWinning, kPayment, kGoods, kFeedback };

// The texts of the current user id's setup row (and the referral address of the misc row) that letters
// use. A Null field reads as the empty text.
struct LetterSetup {
  Text userid, useremail, name, address, signiture;
  Text sale_conditions, bidder_comments, rec_payment_comment, sent_payment_comment;
  Text goods_sent_comment, goods_received_comment, feedback_request;
  bool taxprice = false, taxshipping = false, taxinsurance = false;
  bool referralenabled = false;
  Text refurl;
};

// One auction of the letter, as its record holds it.
struct LetterAuction {
  Text item, title, quantity;
  Variant price;
};

// The group's totals, as the counting query gives them; Null where a sum over nothing stays Null.
struct LetterTotals {
  Variant total_price, total_shipping, total_insurance;
  Variant tax_on_price, tax_on_shipping;
  float tax_on_insurance = 0;
};

// What the letter is about besides the auctions: the buyer's id for the greeting (the first auction's),
// the taxable mark of the last auction (it decides the tax lines for the whole group), and the day.
struct LetterFacts {
  Text high_bidder_id;
  bool taxable = false;
  Date today;
};

inline constexpr char16_t kCrlf[] = u"\r\n";

// "Ebay Item # 123 Title" for one auction, "Ebay Item Numbers  123 456 " for several.
Text LetterSubject(LetterKind kind, bool seller, const std::vector<LetterAuction>& auctions);
// The first words of the status log line the letter leaves once it is mailed.
Text LetterStatusNote(LetterKind kind, bool seller);
// One line per auction, each starting with a line break: number, title, the quantity in a fixed
// column, and on the winning bid letter the price.
Text AuctionLines(LetterKind kind, bool seller, const std::vector<LetterAuction>& auctions,
                  const Regional& r);
// The whole body, referral line included.
Text LetterBody(LetterKind kind, bool seller, const LetterSetup& setup,
                const std::vector<LetterAuction>& auctions, const LetterTotals& totals,
                const LetterFacts& facts, const Regional& r);

// A sum of two money values that takes Null along: one Null part makes the sum Null, which a letter
// shows as nothing.
Variant AddMoney(const Variant& a, const Variant& b);

// Money as letters show it: the locale's currency format; Null shows nothing.
Text LetterMoney(const Variant& amount, const Regional& r);

}  // namespace lw
