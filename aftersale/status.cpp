// The five status boxes of a sale as a state machine: which letter each state calls for, the partner's
// auctions counted and totalled together, the group question of the response step, the status log of a
// record, and the copy of a partner's address to all of the partner's ended auctions.
#include <string>

#include "aftersale/aftersale_screen.h"
#include "aftersale/status_conditions.h"
#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "screen/main/main_form.h"

namespace lw {
namespace {

// The states of the boxes, tested in this order; the first that matches applies.
enum class SaleState { kEnded, kContacted, kResponse, kPaid, kCompleted, kCompletedOutOfOrder, kNone };

SaleState StateOf(bool ended, bool contact, bool response, bool payment, bool done) {
  if (ended && !contact && !response && !payment && !done) return SaleState::kEnded;
  if (ended && contact && !response && !payment && !done) return SaleState::kContacted;
  if (ended && contact && response && !payment && !done) return SaleState::kResponse;
  if (ended && contact && response && payment && !done) return SaleState::kPaid;
  if (ended && contact && response && payment && done) return SaleState::kCompleted;
  if (done) return SaleState::kCompletedOutOfOrder;
  return SaleState::kNone;
}

int16_t CountOf(Database& db, const Text& sql) {
  Variant v = db.OpenRecordset(sql)->Fields(u"sql_auctions_won");
  std::optional<double> n = NumberOf(v);
  return n ? static_cast<int16_t>(*n) : 0;
}

Text Count(int n) {
  return FromUtf8(std::to_string(n));
}

// Runs one statement of a routine whose failures of these numbers resume at the next statement.
template <class F>
void ResumingOn91And94(F&& step) {
  try {
    step();
  } catch (const RuntimeError& e) {
    if (e.number() != err::kObjectVariableNotSet && e.number() != err::kInvalidUseOfNull) throw;
  }
}

}  // namespace

// ---------------------------------------------------------------------------------------------------
// The clicks of the status boxes.

void AfterSale::WriteStatusField(const char16_t* field, bool with_status_date) {
  int side = SideIndex();
  DataControl& data = Side();
  // Every status box writes the state of the payment box; the clicked box's own value, saved with the
  // record after this write, is what stands in the end.
  bool paid = Ticked(u"payment_chk", side);
  Recordset& r = data.recordset();
  r.Edit();
  r.SetField(field, Variant(paid));
  if (with_status_date && paid) r.SetField(u"status_date", Variant(ShortDateToday()));
  data.UpdateRecord();
  if (r.EditInProgress()) r.Update();
}

void AfterSale::status_box_click(const char16_t* field) {
  try {
    WriteStatusField(field, false);
    which_letter_icon_status_to_display();
  } catch (const RuntimeError&) {
  }
}

void AfterSale::response_chk_click() {
  try {
    WriteStatusField(u"response", false);
    if (Ticked(u"response_chk", 0)) {
      MainForm& f = main();
      letter.response_change_pending = true;
      Variant item = f.seller.recordset().Fields(u"item");
      try {
        how_many_auctions();
      } catch (...) {
        letter.response_change_pending = false;
        throw;
      }
      letter.response_change_pending = false;
      if (Seller()) {
        f.seller.RecordSource = letter.saved_record_source;
        f.seller.Refresh();
        f.seller.FindFirst(u"Item = " + Quoted(TextOf(item)));
      }
    }
    which_letter_icon_status_to_display();
  } catch (const RuntimeError&) {
  }
}

void AfterSale::trans_comp_chk_click(int index) {
  try {
    Box(u"status_date_txt", index).SetText(ShortDateToday());
    // The bidder side also dates the record itself when the goods are marked paid and received.
    WriteStatusField(u"trans_comp", !Seller());
    which_letter_icon_status_to_display();
  } catch (const RuntimeError&) {
  }
}

// ---------------------------------------------------------------------------------------------------
// Which letter the state calls for.

void AfterSale::which_letter_to_display() {
  try {
    letter.ClearLetterSwitches();
    ResumingOn91And94([&] { LoadSetupRow(); });
    int side = SideIndex();
    SaleState state =
        StateOf(Ticked(u"auction_ended_chk", side), Ticked(u"contact_chk", side),
                Ticked(u"response_chk", side), Ticked(u"payment_chk", side), Ticked(u"trans_comp_chk", side));
    // A letter that fails half way is not left in the boxes to be sent to the wrong partner or logged
    // on the wrong auctions.
    auto compose = [&](void (AfterSale::*routine)()) {
      ResumingOn91And94([&] {
        try {
          (this->*routine)();
        } catch (const RuntimeError&) {
          DropLetter();
          throw;
        }
      });
    };
    switch (state) {
      case SaleState::kEnded:
        letter.letter_winning_pending = true;
        TickSelectors(1, 0, 0);
        compose(&AfterSale::winning_bid_mail);
        break;
      case SaleState::kResponse:
        letter.letter_payment_pending = true;
        TickSelectors(0, 1, 0);
        compose(&AfterSale::payment_received_letter);
        break;
      case SaleState::kPaid:
        letter.letter_goods_pending = true;
        TickSelectors(0, 0, 1);
        compose(&AfterSale::goods_sent_letter);
        break;
      case SaleState::kContacted:
      case SaleState::kCompleted:
      case SaleState::kCompletedOutOfOrder:
        // No letter is due: the boxes are left addressed to the partner for a letter of the user's own.
        TickSelectors(0, 0, 0);
        SetLetterBox(0, Text());
        SetLetterBox(3, Text());
        ResumingOn91And94([&] {
          Variant partner = Side().recordset().Fields(PartnerField());
          RequireNotNull(partner);
          SetLetterBox(1, TextOf(partner));
        });
        break;
      case SaleState::kNone:
        break;
    }
  } catch (const RuntimeError&) {
    // Any other failure leaves the routine where it stands.
  }
}

void AfterSale::which_letter_icon_status_to_display() {
  // Whatever fails here empties the letter body, and the routine goes on with its next step.
  auto step = [&](auto&& f) {
    try {
      f();
    } catch (const RuntimeError&) {
      SetLetterBox(0, Text());
    }
  };
  letter.ClearLetterSwitches();
  step([&] { LoadSetupRow(); });
  step([&] {
    int side = SideIndex();
    bool ended = Ticked(u"auction_ended_chk", side);
    switch (StateOf(ended, Ticked(u"contact_chk", side), Ticked(u"response_chk", side),
                    Ticked(u"payment_chk", side), Ticked(u"trans_comp_chk", side))) {
      case SaleState::kEnded:
        letter.letter_winning_pending = true;
        TickSelectors(1, 0, 0);
        return;
      case SaleState::kResponse:
        letter.letter_payment_pending = true;
        TickSelectors(0, 1, 0);
        return;
      case SaleState::kPaid:
        letter.letter_goods_pending = true;
        TickSelectors(0, 0, 1);
        return;
      case SaleState::kContacted:
        TickSelectors(0, 0, 0);
        SetLetterBox(0, Text());
        if (Seller()) {
          SetLetterBox(1, Text());
          SetLetterBox(3, Text());
        }
        return;
      case SaleState::kCompleted:
      case SaleState::kCompletedOutOfOrder:
        TickSelectors(0, 0, 0);
        SetLetterBox(0, Text());
        return;
      case SaleState::kNone:
        if (!ended) {
          TickSelectors(0, 0, 0);
          SetLetterBox(0, Text());
        }
        return;
    }
  });
}

// ---------------------------------------------------------------------------------------------------
// The partner's auctions at the status of the letter in hand.

AuctionTotals AfterSale::how_many_auctions() {
  MainForm& f = main();
  Database& db = *program_->startup.db;
  AuctionTotals t;
  LetterState& s = letter;
  DataControl& side = Side();
  s.saved_record_source = side.RecordSource;
  const Text email = PartnerOnScreen();
  const Text head = PartnerHead(email);
  auto count = [&](const char16_t* condition) {
    t.auctions_won = CountOf(db, u"Select Count(*) AS sql_auctions_won" + head + condition);
  };
  auto view = [&](const char16_t* condition) {
    side.RecordSource = u"Select *" + head + condition;
    side.Refresh();
  };
  auto sum = [&](const char16_t* what, const char16_t* condition) {
    auto r = db.OpenRecordset(Text(u"Select ") + what + head + condition);
    return r->Fields(r->FieldNames().front());
  };
  if (Seller()) {
    if (s.letter_winning_pending) {
      count(kWinningCondition);
      auto sums = db.OpenRecordset(
          u"Select Sum(Price) AS sql_totalprice, Sum(price_tax) AS sql_auction_tax_price, Sum(Ship_cost) AS "
          u"sql_total_shipping_price, Sum(ship_tax) AS sql_tax_on_shipping_price, Sum(insure_cost) AS "
          u"sql_total_insure_price, Sum(insure_tax) AS sql_tax_on_insure_price" +
          head + kWinningCondition);
      // On this side a sum over nothing but Nulls counts as 0.
      auto total = [&](TextView field) {
        Variant v = sums->Fields(field);
        return v.IsNull() ? Variant(Currency()) : v;
      };
      t.total_price = total(u"sql_totalprice");
      t.tax_on_price = total(u"sql_auction_tax_price");
      t.total_shipping = total(u"sql_total_shipping_price");
      t.tax_on_shipping = total(u"sql_tax_on_shipping_price");
      t.total_insurance = total(u"sql_total_insure_price");
      t.tax_on_insurance = static_cast<float>(NumberOf(total(u"sql_tax_on_insure_price")).value_or(0));
      view(kWinningCondition);
    }
    if (s.response_change_pending) {
      count(kResponseCountCondition);
      view(kPaymentCondition);
    }
    if (s.letter_payment_pending) {
      count(kPaymentCondition);
      view(kPaymentCondition);
    }
    if (s.letter_goods_pending) {
      count(kSellerGoodsCondition);
      view(kSellerGoodsCondition);
    }
  } else {
    // The bidder side keeps a sum of Nulls as Null: the letter shows it as an empty amount.
    if (s.letter_winning_pending) {
      count(kWinningCondition);
      t.total_price = sum(u"Sum(Price) AS sql_totalprice", kWinningCondition);
      t.total_shipping = sum(u"Sum(Ship_cost) AS sql_total_shipping_price", kWinningCondition);
      view(kWinningCondition);
    }
    if (s.letter_payment_pending) {
      count(kPaymentCondition);
      // The payment letter's one total includes the shipping.
      t.total_price = AddMoney(sum(u"Sum(Price) AS sql_totalprice", kPaymentCondition),
                               sum(u"Sum(Ship_cost) AS sql_total_shipping_price", kPaymentCondition));
      view(kPaymentCondition);
    }
    if (s.letter_goods_pending) {
      count(kBidderGoodsCountCondition);
      view(kGoodsCondition);
    }
  }

  if (t.auctions_won >= 1 && s.response_change_pending) {
    MsgAnswer a = f.ui().MsgBox(u"Update Auction Status",
                                Count(t.auctions_won) +
                                    u" other auction/s for this buyer has the same status.\n"
                                    u"Choose YES to have the Status changed for those auctions also.\n"
                                    u"Choose NO to change this auctions status only.",
                                MsgButtons::YesNo, MsgIcon::Question);
    if (a == MsgAnswer::Yes) {
      db.Execute(u"Update Seller set response = true, status_date = " + Quoted(ShortDateToday()) +
                 u" where email = " + Quoted(email) +
                 u" and Trans_comp = no and completed = yes and payment = no and contact = yes");
    }
  }
  if (t.auctions_won >= 2 && !s.response_change_pending) {
    f.SetStatus(
        u"This person is the winner of " + Count(t.auctions_won) +
        u" auctions. All auctions for this UserID matching this status will be combining into one email.");
  }
  return t;
}

// ---------------------------------------------------------------------------------------------------
// The status log and the move of the group.

void AfterSale::update_status_log(int index) {
  DataControl& data = Side();
  const Text& item = letter.Item(index);
  // A find that finds nothing leaves the current record as the one written.
  data.FindFirst(u"Item = " + Quoted(item) + u"and " + PartnerField() + u" = " +
                 Quoted(letter.letter_partner_email));
  Recordset& r = data.recordset();
  r.Edit();
  r.SetField(u"Status_log", Variant(letter.letter_status_note + kCrlf + TextOf(r.Fields(u"status_log"))));
  if (Ticked(u"check1", 1)) {
    r.SetField(u"Comments",
               Variant(u"------Copied to Comments " + NowText() + u"------" + kCrlf + kCrlf +
                       Box(u"emailletter_txt", 0).text() + kCrlf + u"------End copy to Comments------" +
                       kCrlf + kCrlf + TextOf(r.Fields(u"Comments"))));
  }
  r.Update();
  MoveGroupStatus();
}

void AfterSale::update_status_log_bulk_status_change_only() {
  MoveGroupStatus();
}

void AfterSale::MoveGroupStatus() {
  Database& db = *program_->startup.db;
  const bool seller = Seller();
  const Text table = seller ? u"Seller" : u"Bidder";
  const Text where = (seller ? u" where email = " : u" where Seller_email = ") + Quoted(PartnerOnScreen());
  const Text today = Quoted(ShortDateToday());
  struct Move {
    bool* pending;
    const char16_t* set;
    const char16_t* condition;
  };
  const Move moves[] = {
      {&letter.letter_winning_pending, u" set contact = true, status_date = ", kWinningCondition},
      {&letter.letter_payment_pending, u" set payment = true, status_date = ", kPaymentCondition},
      {&letter.letter_goods_pending, u" set trans_comp = true, status_date = ", kGoodsCondition},
  };
  // The group moves once, at the first call of a letter; the later calls only write their lines.
  for (const Move& m : moves) {
    if (!*m.pending) continue;
    db.Execute(u"Update " + table + m.set + today + where + m.condition);
    *m.pending = false;
  }
  Side().Refresh();
}

// ---------------------------------------------------------------------------------------------------
// Copy Address.

void AfterSale::copy_address_btn() {
  MainForm& f = main();
  if (f.ui().MsgBox(u"Copy Address",
                    u"Copy all address details to other auctions with the identical e-mail address?",
                    MsgButtons::YesNo, MsgIcon::Question) != MsgAnswer::Yes)
    return;
  try {
    WaitCursor wait(f.ui());
    const bool seller = Seller();
    const int side = SideIndex();
    const Text email = PartnerOnScreen();
    if (email.empty()) {
      f.ui().MsgBox(
          u"Unable to Copy",
          u"The email address is blank for this auction.\nEnter a valid email address and try again",
          MsgButtons::OK, MsgIcon::Critical);
      f.SetStatus(u"No Name and Addresses Updated");
      return;
    }
    Database& db = *program_->startup.db;
    const Text head = seller ? u"Update Seller set " : u"Update Bidder set ";
    const Text where =
        (seller ? u" where email = " : u" where Seller_email = ") + Quoted(email) + u" and completed = yes";
    db.Execute(head + u"name = " + Quoted(Box(u"hi_bidder_name_txt", side).text()) + where);
    db.Execute(head + u"address = " + Quoted(Box(u"hi_bidder_address_txt", side).text()) + where);
    f.SetStatus(Count(static_cast<int>(db.RecordsAffected())) + u" Name and Addresses Updated");
  } catch (const RuntimeError&) {
  }
}

}  // namespace lw
