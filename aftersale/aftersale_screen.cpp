#include "aftersale/aftersale_screen.h"

#include <algorithm>
#include <string>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "platform/mail_program.h"
#include "platform/smtp_client.h"
#include "screen/main/main_form.h"

namespace lw {
namespace {

struct StatusBoxInfo {
  const char16_t* name;
  const char16_t* caption;
};
constexpr StatusBoxInfo kStatusBoxes[] = {
    {u"auction_ended_chk", u"Auction Ended"},
    {u"contact_chk", u"Winning Bidder Notified/Seller Contacted"},
    {u"response_chk", u"Return Response Received / Sent"},
    {u"payment_chk", u"Payment Received / Sent"},
    {u"trans_comp_chk", u"Goods Received / Sent (Transaction Completed)"},
};

constexpr const char16_t* kSelectors[] = {u"send_winning_bid_letter_chk", u"payment_received_chk",
                                          u"goods_sent_chk"};
constexpr const char16_t* kLetterOptions[] = {u"Send CC to myself", u"Copy email to comments",
                                              u"Copy comments to email"};

}  // namespace

AfterSale::AfterSale(Program& program) : program_(&program) {}

AfterSale::~AfterSale() = default;

MainForm& AfterSale::main() const {
  if (!program_->main)
    throw RuntimeError(err::kObjectVariableNotSet, "Object variable or With block variable not set");
  return *program_->main;
}

bool AfterSale::Seller() const {
  return main().IsSeller();
}

DataControl& AfterSale::Side() const {
  return Seller() ? main().seller : main().Bidder;
}

Control& AfterSale::Box(const char16_t* name, int index) const {
  return main().Get(name, index);
}

bool AfterSale::Ticked(const char16_t* name, int index) const {
  return Box(name, index).value() == 1;
}

Text AfterSale::PartnerOnScreen() const {
  return Seller() ? Box(u"email_pnl", 0).text() : Box(u"seller_email_txt").text();
}

Text AfterSale::PartnerHead(const Text& email) const {
  return u" From " + Text(TableName()) + u" where " + PartnerField() + u" = " + Quoted(email);
}

void AfterSale::SetQuietly(Control& box, int value) {
  auto handler = std::move(box.OnClick);
  box.OnClick = nullptr;
  try {
    box.SetValue(value);
  } catch (...) {
    box.OnClick = std::move(handler);
    throw;
  }
  box.OnClick = std::move(handler);
}

void AfterSale::TickSelectors(int winning, int payment, int goods) {
  SetQuietly(Box(kSelectors[0]), winning);
  SetQuietly(Box(kSelectors[1]), payment);
  SetQuietly(Box(kSelectors[2]), goods);
}

void AfterSale::SetLetterBox(int index, const Text& text) {
  Box(u"emailletter_txt", index).SetText(text);
}

void AfterSale::LoadSetupRow() {
  DataControl& setup = main().setup_datacontrl;
  setup.RecordSource = u"Select * from setup where Userid = " + Quoted(main().Userid_lst.text());
  setup.Refresh();
}

Recordset* AfterSale::SetupRow() const {
  DataControl& setup = main().setup_datacontrl;
  if (!setup.HasRecordset()) return nullptr;
  Recordset& r = setup.recordset();
  return r.Eof() || r.Bof() ? nullptr : &r;
}

Text AfterSale::TextOf(const Variant& v) const {
  return v.IsNull() ? Text() : CStr(v, program_->regional);
}

Text AfterSale::SetupText(const char16_t* field) const {
  Recordset* r = SetupRow();
  if (!r) throw RuntimeError(err::kNoCurrentRecord, "No current record.");
  return TextOf(r->Fields(field));
}

bool AfterSale::SetupYes(const char16_t* field) const {
  Recordset* r = SetupRow();
  if (!r) throw RuntimeError(err::kNoCurrentRecord, "No current record.");
  Variant v = r->Fields(field);
  std::optional<double> n = NumberOf(v);
  return n && *n == kTrue;
}

LetterSetup AfterSale::ReadLetterSetup() const {
  LetterSetup s;
  s.userid = SetupText(u"Userid");
  s.useremail = SetupText(u"UserEmail");
  s.name = SetupText(u"name");
  s.address = SetupText(u"address");
  s.signiture = SetupText(u"Signiture");
  s.sale_conditions = SetupText(u"Sale_conditions");
  s.bidder_comments = SetupText(u"Bidder_comments");
  s.rec_payment_comment = SetupText(u"Rec_payment_comment");
  s.sent_payment_comment = SetupText(u"Sent_payment_comment");
  s.goods_sent_comment = SetupText(u"Goods_sent_comment");
  s.goods_received_comment = SetupText(u"Goods_received_comment");
  s.feedback_request = SetupText(u"feedback_request");
  s.taxprice = SetupYes(u"taxprice");
  s.taxshipping = SetupYes(u"taxshipping");
  s.taxinsurance = SetupYes(u"taxinsurance");
  s.referralenabled = SetupYes(u"referralenabled");
  MainForm& f = main();
  Recordset* misc = f.Misc.HasRecordset() ? &f.Misc.recordset() : program_->startup.misc.get();
  if (misc && !misc->Eof() && !misc->Bof()) s.refurl = TextOf(misc->Fields(u"refurl"));
  return s;
}

Text AfterSale::ShortDateToday() const {
  return Format(Variant(program_->clock.Today()), u"short date", program_->regional);
}

Text AfterSale::NowText() const {
  return CStr(Variant(program_->clock.Now()), program_->regional);
}

void AfterSale::BuildControls() {
  MainForm& f = main();
  for (const StatusBoxInfo& b : kStatusBoxes)
    for (int side = 0; side < 2; ++side) Box(b.name, side).SetCaption(b.caption);
  // The bidder's winning bid letter saves what this box shows into the record's shipping cost, so the
  // box must show the record's own.
  Control& bidder_shipping = Box(u"shipping_price_txt", 1);
  if (!bidder_shipping.data_source()) bidder_shipping.Bind(f.Bidder, u"Ship_cost");
  Control& date_label = f.Add(ControlKind::Label, u"status_date_lbl");
  date_label.SetCaption(u"Status Date");

  // The Email page: the letter and the bulk list, each on a page of the mail tab strip.
  Control& email_page = f.Add(ControlKind::Frame, u"email_page_fra");
  email_page.SetCaption(u"Email");
  email_page.SetContainer(&f.Page(kEmailPage));  // on its page of SSTab1, where the user sees it
  TabStrip& mail_tabs = f.Add<TabStrip>(u"email_tab");
  mail_tabs.SetContainer(&email_page);
  mail_tabs.SetTabs(2);
  mail_tabs.page(0).caption = u"Letter";
  mail_tabs.page(1).caption = u"Bulk Mail";
  Control* sub[2];
  for (int i = 0; i < 2; ++i) {
    sub[i] = &f.Add(ControlKind::Frame, u"email_fra", i);
    sub[i]->SetCaption(mail_tabs.page(i).caption);
    sub[i]->SetContainer(&email_page);
    sub[i]->SetVisible(i == 0);
  }
  // The selectors show the letter the sale calls for on the details page as well as on the letter page;
  // a click on one opens the letter page once the sale passes the checks.
  Control& selectors = f.Add(ControlKind::Frame, u"letter_selectors_fra");
  selectors.SetCaption(u"Letters");
  for (const char16_t* name : kSelectors) f.Add(ControlKind::CheckBox, name).SetContainer(&selectors);
  label_status_boxes();
  ShowOnPages(selectors, {kDetailsPage, kEmailPage});
  for (auto [index, caption] : {std::pair{1, u"To:"}, std::pair{3, u"Subject:"}, std::pair{0, u"Letter:"}}) {
    Control& label = f.Add(ControlKind::Label, u"emailletter_lbl", index);
    label.SetCaption(caption);
    label.SetContainer(sub[0]);
    f.Add(ControlKind::TextBox, u"emailletter_txt", index).SetContainer(sub[0]);
  }
  for (int i = 0; i < 3; ++i) {
    Control& option = f.Add(ControlKind::CheckBox, u"check1", i);
    option.SetCaption(kLetterOptions[i]);
    option.SetContainer(sub[0]);
  }
  for (auto [index, caption] : {std::pair{0, u"Request Feedback"}, std::pair{1, u"Blank Letter"}}) {
    Control& b = f.Add(ControlKind::Button, u"other_letters_btn", index);
    b.SetCaption(caption);
    b.SetContainer(sub[0]);
  }
  f.Get(u"ctToolBar4").SetContainer(sub[0]);
  ShowOnPages(email_page, {kEmailPage});
  // The Email page opens on the letter, unless it was asked for the bulk list.
  auto entered = std::move(f.SSTab1.OnTabClick);
  f.SSTab1.OnTabClick = [this, entered, &mail_tabs](int left) {
    if (main().SSTab1.tab() == kEmailPage && !program_->main_screen.bulk_view) mail_tabs.SetTab(0);
    if (entered) entered(left);
  };
}

void AfterSale::ShowOnPages(Control& frame, std::initializer_list<int> pages) {
  // The frame is shown while one of its pages is the one in use, before the page's routines run.
  MainForm& f = main();
  std::vector<int> on(pages);
  auto shown = [&f, on] { return std::find(on.begin(), on.end(), f.SSTab1.tab()) != on.end(); };
  frame.SetVisible(shown());
  auto entered = std::move(f.SSTab1.OnTabClick);
  f.SSTab1.OnTabClick = [entered, &frame, shown](int left) {
    frame.SetVisible(shown());
    if (entered) entered(left);
  };
}

void AfterSale::label_status_boxes() {
  // The letter selectors name the letters of the side in view.
  bool seller = Seller();
  Box(kSelectors[0]).SetCaption(u"Winning Bidder Letter");
  Box(kSelectors[1]).SetCaption(seller ? u"Payment Received Letter" : u"Payment Sent Letter");
  Box(kSelectors[2]).SetCaption(seller ? u"Goods Sent Letter" : u"Goods Received Letter");
}

void AfterSale::AddRoutine(const std::shared_ptr<AfterSale>& self, const char* name,
                           void (AfterSale::*routine)()) {
  self->program_->routines.Register(name, [self, routine] { ((*self).*routine)(); });
}

void AfterSale::RegisterRoutines(const std::shared_ptr<AfterSale>& self) {
  MainForm& f = main();
  auto add = [&self](const char* name, void (AfterSale::*routine)()) { AddRoutine(self, name, routine); };
  add("which_letter_to_display", &AfterSale::which_letter_to_display);
  add("which_letter_icon_status_to_display", &AfterSale::which_letter_icon_status_to_display);
  add("label_status_boxes", &AfterSale::label_status_boxes);
  add("update_status_log_bulk_status_change_only", &AfterSale::update_status_log_bulk_status_change_only);
  add("copy_address_btn", &AfterSale::copy_address_btn);
  add("ctToolBar2(2)", &AfterSale::copy_address_btn);

  // The status boxes of both sides. A box that only shows a row being loaded has not been clicked.
  for (int side = 0; side < 2; ++side) {
    for (const char16_t* name : {u"auction_ended_chk", u"contact_chk", u"payment_chk"}) {
      Control& box = Box(name, side);
      const char16_t* field = name == Text(u"auction_ended_chk") ? u"completed"
                              : name == Text(u"contact_chk")     ? u"contact"
                                                                 : u"payment";
      box.OnClick = [self, &box, field] {
        if (!box.loading()) self->status_box_click(field);
      };
    }
    Control& response = Box(u"response_chk", side);
    response.OnClick = [self, &response] {
      if (!response.loading()) self->response_chk_click();
    };
    Control& done = Box(u"trans_comp_chk", side);
    done.OnClick = [self, &done, side] {
      if (!done.loading()) self->trans_comp_chk_click(side);
    };
    Control& date = Box(u"status_date_txt", side);
    date.OnClick = [self, &date] { date.SetText(self->ShortDateToday()); };
  }
  Control& reserve = Box(u"reserve_met_chk", 0);
  reserve.OnClick = [self, &reserve] {
    if (!reserve.loading()) self->Box(u"status_date_txt", 0).SetText(self->ShortDateToday());
  };

  for (const char16_t* name : kSelectors) Box(name).OnClick = [self] { self->letter_selector_click(); };
  for (int i = 0; i < 2; ++i)
    Box(u"other_letters_btn", i).OnClick = [self, i] { self->other_letters_btn(i); };

  TabStrip& mail_tabs = f.Get<TabStrip>(u"email_tab");
  mail_tabs.OnTabClick = [self, &mail_tabs](int) {
    for (int i = 0; i < 2; ++i) self->Box(u"email_fra", i).SetVisible(i == mail_tabs.tab());
    self->program().routines.Call("email_tab_click");
  };
}

std::shared_ptr<AfterSale> RegisterAfterSale(Program& program) {
  auto screen = std::make_shared<AfterSale>(program);
  program.subsystems.push_back(screen);
  screen->BuildControls();
  screen->RegisterRoutines(screen);
  screen->BuildMailControls();
  screen->RegisterMailRoutines(screen);
  return screen;
}

}  // namespace lw
