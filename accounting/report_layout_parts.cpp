#include "accounting/report_layout_parts.h"

#include <algorithm>

#include "screen/names.h"

namespace lw::report_layouts {

namespace {

Currency MoneyOrZero(const Variant& v) {
  return v.IsNull() ? Currency() : MoneyOf(v);
}

bool IsZero(const Variant& v) {
  if (auto* c = v.currency()) return c->scaled() == 0;
  if (auto* n = v.number()) return *n == 0;
  return false;
}

layout::Item& Ensure(Report& r, const char16_t* name, const char16_t* field) {
  if (Item* it = r.detail.Find(name)) return *it;
  return Hidden(r.detail, name, field ? field : u"");
}

}  // namespace

void Landscape(Report& r) {
  r.page.width = kLetterHeight;
  r.page.height = kLetterWidth;
}

Item& Label(Section& s, const char16_t* name, const char16_t* caption, int left, int top, int width,
            bool bold) {
  Item& it = s.AddLabel(name, caption, left, top, width, kRow);
  it.font.bold = bold;
  return it;
}

Item& Field(Section& s, const char16_t* name, const char16_t* field, int left, int top, int width,
            const char16_t* format, bool right) {
  Item& it = s.AddField(name, field, left, top, width, format, kRow);
  if (right) it.align = ReportAlign::kRight;
  return it;
}

Item& Hidden(Section& s, const char16_t* name, const char16_t* field) {
  Item& it = s.AddField(name, field, 0, 0, 0);
  it.visible = false;
  return it;
}

Item& Title(Section& s, const char16_t* name, const char16_t* caption, int top, double size) {
  Item& it = s.AddLabel(name, caption, 0, top, 10000, static_cast<int>(size * 24));
  it.font.bold = true;
  it.font.size = size;
  return it;
}

void Columns(Section& heads, int top, Section& detail, std::span<const Column> columns) {
  for (const Column& c : columns) {
    Item& head = Label(heads, (Text(u"lbl_") + c.name).c_str(), c.caption, c.left, top, c.width, true);
    head.can_grow = true;
    if (c.right) head.align = ReportAlign::kRight;
    Field(detail, c.name, c.field, c.left, 0, c.width, c.format, c.right);
  }
}

int HeadingsBottom(std::span<const Column> columns, int top) {
  ReportFont bold;
  bold.bold = true;
  int bottom = top + kRow;
  for (const Column& c : columns) {
    int lines = static_cast<int>(layout::BreakLines(c.caption, bold, c.width, true).size());
    bottom = std::max(bottom, top + std::max(kRow, lines * layout::LineHeight(bold)));
  }
  return bottom;
}

Currency MoneyOf(const Variant& v) {
  switch (v.kind()) {
    case Variant::Kind::Currency:
      return *v.currency();
    case Variant::Kind::Number:
      return Currency::FromDouble(*v.number());
    case Variant::Kind::Bool:
      return Currency::FromScaled(*v.boolean() ? -Currency::kScale : 0);
    case Variant::Kind::Null:
      throw RuntimeError(err::kInvalidUseOfNull, "Invalid use of Null");
    default:
      throw RuntimeError(err::kTypeMismatch, "Type mismatch");
  }
}

FeeGroups FeesOf(const std::array<Item*, 18>& fees) {
  auto fee = [&](size_t i) { return MoneyOrZero(fees[i]->value); };
  FeeGroups g;
  g.insertion = fee(0);
  g.reserve = fee(10);
  g.formatting = fee(4) + fee(5) + fee(6) + fee(7) + fee(9) + fee(10) + fee(12) + fee(13) + fee(14) +
                 fee(15) + fee(16) + fee(17);
  g.final_value = fee(2) + fee(3);
  g.credits = fee(1) + fee(8) + fee(11);
  g.total = static_cast<float>((g.insertion + g.formatting + g.final_value + g.credits).ToDouble());
  return g;
}

const ProfitFields kRowFields = {u"cost",
                                 u"actual_ship_cost",
                                 u"actual_insure_cost",
                                 u"actual_total_tax",
                                 u"actual_other_cost",
                                 u"ship_cost",
                                 u"price",
                                 u"insure_cost",
                                 u"total_tax",
                                 kFeeColumns};

const ProfitFields kGroupedFields = {
    u"SumOfCost",
    u"SumOfShip_cost",
    u"SumOfInsure",
    u"SumOftax",
    u"SumOf_othercost",
    u"SumOfbuyerShip_cost",
    u"Sum_Of_Price",
    u"SumOfbuyerInsure",
    u"SumOfbuyertax",
    {u"SumOffee_insertion", u"SumOffee_credit_insertion", u"SumOffee_final_value",
     u"SumOffee_final_value_fixed", u"SumOffee_gallery", u"SumOffee_featured_plus", u"SumOffee_10day",
     u"SumOffee_picture", u"SumOffee_nosale_credit", u"SumOffee_picturepack", u"SumOffee_reserve",
     u"SumOffee_reserve_credit", u"SumOffee_bold", u"SumOffee_highlight", u"SumOffee_home",
     u"Sumoffee_Gift_Services", u"SumOffee_bin", u"Sumoffee_scheduled"}};

ProfitCode::ProfitCode(Report& r, const ProfitFields& f) {
  for (size_t i = 0; i < fees_.size(); ++i) fees_[i] = &Hidden(r.detail, kFeeColumns[i], f.fees[i]);
  seller_cost_ = &Ensure(r, u"txtSeller_Cost", f.cost);
  seller_ship_ = &Ensure(r, u"txtSeller_Ship_cost", f.ship);
  insure_ = &Ensure(r, u"txtinsure_cost", f.insure);
  tax_ = &Ensure(r, u"txt_tax", f.tax);
  other_ = &Ensure(r, u"other", f.other);
  buyer_ship_ = &Ensure(r, u"txtShip_cost", f.buyer_ship);
  price_ = &Ensure(r, u"txtPrice", f.price);
  buyer_insure_ = &Ensure(r, u"Insure_costtxt", f.buyer_insure);
  buyer_tax_ = &Ensure(r, u"txttotal_tax", f.buyer_tax);
  total_fees_ = &Ensure(r, u"txttotalfees", nullptr);
  cost_shipping_fees_ = &Ensure(r, u"cost_shipping_fees", nullptr);
  price_shipping_ = &Ensure(r, u"price_shipping", nullptr);
  profit_ = &Ensure(r, u"profit", nullptr);
  rank_ = &Ensure(r, u"txtRank", nullptr);
}

void ProfitCode::Reset() {
  fees_total_ = cost_total_ = price_shipping_total_ = profit_total_ = 0;
  rank_count_ = 0;
}

void ProfitCode::Format() {
  // A row shows only what its own figures gave: what an error stops short of stays empty.
  for (Item* it : {total_fees_, cost_shipping_fees_, price_shipping_, profit_, rank_}) it->value = Variant();
  seller_cost_->forecolor = seller_ship_->forecolor = layout::kBlack;

  FeeGroups g = FeesOf(fees_);
  total_fees_->value = static_cast<double>(g.total);
  Currency cost_shipping_fees = MoneyOf(seller_cost_->value) + MoneyOf(seller_ship_->value) +
                                Currency::FromDouble(g.total) + MoneyOf(insure_->value) +
                                MoneyOf(tax_->value) + MoneyOf(other_->value);
  cost_shipping_fees_->value = cost_shipping_fees;
  Currency price_shipping = MoneyOf(buyer_ship_->value) + MoneyOf(price_->value) +
                            MoneyOf(buyer_insure_->value) + MoneyOf(buyer_tax_->value);
  price_shipping_->value = price_shipping;
  Currency profit = price_shipping - cost_shipping_fees;
  profit_->value = profit;

  fees_total_ += g.total;
  cost_total_ += static_cast<float>(cost_shipping_fees.ToDouble());
  price_shipping_total_ += static_cast<float>(price_shipping.ToDouble());
  profit_total_ += static_cast<float>(profit.ToDouble());

  rank_->value = static_cast<double>(++rank_count_);

  seller_cost_->forecolor = IsZero(seller_cost_->value) ? layout::kRed : layout::kBlack;
  seller_ship_->forecolor = IsZero(seller_ship_->value) ? layout::kRed : layout::kBlack;
}

void ProfitCode::Totals(Report& r) {
  struct Total {
    const char16_t* name;
    float value;
  };
  for (Total t :
       {Total{u"fees_total", fees_total_}, Total{u"fees_total_all", cost_total_},
        Total{u"total_price_shipping", price_shipping_total_}, Total{u"total_profit", profit_total_}})
    if (Item* it = r.Find(t.name)) it->value = static_cast<double>(t.value);
}

void AveragePrice(Report& r) {
  Item& average = r.Get(u"average_price");
  try {
    const Variant& count = r.Get(u"item_count").value;
    int64_t n = count.number() ? static_cast<int64_t>(*count.number()) : 0;
    if (n == 0) throw RuntimeError(11, "Division by zero");
    int64_t scaled = MoneyOf(r.Get(u"price_sum").value).scaled();
    // Halves to even, as the program rounds money.
    int64_t q = scaled / n, rem = scaled % n;
    if (rem != 0) {
      int64_t twice = 2 * (rem < 0 ? -rem : rem);
      bool up = twice > n || (twice == n && (q % 2 != 0));
      if (up) q += scaled < 0 ? -1 : 1;
    }
    average.value = Currency::FromScaled(q);
  } catch (const RuntimeError&) {
    average.value = u"N/A";
  }
}

}  // namespace lw::report_layouts
