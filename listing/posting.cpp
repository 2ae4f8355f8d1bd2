// Posting: the walk of one auction from its validation to the site, and of many through the bulk
// collection. What the site checked is what is listed: the request in hand is posted with only its verb
// changed, at once or later from the row's Bulk_data. Nothing of the site's replies is stored; the item
// number and the fees reach the row with the next imports.
#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "listing/api_calls.h"
#include "listing/lister_settings.h"
#include "listing/listing_commands.h"
#include "listing/listing_screen.h"
#include "screen/main/main_form.h"

namespace lw {

namespace {

constexpr char16_t kPosting[] =
    u"Posting Auction Details and retrieving auction #, auction fees ..... please wait";
// The columns the bulk view opens for the user: the tick and the two category numbers.
constexpr int kBulkColumns[] = {0, 1, 2};

void Call(ListingScreen& s, const char* routine) {
  s.main().CallRoutine(routine);
}

void SetRequest(ListingScreen& s, BrowserTarget target, bool on) {
  s.program().main_screen.browser_request[static_cast<int>(target)] = on;
}

// The condition of the bulk collection of the user id in use.
Text BulkCondition(ListingScreen& s) {
  return u"where bulk_list = yes and username = " + Quoted(s.main().Userid_lst.text());
}

// Through page 0, so that the browser page shows its page afresh even when it is showing.
void ShowBrowserPage(ListingScreen& s) {
  s.main().SSTab1.SetTab(0);
  s.main().SSTab1.SetTab(kBrowserPage);
}

// Writes to the current seller row: the page's edits of it first, as a data control saves them, then
// the listing's own columns.
template <class F>
void EditSellerRow(ListingScreen& s, F&& set) {
  s.main().seller.UpdateRecord();
  Recordset& row = s.SellerRow();
  row.Edit();
  set(row);
  row.Update();
}

void validate_or_post(ListingScreen& s) {
  if (!CategoryGiven(s)) return;
  if (!s.auction_validated) {
    SetRequest(s, BrowserTarget::kValidation, true);
    validate_auction(s);
  } else {
    SetRequest(s, BrowserTarget::kVerification, true);
    SetRequest(s, BrowserTarget::kValidation, false);
    s.EnablePosting(2, false);
    post_new_auction(s);
    EditSellerRow(s, [](Recordset& row) { row.SetField(u"pending", Variant(false)); });
    for (const char* routine : {"auction_filter", "records_returned", "sum_grid"}) Call(s, routine);
    // The view's refresh has entered the browser tab afresh while it was showing; no page has loaded
    // since, so the Verification page is still the one asked for.
    SetRequest(s, BrowserTarget::kVerification, true);
  }
  ShowBrowserPage(s);
}

void bulk_list_item(ListingScreen& s) {
  if (!CategoryGiven(s)) return;
  MainForm& f = s.main();
  save_bulk_listing_values(f, s.SetupRow());
  s.api_request = WithAddVerb(s.api_request);
  Text site = s.SetupText(u"countrylocation");
  EditSellerRow(s, [&](Recordset& row) {
    row.SetField(u"Bulk_list", Variant(true));
    row.SetField(u"pending", Variant(true));
    row.SetField(u"Bulk_list_siteid", site.empty() ? Variant() : Variant(site));
    row.SetField(u"Bulk_data", Variant(s.api_request));
  });
  f.SSTab1.SetTab(kListerPage);
  constexpr char16_t kAdded[] = u"Auction Added to the Bulk Listing Collection";
  s.Status(kAdded);
  f.ui().MsgBox(u"Bulk Listing", kAdded, MsgButtons::OK, MsgIcon::None);
}

void show_bulk_listing_auctions(ListingScreen& s) {
  MainForm& f = s.main();
  s.program().view.condition = BulkCondition(s);
  for (const char* routine : {"do_query", "records_returned", "sum_grid"}) Call(s, routine);
  f.seller_grid.allow_updates = true;
  Call(s, "lock_seller_grid");
  f.SSTab1.SetTab(0);
  for (int col : kBulkColumns) f.seller_grid.column(col).visible = true;
  for (int col : kBulkColumns) f.seller_grid.column(col).locked = false;
  if (f.seller_grid.RowCount() > 0) f.seller_grid.SetRow(0);
}

void hide_bulk_list_auctions(ListingScreen& s) {
  MainForm& f = s.main();
  f.seller_grid.allow_updates = false;
  f.SSTab1.SetTab(0);
  for (int col : kBulkColumns) {
    f.seller_grid.column(col).visible = false;
    f.seller_grid.column(col).locked = true;
  }
}

void submit_bulklist_to_ebay_1(ListingScreen& s) {
  MainForm& f = s.main();
  WaitCursor wait(f.ui());
  s.Status(kPosting);
  auto rows = s.program().startup.db->OpenRecordset(u"Select * From seller " + BulkCondition(s));
  int posted = 0;
  bool failed = false;
  Text title;
  while (!rows->Eof()) {
    Variant site = rows->Fields(u"Bulk_list_siteid");
    Variant data = rows->Fields(u"Bulk_data");
    std::string reply = s.Exchange("AddItem", site.IsNull() ? Text() : CStr(site, s.program().regional), 0,
                                   data.text() ? *data.text() : Text());
    std::string page = WrapReply(reply, ReplyPage::kConfirmation, s.ebay_logo_url);
    if (ReplyIsSeverityOne(reply)) {
      SetRequest(s, BrowserTarget::kValidation, false);
      s.Status(u"Error encounted Error Log Created");
      s.InstallStylesheets();
      s.WriteFile(u"\\verify_auction.xml", page);
      ShowBrowserPage(s);
      Variant t = rows->Fields(u"title");
      title = t.IsNull() ? Text() : CStr(t, s.program().regional);
      failed = true;
      break;
    }
    ++posted;
    rows->Edit();
    rows->SetField(u"Bulk_list", Variant(false));
    rows->SetField(u"pending", Variant(false));
    rows->Update();
    s.Status(FromUtf8(std::to_string(posted)) + u" Auction/s posted successfully ..... please wait");
    rows->MoveNext();
  }
  if (failed)
    s.Status(u"Error occurred posting auction with title of: " + title);
  else
    s.Status(FromUtf8(std::to_string(posted)) + u" Auction/s posted successfully ..... Completed");
}

void submit_bulk_auctions_to_ebay(ListingScreen& s) {
  MainForm& f = s.main();
  Call(s, "save_data_changed");
  s.program().view.condition = BulkCondition(s);
  for (const char* routine : {"do_query", "records_returned", "sum_grid"}) Call(s, routine);
  show_bulk_listing_auctions(s);
  MsgAnswer go = f.ui().MsgBox(u"Continue with bulk listing?",
                               u"Are these the auctions you wish to bulk list.\nContinue? Y/N",
                               MsgButtons::YesNo, MsgIcon::Question);
  if (go != MsgAnswer::Yes) return;
  s.EnablePosting(1, false);
  s.EnablePosting(2, false);
  SetRequest(s, BrowserTarget::kVerification, true);
  submit_bulklist_to_ebay_1(s);
}

void clear_bulklist_tags(ListingScreen& s) {
  MainForm& f = s.main();
  MsgAnswer go = f.ui().MsgBox(u"Removing Bulk Listing Tags",
                               u"Remove Bulk Listing Tags for this User Only? Do you want to continue?",
                               MsgButtons::YesNo, MsgIcon::Question);
  if (go != MsgAnswer::Yes) {
    s.Status(u"Remove bulk listing tags cancelled ");
    return;
  }
  Call(s, "save_data_changed");
  Database& db = *s.program().startup.db;
  Text userid = Quoted(f.Userid_lst.text());
  db.Execute(u"Update Seller set Bulk_list = false Where username = " + userid + u" and Bulk_list = true");
  int64_t removed = db.RecordsAffected();
  s.program().view.condition = u"where bulk_list = no and username = " + userid;
  Call(s, "do_query");
  s.Status(FromUtf8(std::to_string(removed)) + u" Tags Removed");
}

// Takes the current row out of the unsubmitted auctions without posting it.
void remove_unsubmit_mnu(ListingScreen& s) {
  EditSellerRow(s, [](Recordset& row) {
    row.SetField(u"Bulk_list", Variant(false));
    row.SetField(u"pending", Variant(false));
  });
  for (const char* routine : {"auction_filter", "records_returned", "sum_grid"}) Call(s, routine);
}

}  // namespace

bool CategoryGiven(ListingScreen& s) {
  MainForm& f = s.main();
  Control& category = f.Get(u"category_no_txt", 0);
  if (!category.text().empty()) return true;
  f.ui().MsgBox(u"No Category Selected", u"Enter a category number", MsgButtons::OK, MsgIcon::Critical);
  f.SetFocus(&category);
  return false;
}

void post_new_auction(ListingScreen& s) {
  s.api_request = WithAddVerb(s.api_request);
  {
    WaitCursor wait(s.main().ui());
    s.Status(kPosting);
    std::string reply = s.Exchange("AddItem", s.SetupText(u"countrylocation"), 0, s.api_request);
    // The reply is shown whatever it says: a refused posting is read on the Verification page.
    s.InstallStylesheets();
    s.WriteFile(u"\\verify_auction.xml", WrapReply(reply, ReplyPage::kConfirmation, s.ebay_logo_url));
  }
  s.auction_validated = false;
  s.EnablePosting(1, false);
  s.EnablePosting(2, false);
}

void RegisterPosting(ListingScreen& screen) {
  screen.Register("ctToolBar3(1)", validate_or_post);
  screen.Register("ctToolBar3(2)", bulk_list_item);
  screen.Register("post_new_auction", post_new_auction);
  // The same posting under the name other parts of the program call it by.
  screen.Register("post_auction", post_new_auction);
  screen.Register("show_bulk_listing_auctions", show_bulk_listing_auctions);
  screen.Register("hide_bulk_list_auctions", hide_bulk_list_auctions);
  screen.Register("submit_bulk_auctions_to_ebay", submit_bulk_auctions_to_ebay);
  screen.Register("submit_bulklist_to_ebay_1", submit_bulklist_to_ebay_1);
  screen.Register("clear_bulklist_tags", clear_bulklist_tags);
  screen.Register("remove_unsubmit_mnu", remove_unsubmit_mnu);
}

}  // namespace lw
