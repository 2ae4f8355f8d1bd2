// What the user does to rows by hand: add, delete, copy, relist, purge, and the cost and fee clean-ups.
// Every command works on the current row of the type in use (the copies on `seller` only, the only side
// that offers them) and ends in its own handler: a statement or cursor operation that fails leaves the
// rows as they were and puts the engine's reason in the status bar.
#include <functional>
#include <optional>
#include <string>

#include "core/primitives/encoding.h"
#include "core/store/store.h"
#include "screen/main/main_form.h"
#include "screen/main/main_parts.h"
#include "screen/main/records_edit.h"
#include "screen/main/records_rules.h"

namespace lw {
namespace {

constexpr char16_t kCrLf[] = u"\r\n";
constexpr char16_t kSellerBase[] = u"Select * From seller ";

bool OnRow(DataControl& d) {
  if (!d.HasRecordset()) return false;
  Recordset& rs = d.recordset();
  return !rs.Eof() && !rs.Bof();
}

Text FieldText(Recordset& rs, TextView name) {
  Variant v = rs.Fields(name);
  return v.text() ? *v.text() : Text();
}

DataControl& SideInUse(MainForm& f) {
  return f.IsSeller() ? f.seller : f.Bidder;
}

// Writes what the user typed into the bound controls before the row is read, copied or deleted, so the
// operation sees the row as the screen shows it.
void SaveTyping(DataControl& d) {
  if (d.HasRecordset()) d.UpdateRecord();
}

// Edits still in the bound controls belong to a row about to go: they are dropped, not written to it.
void DropTyping(DataControl& d) {
  for (Control* c : d.bound()) c->SetDataChanged(false);
  if (d.HasRecordset() && d.recordset().EditInProgress()) d.recordset().CancelUpdate();
}

// Stands the data control on a row it held before its cursor was replaced. Only a cursor over one table
// knows its rows by key; on any other the row is left where the refresh put it.
void ReturnTo(DataControl& d, std::optional<RecordBookmark> row) {
  if (!row || !d.HasRecordset() || !d.recordset().Updatable()) return;
  try {
    d.Navigate([&](Recordset& rs) { rs.SetBookmark(*row); });
  } catch (const RuntimeError&) {
    // The row is not in this view: the view's own first row stays.
  }
}

std::optional<RecordBookmark> Here(DataControl& d) {
  if (!OnRow(d) || !d.recordset().Updatable()) return std::nullopt;
  return d.recordset().Bookmark();
}

// Narrows `seller` to the rows of the current item, staying on the current row among them; the next
// query of the view restores the view.
void NarrowToItem(DataControl& seller, const Variant& item) {
  if (item.IsNull()) return;
  std::optional<RecordBookmark> here = Here(seller);
  seller.RecordSource = kSellerBase + (u"where item = " + Quoted(item.text() ? *item.text() : Text()));
  seller.Refresh();
  ReturnTo(seller, here);
}

// Re-runs a data control's query after rows went behind its back, so that it no longer holds them.
void RequeryShown(DataControl& d) {
  if (!d.HasRecordset()) return;
  try {
    d.Refresh();
  } catch (const RuntimeError&) {
    // The old cursor stays; the next change of the view replaces it.
  }
}

void add_new_auction(MainForm& f) {
  DataControl& s = f.seller;
  s.RecordSource = u"Select * from Seller Where title = '' order by title desc";
  s.Refresh();
  Recordset& rs = s.recordset();
  rs.AddNew();
  rs.SetField(u"Item", Text(u" "));
  rs.SetField(u"UserName", f.Userid_lst.text());
  rs.SetField(u"site", f.site_lst.text());
  rs.SetField(u"pending", true);
  rs.SetField(u"total_tax", 0);
  rs.SetField(u"total_purchase", 0);
  rs.Update();
  RecordBookmark added = rs.LastModified();
  s.Navigate([&](Recordset& r) { r.SetBookmark(added); });

  // The list's click puts the view on the status; a status already chosen does not click, so the view is
  // built from it directly.
  if (f.Auction_status_lst.text() == u"Unsubmitted Auctions")
    f.CallRoutine("auction_filter");
  else
    f.Auction_status_lst.SetText(u"Unsubmitted Auctions");
  // Whatever the view's order, the row just added is the one the user goes on to fill in.
  ReturnTo(s, added);
  f.Get(u"Quantity_txt", 0).SetText(u"1");
  f.SSTab1.SetTab(1);
  f.SetFocus(&f.Get(u"Title_txt", 0));
}

void delete_auction(MainForm& f) {
  Ui& ui = f.ui();
  if (ui.MsgBox(u"Delete Auction", u"Do you want to delete this auction?", MsgButtons::YesNo,
                MsgIcon::Question) == MsgAnswer::No)
    return;
  DataControl& d = SideInUse(f);
  if (f.IsSeller() && OnRow(d) && FieldText(d.recordset(), u"fee_ref_no") != u"") {
    Text text = Text(u"There are Fees assigned to this Auction.") + kCrLf +
                u"Deleting this Auction will affect your Profit/Tax Reports" + kCrLf +
                u"Do you want to Delete this Auction";
    if (ui.MsgBox(u"Delete Auction Y/N", text, MsgButtons::YesNo, MsgIcon::Exclamation) == MsgAnswer::No)
      return;
  }
  if (!d.HasRecordset() || d.recordset().RecordCount() <= 1) {
    f.SetStatus(u"Can't delete last auction in the database.");
    return;
  }
  DropTyping(d);
  d.recordset().Delete();
  d.MoveFirst();
  f.SSTab1.SetTab(0);
}

// The database menu's delete: no test of fees, and the last row of the view goes too.
void del_mnu(MainForm& f) {
  if (f.ui().MsgBox(u"Delete Auction", u"Do you want to delete this auction?", MsgButtons::YesNo,
                    MsgIcon::Question) == MsgAnswer::No)
    return;
  DataControl& d = SideInUse(f);
  Recordset& rs = d.recordset();
  DropTyping(d);
  rs.Delete();
  if (rs.RecordCount() > 0)
    d.MoveFirst();
  else
    d.Refresh();  // nothing left to stand on: show the empty view rather than the row that went
}

void duplicate_auction_noid(MainForm& f, const Text& userid, const Text& site_word) {
  DataControl& s = f.seller;
  SaveTyping(s);
  NarrowToItem(s, s.recordset().Fields(u"Item"));
  Recordset& rs = s.recordset();
  static constexpr const char16_t* kCopied[] = {u"Title",   u"Description1", u"Length",       u"Cost",
                                                u"Minbid",  u"Ship_cost",    u"Pic_location", u"Pic_name",
                                                u"Reserve", u"Quantity",     u"category_no"};
  std::vector<Variant> values;
  for (const char16_t* name : kCopied) values.push_back(rs.Fields(name));
  Variant buyitnow = rs.Fields(u"buyitnow");
  Variant category_no2 = rs.Fields(u"category_no2");
  if (category_no2.IsNull()) category_no2 = Variant(Text(u" "));

  rs.AddNew();
  rs.SetField(u"Item", Text());
  for (size_t i = 0; i < values.size(); ++i) rs.SetField(kCopied[i], values[i]);
  if (!buyitnow.IsNull()) rs.SetField(u"buyitnow", buyitnow);
  rs.SetField(u"category_no2", category_no2);
  rs.SetField(u"Completed", false);
  rs.SetField(u"Reserve_met", false);
  rs.SetField(u"Email", Text());
  rs.SetField(u"Pending", true);
  rs.SetField(u"username", userid);
  Text site = DuplicateSite(site_word);
  if (!site.empty()) rs.SetField(u"site", site);
  for (const char16_t* total : {u"total_tax", u"total_charges", u"total_purchase"}) rs.SetField(total, 0);
  rs.Update();
  f.SetStatus(u"Copying complete");
}

void duplicate_auction_withid(MainForm& f) {
  DataControl& s = f.seller;
  SaveTyping(s);
  Variant item = s.recordset().Fields(u"Item");
  if (item.text() && item.text()->empty()) {
    f.ui().MsgBox(u"Duplicate Error",
                  u"You can only duplicate auctions where there is already an auction number. Use Duplicate "
                  u"Without ID instead. ",
                  MsgButtons::OK, MsgIcon::Exclamation);
    return;
  }
  NarrowToItem(s, item);
  Recordset& rs = s.recordset();
  static constexpr const char16_t* kCopied[] = {
      u"Item",      u"Title",        u"Description1", u"Length",       u"Cost",    u"Minbid",
      u"Ship_cost", u"Pic_location", u"Pic_name",     u"Reserve",      u"Start",   u"End",
      u"Price",     u"Quantity",     u"category_no",  u"category_no2", u"buyitnow"};
  std::vector<Variant> values;
  for (const char16_t* name : kCopied) values.push_back(rs.Fields(name));

  rs.AddNew();
  for (size_t i = 0; i < values.size(); ++i) rs.SetField(kCopied[i], values[i]);
  rs.SetField(u"Duplicated", true);
  rs.SetField(u"Completed", true);
  rs.SetField(u"Reserve_met", true);
  rs.SetField(u"Email", Text());
  rs.SetField(u"username", f.Userid_lst.text());
  rs.SetField(u"site", f.site_lst.text());
  for (const char16_t* total : {u"total_tax", u"total_charges", u"total_purchase"}) rs.SetField(total, 0);
  rs.Update();
  f.SetStatus(u"Copying complete");
}

// Sets yes/no fields of the current seller row.
void EditSellerRow(MainForm& f, std::initializer_list<std::pair<const char16_t*, bool>> fields) {
  DataControl& s = f.seller;
  SaveTyping(s);
  Recordset& rs = s.recordset();
  rs.Edit();
  try {
    for (auto [name, value] : fields) rs.SetField(name, value);
    rs.Update();
  } catch (...) {
    if (rs.EditInProgress()) rs.CancelUpdate();
    throw;
  }
}

void relist_auction(MainForm& f) {
  EditSellerRow(f, {{u"Pending", false}});
  f.show_browser_target(BrowserTarget::kRelist);
}

void remove_unsubmit_mnu(MainForm& f) {
  EditSellerRow(f, {{u"Bulk_list", false}, {u"Pending", false}});
  f.CallRoutine("auction_filter");
  f.CallRoutine("records_returned");
  f.CallRoutine("sum_grid");
}

void purge(MainForm& f, const PurgeEntry& entry) {
  Ui& ui = f.ui();
  if (ui.MsgBox(kPurgeTitle, PurgeQuestion(entry.seller), MsgButtons::YesNo, MsgIcon::Question) !=
      MsgAnswer::Yes) {
    f.SetStatus(u"Purging Cancelled");
    return;
  }
  DataControl& shown = entry.seller ? f.seller : f.Bidder;
  Text statement = PurgeStatement(entry, f.Userid_lst.text());
  SaveTyping(shown);
  Database& db = *f.seller.database();
  db.Execute(statement);
  int64_t deleted = db.RecordsAffected();
  RequeryShown(shown);
  f.SetStatus(FromUtf8(std::to_string(deleted)) + u" Records Deleted");
  ui.MsgBox(u"Purging Complete", PurgeCompleteText(), MsgButtons::OK, MsgIcon::Information);
}

void update_ship_cost_mnu_1(MainForm& f) {
  Database& db = *f.seller.database();
  int64_t updated = 0;
  for (const Text& statement : CopyShipCostStatements(f.Userid_lst.text())) {
    db.Execute(statement);
    updated += db.RecordsAffected();
  }
  f.SetStatus(FromUtf8(std::to_string(updated)) + u" Shipping Costs Updated ");
}

void update_ship_cost_mnu(MainForm& f) {
  Database& db = *f.seller.database();
  std::vector<int64_t> affected;
  for (const Text& statement : NoBidCostStatements(f.Userid_lst.text())) {
    db.Execute(statement);
    affected.push_back(db.RecordsAffected());
  }
  f.SetStatus(NoBidCostStatus(affected));
}

}  // namespace

void RunHandled(MainForm& form, const std::function<void()>& body) {
  try {
    body();
  } catch (const RuntimeError& e) {
    form.SetStatus(FromUtf8(e.description()));
  }
}

void RegisterRecords(MainForm& form) {
  Routines& r = form.program().routines;
  MainForm* f = &form;
  auto reg = [&](const char* name, void (*routine)(MainForm&)) {
    r.Register(name, [f, routine] { RunHandled(*f, [&] { routine(*f); }); });
  };
  reg("add_new_auction", add_new_auction);
  reg("delete_auction", delete_auction);
  reg("del_mnu", del_mnu);
  reg("duplicate_auction_withid", duplicate_auction_withid);
  reg("relist_auction", relist_auction);
  reg("remove_unsubmit_mnu", remove_unsubmit_mnu);
  reg("update_ship_cost_mnu_1", update_ship_cost_mnu_1);
  reg("update_ship_cost_mnu", update_ship_cost_mnu);

  // The list bar copies to the user id and site on show; each duplicate menu to the user id of its entry
  // on its own site.
  r.Register("duplicate_auction_noid", [f] {
    RunHandled(*f, [&] { duplicate_auction_noid(*f, f->Userid_lst.text(), f->site_lst.text()); });
  });
  for (auto [routine, site] : {std::pair{"duplicate_auction_to_ebay_userid", u"eBay"},
                               std::pair{"duplicate_auction_to_yahoo_userid", u"Yahoo"},
                               std::pair{"duplicate_auction_to_sold_userid", u"Sold"}}) {
    Text word = site;
    r.Register(routine,
               [f, word] { RunHandled(*f, [&] { duplicate_auction_noid(*f, f->menu_caption, word); }); });
  }

  for (const PurgeEntry& entry : PurgeEntries()) {
    const PurgeEntry* e = &entry;
    r.Register(entry.menu, [f, e] { RunHandled(*f, [&] { purge(*f, *e); }); });
  }

  RegisterAdvancedEdit(form);
}

}  // namespace lw
