#include "screen/main/views.h"

#include <memory>
#include <string>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "screen/main/main_form.h"
#include "screen/main/main_parts.h"
#include "screen/main/view_rules.h"

namespace lw {
namespace {

class Views {
 public:
  explicit Views(MainForm& form) : f_(form), p_(form.program()) {}

  void Register(const std::shared_ptr<Views>& self);

  // The routines others call by name.
  void auction_filter();
  void do_query();
  void records_returned();
  void sum_grid();
  void save_data_changed();
  void lock_seller_grid();
  void print_filter();

 private:
  DataControl& Side() const { return f_.IsSeller() ? f_.seller : f_.Bidder; }
  Grid& SideGrid() const { return f_.IsSeller() ? f_.seller_grid : f_.buyer_grid; }
  Control& FilterBox() const { return *f_.Find(u"Apply_flt_chk"); }

  void BuildGrid(Grid& grid, bool seller);
  void OnStatusChange();
  void StatusChangeSteps();
  void OnTypeChange();
  void OnSiteChange();
  void OnFilterBox();
  void OnFilterKey(int& ascii);
  void OnHeadClick(bool seller, int column);
  void FitStatusList(bool seller);
  // Runs a change of list selection or check box made by code, with the settling flag up so that the
  // handlers of the selectors and the filter box leave it alone.
  template <class F>
  void Settling(F&& change) {
    FlagRaised settle(p_.main_screen.settling);
    change();
  }

  MainForm& f_;
  Program& p_;
};

// An event handler's catch-all: a statement that fails leaves the view as it was and shows nothing.
template <class F>
void Handled(F&& step) {
  try {
    step();
  } catch (const RuntimeError&) {
  }
}

Text Number(int64_t n) {
  return FromUtf8(std::to_string(n));
}

void Views::Register(const std::shared_ptr<Views>& self) {
  Routines& r = p_.routines;
  r.Register("auction_filter", [self] { self->auction_filter(); });
  r.Register("do_query", [self] { self->do_query(); });
  r.Register("records_returned", [self] { self->records_returned(); });
  r.Register("sum_grid", [self] { self->sum_grid(); });
  r.Register("save_data_changed", [self] { self->save_data_changed(); });
  r.Register("lock_seller_grid", [self] { self->lock_seller_grid(); });
  r.Register("print_filter_btn", [self] { self->print_filter(); });

  f_.Auction_type_lst.OnClick = [self] { self->OnTypeChange(); };
  f_.Auction_status_lst.OnClick = [self] { self->OnStatusChange(); };
  f_.site_lst.OnClick = [self] { self->OnSiteChange(); };
  FilterBox().OnClick = [self] { self->OnFilterBox(); };
  f_.Find(u"Filter_value_txt")->OnKeyPress = [self](int& ascii) { self->OnFilterKey(ascii); };
  f_.Find(u"field_lst")->OnClick = [self] {
    const FilterField* field = FindFilterField(self->f_.Find(u"field_lst")->text());
    if (field) self->p_.view.quote = field->quoted ? u"'" : u"";
  };

  Control& print = f_.Add(ControlKind::Button, u"print_filter_btn");
  print.SetCaption(u"Print Current Auction List/Filter View");
  print.OnClick = [self] { self->f_.RunCommand("print_filter_btn"); };

  BuildGrid(f_.seller_grid, true);
  BuildGrid(f_.buyer_grid, false);
  f_.seller_grid.OnHeadClick = [self](int col) { self->OnHeadClick(true, col); };
  f_.buyer_grid.OnHeadClick = [self](int col) { self->OnHeadClick(false, col); };
}

void Views::BuildGrid(Grid& grid, bool seller) {
  grid.columns.clear();
  const Regional& regional = p_.regional;
  for (const GridColumnInfo& info : seller ? SellerGridColumns() : BuyerGridColumns()) {
    Grid::Column& c = grid.column(grid.AddColumn(info.heading, info.field));
    if (info.tip) c.tooltip = info.tip;
    if (info.format == ColumnFormat::kCurrency) {
      c.format = [&regional](const Variant& v) { return Format(v, u"currency", regional); };
    } else if (info.format == ColumnFormat::kGeneralNumber) {
      c.format = [&regional](const Variant& v) { return Format(v, u"general number", regional); };
    }
  }
  // The rows are the store's; the Setup page alone opens a grid for editing.
  grid.allow_updates = false;
  grid.OnColumnTip = [seller](int col, Text& tip) { tip = HeadingTip(seller, col); };
}

void Views::auction_filter() {
  std::optional<Text> condition =
      StatusCondition(f_.IsSeller(), f_.Auction_status_lst.text(), f_.Userid_lst.text(), f_.site_lst.text());
  // A status the side does not offer keeps the condition in force.
  if (condition) p_.view.condition = *condition;
  do_query();
  sum_grid();
}

void Views::do_query() {
  DataControl& side = Side();
  Text previous = side.RecordSource;
  side.RecordSource = p_.view.base + p_.view.condition + p_.view.tail;
  try {
    side.Refresh();
  } catch (...) {
    // The cursor on show is still the former view's; keep its statement with it.
    side.RecordSource = previous;
    throw;
  }
}

void Views::records_returned() {
  DataControl& side = Side();
  Recordset& rs = side.recordset();
  int64_t count = 0;
  if (!(rs.Eof() && rs.Bof())) {
    // Walk to the end and back, as a desktop engine needs to know its count.
    side.Navigate([](Recordset& r) {
      r.MoveLast();
      r.MoveFirst();
    });
    count = rs.RecordCount();
  }
  p_.view.rows_returned = RowsReturned(count);
  f_.SetStatus(u"Records Returned: " + Number(p_.view.rows_returned));
}

void Views::sum_grid() {
  Database* db = p_.startup.db.get();
  if (!db) throw RuntimeError(err::kObjectVariableNotSet, "Object variable or With block variable not set");
  // The condition alone: the total does not depend on the order.
  Text table = f_.IsSeller() ? u"seller" : u"bidder";
  auto rs =
      db->OpenRecordset(u"Select Sum(price) AS sql_total_price From " + table + u" " + p_.view.condition);
  Variant total = rs->Fields(u"sql_total_price");
  // An empty view sums to Null, which shows as an empty total.
  f_.StatusBar1.SetPanel(2, u"Total: " + Format(total, u"currency", p_.regional));
}

void Views::save_data_changed() {
  Side().UpdateRecord();
}

void Views::lock_seller_grid() {
  for (Grid::Column& c : f_.seller_grid.columns) c.locked = true;
}

void Views::print_filter() {
  save_data_changed();
  if (!p_.routines.Call(kPrintViewRoutine)) f_.SetStatus(kNotAvailable);
}

void Views::OnStatusChange() {
  if (p_.main_screen.settling) return;
  StatusChangeSteps();
}

void Views::StatusChangeSteps() {
  Grid& grid = SideGrid();
  grid.SetEnabled(false);
  grid.SetVisible(false);
  Handled([&] {
    // The bulk list view keeps its rows as they are: the seller side saves as it leaves a row.
    if (!f_.IsSeller() && InStr(p_.view.condition, u"bulk_list") == 0) save_data_changed();
    auction_filter();
    if (f_.SSTab1.tab() == kBrowserPage) f_.SSTab1.SetTab(0);
    records_returned();
  });
  // Also after a failed statement: the former view stays on show.
  grid.SetEnabled(true);
  grid.SetVisible(true);
}

void Views::FitStatusList(bool seller) {
  ComboBox& list = f_.Auction_status_lst;
  auto remove = [&list](const char16_t* item) {
    int at = list.Find(item);
    if (at >= 0) list.RemoveItem(at);
  };
  Settling([&] {
    if (seller) {
      remove(kWatching);
      if (list.Find(kUnsubmitted) < 0) list.AddItem(kUnsubmitted);
      if (list.Find(kTemplates) < 0) list.AddItem(kTemplates, std::min(4, list.ListCount()));
    } else {
      if (list.Find(kWatching) < 0) list.AddItem(kWatching);
      remove(kUnsubmitted);
      remove(kTemplates);
    }
    // The status on show was one the other side alone offers: show all of this side's auctions.
    if (list.list_index() < 0) list.SetText(kAllAuctions);
  });
}

void Views::OnTypeChange() {
  Handled([&] {
    const bool seller = f_.IsSeller();
    // Edits typed on the side being left are written before its controls are hidden.
    f_.seller.UpdateRecord();
    f_.Bidder.UpdateRecord();
    FitStatusList(seller);
    f_.add_remove_listbar_icons();
    p_.view.base = seller ? kSellerBase : kBidderBase;
    f_.change_active_buttons();
    f_.seller_grid.SetVisible(seller);
    f_.buyer_grid.SetVisible(!seller);
    f_.SSTab1.SetTab(0);
    f_.SSTab1.page(kListerPage).enabled = seller;
    f_.SetTitle(seller);
    // auction_filter re-runs the view itself; a second do_query would only run the same statement again.
    auction_filter();
    f_.tab_refresh();
    records_returned();
  });
}

void Views::OnSiteChange() {
  if (p_.main_screen.settling) return;
  Settling([&] { FilterBox().SetValue(0); });
  StatusChangeSteps();
}

void Views::OnFilterBox() {
  if (p_.main_screen.settling) return;
  Grid& grid = SideGrid();
  grid.SetEnabled(false);
  Handled([&] {
    Control& box = FilterBox();
    if (box.value() == 1) {
      const FilterField* field = FindFilterField(f_.Find(u"field_lst")->text());
      Text compare = f_.Find(u"compare_lst")->text();
      p_.view.wild = compare == u"like" ? u"*" : u"";
      if (field) p_.view.quote = field->quoted ? u"'" : u"";
      // The filter replaces the status condition whole: pending, watching and Completed no longer apply.
      // With no field or comparison chosen the statement is a bad one, which fails below like any other.
      p_.view.condition =
          FilterCondition(field ? field->column : u"", compare, p_.view.quote, p_.view.wild,
                          f_.Find(u"Filter_value_txt")->text(), f_.Userid_lst.text(), f_.site_lst.text());
      do_query();
      sum_grid();
    } else if (f_.Auction_status_lst.text() == kAllAuctions) {
      // Choosing the status already shown fires nothing, so its steps run here.
      StatusChangeSteps();
    } else {
      f_.Auction_status_lst.SetText(kAllAuctions);
    }
    records_returned();
    f_.SSTab1.SetTab(0);
  });
  grid.SetEnabled(true);
}

void Views::OnFilterKey(int& ascii) {
  // Enter applies the filter; typing anything else turns it off until the next Enter.
  if (ascii == key::kEnter) {
    ascii = 0;
    FilterBox().SetValue(1);
  } else {
    FilterBox().SetValue(0);
  }
}

void Views::OnHeadClick(bool seller, int column) {
  Handled([&] {
    save_data_changed();
    p_.view.direction = FlipDirection(p_.view.direction);
    // A heading without a sort keeps the tail; the condition, a filter's too, always stays.
    if (std::optional<Text> tail = SortTail(seller, column, p_.view.direction)) p_.view.tail = *tail;
    do_query();
    records_returned();
    sum_grid();
  });
}

}  // namespace

int32_t GridRowColour(const Grid& grid, int row) {
  return row % 2 == 0 ? grid.even_colour : grid.odd_colour;
}

void RegisterViews(MainForm& form) {
  auto views = std::make_shared<Views>(form);
  views->Register(views);
}

}  // namespace lw
