// What the report layouts share as they are built: placing labels, fields and column headings, the fee
// groups of a sale, and the profit arithmetic of the sales layouts.
#pragma once

#include <array>
#include <memory>
#include <span>

#include "accounting/layout.h"
#include "accounting/reports.h"

namespace lw::report_layouts {

using layout::Item;
using layout::Report;
using layout::Section;

inline constexpr int kLetterWidth = 12240;
inline constexpr int kLetterHeight = 15840;
inline constexpr int kRow = 240;

// A page across (landscape), for the layouts with many columns.
void Landscape(Report& r);

Item& Label(Section& s, const char16_t* name, const char16_t* caption, int left, int top, int width,
            bool bold = false);
Item& Field(Section& s, const char16_t* name, const char16_t* field, int left, int top, int width,
            const char16_t* format = u"", bool right = false);
// A field the code reads but the page does not show.
Item& Hidden(Section& s, const char16_t* name, const char16_t* field);
// A title in large bold type.
Item& Title(Section& s, const char16_t* name, const char16_t* caption, int top = 0, double size = 14);

// A column: its heading in the page header and its field in the detail.
struct Column {
  const char16_t* name;     // the field's name
  const char16_t* caption;  // the heading
  const char16_t* field;    // the bound column; empty for one the code fills
  int left;
  int width;
  const char16_t* format = u"";
  bool right = false;
};
// Headings at `top` of `heads` (wrapping when long), fields at the top of `detail`.
void Columns(Section& heads, int top, Section& detail, std::span<const Column> columns);
// The bottom of the headings once laid out: where the page header's rule goes.
int HeadingsBottom(std::span<const Column> columns, int top);

// The eighteen fee columns, and the fee groups of a sale: a Null counts as 0; the total is converted to
// single precision, and credits count as they are stored.
inline constexpr std::array<const char16_t*, 18> kFeeColumns = {
    u"fee_insertion",     u"fee_credit_insertion", u"fee_final_value", u"fee_final_value_fixed",
    u"fee_gallery",       u"fee_featured_plus",    u"fee_10day",       u"fee_picture",
    u"fee_nosale_credit", u"fee_picturepack",      u"fee_reserve",     u"fee_reserve_credit",
    u"fee_bold",          u"fee_highlight",        u"fee_home",        u"fee_Gift_Services",
    u"fee_bin",           u"fee_scheduled"};
struct FeeGroups {
  Currency insertion;
  Currency reserve;
  Currency formatting;  // reserve included
  Currency final_value;
  Currency credits;
  float total = 0;
};
// Fees by the column names above, read from the hidden fields that carry them.
FeeGroups FeesOf(const std::array<Item*, 18>& fees);
// A bound value as money: Null raises 94, as arithmetic on it does.
Currency MoneyOf(const Variant& v);

// The columns the profit arithmetic reads: of a row, or of the grouped query's sums.
struct ProfitFields {
  const char16_t* cost;
  const char16_t* ship;
  const char16_t* insure;
  const char16_t* tax;
  const char16_t* other;
  const char16_t* buyer_ship;
  const char16_t* price;
  const char16_t* buyer_insure;
  const char16_t* buyer_tax;
  std::array<const char16_t*, 18> fees;
};
extern const ProfitFields kRowFields;
extern const ProfitFields kGroupedFields;

// The Detail code of the sales layouts: fees, costs, buyer's costs, profit, the running totals kept in
// single precision, the rank, and a red cost or shipping cost of 0. Adds the hidden fields it reads to
// the detail; the shown ones must be there already, under the names of the profit report.
class ProfitCode {
 public:
  ProfitCode(Report& r, const ProfitFields& fields);
  void Format();
  // The footer takes the running totals: fees_total, fees_total_all, total_price_shipping,
  // total_profit (those of them the layout has).
  void Totals(Report& r);
  void Reset();

 private:
  Item* shown(Report& r, const char16_t* name);
  std::array<Item*, 18> fees_{};
  Item *seller_cost_, *seller_ship_, *insure_, *tax_, *other_, *buyer_ship_, *price_, *buyer_insure_,
      *buyer_tax_;
  Item *total_fees_, *cost_shipping_fees_, *price_shipping_, *profit_, *rank_;
  float fees_total_ = 0, cost_total_ = 0, price_shipping_total_ = 0, profit_total_ = 0;
  int rank_count_ = 0;
};

// The average price of the report footer: the sum of `price_sum` over the count in `count`, "N/A" when
// there is nothing to divide by.
void AveragePrice(Report& r);

// The layouts, by family.
std::unique_ptr<Report> MakeProfit100(const LayoutContext& c);
std::unique_ptr<Report> MakeProfit100Combined(const LayoutContext& c);
std::unique_ptr<Report> MakeSale2DatesFull(const LayoutContext& c);
std::unique_ptr<Report> MakePurchases(const LayoutContext& c, bool summary);
std::unique_ptr<Report> MakeInvoice(const LayoutContext& c);
std::unique_ptr<Report> MakeContactSummary(const LayoutContext& c, bool bidder);
std::unique_ptr<Report> MakeDaysEnded(const LayoutContext& c,
                                      int kind);  // 0 days_ended, 1 feedback, 2 bidder
std::unique_ptr<Report> MakeAuctionDetail(const LayoutContext& c);
std::unique_ptr<Report> MakeMailLabel(const LayoutContext& c);
std::unique_ptr<Report> MakeEnvelope(const LayoutContext& c);
std::unique_ptr<Report> MakeEmail(const LayoutContext& c);

}  // namespace lw::report_layouts
