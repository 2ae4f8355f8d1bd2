// The layouts of the auction and its buyer: the invoice, the contact summaries, the day counts and the
// feedback lists, the details of one auction, the mailing label, the envelope and the printed letter.
#include <map>

#include "accounting/report_layout_parts.h"
#include "screen/names.h"

namespace lw::report_layouts {

namespace {

bool True(const Variant& v) {
  if (auto* b = v.boolean()) return *b;
  if (auto* n = v.number()) return *n != 0;
  return false;
}

// Whole days from a date to today, as "#,##0" shows them.
Variant DaysTo(Date today, const Variant& from) {
  if (from.IsNull()) throw RuntimeError(err::kInvalidUseOfNull, "Invalid use of Null");
  const Date* d = from.date();
  if (!d) throw RuntimeError(err::kTypeMismatch, "Type mismatch");
  return today.serial - d->serial;
}

Item& CheckBox(Section& s, const char16_t* name, const char16_t* field, int left, int top) {
  Item it;
  it.name = name;
  it.kind = layout::ItemKind::kCheckBox;
  it.data_field = field;
  it.left = left;
  it.top = top;
  it.width = 200;
  it.height = 200;
  return s.Add(std::move(it));
}

// A caption and its value on one line.
Item& Pair(Section& s, const char16_t* name, const char16_t* caption, const char16_t* field, int left,
           int top, int width = 2400, const char16_t* format = u"") {
  Label(s, (Text(u"lbl_") + name).c_str(), caption, left, top, 1500, true);
  return Field(s, name, field, left + 1500, top, width, format);
}

// A name and an address under a caption.
void AddressBlock(Section& s, const char16_t* caption, const char16_t* name_field,
                  const char16_t* address_field, const char16_t* prefix, int left, int top, double size = 9) {
  Label(s, (Text(u"lbl") + prefix).c_str(), caption, left, top, 800, true).font.size = size;
  Item& name = Field(s, (Text(u"txt") + prefix + u"Name").c_str(), name_field, left + 800, top, 4200);
  name.font.size = size;
  Item& address = Field(s, (Text(u"txt") + prefix + u"Address").c_str(), address_field, left + 800,
                        top + layout::LineHeight(name.font), 4200);
  address.font.size = size;
  address.can_grow = true;
}

}  // namespace

std::unique_ptr<Report> MakeInvoice(const LayoutContext& c) {
  auto r = std::make_unique<Report>(u"invoice");
  r->title = u"Invoice";
  Section& h = r->report_header;
  Title(h, u"lblReportTitle", u"", 0, 12).width = 5000;
  Item& userid = Field(h, u"txtUserid", u"username", 5000, 0, 2600);
  userid.font.bold = true;
  userid.font.size = 12;
  Item& date = Field(h, u"txtDate", u"", 7800, 0, 2300, u"d-mmm-yyyy", true);
  date.value = c.today;
  AddressBlock(h, u"From:", u"Setup.Name", u"Setup.Address", u"From", 0, 600);
  AddressBlock(h, u"To:", u"Seller.Name", u"Seller.Address", u"To", 5200, 600);
  // Under the buyer's address, however long it is.
  Label(h, u"lblEmail", u"Email:", 5200, 1500, 800, true);
  Field(h, u"txtEmail", u"seller.email", 6000, 1500, 4200);
  Label(h, u"lblId", u"Id:", 5200, 1740, 800, true);
  Field(h, u"txtId", u"Seller.Id", 6000, 1740, 4200);
  h.height = 2200;

  Report::Group& g = r->AddGroup(u"ghPayment", u"gfPayment", u"Payment");
  static constexpr Column kColumns[] = {
      {u"txtItem", u"Auction Item #", u"Item", 0, 1300},
      {u"txtTitle", u"Description Title", u"Title", 1300, 3900},
      {u"txtQuantity", u"Qty", u"Quantity", 5200, 500, u"", true},
      {u"txtPrice", u"Amount", u"Price", 5800, 1100, u"currency", true},
      {u"txtStatus_date", u"Status Date", u"Status_date", 7100, 1300, u"d-mmm-yyyy"},
      {u"txtPaid", u"Paid", u"", 8500, 700},
      {u"txtShipped", u"Shipped", u"", 9300, 800},
  };
  Columns(g.header, 120, r->detail, kColumns);
  g.header.AddLine(u"header_rule", 0, 400, 10100);
  g.header.height = 480;
  r->detail.height = kRow;
  r->detail.Find(u"txtTitle")->can_grow = true;
  Item* paid = r->detail.Find(u"txtPaid");
  Item* shipped = r->detail.Find(u"txtShipped");
  Item& payment = Hidden(r->detail, u"Payment", u"Payment");
  Item& trans_comp = Hidden(r->detail, u"Trans_comp", u"Trans_comp");
  r->detail.on_format = [=, &payment, &trans_comp] {
    paid->value = True(payment.value) ? u"Yes" : u"No";
    shipped->value = True(trans_comp.value) ? u"Yes" : u"No";
  };

  Section& f = g.footer;
  f.AddLine(u"footer_rule", 0, 0, 10100);
  Field(f, u"txtQuantityCount", u"Quantity", 5200, 60, 500, u"", true).summary = layout::Summary::kCount;
  struct Subtotal {
    const char16_t* name;
    const char16_t* caption;
    const char16_t* field;
  };
  static constexpr Subtotal kSubtotals[] = {{u"price_subtotal", u"Subtotal", u"Price"},
                                            {u"ship_subtotal", u"Shipping", u"Ship_cost"},
                                            {u"insure_subtotal", u"Insurance", u"insure_cost"},
                                            {u"tax_subtotal", u"Tax", u"total_tax"}};
  int top = 60;
  std::vector<Item*> subtotals;
  for (const Subtotal& s : kSubtotals) {
    Label(f, (Text(u"lbl_") + s.name).c_str(), s.caption, 7100, top, 1300, true);
    Item& it = Field(f, s.name, s.field, 8500, top, 1600, u"currency", true);
    it.summary = layout::Summary::kSum;
    subtotals.push_back(&it);
    top += kRow;
  }
  f.AddLine(u"total_rule", 8500, top + 30, 1600);
  Item& amount = Label(f, u"lblAmount", u"Amount Due", 7100, top + 60, 1300, true);
  Item& total = Field(f, u"invoice_total", u"", 8500, top + 60, 1600, u"currency", true);
  total.font.bold = true;
  Item& group_paid = Hidden(f, u"gfPaymentPaid", u"Payment");
  f.height = top + 60 + kRow + 120;
  f.on_format = [subtotals, &amount, &total, &group_paid] {
    total.value = Variant();
    amount.caption = True(group_paid.value) ? u"Amount Paid" : u"Amount Owed";
    Currency sum;
    for (Item* it : subtotals) sum += MoneyOf(it->value);
    total.value = sum;
  };
  return r;
}

std::unique_ptr<Report> MakeContactSummary(const LayoutContext& c, bool bidder) {
  auto r = std::make_unique<Report>(bidder ? u"contactsummary_2" : u"contactsummary_1");
  Landscape(*r);
  const char16_t* title = bidder ? u"Contact Summary - All Incomplete Auctions (Bidder Auctions)"
                                 : u"Contact Summary - All Incomplete Auctions (Seller Auctions)";
  r->title = title;
  Title(r->report_header, u"lblReportTitle", title, 0, 12);
  Label(r->report_header, u"lblUserid", u"Report for Userid", 0, 400, 1600, true);
  Field(r->report_header, u"username", u"username", 1700, 400, 3000).font.bold = true;
  r->report_header.height = 760;
  const Column columns[] = {
      {u"txtItem", u"Item #", u"Item", 0, 1100},
      {u"txtTitle", u"Item Title", u"Title", 1100, 3100},
      {u"txtPrice", u"Price", u"Price", 4200, 1000, u"currency", true},
      {u"txtName", u"Buyer Name", bidder ? u"bidder.Name" : u"seller.Name", 5300, 1800},
      {u"txtEmail", u"Buyer Email", bidder ? u"Seller_email" : u"Email", 7200, 2500},
      {u"lblContactMade", u"Contact Made", u"", 9800, 900},
      {u"lblResponse", u"Repsonse Received", u"", 10800, 1000},
      {u"lblPayment", bidder ? u"Payment Sent" : u"Payment Received", u"", 11900, 1000},
      {u"status_change_days", u"Days Since Last Status Change", u"", 13000, 1400, u"#,##0", true},
  };
  Columns(r->page_header, 0, r->detail, columns);
  int bottom = HeadingsBottom(columns, 0);
  r->page_header.AddLine(u"header_rule", 0, bottom + 30, 14400);
  r->page_header.height = bottom + 90;
  for (const char16_t* n : {u"lblContactMade", u"lblResponse", u"lblPayment"})
    r->detail.Find(n)->visible = false;
  CheckBox(r->detail, u"chkContact", u"Contact", 10200, 20);
  CheckBox(r->detail, u"chkResponse", u"Response", 11200, 20);
  CheckBox(r->detail, u"chkPayment", u"Payment", 12300, 20);
  r->detail.height = kRow;
  r->detail.Find(u"txtTitle")->can_grow = true;
  Item* days = r->detail.Find(u"status_change_days");
  Item& status_date = Hidden(r->detail, u"Status_date", u"Status_date");
  Date today = c.today;
  r->detail.on_format = [days, &status_date, today] {
    days->value = Variant();
    days->value = DaysTo(today, status_date.value);
  };
  for (auto [header, footer, field] : {std::tuple{u"ghContact", u"gfContact", u"Contact"},
                                       std::tuple{u"ghResponse", u"gfResponse", u"Response"},
                                       std::tuple{u"ghPayment", u"gfPayment", u"Payment"}})
    r->AddGroup(header, footer, field);
  Section& gf = r->groups().back().footer;
  Label(gf, u"lblSubTotal", u"Sub Total", 1100, 30, 3000, true);
  Field(gf, u"price_subtotal", u"Price", 4200, 30, 1000, u"currency", true).summary = layout::Summary::kSum;
  gf.height = kRow + 90;
  Section& rf = r->report_footer;
  rf.AddLine(u"footer_rule", 0, 0, 14400);
  Label(rf, u"lblGrandTotal", u"Grand Total for Report", 1100, 60, 3000, true);
  Item& grand = Field(rf, u"price_total", u"Price", 4200, 60, 1000, u"currency", true);
  grand.summary = layout::Summary::kSum;
  grand.font.bold = true;
  rf.height = kRow + 120;
  return r;
}

std::unique_ptr<Report> MakeDaysEnded(const LayoutContext& c, int kind) {
  static constexpr const char16_t* kNames[] = {u"days_ended", u"feedback", u"feedback_bidder"};
  auto r = std::make_unique<Report>(kNames[kind]);
  const char16_t* title = kind == 0 ? u"Number of Days Since Auction Ended" : u"Feedback Not Sent";
  r->title = title;
  Title(r->report_header, u"lblReportTitle", title, 0, 12);
  Field(r->report_header, u"txtDate", u"", 0, 400, 6000, u"long date").value = c.today;
  r->report_header.height = 760;
  std::vector<Column> columns{{u"txtItem", u"Item #", u"Item", 0, 1100},
                              {u"txtTitle", u"Item Title", u"Title", 1100, 3600}};
  if (kind == 0) {
    columns.push_back({u"txtId", u"Buyer ID", u"seller.id", 4700, 1600});
    columns.push_back({u"days_ended", u"Days Since Auction Ended", u"", 6300, 1300, u"#,##0", true});
    columns.push_back({u"lblCompleted", u"Completed", u"", 7700, 1000});
    columns.push_back({u"lblReserveMet", u"Reserve Met", u"", 8700, 1000});
  } else {
    columns.push_back({u"txtId", kind == 1 ? u"Buyer ID" : u"Seller ID",
                       kind == 1 ? u"seller.id" : u"Seller_id", 4700, 1600});
    columns.push_back({u"txtName", u"Name", kind == 1 ? u"seller.Name" : u"bidder.Name", 6300, 2000});
    columns.push_back({u"days_ended", u"Days Since Auction Ended", u"", 8400, 1300, u"#,##0", true});
  }
  Columns(r->page_header, 0, r->detail, columns);
  int bottom = HeadingsBottom(columns, 0);
  r->page_header.AddLine(u"header_rule", 0, bottom + 30, 10000);
  r->page_header.height = bottom + 90;
  r->detail.height = kRow;
  if (kind == 0) {
    for (const char16_t* n : {u"lblCompleted", u"lblReserveMet"}) r->detail.Find(n)->visible = false;
    CheckBox(r->detail, u"chkCompleted", u"Completed", 8000, 20);
    CheckBox(r->detail, u"chkReserveMet", u"Reserve_met", 9000, 20);
  }
  Report::Group& g = r->AddGroup(u"ghtitle", u"gftitle", u"Title");
  g.header.height = kRow + 60;
  Field(g.header, u"txtGroupTitle", u"Title", 0, 60, 9000).font.bold = true;
  Item* days = r->detail.Find(u"days_ended");
  Item& end = Hidden(r->detail, u"End", u"End");
  Date today = c.today;
  r->detail.on_format = [days, &end, today] {
    days->value = Variant();
    days->value = DaysTo(today, end.value);
  };
  return r;
}

std::unique_ptr<Report> MakeAuctionDetail(const LayoutContext&) {
  auto r = std::make_unique<Report>(u"auction_detail");
  r->title = u"Details for Auction";
  Section& h = r->report_header;
  Title(h, u"lblReportTitle", u"Details for Auction");
  Field(h, u"txtItem", u"Item", 0, 420, 2000).font.bold = true;
  Item& title = Field(h, u"txtTitle", u"Title", 2000, 420, 8000);
  title.font.bold = true;
  title.can_grow = true;
  h.height = 800;

  Section& d = r->detail;
  int y = 0;
  auto left = [&](const char16_t* name, const char16_t* caption, const char16_t* field,
                  const char16_t* format) {
    Item& it = Pair(d, name, caption, field, 0, y, 2600, format);
    if (Text(format) == u"currency") it.align = ReportAlign::kRight;
    y += kRow;
    return &it;
  };
  left(u"txtStart", u"Start", u"Start", u"general date");
  left(u"txtEnd", u"End", u"End", u"general date");
  left(u"txtLastUpdated", u"Last Updated", u"lastupdated", u"general date");
  left(u"txtStatusDate", u"Status Date", u"Status_date", u"general date");
  y += 120;
  left(u"txtSeller_Cost", u"Cost Price", u"Cost", u"currency");
  left(u"txtSeller_Ship_cost", u"Shipping Cost", u"actual_ship_cost", u"currency");
  left(u"txtinsure_cost", u"Insurance Cost", u"actual_insure_cost", u"currency");
  left(u"other", u"Other Costs", u"actual_other_cost", u"currency");
  left(u"txt_tax", u"Tax", u"actual_total_tax", u"currency");
  y += 120;
  left(u"txtPrice", u"Final Price", u"Price", u"currency");
  left(u"txtShip_cost", u"Shipping", u"Ship_cost", u"currency");
  left(u"Insure_costtxt", u"Insurance", u"insure_cost", u"currency");
  left(u"txttotal_tax", u"Buyer Tax", u"total_tax", u"currency");
  y += 120;
  Item* insertion = left(u"txtinsertion", u"Insertion Fee", u"", u"currency");
  Item* reserve = left(u"txtreserve", u"Reserve Fee", u"", u"currency");
  Item* display = left(u"txtdisplay", u"Display Fees", u"", u"currency");
  Item* final_value = left(u"txt_other", u"Final Value Fees", u"", u"currency");
  Item* credits = left(u"txtcredits", u"Credits", u"", u"currency");
  left(u"txttotalfees", u"Total Fees", u"", u"currency");
  left(u"profit", u"Profit", u"", u"currency")->font.bold = true;
  int left_bottom = y;

  y = 0;
  int x = 5200;
  for (auto [name, caption, field] : {std::tuple{u"chkContact", u"Contact", u"Contact"},
                                      std::tuple{u"chkResponse", u"Response", u"Response"},
                                      std::tuple{u"chkPayment", u"Payment", u"Payment"},
                                      std::tuple{u"chkTrans_comp", u"Shipped", u"Trans_comp"},
                                      std::tuple{u"chkFeedback", u"Feedback", u"Feedback"}}) {
    Label(d, (Text(u"lbl_") + name).c_str(), caption, x, y, 1500, true);
    CheckBox(d, name, field, x + 1500, y + 20);
    y += kRow;
  }
  y += 120;
  Pair(d, u"txtQuantity", u"Quantity", u"Quantity", x, y);
  Pair(d, u"txtBids", u"Bids", u"No_bids", x, y += kRow);
  Label(d, u"lbl_chkReserveMet", u"Reserve Met", x, y += kRow, 1500, true);
  CheckBox(d, u"chkReserveMet", u"Reserve_met", x + 1500, y + 20);
  Pair(d, u"txtCategory", u"Category", u"category", x, y += kRow, 3300).can_grow = true;
  y += kRow + 120;
  Pair(d, u"txtBuyerId", u"User Id", u"Id", x, y, 3300);
  Pair(d, u"txtEmail", u"Email", u"Email", x, y += kRow, 3300);
  Pair(d, u"txtName", u"Buyer Name", u"Name", x, y += kRow, 3300);
  Pair(d, u"txtAddress", u"Address", u"Address", x, y += kRow, 3300).can_grow = true;
  y += kRow + 120;
  Item pic;
  pic.name = u"picAuction";
  pic.kind = layout::ItemKind::kPicture;
  pic.data_field = u"Pic_location";
  pic.left = x + 1500;
  pic.top = y;
  pic.width = 3000;
  pic.height = std::max(kRow, left_bottom - y);
  d.Add(std::move(pic));

  y = std::max(left_bottom, y) + 240;
  Label(d, u"lbl_status_log", u"Status Log", 0, y, 1500, true);
  Field(d, u"txtStatusLog", u"status_log", 1500, y, 8600).can_grow = true;
  Label(d, u"lbl_Comments", u"Comments", 0, y + kRow + 120, 1500, true);
  Field(d, u"txtComments", u"Comments", 1500, y + kRow + 120, 8600).can_grow = true;
  d.height = y + 2 * kRow + 120;

  auto code = std::make_shared<ProfitCode>(*r, kRowFields);
  std::array<Item*, 18> fees;
  for (size_t i = 0; i < fees.size(); ++i) fees[i] = d.Find(kFeeColumns[i]);
  r->on_start = [code] { code->Reset(); };
  d.on_format = [=] {
    for (Item* it : {insertion, reserve, display, final_value, credits}) it->value = Variant();
    FeeGroups g = FeesOf(fees);
    insertion->value = g.insertion;
    reserve->value = g.reserve;
    display->value = g.formatting - g.reserve;
    final_value->value = g.final_value;
    credits->value = g.credits;
    code->Format();
  };
  return r;
}

std::unique_ptr<Report> MakeMailLabel(const LayoutContext&) {
  auto r = std::make_unique<Report>(u"maillabelreport");
  r->title = u"Mailing Label";
  Section& h = r->report_header;
  AddressBlock(h, u"From:", u"Setup.Name", u"Setup.Address", u"From", 0, 0, 10);
  AddressBlock(h, u"To:", u"Seller.Name", u"Seller.Address", u"To", 2000, 1500, 14);
  Item& email = Field(h, u"txtEmail", u"email", 2800, 2400, 6000);
  email.font.size = 10;
  h.height = 2900;
  r->detail.height = kRow;
  Field(r->detail, u"txtItem", u"item", 2800, 0, 1300);
  Field(r->detail, u"txtTitle", u"title", 4100, 0, 4200).can_grow = true;
  Item& paid = Label(r->detail, u"paid_lbl", u"", 8400, 0, 1200);
  Item& payment = Hidden(r->detail, u"Payment", u"payment");
  r->detail.on_format = [&paid, &payment] { paid.caption = True(payment.value) ? u"- Paid" : u"- Not Paid"; };
  return r;
}

std::unique_ptr<Report> MakeEnvelope(const LayoutContext&) {
  auto r = std::make_unique<Report>(u"envelopereport");
  r->title = u"Envelope";
  // A business envelope, across.
  r->page.width = 13680;
  r->page.height = 5940;
  Section& d = r->detail;
  d.new_page_before = true;
  Field(d, u"txtName", u"Name", 5000, 1600, 7000).font.size = 12;
  Item& address = Field(d, u"txtAddress", u"Address", 5000, 1600 + 288, 7000);
  address.font.size = 12;
  address.can_grow = true;
  d.height = 1600 + 2 * 288;
  return r;
}

std::unique_ptr<Report> MakeEmail(const LayoutContext&) {
  auto r = std::make_unique<Report>(u"emailreport");
  r->title = u"Letters";
  Section& d = r->detail;
  d.new_page_before = true;
  Label(d, u"lblTo", u"To:", 0, 0, 1000, true).font.size = 10;
  Field(d, u"emailtext_to", u"emailtext_to", 1000, 0, 8000).font.size = 10;
  Label(d, u"lblSubject", u"Subject:", 0, 288, 1000, true).font.size = 10;
  Item& subject = Field(d, u"emailtext_subject", u"emailtext_subject", 1000, 288, 8000);
  subject.font.size = 10;
  subject.can_grow = true;
  Item& text = Field(d, u"emailtext", u"emailtext", 0, 800, 10000);
  text.font.size = 10;
  text.can_grow = true;
  d.height = 1100;
  return r;
}

}  // namespace lw::report_layouts

namespace lw {

std::unique_ptr<layout::Report> MakeReportLayout(TextView name, const LayoutContext& c) {
  using namespace report_layouts;
  Text n = FoldName(name);
  if (n == u"invoice") return MakeInvoice(c);
  if (n == u"sale2datesfull") return MakeSale2DatesFull(c);
  if (n == u"profit100") return MakeProfit100(c);
  if (n == u"profit100combined") return MakeProfit100Combined(c);
  if (n == u"auction_detail") return MakeAuctionDetail(c);
  if (n == u"maillabelreport") return MakeMailLabel(c);
  if (n == u"contactsummary_1") return MakeContactSummary(c, false);
  if (n == u"contactsummary_2") return MakeContactSummary(c, true);
  if (n == u"days_ended") return MakeDaysEnded(c, 0);
  if (n == u"feedback") return MakeDaysEnded(c, 1);
  if (n == u"feedback_bidder") return MakeDaysEnded(c, 2);
  if (n == u"purch2datesfull") return MakePurchases(c, false);
  if (n == u"purch2datessum") return MakePurchases(c, true);
  if (n == u"envelopereport") return MakeEnvelope(c);
  if (n == u"emailreport") return MakeEmail(c);
  return nullptr;
}

}  // namespace lw
