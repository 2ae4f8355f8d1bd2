// The sales layouts: the profit report of single sales and of sales grouped by title, the sales of a
// period (in full, as a summary, and as the list of items), and the purchases of a period.
#include "accounting/report_layout_parts.h"

namespace lw::report_layouts {

namespace {

constexpr char16_t kRedNote[] =
    u"Values in RED indicate that you may not have entered a value for this field.";
constexpr int kMoney = 880;

// The page footer's note on red values.
void RedNote(Report& r) {
  r.page_footer.height = kRow;
  Label(r.page_footer, u"Label13", kRedNote, 0, 0, 10000);
}

// "Report for Userid:" and the user id at the top of every page.
void UseridLine(Report& r) {
  Label(r.page_header, u"lblUserid", u"Report for Userid:", 0, 0, 1600, true);
  Field(r.page_header, u"username", u"username", 1600, 0, 3000).font.bold = true;
}

// The headings over groups of columns, on the line above the column headings.
void Over(Report& r, const char16_t* name, const char16_t* caption, int left, int right, int top) {
  Item& it = Label(r.page_header, name, caption, left, top, right - left, true);
  it.align = ReportAlign::kCenter;
  r.page_header.AddLine(Text(name) + u"_rule", left, top + kRow, right - left);
}

void HeaderRule(Report& r, std::span<const Column> columns, int top) {
  int bottom = HeadingsBottom(columns, top);
  const Column& last = columns.back();
  r.page_header.AddLine(u"header_rule", 0, bottom + 30, last.left + last.width);
  r.page_header.height = bottom + 90;
}

// The totals of the sales layouts in `band`: counts and sums of the shown columns under them, and the
// running totals the detail code keeps.
struct TotalPlace {
  const char16_t* name;
  const char16_t* field;  // summed column; empty for a running total
  int left;
};

void Totals(Section& band, std::span<const TotalPlace> places, int top, bool count_items, int count_left,
            int label_left, const char16_t* label = u"Totals") {
  band.AddLine(u"totals_rule", 0, 0, places.back().left + kMoney);
  if (count_items) {
    Item& sold = Field(band, u"items_sold", u"Item", count_left, top, 500, u"", true);
    sold.summary = layout::Summary::kCount;
    Label(band, u"lblItemsSold", u"Items Sold", count_left + 600, top, 1000, true);
  }
  Label(band, u"lblTotals", label, label_left, top, 1600, true);
  for (const TotalPlace& p : places) {
    Item& it = Field(band, p.name, p.field, p.left, top, kMoney, u"currency", true);
    it.font.bold = true;
    if (*p.field) it.summary = layout::Summary::kSum;
  }
  band.height = top + kRow + 60;
}

void AverageLine(Section& band, const char16_t* price_field, int top, int label_left, int left) {
  Label(band, u"lblAverage", u"Average Price", label_left, top, 1600, true);
  Field(band, u"average_price", u"", left, top, kMoney, u"currency", true).font.bold = true;
  Hidden(band, u"price_sum", price_field).summary = layout::Summary::kSum;
  Hidden(band, u"item_count", u"Item").summary = layout::Summary::kCount;
  band.height = std::max(band.height, top + kRow + 60);
}

// Detail code and footer code of a layout with the profit arithmetic.
void HookProfit(Report& r, const ProfitFields& fields, Section& totals_band) {
  auto code = std::make_shared<ProfitCode>(r, fields);
  r.on_start = [code] { code->Reset(); };
  r.detail.on_format = [code] { code->Format(); };
  Report* report = &r;
  auto previous = totals_band.on_format;
  totals_band.on_format = [code, report, previous] {
    code->Totals(*report);
    if (previous) previous();
  };
}

constexpr Column kProfitColumns[] = {
    {u"txtRank", u"Rank", u"", 0, 500, u"", true},
    {u"txtItem", u"Item#", u"Item", 600, 1000},
    {u"txtTitle", u"Title", u"Title", 1600, 2400},
    {u"txtName", u"Buyer Name", u"Name", 4000, 1500},
    {u"txtSeller_Cost", u"Cost Price", u"cost", 5500, kMoney, u"currency", true},
    {u"txtSeller_Ship_cost", u"Shipping Cost", u"actual_ship_cost", 6380, kMoney, u"currency", true},
    {u"txtinsure_cost", u"Insurance Cost", u"actual_insure_cost", 7260, kMoney, u"currency", true},
    {u"other", u"Other Costs", u"actual_other_cost", 8140, kMoney, u"currency", true},
    {u"txt_tax", u"Tax", u"actual_total_tax", 9020, kMoney, u"currency", true},
    {u"txttotalfees", u"Fees", u"", 9900, kMoney, u"currency", true},
    {u"cost_shipping_fees", u"Cost + Shipping + Insurance + Fees +Tax", u"", 10780, kMoney, u"currency",
     true},
    {u"txtPrice", u"Final Price", u"price", 11660, kMoney, u"currency", true},
    {u"price_shipping", u"Final Price + Shipping + Insurance + Tax", u"", 12540, kMoney, u"currency", true},
    {u"profit", u"Profit", u"", 13420, kMoney, u"currency", true},
};

constexpr TotalPlace kProfitTotals[] = {
    {u"cost_total", u"cost", 5500},
    {u"shipping_total", u"actual_ship_cost", 6380},
    {u"Insurance", u"actual_insure_cost", 7260},
    {u"othertotal", u"actual_other_cost", 8140},
    {u"tax_total", u"actual_total_tax", 9020},
    {u"fees_total", u"", 9900},
    {u"fees_total_all", u"", 10780},
    {u"price_total", u"price", 11660},
    {u"total_price_shipping", u"", 12540},
    {u"total_profit", u"", 13420},
};

void ProfitHeadings(Report& r, std::span<const Column> columns) {
  UseridLine(r);
  Over(r, u"lblCostOfPurchases", u"Cost of Purchases", 5500, 11660, 300);
  Over(r, u"lblBuyerCosts", u"Buyer Costs", 11660, 13420, 300);
  Columns(r.page_header, 600, r.detail, columns);
  HeaderRule(r, columns, 600);
  r.detail.height = kRow;
  r.detail.Find(u"txtTitle")->can_grow = true;
}

// A report with its title at the top of its report header; across the page unless `upright`.
std::unique_ptr<Report> Titled(const char16_t* name, const char16_t* title, int header_height,
                               bool upright = false) {
  auto r = std::make_unique<Report>(name);
  if (!upright) Landscape(*r);
  r->title = title;
  r->report_header.height = header_height;
  Title(r->report_header, u"lblReportTitle", title);
  return r;
}

// "Between", date1, "and", date2: the period, whose dates the report page fills in.
void PeriodLine(Section& s, int top) {
  Label(s, u"lblBetween", u"Between", 0, top, 800, true);
  Label(s, u"date1", u"", 800, top, 1600);
  Label(s, u"lblAnd", u"and", 2400, top, 500, true);
  Label(s, u"date2", u"", 2900, top, 1600);
}

}  // namespace

std::unique_ptr<Report> MakeProfit100(const LayoutContext&) {
  auto r = Titled(u"profit100", u"Profit Report Top 100 Sales", 480);
  ProfitHeadings(*r, kProfitColumns);
  // One group over the whole report, for its footer of totals.
  Report::Group& g = r->AddGroup(u"GroupHeader1", u"GroupFooter1", u"");
  Totals(g.footer, kProfitTotals, 60, true, 0, 1600);
  HookProfit(*r, kRowFields, g.footer);
  RedNote(*r);
  return r;
}

std::unique_ptr<Report> MakeProfit100Combined(const LayoutContext&) {
  auto r = Titled(u"profit100combined", u"Profit Report Top 100 Sales", 480);
  // One row per title: the title and its rank head the row of its sums.
  Column columns[std::size(kProfitColumns)];
  std::copy(std::begin(kProfitColumns), std::end(kProfitColumns), columns);
  columns[0] = {u"lbl_rank", u"Rank", u"", 0, 500, u"", true};
  columns[1] = {u"Count_Of_Seller", u"Items", u"Count_Of_Seller", 600, 1000, u"", true};
  columns[2] = {u"lbl_title", u"Title", u"", 1600, 2400};
  columns[3] = {u"lbl_buyer", u"", u"", 4000, 1500};
  for (size_t i = 4; i < std::size(columns); ++i) {
    if (*columns[i].field == 0) continue;
    static constexpr const char16_t* kSums[] = {u"SumOfCost", u"SumOfShip_cost", u"SumOfInsure",
                                                u"SumOf_othercost", u"SumOftax"};
    if (i < 9) columns[i].field = kSums[i - 4];
  }
  columns[11].field = u"Sum_Of_Price";
  UseridLine(*r);
  Over(*r, u"lblCostOfPurchases", u"Cost of Purchases", 5500, 11660, 300);
  Over(*r, u"lblBuyerCosts", u"Buyer Costs", 11660, 13420, 300);
  Columns(r->page_header, 600, r->detail, columns);
  HeaderRule(*r, columns, 600);
  for (const char16_t* unused : {u"lbl_rank", u"lbl_title", u"lbl_buyer"})
    r->detail.Find(unused)->visible = false;
  r->detail.height = kRow;
  Report::Group& g = r->AddGroup(u"GroupHeader1", u"GroupFooter1", u"Title");
  g.header.height = kRow + 60;
  Item& line = Field(g.header, u"lineitem_txt", u"", 0, 60, 500, u"", true);
  line.font.bold = true;
  Field(g.header, u"txtTitle", u"Title", 600, 60, 9000).font.bold = true;
  // The rank is the row counter; the detail code counts it, the header that opens the row shows it.
  auto rank = std::make_shared<int>(0);
  g.header.on_format = [rank, &line] { line.value = static_cast<double>(++*rank); };
  TotalPlace totals[std::size(kProfitTotals)];
  std::copy(std::begin(kProfitTotals), std::end(kProfitTotals), totals);
  static constexpr const char16_t* kSummed[] = {u"SumOfCost", u"SumOfShip_cost", u"SumOfInsure",
                                                u"SumOf_othercost", u"SumOftax"};
  for (size_t i = 0; i < 5; ++i) totals[i].field = kSummed[i];
  totals[7].field = u"Sum_Of_Price";
  Totals(r->report_footer, totals, 60, true, 0, 1600);
  // Each row stands for as many sales as its title had.
  Item& sold = *r->report_footer.Find(u"items_sold");
  sold.data_field = u"Count_Of_Seller";
  sold.summary = layout::Summary::kSum;
  HookProfit(*r, kGroupedFields, r->report_footer);
  auto previous = r->on_start;
  r->on_start = [rank, previous] {
    *rank = 0;
    previous();
  };
  RedNote(*r);
  return r;
}

std::unique_ptr<Report> MakeSale2DatesFull(const LayoutContext&) {
  auto r = Titled(u"sale2datesfull", u"Sales Report for Period", 1000);
  Item& heading = Title(r->report_header, u"lblHeading", u"", 400, 11);
  heading.visible = false;
  PeriodLine(r->report_header, 700);
  static constexpr Column kColumns[] = {
      {u"txtItem", u"Item", u"Item", 0, 1100},
      {u"txtTitle", u"Title", u"Title", 1100, 3000},
      {u"txtEnd", u"End", u"End", 4100, 1000, u"d-mmm-yy"},
      {u"txtSeller_Cost", u"Cost Price", u"cost", 5100, kMoney, u"currency", true},
      {u"txtSeller_Ship_cost", u"Shipping", u"actual_ship_cost", 5980, kMoney, u"currency", true},
      {u"cost_shipping_fees", u"Sub Total", u"", 6860, kMoney, u"currency", true},
      {u"txttotalfees", u"Fees", u"", 7740, kMoney, u"currency", true},
      {u"txtPrice", u"Final Price", u"price", 8620, kMoney, u"currency", true},
      {u"txttotal_tax", u"Tax", u"total_tax", 9500, kMoney, u"currency", true},
      {u"Insure_costtxt", u"Insure.", u"insure_cost", 10380, kMoney, u"currency", true},
      {u"other", u"Other Costs", u"actual_other_cost", 11260, kMoney, u"currency", true},
      {u"profit", u"Profit", u"", 12140, kMoney, u"currency", true},
  };
  UseridLine(*r);
  Over(*r, u"lblCostOfPurchases", u"Cost of Purchases", 5100, 8620, 300);
  Over(*r, u"lblBuyerCosts", u"Buyer Costs", 8620, 11260, 300);
  Columns(r->page_header, 600, r->detail, kColumns);
  HeaderRule(*r, kColumns, 600);
  r->detail.height = kRow;
  r->detail.Find(u"txtTitle")->can_grow = true;
  Report::Group& g = r->AddGroup(u"GroupHeader1", u"GroupFooter1", u"");
  static constexpr TotalPlace kTotals[] = {
      {u"cost_total", u"cost", 5100},
      {u"shipping_total", u"actual_ship_cost", 5980},
      {u"fees_total_all", u"", 6860},
      {u"fees_total", u"", 7740},
      {u"price_total", u"price", 8620},
      {u"buyer_tax_total", u"total_tax", 9500},
      {u"buyer_insure_total", u"insure_cost", 10380},
      {u"othertotal", u"actual_other_cost", 11260},
      {u"total_profit", u"", 12140},
  };
  Totals(g.footer, kTotals, 60, true, 0, 1600);
  Hidden(g.footer, u"total_price_shipping", u"");
  AverageLine(r->report_footer, u"price", 60, 1600, 8620);
  r->report_footer.on_format = [rp = r.get()] { AveragePrice(*rp); };
  HookProfit(*r, kRowFields, g.footer);
  RedNote(*r);
  return r;
}

std::unique_ptr<Report> MakePurchases(const LayoutContext&, bool summary) {
  auto r =
      Titled(summary ? u"purch2datessum" : u"purch2datesfull",
             summary ? u"Purchase Summary Report for Period" : u"Purchase Report for Period", 1000, true);
  PeriodLine(r->report_header, 500);
  static constexpr Column kColumns[] = {
      {u"txtItem", u"Item", u"Item", 0, 1100},
      {u"txtTitle", u"Title", u"Title", 1100, 3400},
      {u"txtStart", u"Start", u"Start", 4500, 1000, u"d-mmm-yy"},
      {u"txtEnd", u"End", u"End", 5500, 1000, u"d-mmm-yy"},
      {u"txtShip_cost", u"Shipping Cost", u"Ship_cost", 6500, kMoney + 120, u"currency", true},
      {u"txtPrice", u"Final Price", u"Price", 7500, kMoney + 120, u"currency", true},
      {u"price_shipping", u"Price + Shipping", u"", 8500, kMoney + 120, u"currency", true},
  };
  Columns(r->page_header, 0, r->detail, kColumns);
  HeaderRule(*r, kColumns, 0);
  r->detail.height = kRow;
  r->detail.Find(u"txtTitle")->can_grow = true;
  r->detail.visible = !summary;
  Item* ship = r->detail.Find(u"txtShip_cost");
  Item* price = r->detail.Find(u"txtPrice");
  Item* both = r->detail.Find(u"price_shipping");
  auto total = std::make_shared<Currency>();
  r->on_start = [total] { *total = Currency(); };
  r->detail.on_format = [=] {
    both->value = Variant();
    ship->forecolor = layout::kBlack;
    Currency sum = MoneyOf(price->value) + MoneyOf(ship->value);
    both->value = sum;
    *total += sum;
    ship->forecolor = ship->value == Variant(Currency()) ? layout::kRed : layout::kBlack;
  };
  Section& f = r->report_footer;
  static constexpr TotalPlace kTotals[] = {{u"shipping_total", u"Ship_cost", 6500},
                                           {u"price_total", u"Price", 7500},
                                           {u"total_price_shipping", u"", 8500}};
  f.AddLine(u"totals_rule", 0, 0, 9500);
  Label(f, u"lblTotals", summary ? u"Purchase Grand Totals" : u"Totals", 0, 60, 3000, true);
  for (const TotalPlace& p : kTotals) {
    Item& it = Field(f, p.name, p.field, p.left, 60, kMoney + 120, u"currency", true);
    it.font.bold = true;
    if (*p.field) it.summary = layout::Summary::kSum;
  }
  Item& sold = Field(f, u"items_sold", u"Item", 0, 360, 500, u"", true);
  sold.summary = layout::Summary::kCount;
  Label(f, u"lblItemsSold", u"Items Purchased", 600, 360, 1600, true);
  AverageLine(f, u"Price", 660, 0, 7500);
  Item& note = Label(f, u"Label13", kRedNote, 0, 1000, 10000);
  note.can_grow = true;
  f.height = 1300;
  Item* running = r->Find(u"total_price_shipping");
  f.on_format = [total, running, rp = r.get()] {
    running->value = *total;
    AveragePrice(*rp);
  };
  return r;
}

}  // namespace lw::report_layouts
