// The Sell page's commands: its settings, the preview, the validation through the XML interface, and the
// interface test.
#include <optional>

#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "listing/api_calls.h"
#include "listing/item_request.h"
#include "listing/lister_settings.h"
#include "listing/listing_commands.h"
#include "listing/listing_screen.h"
#include "listing/sell_page.h"
#include "listing/sell_page_layout.h"
#include "platform/xml_document.h"
#include "screen/main/main_form.h"

namespace lw {

namespace {

constexpr char16_t kVerifying[] = u"Verifying Auction Details and retrieving auction fees..... please wait";

// The site's time: now, moved by the offsets of the misc row.
Date SiteNow(ListingScreen& s) {
  Program& p = s.program();
  MainForm& f = s.main();
  Recordset* misc = f.Misc.HasRecordset() ? &f.Misc.recordset() : p.startup.misc.get();
  double hours = 0, minutes = 0;
  if (misc && !misc->Eof() && !misc->Bof()) {
    for (auto [column, out] :
         {std::pair{u"Ebay_hour_difference", &hours}, std::pair{u"Ebay_minute_difference", &minutes}}) {
      Variant v = misc->HasField(column) ? misc->Fields(column) : Variant();
      if (const double* n = v.number()) *out = *n;
    }
  }
  return Date(p.clock.Now().serial + hours / 24 + minutes / 1440);
}

// Whether the store has a setup row to read and write: none before the first user id.
bool HasSetupRow(ListingScreen& s) {
  DataControl& setup = s.main().setup_datacontrl;
  return setup.HasRecordset() && !setup.recordset().Eof() && !setup.recordset().Bof();
}

void remove_special_characters(ListingScreen& s) {
  MainForm& f = s.main();
  s.clean_title = CleanField(f.Get(u"Title_txt", 2).text());
  s.clean_description = CleanField(f.Get(u"Description1_txt", 2).text() + s.SetupText(u"description_footer"));
  s.clean_location = CleanField(f.Get(u"location_txt", 1).text());
}

void create_sell_page(ListingScreen& s) {
  Text page = SellPageHtml(s.main().Get(u"Description1_txt", 2).text(), s.SetupText(u"description_footer"));
  // With a byte order mark every character of the description shows as typed.
  s.WriteFile(u"\\sellitem.htm", "\xEF\xBB\xBF" + ToUtf8(page));
}

void get_ebaylogo(ListingScreen& s) {
  Text site = s.SetupText(u"countrylocation");
  s.api_request = LogoRequest(s.main().Userid_lst.text(), s.SetupText(u"password"), site);
  std::optional<WaitCursor> wait;
  std::string reply = s.Exchange("GetLogoURL", site, 0, s.api_request, [&] {
    wait.emplace(s.main().ui());
    s.Status(kVerifying);
  });
  s.WriteFile(u"\\ebaylogo.xml", reply);
  XmlDocument doc;
  doc.Load(s.File(u"\\ebaylogo.xml"));
  // The address is the second child of each Logo element; the last one wins.
  for (const XmlNode& logo : doc.GetElementsByTagName("Logo")) s.ebay_logo_url = logo.Item(1).text();
}

}  // namespace

void validate_auction(ListingScreen& s) {
  MainForm& f = s.main();
  try {
    get_ebaylogo(s);
    Text uuid = NewUuid();
    // The lists whose text is their first row show that row selected.
    for (const char16_t* combo : {u"list_region_combo", u"gift_icon_combo", u"counter_combo"}) {
      auto& list = f.Get<ComboBox>(combo);
      if (list.ListCount() > 0 && list.text() == list.List(0)) list.SetListIndex(0);
    }
    // The gift services are put together before the request is emptied for its build, so they never
    // reach the site: listings have always gone without them, while the settings keep them.
    if (Ticked(f, u"display_chk", 5)) s.api_request += u"<GiftWrap>1</GiftWrap>";
    if (Ticked(f, u"display_chk", 6)) s.api_request += u"<GiftExpressShipping>1</GiftExpressShipping>";
    if (Ticked(f, u"display_chk", 7)) s.api_request += u"<GiftShipToRecipient>1</GiftShipToRecipient>";
    s.api_request.clear();
    SellForm form = s.ReadSellForm(uuid);
    s.api_request = BuildItemRequest(form);

    std::optional<WaitCursor> wait;
    std::string reply = s.Exchange("VerifyAddItem", form.site_id, 0, s.api_request, [&] {
      s.WriteFile(u"\\sellitem.xml", RequestBytes(s.api_request));
      wait.emplace(f.ui());
      s.Status(kVerifying);
    });
    s.InstallStylesheets();
    s.WriteFile(u"\\validateitem.xml", WrapReply(reply, ReplyPage::kValidation, s.ebay_logo_url));
    wait.reset();
    bool errors = ReplyHasErrors(reply);
    s.auction_validated = !errors;
    s.EnablePosting(1, !errors);
    s.EnablePosting(2, !errors);
    if (reply.empty()) {
      s.EnablePosting(1, false);
      s.EnablePosting(2, false);
    }
  } catch (const RuntimeError&) {
    // Whatever failed (no host, no reply, a reply that isn't text), the auction can't go on from here.
    s.EnablePosting(1, false);
    s.EnablePosting(2, false);
  }
}

namespace {

void preview_auction(ListingScreen& s) {
  MainForm& f = s.main();
  save_bulk_listing_values(f, s.SetupRow());
  remove_special_characters(s);
  create_sell_page(s);
  s.program().main_screen.browser_request[static_cast<int>(BrowserTarget::kSellPage)] = true;
  s.EnablePosting(1, true);
  s.EnablePosting(2, false);
  // Through page 0, so that the browser page shows the new page even when it is showing.
  f.SSTab1.SetTab(0);
  f.SSTab1.SetTab(kBrowserPage);
}

void API_POST(ListingScreen& s) {
  MainForm& f = s.main();
  s.api_request = TestRequest(f.Userid_lst.text(), s.SetupText(u"password"));
  WaitCursor wait(f.ui());
  s.Status(u"Posting test API call please wait");
  std::string reply = s.Exchange("ValidateTestUserRegistration", u"0", 0, s.api_request,
                                 [&] { s.WriteFile(u"\\test_post.xml", RequestBytes(s.api_request)); });
  f.ui().MsgBox(u"API Test", ReplyText(reply, s.http().ResponseContentType()), MsgButtons::OK, MsgIcon::None);
  s.WriteFile(u"\\test_return.xml", reply);
}

// Arriving on the Sell page costs the validation, and the picture's web address is made afresh from the
// user id's picture location.
void sell_page_entered(ListingScreen& s) {
  s.auction_validated = false;
  MainForm& f = s.main();
  if (!HasSetupRow(s) || !f.seller.HasRecordset() || f.seller.recordset().Eof() || f.seller.recordset().Bof())
    return;
  f.Get(u"image_loc_txt", 2).SetText(s.SetupText(u"ebay_image_loc") + s.SellerText(u"pic_name"));
}

}  // namespace

void RegisterSellPage(ListingScreen& screen) {
  ListingScreen* s = &screen;
  MainForm& f = screen.main();
  Program& p = screen.program();

  SellPageHooks hooks;
  hooks.regional = &p.regional;
  hooks.site_now = [s] { return SiteNow(*s); };
  hooks.schedule_changed = [&f] { f.CallRoutine("auction_end_time"); };
  BuildSellPage(f, f.seller, f.setup_datacontrl, hooks);

  // The page's controls are reachable only while it is the page in use.
  Control* page = &f.Get(u"lister_page_fra");
  page->SetContainer(&f.Page(kListerPage));  // on its page of SSTab1, where the user sees it
  page->SetVisible(f.SSTab1.tab() == kListerPage);
  auto entered = std::move(f.SSTab1.OnTabClick);
  f.SSTab1.OnTabClick = [s, page, entered, &f](int left) {
    page->SetVisible(f.SSTab1.tab() == kListerPage);
    if (entered) entered(left);
    if (f.SSTab1.tab() == kListerPage) Guarded(*s, [s] { sell_page_entered(*s); });
  };
  // Nothing can be posted before a preview.
  screen.EnablePosting(1, false);
  screen.EnablePosting(2, false);

  Routines& r = p.routines;
  screen.Register("load_lister_lists", [](ListingScreen& s) { FillListerLists(s.main()); });
  // Before the first user id there is no setup row to show.
  screen.Register("load_lister_settings", [](ListingScreen& s) {
    if (HasSetupRow(s)) load_lister_settings(s.main(), s.SetupRow());
  });
  screen.Register("save_bulk_listing_values",
                  [](ListingScreen& s) { save_bulk_listing_values(s.main(), s.SetupRow()); });
  screen.Register("change_counter_image", [](ListingScreen& s) { change_counter_image(s.main()); });
  screen.Register("remove_special_characters", remove_special_characters);
  screen.Register("create_sell_page", create_sell_page);
  screen.Register("get_ebaylogo", get_ebaylogo);
  screen.Register("validate_auction", validate_auction);
  screen.Register("API_POST", API_POST);

  screen.Register("ctbutton(1)", preview_auction);
  f.Get(u"ctbutton", 1).OnClick = [&r] { r.Call("ctbutton(1)"); };
  f.Get(u"Command1").OnClick = [&r] { r.Call("API_POST"); };
}

}  // namespace lw
