// The letters of the Email page: the three status letters combined over the partner's auctions at the
// same status, the feedback request over the auctions completed on the same day, the blank letter, and
// the checks a letter must pass before the page opens for it.
#include <algorithm>

#include "aftersale/aftersale_screen.h"
#include "aftersale/status_conditions.h"
#include "core/primitives/convert.h"
#include "core/primitives/text.h"
#include "screen/main/main_form.h"

namespace lw {

void AfterSale::DropLetter() {
  letter.ClearLetterSwitches();
  letter.letter_item_count = 0;
  letter.letter_items.clear();
  letter.letter_partner_email.clear();
  letter.letter_status_note.clear();
  letter.letter_text.clear();
  SetLetterBox(0, Text());
  SetLetterBox(1, Text());
  SetLetterBox(3, Text());
}

bool AfterSale::BidderContactMissing() {
  if (!Box(u"seller_id_txt").text().empty() && !Box(u"seller_email_txt").text().empty()) return false;
  main().ui().MsgBox(u"Email Address and Id Required",
                     u"You need to have the Email and Id Fields entered before you can send an email.",
                     MsgButtons::OK, MsgIcon::Critical);
  // After a refusal nothing of the letter is kept.
  DropLetter();
  return true;
}

void AfterSale::winning_bid_mail() {
  ComposeStatusLetter(LetterKind::kWinning);
}
void AfterSale::payment_received_letter() {
  ComposeStatusLetter(LetterKind::kPayment);
}
void AfterSale::goods_sent_letter() {
  ComposeStatusLetter(LetterKind::kGoods);
}

void AfterSale::ComposeStatusLetter(LetterKind kind) {
  MainForm& f = main();
  const bool seller = Seller();
  if (!seller && BidderContactMissing()) return;
  if (!seller && kind == LetterKind::kWinning) {
    // The shipping the buyer typed is part of the total the letter asks the seller to confirm.
    const Text& shipping = Box(u"shipping_price_txt", 1).text();
    Recordset& r = f.Bidder.recordset();
    r.Edit();
    r.SetField(u"ship_cost", shipping.empty() ? Variant() : Variant(shipping));
    r.Update();
  }
  AuctionTotals totals = how_many_auctions();
  letter.letter_item_count = totals.auctions_won;
  letter.letter_items.assign(static_cast<size_t>(std::max<int16_t>(0, totals.auctions_won)), Text());
  DataControl& data = Side();
  data.RecordSource = u"Select *" + PartnerHead(PartnerOnScreen()) + ViewCondition(kind, seller);
  data.Refresh();
  Recordset& rows = data.recordset();
  rows.MoveFirst();
  ComposeFromRecords(kind, rows, totals);
  // The view the letter narrowed comes back, standing on the letter's first auction.
  const Text kept = letter.letter_items.front();
  data.RecordSource = letter.saved_record_source;
  data.Refresh();
  data.FindFirst(u"Item = " + Quoted(kept) + u"and " + PartnerField() + u" = " +
                 Quoted(letter.letter_partner_email));
  letter.letter_status_note = LetterStatusNote(kind, seller);
}

void AfterSale::ComposeFromRecords(LetterKind kind, Recordset& rows, const AuctionTotals& totals) {
  const bool seller = Seller();
  const Regional& regional = program_->regional;
  Variant partner = rows.Fields(PartnerField());
  letter.letter_partner_email = TextOf(partner);
  letter.Item(0);  // a letter of no auctions ends here
  letter.letter_items[0] = TextOf(rows.Fields(u"item"));
  RequireNotNull(partner);
  SetLetterBox(1, letter.letter_partner_email);

  LetterFacts facts;
  facts.today = program_->clock.Today();
  if (seller) facts.high_bidder_id = TextOf(rows.Fields(u"id"));
  std::vector<LetterAuction> auctions;
  for (size_t i = 0; i < letter.letter_items.size(); ++i) {
    LetterAuction a{TextOf(rows.Fields(u"item")), TextOf(rows.Fields(u"title")),
                    TextOf(rows.Fields(u"quantity")), rows.Fields(u"price")};
    letter.letter_items[i] = a.item;
    auctions.push_back(std::move(a));
    rows.MoveNext();
  }
  // Past the last auction the cursor steps back one: the last auction's mark decides the tax lines.
  if (seller && kind == LetterKind::kWinning) {
    rows.MovePrevious();
    facts.taxable = IsYes(rows.Fields(u"taxable"));
  }
  SetLetterBox(3, LetterSubject(kind, seller, auctions));
  LetterTotals t{totals.total_price,  totals.total_shipping,  totals.total_insurance,
                 totals.tax_on_price, totals.tax_on_shipping, totals.tax_on_insurance};
  letter.letter_text = LetterBody(kind, seller, ReadLetterSetup(), auctions, t, facts, regional);
  SetLetterBox(0, letter.letter_text);
}

void AfterSale::send_feedback_request_letter() {
  DataControl& data = Side();
  const bool seller = Seller();
  if (!IsYes(data.recordset().Fields(u"trans_comp"))) {
    main().ui().MsgBox(u"Incomplete Transaction",
                       u"The tranaction must be complete before you can request a feedback letter",
                       MsgButtons::OK, MsgIcon::Critical);
    DropLetter();
    return;
  }
  if (!seller && BidderContactMissing()) return;
  const Regional& regional = program_->regional;
  Text day = Format(Variant(CDate(Variant(Box(u"status_date_txt", SideIndex()).text()), regional)),
                    u"mm/dd/yyyy", regional);
  // The group of a feedback request is the partner's auctions completed on the same day.
  auto rows = OpenLetterRows(PartnerHead(PartnerOnScreen()) + u" and Trans_comp = yes and Status_date = #" +
                             day + u"#");
  ComposeFromRecords(LetterKind::kFeedback, *rows, AuctionTotals{});
  letter.letter_status_note = LetterStatusNote(LetterKind::kFeedback, seller);
}

std::unique_ptr<Recordset> AfterSale::OpenLetterRows(const Text& head) {
  Database& db = *program_->startup.db;
  Variant count =
      db.OpenRecordset(u"Select Count(*) AS sql_auctions_won" + head)->Fields(u"sql_auctions_won");
  letter.letter_item_count = static_cast<int16_t>(NumberOf(count).value_or(0));
  letter.letter_items.assign(static_cast<size_t>(std::max<int16_t>(0, letter.letter_item_count)), Text());
  auto rows = db.OpenRecordset(u"Select *" + head);
  rows->MoveFirst();
  return rows;
}

void AfterSale::send_blank_letter() {
  const bool seller = Seller();
  if (!seller && BidderContactMissing()) return;
  const Text item = Box(u"itemno_txt", SideIndex()).text();
  auto rows = OpenLetterRows(PartnerHead(PartnerOnScreen()) + u" and item = " + Quoted(item));
  const Text title = TextOf(rows->Fields(u"title"));
  const Text comments = TextOf(rows->Fields(u"comments"));
  Variant partner = rows->Fields(PartnerField());
  letter.letter_partner_email = TextOf(partner);
  for (Text& entry : letter.letter_items) {
    entry = TextOf(rows->Fields(u"item"));
    rows->MoveNext();
  }
  RequireNotNull(partner);
  SetLetterBox(1, letter.letter_partner_email);
  SetLetterBox(3, u"Re: Auction Item " + item + u" - " + title);
  SetLetterBox(0, Ticked(u"check1", 2)
                      ? Text(kCrlf) + kCrlf + u"-----Original Message-----" + kCrlf + kCrlf + comments
                      : Text());
  letter.letter_status_note = u"Undefined Status Letter sent ";
}

void AfterSale::other_letters_btn(int index) {
  // These letters move no status when they are sent.
  letter.ClearLetterSwitches();
  try {
    if (index == 0)
      send_feedback_request_letter();
    else
      send_blank_letter();
  } catch (const RuntimeError&) {
    DropLetter();
  }
}

// ---------------------------------------------------------------------------------------------------
// The checks before the letter page opens.

void AfterSale::ResetLetter() {
  SetQuietly(Box(u"send_winning_bid_letter_chk"), 0);
  SetLetterBox(0, Text());
  SetLetterBox(1, Text());
  SetLetterBox(3, Text());
  letter.email_checks_passed = false;
}

void AfterSale::check_for_valid_email() {
  MainForm& f = main();
  Ui& ui = f.ui();
  Recordset& r = Side().recordset();
  auto refuse = [&](const char16_t* title, const char16_t* text) {
    ui.MsgBox(title, text, MsgButtons::OK, MsgIcon::Critical);
    ResetLetter();
  };
  if (!IsYes(r.Fields(u"Completed")))
    return refuse(u"Unable to Mail", u"You can't send mail to unfinished auctions.");
  if (Seller()) {
    Text email = TextOf(r.Fields(u"email"));
    Text id = TextOf(r.Fields(u"Id"));
    if (email == u"No Bids")
      return refuse(u"Unable to Mail", u"You can't send mail to an auctions with no bids.");
    if (Like(id, u"*Dutch bid*") || Like(id, u"*Dutch Bid*"))
      return refuse(u"Unable to Mail", u"You can't send mail without importing Dutch Bidders first.");
    if (!IsYes(r.Fields(u"reserve_met"))) {
      // The one refusal that leaves the letter addressed.
      refuse(u"Warning", u"Note that the reserve was not met on this auction");
      SetLetterBox(1, email);
    }
    return;
  }
  if (Box(u"seller_id_txt").text().empty() || Box(u"seller_email_txt").text().empty())
    return refuse(u"Unable to mail",
                  u"You need to have the Email and Id Fields entered before you can send an email.");
  const Text& high_bidder = Box(u"id_pnl", 1).text();
  if (high_bidder != f.Userid_lst.text() && !Like(high_bidder, u"*Dutch Bidder*"))
    return refuse(u"Unable to mail", u"You cannot email if you are not the high bidder.");
}

void AfterSale::letter_selector_click() {
  letter.email_checks_passed = true;
  try {
    check_for_valid_email();
  } catch (const RuntimeError&) {
    letter.email_checks_passed = false;
  }
  if (letter.email_checks_passed) main().SSTab1.SetTab(kEmailPage);
}

}  // namespace lw
