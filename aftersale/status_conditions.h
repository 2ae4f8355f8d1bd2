// The conditions that follow the partner's address in the statements that count, view, total and move
// the partner's auctions at one status. Shared by the status machine and the letters, which must
// narrow the view to exactly the auctions the count gave.
#pragma once

#include "aftersale/letter_text.h"

namespace lw {

inline constexpr char16_t kWinningCondition[] =
    u" and Trans_comp = no and completed = yes and contact = no and payment = no";
inline constexpr char16_t kResponseCountCondition[] =
    u" and Trans_comp = no and completed = yes and payment = no and contact = yes and response = no";
inline constexpr char16_t kPaymentCondition[] =
    u" and Trans_comp = no and completed = yes and payment = no and contact = yes and response = yes";
inline constexpr char16_t kSellerGoodsCondition[] =
    u" and Trans_comp = no and completed = yes and trans_comp = no and contact = yes and payment = yes";
// The bidder side counts its goods letter with two blanks and views it with one; both mean the same, and
// the one blank is also the condition of the goods letter's move.
inline constexpr char16_t kBidderGoodsCountCondition[] =
    u" and Trans_comp = no and completed = yes  and contact = yes and payment = yes";
inline constexpr char16_t kGoodsCondition[] =
    u" and Trans_comp = no and completed = yes and contact = yes and payment = yes";

// The view of a status letter's group.
inline const char16_t* ViewCondition(LetterKind kind, bool seller) {
  switch (kind) {
    case LetterKind::kWinning:
      return kWinningCondition;
    case LetterKind::kPayment:
      return kPaymentCondition;
    default:
      return seller ? kSellerGoodsCondition : kGoodsCondition;
  }
}

}  // namespace lw
