// The after-sale side of the main screen: the five status boxes of a sale and what they lead to, the
// letters of the Email page, their way out by mail, the user's mail program, the bulk queue or paper,
// and the feedback left on the site. One of these lives for the run, held by the program context; it
// keeps the letter in hand between the routines, which all run on the screen's one thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <vector>

#include "aftersale/letter_text.h"
#include "core/primitives/types.h"

namespace lw {

struct Program;
class MainForm;
class DataControl;
class Control;
class Recordset;
class SmtpClient;
class MailProgram;

// The pages of SSTab1 the after-sale side works on.
inline constexpr int kDetailsPage = 1;
inline constexpr int kContactPage = 2;
inline constexpr int kEmailPage = 6;
inline constexpr int kReportsPage = 7;

// A yes/no field: any value that is not 0 is yes.
inline bool IsYes(const Variant& v) {
  std::optional<double> n = NumberOf(v);
  return n && *n != 0;
}

// The letter in hand: which status letter it is, the auctions combined into it, to whom it goes and
// what the log will say once it is mailed.
struct LetterState {
  // At most one of the three letter switches is set: the letter in hand moves its group's status
  // when it is mailed or queued.
  bool letter_winning_pending = false;
  bool letter_payment_pending = false;
  bool letter_goods_pending = false;
  // Only while a tick of response_chk asks whether the partner's other auctions move too.
  bool response_change_pending = false;
  int16_t letter_item_count = 0;
  std::vector<Text> letter_items;
  Text letter_partner_email;
  Text letter_status_note;
  // The view's record source while it is narrowed to one partner's auctions.
  Text saved_record_source;
  Text letter_text;
  bool email_checks_passed = false;

  void ClearLetterSwitches() {
    letter_winning_pending = letter_payment_pending = letter_goods_pending = false;
  }
  // Auction `index` of the letter; 9 ("Subscript out of range") past the end.
  const Text& Item(int index) const {
    if (index < 0 || static_cast<size_t>(index) >= letter_items.size())
      throw RuntimeError(9, "Subscript out of range");
    return letter_items[static_cast<size_t>(index)];
  }
};

// The seven results of how_many_auctions.
struct AuctionTotals {
  int16_t auctions_won = 0;
  Variant total_price, total_shipping, total_insurance, tax_on_price, tax_on_shipping;
  float tax_on_insurance = 0;  // held in single precision, unlike the other sums
};

class AfterSale {
 public:
  explicit AfterSale(Program& program);
  ~AfterSale();
  AfterSale(const AfterSale&) = delete;
  AfterSale& operator=(const AfterSale&) = delete;

  Program& program() const { return *program_; }
  MainForm& main() const;

  LetterState letter;
  bool mapi_session_open = false;
  bool feedback_combo_loaded = false;

  // Transaction status.
  void which_letter_to_display();
  void which_letter_icon_status_to_display();
  AuctionTotals how_many_auctions();
  void update_status_log(int index);
  void update_status_log_bulk_status_change_only();
  void copy_address_btn();
  // The click of the ended, contact or payment box, by the field it writes.
  void status_box_click(const char16_t* field);
  void response_chk_click();
  void trans_comp_chk_click(int index);
  void label_status_boxes();

  // Letters.
  void winning_bid_mail();
  void payment_received_letter();
  void goods_sent_letter();
  void send_feedback_request_letter();
  void send_blank_letter();
  void check_for_valid_email();
  void letter_selector_click();
  void other_letters_btn(int index);

  // Mail transports.
  void send_now();
  void send_pop_mail();
  void send_mapi_mail();

  // The bulk queue and printing.
  void set_bulk_mail();
  void email_tab_click();
  void view_bulkmail();
  void show_bulk_mail_page();
  void refresh_bulk_list();
  void send_bulk_now();
  void send_bulk_pop_mail();
  void send_bulk_mapi_mail();
  void update_status_log_bulk();
  void delete_all_bulk_mail();
  void bulk_row_deleted();
  void bulk_row_changed();
  void print_email();

  // Feedback.
  void send_feedback();
  void save_feedback_comment();
  void populate_feedback_combo();
  void populate_feedback_grid();
  void feedback_comment_change();

 private:
  friend std::shared_ptr<AfterSale> RegisterAfterSale(Program& program);
  void BuildControls();
  void RegisterRoutines(const std::shared_ptr<AfterSale>& self);
  // Hangs a routine of this screen on the program's registry by name.
  static void AddRoutine(const std::shared_ptr<AfterSale>& self, const char* name,
                         void (AfterSale::*routine)());
  // The bulk page, the feedback of the Contact Details page and the mail commands.
  void BuildMailControls();
  void RegisterMailRoutines(const std::shared_ptr<AfterSale>& self);
  // Shows `frame` while one of `pages` of SSTab1 is the one in use.
  void ShowOnPages(Control& frame, std::initializer_list<int> pages);

  // The side in view: "Seller" in Auction_type_lst means the seller table and controls of index 0.
  bool Seller() const;
  int SideIndex() const { return Seller() ? 0 : 1; }
  DataControl& Side() const;
  const char16_t* PartnerField() const { return Seller() ? u"email" : u"Seller_email"; }
  const char16_t* TableName() const { return Seller() ? u"seller" : u"bidder"; }
  // The partner's address as the screen shows it: email_pnl on the seller side, seller_email_txt on
  // the bidder side.
  Text PartnerOnScreen() const;
  // " From seller where email = '{email}'" (bidder side: " From bidder where Seller_email = ..."), the
  // head of every statement about one partner's auctions.
  Text PartnerHead(const Text& email) const;
  // Counts the letter's auctions with the statement head, sizes its list, and opens them on the first.
  std::unique_ptr<Recordset> OpenLetterRows(const Text& head);
  Control& Box(const char16_t* name, int index = -1) const;
  bool Ticked(const char16_t* name, int index) const;
  // Ticks or unticks a box from code, without its click: showing a state is not the user choosing it.
  void SetQuietly(Control& box, int value);
  void TickSelectors(int winning, int payment, int goods);
  void SetLetterBox(int index, const Text& text);

  // The setup row of the current user id, read afresh; its text fields (Null as ""), its yes/no
  // fields (true only when they equal true).
  void LoadSetupRow();
  Recordset* SetupRow() const;
  Text SetupText(const char16_t* field) const;
  bool SetupYes(const char16_t* field) const;
  LetterSetup ReadLetterSetup() const;
  Text ShortDateToday() const;
  Text NowText() const;
  // A field as text under the locale; Null gives the empty text.
  Text TextOf(const Variant& v) const;

  // Writes a status field of the side's current record from the payment box, then the record's own
  // bound edits over it, and saves.
  void WriteStatusField(const char16_t* field, bool with_status_date);
  // The six statements that move the partner's group on; each clears its switch.
  void MoveGroupStatus();
  void ComposeStatusLetter(LetterKind kind);
  void ComposeFromRecords(LetterKind kind, Recordset& rows, const AuctionTotals& totals);
  bool BidderContactMissing();
  void ResetLetter();
  // Forgets the letter in hand: its boxes, its auctions, its partner, its note and its switch.
  void DropLetter();

  // Sending. "MAPI Compliant Mail" in the current setup row sends through the user's mail program.
  bool MapiCompliant();
  void CommonStart();
  void CommonEnd();
  SmtpClient& Mail1();
  void ConnectByMailType(SmtpClient& mail);
  std::chrono::milliseconds NetworkTimeout() const;
  // One letter out by SMTP or through the user's mail program, with the status texts of each.
  void MailBySmtp(const Text& to, const Text& subject, bool copy_to_self, const Text& body);
  void MailByProgram(const Text& to, const Text& subject, bool copy_to_self, const Text& body);
  void SendBulk(bool through_mail_program);

  Program* program_;
  std::unique_ptr<SmtpClient> mail1_;
  std::unique_ptr<MailProgram> mail_program_;
  // The subject and address of TDBGrid1's current row, kept for the delete of its status rows.
  Text bulk_row_subject_, bulk_row_to_;
  // The Bulk row being sent, for update_status_log_bulk.
  bool bulk_copy_to_comments_ = false;
  Text bulk_text_;
};

// Creates the after-sale screen, keeps it in the program and registers its routines and controls.
std::shared_ptr<AfterSale> RegisterAfterSale(Program& program);

}  // namespace lw
