#include "accounting/fees_screen.h"

#include <limits>
#include <memory>
#include <optional>

#include "accounting/charges_box.h"
#include "accounting/fees_book.h"
#include "accounting/fees_line.h"
#include "accounting/fees_walk.h"
#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "screen/main/browser_targets.h"
#include "screen/main/main_form.h"
#include "screen/main/records_rules.h"
#include "screen/main/view_rules.h"

namespace lw {

namespace {

// The periods of the account page the three commands ask for.
constexpr char16_t kLastMonth[] =
    u"&acctpagetype=0&daysback=30&startmonth=&startday=&startyear=&endmonth=&endday=&endyear=&pagination=0";
constexpr char16_t kLastTwoMonths[] =
    u"&acctpagetype=0&daysback=60&startmonth=&startday=&startyear=&endmonth=&endday=&endyear=&pagination=0";

// The host the shipped store names when the misc row has none.
constexpr char16_t kDefaultFeesHost[] = u"cgi3.ebay.com";

// The five boxes: their tooltips (the last two say what the third says) and the columns of each group.
constexpr const char16_t* kBoxTips[] = {u"Auction Insertion Fee", u"Display Formatting Fees Combined",
                                        u"Final Price Value Fees", u"Final Price Value Fees",
                                        u"Final Price Value Fees"};
constexpr const char16_t* kInsertionFee[] = {u"fee_insertion"};
constexpr const char16_t* kFormattingFees[] = {u"fee_gallery", u"fee_featured_plus", u"fee_10day",
                                               u"fee_picture", u"fee_picturepack",   u"fee_reserve",
                                               u"fee_bold",    u"fee_highlight",     u"fee_home",
                                               u"fee_bin",     u"fee_scheduled",     u"fee_Gift_Services"};
constexpr const char16_t* kFinalValueFees[] = {u"fee_final_value", u"fee_final_value_fixed"};
constexpr const char16_t* kCredits[] = {u"fee_credit_insertion", u"fee_nosale_credit", u"fee_reserve_credit"};

class FeesScreen {
 public:
  explicit FeesScreen(Program& program) : p_(program) {}

  void Register(const std::shared_ptr<FeesScreen>& self);

 private:
  MainForm& Main() const {
    if (!p_.main)
      throw RuntimeError(err::kObjectVariableNotSet, "Object variable or With block variable not set");
    return *p_.main;
  }
  Database& Store() const {
    if (!p_.startup.db)
      throw RuntimeError(err::kObjectVariableNotSet, "Object variable or With block variable not set");
    return *p_.startup.db;
  }
  // Runs a command: a failure goes to the status bar and the pointer is set back.
  void Handled(void (FeesScreen::*routine)());

  void fetch_account_page(const char16_t* tail);
  void get_allfees_button() { fetch_account_page(kAccountSinceLastInvoice); }
  void imp_fees_last_invoice_mnu_1() { fetch_account_page(kLastMonth); }
  void imp_fees_last_invoice_mnu_2() { fetch_account_page(kLastTwoMonths); }
  void get_allfees();
  void parse_ebay_account_fees(int16_t& fees_updated);
  void calculate_fee_display();
  void remove_fees_mnu();

  Program& p_;
  // The line in hand, and the booking of the walk under way.
  Text fee_line_;
  std::optional<FeeBook> book_;
};

void FeesScreen::Handled(void (FeesScreen::*routine)()) {
  try {
    (this->*routine)();
  } catch (const RuntimeError& e) {
    p_.screen.ui().SetWaitCursor(false);
    if (p_.main) p_.main->SetStatus(FromUtf8(e.description()));
  }
}

Text RowText(DataControl& source, TextView column, const Regional& regional) {
  if (!source.HasRecordset() || source.recordset().Eof() || source.recordset().Bof()) return Text();
  Variant v = source.recordset().Fields(column);
  return v.IsNull() ? Text() : CStr(v, regional);
}

void FeesScreen::fetch_account_page(const char16_t* tail) {
  MainForm& f = Main();
  const Text userid = f.Userid_lst.text();
  {
    FlagRaised settle(p_.main_screen.settling);
    f.Auction_status_lst.SetText(kAllAuctions);
  }
  p_.view.base = kSellerBase;
  p_.view.tail = u" order by end desc ";
  p_.view.condition = u"where username = " + Quoted(userid);
  f.seller.RecordSource = p_.view.base + p_.view.condition + p_.view.tail;
  f.seller.Refresh();
  f.SetStatus(u"Displaying Account Page");
  f.setup_datacontrl.RecordSource = u"Select * From setup where Userid = " + Quoted(userid);
  f.setup_datacontrl.Refresh();
  p_.routines.Call("set_fees_pending");

  Text host = RowText(f.Misc, u"servername_fees", p_.regional);
  if (host.empty() && p_.startup.misc && !p_.startup.misc->Eof()) {
    Variant v = p_.startup.misc->Fields(u"servername_fees");
    if (v.text()) host = *v.text();
  }
  if (host.empty()) host = kDefaultFeesHost;
  const Text password = RowText(f.setup_datacontrl, u"Password", p_.regional);
  f.WebBrowser1.Navigate(AccountPageAddress(host, userid, password, tail));
}

void FeesScreen::get_allfees() {
  MainForm& f = Main();
  const Text page = load_fee_page(p_.DbFile(u"\\parsed_data.htm"));
  // What is typed on the row on show belongs to that row: it is written before the walk moves the
  // cursor from one auction to the next.
  f.seller.UpdateRecord();
  int16_t fees_updated = 0;
  // A booking lives for one walk: the cursor it moves is the view of this walk.
  book_.reset();
  walk_fee_page(page, [&](const Text& line) {
    fee_line_ = line;
    parse_ebay_account_fees(fees_updated);
  });
  book_.reset();
  f.SetStatus(u"Importing Fees Completed. " + CStr(Variant(static_cast<int>(fees_updated)), p_.regional) +
              u" Auction fees updated.");
  p_.screen.ui().SetWaitCursor(false);
  f.CallRoutine("auction_filter");
}

void FeesScreen::parse_ebay_account_fees(int16_t& fees_updated) {
  MainForm& f = Main();
  // The line's own error branch: a line without its item's end mark or its money books nothing, and
  // the walk goes on.
  try {
    std::optional<FeeCharge> charge = read_fee_line(fee_line_, p_.regional);
    if (!charge) return;
    if (!book_) book_.emplace(Store(), f.seller.recordset());
    if (!book_->Book(*charge)) return;
    if (fees_updated == std::numeric_limits<int16_t>::max()) throw RuntimeError(err::kOverflow, "Overflow");
    ++fees_updated;
    f.SetStatus(u"Auction fee added for auction number " + charge->item);
  } catch (const RuntimeError&) {
  }
}

void FeesScreen::calculate_fee_display() {
  MainForm& f = Main();
  auto box = [&f](int i) -> ChargeBox& { return f.Get<ChargeBox>(u"fee_txt", i); };
  DataControl& seller = f.seller;
  if (!seller.HasRecordset() || seller.recordset().Eof() || seller.recordset().Bof()) {
    for (int i = 0; i < 5; ++i) box(i).SetAmount(Variant());
    return;
  }
  Recordset& rs = seller.recordset();
  auto sum = [&rs](std::span<const char16_t* const> columns) {
    Currency total;
    for (const char16_t* column : columns) {
      const Variant fee = rs.Fields(column);
      if (const Currency* c = fee.currency()) total += *c;
    }
    return total;
  };
  const Currency insertion = sum(kInsertionFee);
  const Currency formatting = sum(kFormattingFees);
  const Currency final_value = sum(kFinalValueFees);
  const Currency credits = sum(kCredits);
  // Credits count as they are stored: only a credit stored negative lowers the total.
  const Currency total = insertion + formatting + final_value + credits;
  box(0).SetAmount(Variant(insertion));
  box(1).SetAmount(Variant(formatting));
  box(2).SetAmount(Variant(final_value));
  box(3).SetAmount(Variant(credits));
  box(4).SetSingle(ToSingle(total.ToDouble()));
}

void FeesScreen::remove_fees_mnu() {
  MainForm& f = Main();
  Variant item = f.seller.recordset().Fields(u"Item");
  Database& db = Store();
  for (const Text& statement : RemoveFeesStatements(item.IsNull() ? Text() : CStr(item, p_.regional)))
    db.Execute(statement);
  // The row on show is read again from the store, then the page is left and entered again.
  f.seller.Navigate([](Recordset& rs) {
    const int64_t at = rs.AbsolutePosition();
    rs.Requery();
    if (at >= 0 && at < rs.RecordCount()) rs.SetAbsolutePosition(at);
  });
  const int page = f.SSTab1.tab();
  f.SSTab1.SetTab(page == 0 ? 1 : 0);
  f.SSTab1.SetTab(page);
  f.SetStatus(u"Fees Removed");
}

void FeesScreen::Register(const std::shared_ptr<FeesScreen>& self) {
  MainForm& f = Main();
  Control& frame = f.Add(ControlKind::Frame, u"fees_fra");
  frame.SetCaption(u"Auction Fees");
  frame.SetTooltip(u"Use Import Fees Button to update");
  for (int i = 0; i < 5; ++i) {
    ChargeBox& box = ChargeBox::AddTo(f, u"fee_txt", i, p_.regional);
    box.SetTooltip(kBoxTips[i]);
    box.SetContainer(&frame);
    box.symbol = p_.regional.currency_symbol;
  }

  Routines& r = p_.routines;
  struct Entry {
    const char* name;
    void (FeesScreen::*routine)();
  };
  for (Entry e : {Entry{"get_allfees_button", &FeesScreen::get_allfees_button},
                  Entry{"imp_fees_last_invoice_mnu_1", &FeesScreen::imp_fees_last_invoice_mnu_1},
                  Entry{"imp_fees_last_invoice_mnu_2", &FeesScreen::imp_fees_last_invoice_mnu_2},
                  // The entries of the list bar's right-button menu on "Import Auction Fees".
                  Entry{"fees_since_invoice_mnu", &FeesScreen::get_allfees_button},
                  Entry{"fees_last_month_mnu", &FeesScreen::imp_fees_last_invoice_mnu_1},
                  Entry{"fees_last_2_months_mnu", &FeesScreen::imp_fees_last_invoice_mnu_2},
                  Entry{"get_allfees", &FeesScreen::get_allfees},
                  Entry{"calculate_fee_display", &FeesScreen::calculate_fee_display},
                  Entry{"remove_fees_mnu", &FeesScreen::remove_fees_mnu}}) {
    auto routine = e.routine;
    r.Register(e.name, [self, routine] { self->Handled(routine); });
  }
}

}  // namespace

void RegisterFees(Program& program) {
  auto screen = std::make_shared<FeesScreen>(program);
  program.subsystems.push_back(screen);
  screen->Register(screen);
}

}  // namespace lw
