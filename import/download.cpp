#include "import/download.h"

#include <chrono>
#include <fstream>
#include <system_error>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "import/bidder_list.h"
#include "import/download_state.h"
#include "import/dutch.h"
#include "import/import_days.h"
#include "import/member_email.h"
#include "import/normalise.h"
#include "import/seller_list.h"
#include "platform/async_http.h"
#include "platform/hosts.h"
#include "platform/http_session.h"
#include "platform/inet.h"
#include "platform/web_browser.h"
#include "screen/main/main_form.h"

namespace lw {

namespace {

constexpr char16_t kCrLf[] = u"\r\n";
constexpr char16_t kDutchTitle[] = u"eBay Item Dutch Auction High Bidders";

DownloadState& State(ImportScreen& screen) {
  if (!screen.download) screen.download = std::make_shared<DownloadState>();
  return *screen.download;
}

MainForm& Main(ImportScreen& screen) {
  return screen.main();
}
Program& Prog(ImportScreen& screen) {
  return screen.program();
}
Ui& TheUi(ImportScreen& screen) {
  return Prog(screen).screen.ui();
}
void Status(ImportScreen& screen, const Text& text) {
  Main(screen).SetStatus(text);
}
void Call(ImportScreen& screen, const char* routine) {
  Prog(screen).routines.Call(routine);
}
void Pointer(ImportScreen& screen, bool hourglass) {
  TheUi(screen).SetWaitCursor(hourglass);
}

bool IsEbay(ImportScreen& screen) {
  return Main(screen).site_lst.text() == u"eBay";
}
bool IsSeller(ImportScreen& screen) {
  return Main(screen).Auction_type_lst.text() == u"Seller";
}

Text FieldText(ImportScreen& screen, Recordset* row, TextView column) {
  return RowText(row, column, Prog(screen).regional);
}

std::string Url(const Text& address) {
  std::string url = ToUtf8(address);
  // The working files are shown by their path.
  if (url.find("://") == std::string::npos && !url.empty() && url[0] == '/') url = "file://" + url;
  return url;
}

// Runs a command of the screen with the catch-all every handler has: the failure goes to the status
// line and the pointer is set back.
template <class F>
void Guarded(ImportScreen& screen, F&& body) {
  try {
    body();
  } catch (const RuntimeError& e) {
    Pointer(screen, false);
    Status(screen, FromUtf8(e.description()));
  }
}

void WireTransports(ImportScreen& screen, DownloadState& state) {
  Transports& t = state.transports;
  Program& p = Prog(screen);
  EventPort port = p.screen.queue().Port();
  if (!t.session) {
    if (!p.http_session) p.http_session = std::make_shared<HttpSession>();
    t.session = p.http_session;
    // A server that never answers must not hold an import for ever; the user may shorten the wait.
    double seconds = Val(p.settings.GetSetting(u"Lotwright", u"Network", u"timeout", u"60"));
    if (seconds > 0) {
      auto ms = std::chrono::milliseconds(static_cast<long long>(seconds * 1000));
      t.session->set_timeout(ms);
      t.session->set_connect_timeout(ms);
    }
  }
  if (!t.Inet1) t.Inet1 = std::make_unique<CurlInet>(*t.session);
  if (!t.CIHTTP1) t.CIHTTP1 = std::make_unique<CurlAsyncHttp>(*t.session, port);
  if (!t.WebBrowser1) t.WebBrowser1 = std::make_unique<CurlWebBrowser>(*t.session, port);

  ImportScreen* s = &screen;
  t.CIHTTP1->set_handlers(
      {[s] { CIHTTP1_Connected(*s); }, [s] { CIHTTP1_Done(*s); },
       [s](int number, const Text&) { Guarded(*s, [s, number] { CIHTTP1_Error(*s, number); }); }});
  // The headless web view reports through the WebBrowser1 control, as a desktop one does.
  WebBrowser::Handlers browser;
  browser.progress = [s](long long so_far, long long max) { s->main().WebBrowser1.Progress(so_far, max); };
  browser.navigate_complete = [s](const std::string& url) {
    s->main().WebBrowser1.NavigateComplete(FromUtf8(url), transports(*s).WebBrowser1->Title());
  };
  browser.document_complete = [s](const std::string& url) {
    WebBrowser& web = *transports(*s).WebBrowser1;
    s->main().WebBrowser1.DocumentComplete(FromUtf8(url), web.Title(), web.BodyOuterHtml());
  };
  t.WebBrowser1->set_handlers(std::move(browser));
}

void Navigate(ImportScreen& screen, const Text& address) {
  Main(screen).WebBrowser1.Navigate(address);
}

Text Userid(ImportScreen& screen) {
  return Main(screen).Userid_lst.text();
}

void ClearWaitAndSum(ImportScreen& screen) {
  Call(screen, "sum_grid");
  Pointer(screen, false);
}

// A parser of another unit: its registered routine, else the parser itself on the buffer.
template <class F>
void RoutineOr(ImportScreen& screen, const char* routine, F&& fallback) {
  if (!Prog(screen).routines.Call(routine)) fallback();
}

// The fee import is accounting's: it reads the normalised page from "\parsed_data.htm".
void hand_to_fee_import(ImportScreen& screen) {
  screen.buffer.SaveFile(Prog(screen).DbFile(u"\\parsed_data.htm"), 1);
  Call(screen, "get_allfees");
}

void sign_in_round_trip(ImportScreen& screen) {
  MainForm& form = Main(screen);
  Toolbar& bar = form.Get<Toolbar>(u"ctToolBar3");
  for (int i = 1; i <= 2 && i <= bar.ButtonCount(); ++i) bar.button(i).enabled = false;
  Prog(screen).main_screen.browser_page_held = true;
  form.SSTab1.SetTab(kBrowserPage);
  Status(screen, u"You have not signed in");
  Text address = FromUtf8(BaseUrlFor(Prog(screen).settings, "signin")) +
                 u"/aw-cgi/eBayISAPI.dll?SignIn&pUserId=" + FieldText(screen, screen.SetupRow(), u"Userid");
  Navigate(screen, address);
}

void capture_pass(ImportScreen& screen) {
  Recordset* setup = screen.SetupRow();
  if (!setup || setup->Eof() || setup->Bof() || !setup->HasField(u"pass1")) return;
  if (!setup->Fields(u"pass1").IsNull()) return;
  const Text& url = Main(screen).WebBrowser1.location_url;
  size_t start = InStr(url, u"&pass=");
  if (start == 0) return;
  size_t end = InStr(start, url, u"&userid");
  if (end == 0) return;
  Text pass = Mid(url, start + 6, end - start - 6);
  setup->Edit();
  setup->SetField(u"pass1", Variant(pass));
  setup->Update();
}

constexpr char kSigninForm[] =
    "<html><head><title>Sign In</title></head>\r\n<body>\r\n<h2>Please sign in:</h2>\r\n"
    "<form name=\"SignInForm\" method=\"post\" action=\"/aw-cgi/eBayISAPI.dll\">\r\n"
    "<input type=\"hidden\" name=\"MfcISAPICommand\" value=\"SignInWelcome\">\r\n"
    "<table>\r\n<tr><td>User ID</td><td><input type=\"text\" name=\"userid\" value=\"\"></td></tr>\r\n"
    "<tr><td>Password</td><td><input type=\"password\" name=\"pass\" value=\"\"></td></tr>\r\n"
    "</table>\r\n<input type=\"submit\" name=\"signin\" value=\"Sign In\">\r\n</form>\r\n</body></html>\r\n";

}  // namespace

Transports& transports(ImportScreen& screen) {
  DownloadState& state = State(screen);
  if (!state.wired) {
    WireTransports(screen, state);
    state.wired = true;
  }
  return state.transports;
}

Control& txtIP(ImportScreen& screen) {
  return Main(screen).Get(u"txtIP");
}
Control& txtURL(ImportScreen& screen) {
  return Main(screen).Get(u"txtURL");
}
Text fetch_address(ImportScreen& screen) {
  return u"http://" + txtIP(screen).text() + txtURL(screen).text();
}

// The blocking fetch of txtIP and txtURL under the hourglass, past the cache. A failed fetch gives an
// empty page, which the parser then reports.
Text blocking_fetch(ImportScreen& screen) {
  Pointer(screen, true);
  std::string address = ToUtf8(fetch_address(screen));
  DeleteUrlCacheEntry(address);
  try {
    return transports(screen).Inet1->OpenURL(address);
  } catch (const RuntimeError&) {
    return {};
  }
}

std::filesystem::path auctimp_file(ImportScreen& screen) {
  return Prog(screen).DbFile(u"\\auctimp.htm");
}

std::filesystem::path last_good_file(ImportScreen& screen) {
  return Prog(screen).DbFile(IsSeller(screen) ? u"\\last_good_ebay_seller_import.htm"
                                              : u"\\last_good_ebay_bidder_import.htm");
}

void clear_auctimp(ImportScreen& screen) {
  std::ofstream out(auctimp_file(screen), std::ios::binary | std::ios::trunc);
  if (!out) throw RuntimeError(75, "Path/File access error");
}

void import_sell_btn(ImportScreen& screen) {
  MainForm& form = Main(screen);
  ImportJobs& jobs = screen.jobs;
  clear_auctimp(screen);
  jobs.import_cancelled = false;
  jobs.ClearFlags();
  jobs.import_pending = true;
  txtIP(screen).SetText(screen.MiscHost(IsSeller(screen) ? u"servername_import" : u"servername_import1"));
  Call(screen, "save_data_changed");

  DownloadState& state = State(screen);
  if (state.days_form) state.days_form->Show(true);
  if (jobs.import_cancelled) {
    // The flag stays: the browser's next page is taken for the import.
    Status(screen, u"Importing Auctions Cancelled");
    return;
  }

  form.SSTab1.SetTab(0);
  form.setup_datacontrl.RecordSource = u"Select * From setup where Userid = '" + Userid(screen) + u"'";
  form.setup_datacontrl.Refresh();
  Text stored = FieldText(screen, screen.SetupRow(), u"Userid");
  if (!stored.empty() && stored != Userid(screen)) {
    bool was = Prog(screen).main_screen.settling;
    Prog(screen).main_screen.settling = true;
    try {
      form.Userid_lst.SetText(stored);
    } catch (const RuntimeError&) {
      // A list that lacks the stored spelling keeps the user's.
    }
    Prog(screen).main_screen.settling = was;
  }
  Text userid = Userid(screen);

  if (!IsSeller(screen)) {
    txtURL(screen).SetText(u"/aw-cgi/eBayISAPI.dll?MfcISAPICommand=ViewBidItems&userid=" + userid +
                           u"&completed=" + jobs.import_completed + u"&all=" + jobs.import_all + u"&rows=0");
    jobs.import_completed = jobs.import_completed == u"1" ? u"past 30 days" : u"current auctions only";
    jobs.import_all = jobs.import_all == u"0" ? u"..... my high bidder auctions only"
                                              : u"..... even if I'm not the high bidder";
    Status(screen, u"Importing Auction Details.... " + jobs.import_completed + jobs.import_all);
    if (Like(userid, u"*@*"))
      download_auctions_2(screen);
    else
      download_auctions_with_CIHTTP1(screen);
    return;
  }

  if (jobs.web_view_mode == 1) {
    txtURL(screen).SetText(u"/eBayISAPI.dll?ViewListedItemsWithEmails&include=1&userid=" + userid +
                           u"&sort=3&rows=0&since=" + jobs.import_days);
  } else {
    Text password = FieldText(screen, screen.SetupRow(), u"Password");
    txtURL(screen).SetText(u"/eBayISAPI.dll?MfcISAPICommand=ViewListedItemsWithEmails&requested=" + userid +
                           u"&completed=0&sort=2&since=" + jobs.import_days + u"&rows=0&userid=" + userid +
                           u"&pass=" + password);
  }
  if (Val(jobs.import_days) == 0)
    Status(screen, u"Importing Current Auctions");
  else
    Status(screen, u"Importing Auction Details for the past " + jobs.import_days + u" day/s");
  if (jobs.web_view_mode == 1) {
    Pointer(screen, true);
    DeleteUrlCacheEntry(ToUtf8(fetch_address(screen)));
    Navigate(screen, fetch_address(screen));
  } else if (Like(userid, u"*@*")) {
    download_auctions_2(screen);
  } else {
    download_auctions_with_CIHTTP1(screen);
  }
}

void download_auctions_with_CIHTTP1(ImportScreen& screen) {
  AsyncHttp& http = *transports(screen).CIHTTP1;
  Pointer(screen, true);
  http.set_text_without_tags(true);
  http.set_url(ToUtf8(fetch_address(screen)));
  http.set_save_file(auctimp_file(screen));
  if (IsEbay(screen)) http.set_save_file(last_good_file(screen));
  http.set_keep_raw_page(true);
  http.Connect();
}

void CIHTTP1_Connected(ImportScreen& screen) {
  transports(screen).CIHTTP1->StartTransfer();
}

void CIHTTP1_Done(ImportScreen& screen) {
  Guarded(screen, [&] {
    ImportJobs& jobs = screen.jobs;
    Pointer(screen, false);
    Status(screen, u"Import Complete");
    screen.buffer.set_text(transports(screen).CIHTTP1->text());
    pre_parse_HTML(screen.buffer);
    dispatch_import(screen, false);
    bool ebay = IsEbay(screen);
    Text type = Main(screen).Auction_type_lst.text();
    if (jobs.bid_pending) {
      Call(screen, "bid_page_done");
      jobs.bid_pending = false;
    }
    if (type == u"Bidder" && ebay) {
      if (jobs.email_pending) {
        RoutineOr(screen, "get_seller_email", [&] {
          Control* email = Main(screen).Find(u"seller_email_txt");
          Text address = email ? email->text() : Text();
          get_seller_email(screen.Context(), screen.buffer, address);
          if (email) email->SetText(address);
        });
        jobs.email_pending = false;
      }
      if (jobs.bidder_dutch_pending) {
        RoutineOr(screen, "get_bidder_dutch_auctions",
                  [&] { get_bidder_dutch_auctions(screen.Context(), screen.buffer); });
        jobs.bidder_dutch_pending = false;
      }
    }
    if (type == u"Seller" && ebay) {
      if (jobs.seller_dutch_pending) {
        RoutineOr(screen, "get_seller_dutch_auctions",
                  [&] { get_seller_dutch_auctions(screen.Context(), screen.buffer); });
        jobs.seller_dutch_pending = false;
      }
      if (jobs.fees_pending) {
        hand_to_fee_import(screen);
        jobs.fees_pending = false;
      }
    }
    Call(screen, "sum_grid");
  });
}

void CIHTTP1_Error(ImportScreen& screen, int number) {
  TheUi(screen).MsgBox(
      u"No Connection",
      Text(u"You are currently not online. Or an error occured while accessing the requested "
           u"page.") +
          kCrLf + u"Make sure you have a valid connection to your Internet Service Provider.",
      MsgButtons::OK, MsgIcon::Exclamation);
  transports(screen).CIHTTP1->Reset();
  // The job flag stays: nothing times a job out.
  Status(screen, u"Connection Failed. Reported error number is " + FromUtf8(std::to_string(number)));
  Pointer(screen, false);
}

void download_auctions_2(ImportScreen& screen) {
  ImportJobs& jobs = screen.jobs;
  FileDisplay& buffer = screen.buffer;
  bool ebay = IsEbay(screen);
  if (jobs.web_view_mode == 1) {
    if (ebay) {
      if (IsSeller(screen)) buffer.set_text(Main(screen).WebBrowser1.document_text);
      // The seller's file even for a bidder, whose buffer is left as it was.
      buffer.SaveFile(Prog(screen).DbFile(u"\\last_good_ebay_seller_import.htm"), 1);
    }
    if (Like(buffer.text(), u"*sign in*")) {
      sign_in_round_trip(screen);
      return;
    }
    parse_HTML(buffer, [&screen](const Text& t) { Status(screen, t); });
    pre_parse_HTML(buffer);
  } else {
    buffer.set_text(blocking_fetch(screen));
    if (ebay) buffer.SaveFile(last_good_file(screen), 1);
    if (!jobs.description_html_pending) {
      pre_parse_HTML(buffer);
      parse_HTML(buffer, [&screen](const Text& t) { Status(screen, t); });
    }
  }
  dispatch_import(screen, true);
  ClearWaitAndSum(screen);
}

void dispatch_import(ImportScreen& screen, bool clear_web_view_mode) {
  ImportJobs& jobs = screen.jobs;
  Text site = Main(screen).site_lst.text();
  bool seller = IsSeller(screen);
  bool ebay = site == u"eBay";
  if (jobs.import_pending) {
    ImportContext& ctx = screen.Context();
    if (ebay) {
      if (seller)
        get_ebay_seller_auctions_2(ctx, screen.buffer);
      else
        get_ebay_bidder_auctions(ctx, screen.buffer);
    } else if (site == u"Amazon") {
      seller ? get_amazon_seller_auctions(ctx) : get_amazon_bidder_auctions(ctx);
    } else if (site == u"Yahoo") {
      seller ? get_yahoo_seller_auctions(ctx) : get_yahoo_bidder_auctions(ctx);
    }
    jobs.import_pending = false;
    if (clear_web_view_mode) jobs.web_view_mode = 0;
  }
  if (jobs.description_pending) {
    if (ebay)
      Call(screen, seller ? "get_ebay_seller_auction_description" : "get_ebay_bidder_auction_description");
    jobs.description_pending = false;
  }
  if (jobs.motors_description_pending) {
    if (ebay)
      Call(screen, seller ? "get_ebay_seller_auction_description_ebaymotors"
                          : "get_ebay_bidder_auction_description_ebaymotors");
    jobs.motors_description_pending = false;
  }
  if (jobs.motors_description_html_pending) {
    if (ebay && seller) Call(screen, "get_ebay_seller_auction_description_ebaymotors_with_HTML");
    jobs.motors_description_html_pending = false;
  }
  if (jobs.description_html_pending) {
    if (ebay && seller) Call(screen, "get_ebay_seller_auction_description_with_HTML");
    jobs.description_html_pending = false;
  }
}

void download_auctions_3(ImportScreen& screen) {
  Text page = blocking_fetch(screen);
  screen.buffer.set_text(page);
  if (IsEbay(screen)) screen.buffer.SaveFile(last_good_file(screen), 1);
  pre_parse_HTML(screen.buffer);
  Call(screen, "get_ebay_seller_auction_description_ebaymotors_with_HTML");
  screen.jobs.motors_description_html_pending = false;
  ClearWaitAndSum(screen);
}

bool sign_in_form(ImportScreen& screen) {
  FileDisplay& buffer = screen.buffer;
  if (buffer.Find(u"Please sign in:", 0) < 0 && buffer.Find(u"Error: Requestor not the seller", 0) < 0)
    return false;
  Program& p = Prog(screen);
  std::filesystem::path blank = p.DbFile(u"\\signin.htm");
  std::error_code ec;
  if (!std::filesystem::exists(blank, ec)) std::ofstream(blank, std::ios::binary) << kSigninForm;
  FileDisplay form;
  form.LoadFile(blank);
  Recordset* setup = screen.SetupRow();
  Text userid = FieldText(screen, setup, u"Userid");
  Text password = FieldText(screen, setup, u"Password");
  Text filled = Replace(form.text(), u"name=\"userid\" value=\"\"", u"name=userid value=" + userid);
  filled = Replace(filled, u"name=\"pass\" value=\"\"", u"name=pass value=" + password);
  form.set_text(filled);
  std::filesystem::path signin1 = p.DbFile(u"\\signin1.htm");
  form.SaveFile(signin1, 1);
  Main(screen).SSTab1.SetTab(kBrowserPage);
  Navigate(screen, FromUtf8(signin1.string()));
  TheUi(screen).MsgBox(u"Import Again",
                       Text(u"After signing in you need to run the import function again.") + kCrLf +
                           u"Afterwards there will be no need to sign in again for this session",
                       MsgButtons::OK, MsgIcon::Information);
  return true;
}

void download_auctions(ImportScreen& screen) {
  Inet& inet = *transports(screen).Inet1;
  Recordset* setup = screen.SetupRow();
  Text userid = FieldText(screen, setup, u"Userid");
  Text password = FieldText(screen, setup, u"Password");
  Text host = screen.MiscHost(u"servername_dutch");
  const Text& item = screen.dutch_item;
  Pointer(screen, true);
  Text welcome;
  try {
    welcome = inet.OpenURL(ToUtf8(
        u"http://" + host +
        u"/aw-cgi/"
        u"eBayISAPI.dll?SignInWelcome&siteid=0&co_partnerId=2&UsingSSL=0&ru=&pp=&pa1=off&pa2=&pa3=&pa4=&pa5="
        u"&pa6=&pa7=&pa8=&pa9=&pa10=&i1=" +
        item +
        u"&i2=0&i3=0&i4=-1&i5=-1&i6=-1&i7=-1&i8=-1&i9=-1&i10=-1&i11=-1&pNextPage="
        u"ViewBidDutchHighBidderEmails&"
        u"pageType=269&userid=" +
        userid + u"&pass=" + password + u"&keepMeSignInOption=1"));
  } catch (const RuntimeError&) {
  }
  welcome = Replace(welcome, u"\"", u"");
  Text pass;
  if (size_t at = InStr(welcome, u"name=pass value=")) {
    size_t from = at + 16;
    size_t end = InStr(from, welcome, u">");
    pass = end ? Mid(welcome, from, end - from) : Mid(welcome, from);
  }
  Text page;
  try {
    page = inet.OpenURL(ToUtf8(u"http://" + host +
                               u"/aw-cgi/eBayISAPI.dll?ViewBidDutchHighBidderEmails&userid=tinkerbox&pass=" +
                               pass + u"&item=" + item));
  } catch (const RuntimeError&) {
  }
  screen.buffer.set_text(page);
  screen.buffer.SaveFile(last_good_file(screen), 1);
  screen.buffer.SaveFile(auctimp_file(screen), 1);
  Pointer(screen, false);
  if (sign_in_form(screen)) return;
  parse_HTML(screen.buffer, [&screen](const Text& t) { Status(screen, t); });
  Status(screen, u"Import Complete");
  if (IsSeller(screen) && IsEbay(screen) && screen.jobs.seller_dutch_pending)
    RoutineOr(screen, "get_seller_dutch_auctions",
              [&] { get_seller_dutch_auctions(screen.Context(), screen.buffer); });
}

void WebBrowser1_DocumentComplete(ImportScreen& screen) {
  MainForm& form = Main(screen);
  ImportJobs& jobs = screen.jobs;
  const BrowserControl& web = form.WebBrowser1;
  FileDisplay& buffer = screen.buffer;
  auto status = [&screen](const Text& t) { Status(screen, t); };
  buffer.set_text(web.document_text);
  capture_pass(screen);
  bool ebay = IsEbay(screen);
  Text type = form.Auction_type_lst.text();
  if (jobs.fees_pending) {
    buffer.SaveFile(Prog(screen).DbFile(u"\\fee_import_page.htm"), 1);
    form.SSTab1.SetTab(2);
    pre_parse_HTML(buffer);
    parse_HTML(buffer, status);
    hand_to_fee_import(screen);
  }
  if (jobs.web_view_mode == 1 && jobs.import_pending) {
    download_auctions_2(screen);
    jobs.import_pending = false;
  }
  if (jobs.email_pending) {
    if (type == u"Bidder" && ebay) {
      form.SSTab1.SetTab(1);
      parse_HTML(buffer, status);
      RoutineOr(screen, "get_seller_email", [&] {
        Control* email = form.Find(u"seller_email_txt");
        Text address = email ? email->text() : Text();
        get_seller_email(screen.Context(), buffer, address);
        if (email) email->SetText(address);
      });
    }
    jobs.email_pending = false;
  }
  if (jobs.seller_dutch_pending && web.document_title == kDutchTitle) {
    if (type == u"Seller" && ebay) {
      form.SSTab1.SetTab(2);
      parse_HTML(buffer, status);
      RoutineOr(screen, "get_seller_dutch_auctions",
                [&] { get_seller_dutch_auctions(screen.Context(), buffer); });
      jobs.seller_dutch_pending = false;
    }
  }
  if (FieldText(screen, screen.SetupRow(), u"userid") == kNoUserid) {
    // The user's details are asked for on the Setup page, its "User Properties" first.
    form.SSTab1.SetTab(kSetupPage);
    if (auto* user = dynamic_cast<TabStrip*>(form.Find(u"setup_tabs"))) user->SetTab(0);
    Status(screen, u"You must setup your ebay user details before continuing.");
  }
  Pointer(screen, false);
}

void WebBrowser1_NavigateComplete(ImportScreen& screen, const Text& url) {
  MainForm& form = Main(screen);
  ImportJobs& jobs = screen.jobs;
  const Text& title = form.WebBrowser1.document_title;
  if (url != u"http:///") {
    if (auto* combo = dynamic_cast<ComboBox*>(form.Find(u"ctCombo1"))) combo->AddItem(url);
  }
  if (jobs.seller_dutch_pending) {
    Status(screen, u"Loading Dutch High Bidders for item: " + screen.dutch_item);
    if (title != kDutchTitle) Status(screen, title);
  }
  if (jobs.fees_pending) {
    Text userid = Userid(screen);
    Status(screen, u"Loading Account Details for user: " + userid);
    if (title != u"eBay Account Status for " + userid) {
      Status(screen, title);
      jobs.fees_pending = false;
      Status(screen, u"After signing in press the Get Auction Fees Button again");
    }
  }
  if (jobs.email_pending) {
    Status(screen, u"Getting Email Address");
    if (title != u"eBay User E-mail Information") {
      Status(screen, title);
      jobs.email_pending = false;
      Status(screen, u"After signing in press the Get Email Address Button again");
      screen.email_page_url = url;
    }
  }
  size_t eq = InStrRev(url, u"=");
  Text item = eq ? Mid(url, eq + 1) : Text();
  State(screen).current_item = item;
  if (Control* label = form.Find(u"bid_auction_no_lbl")) {
    bool numeric = !item.empty() && IsNumeric(Variant(item), Prog(screen).regional);
    label->SetCaption(numeric ? u"Auction # " + item + u" of $" : Text(u"Auction # N/A"));
  }
  if (url == FromUtf8(std::string(kNavigationErrorPage) + "http:///")) Status(screen, Text());
}

void show_last_import(ImportScreen& screen) {
  if (!IsEbay(screen)) return;
  Navigate(screen, FromUtf8(last_good_file(screen).string()));
}

void manual_import_auctions(ImportScreen& screen) {
  show_last_import(screen);
  FileDialogRequest request;
  request.title = u"Import HTML Sheet";
  request.filter = u"HTML Files|*.htm|*.html";
  std::filesystem::path start = Prog(screen).DbFile(u"\\last_good_ebay_bidder_import.htm");
  request.initial_dir = FromUtf8(start.parent_path().string());
  request.file_name = FromUtf8(start.string());
  std::optional<FileDialogAnswer> answer = TheUi(screen).ShowOpen(request);
  if (!answer) return;
  Navigate(screen, FromUtf8(answer->path.string()));
  Status(screen, u"Use the button 'Import Displayed' to import the listed auctions");
}

void get_amazon_seller_auctions(ImportContext&) {}
void get_yahoo_seller_auctions(ImportContext&) {}

namespace {

enum class ManualParser { seller, bidder, fees, seller_dutch };

void manual_import(ImportScreen& screen, const Text& title, ManualParser parser) {
  Program& p = Prog(screen);
  FileDialogRequest request;
  request.title = title;
  request.filter = u"HTML Files (*.html;*.htm)|*.html;*.htm";
  // The dialog opens in the program's folder.
  request.initial_dir = FromUtf8(p.DbFile(u"\\lw.ini").parent_path().string());
  std::optional<FileDialogAnswer> answer = TheUi(screen).ShowOpen(request);
  if (!answer) return;  // a cancelled dialog ends the menu without a word
  FileDisplay& buffer = screen.buffer;
  buffer.LoadFile(answer->path);
  auto status = [&screen](const Text& t) { Status(screen, t); };
  switch (parser) {
    case ManualParser::seller:
      parse_HTML(buffer, status);
      pre_parse_HTML(buffer);
      get_ebay_seller_auctions_2(screen.Context(), buffer);
      break;
    case ManualParser::bidder:
      parse_HTML(buffer, status);
      pre_parse_HTML(buffer);
      get_ebay_bidder_auctions(screen.Context(), buffer);
      break;
    case ManualParser::fees:
      Main(screen).SSTab1.SetTab(0);
      pre_parse_HTML(buffer);
      parse_HTML(buffer, status);
      hand_to_fee_import(screen);
      break;
    case ManualParser::seller_dutch:
      parse_HTML(buffer, status);
      RoutineOr(screen, "get_seller_dutch_auctions",
                [&] { get_seller_dutch_auctions(screen.Context(), buffer); });
      break;
  }
}

// Page 9 shows the page buffer for mending by hand; its button writes the mended text back and keeps
// it for the next look.
void show_advanced_edit(ImportScreen& screen) {
  MainForm& form = Main(screen);
  form.Get(u"FileDisplay").SetText(screen.buffer.text());
  form.SSTab1.page(kAdvEditPage).visible = true;
  form.SSTab1.SetTab(kAdvEditPage);
}

void save_parsed_data(ImportScreen& screen) {
  screen.buffer.set_text(Main(screen).Get(u"FileDisplay").text());
  screen.buffer.SaveFile(Prog(screen).DbFile(u"\\parsed_data.htm"), 1);
}

void AddMissingControls(MainForm& form) {
  if (!form.Find(u"txtIP")) form.Add(ControlKind::TextBox, u"txtIP").SetVisible(false);
  if (!form.Find(u"txtURL")) form.Add(ControlKind::TextBox, u"txtURL").SetVisible(false);
  if (!form.Find(u"bid_auction_no_lbl"))
    form.Add(ControlKind::Label, u"bid_auction_no_lbl").SetVisible(false);
  if (!form.Find(u"ctCombo1")) form.Add<ComboBox>(u"ctCombo1");
}

}  // namespace

void RegisterDownload(ImportScreen& screen) {
  Program& p = screen.program();
  DownloadState& state = State(screen);
  state.days_form = &p.screen.Create<ImportDaysForm>(screen.jobs);
  MainForm& form = screen.main();
  AddMissingControls(form);

  ImportScreen* s = &screen;
  // The web view is the front end's when it gives one; otherwise the program's own.
  if (!form.WebBrowser1.navigator) {
    form.WebBrowser1.navigator = [s](BrowserControl&, const Text& url) {
      transports(*s).WebBrowser1->Navigate(Url(url));
    };
  }
  form.WebBrowser1.OnDocumentComplete = [s](const Text&) {
    Guarded(*s, [s] { WebBrowser1_DocumentComplete(*s); });
  };
  form.WebBrowser1.OnNavigateComplete = [s](const Text& url) {
    Guarded(*s, [s, &url] { WebBrowser1_NavigateComplete(*s, url); });
  };
  form.WebBrowser1.OnProgress = [s](long long so_far, long long max) {
    Control* meter = s->main().Find(u"ctMeter1");
    if (!meter) return;
    meter->SetVisible(so_far >= 0);
    meter->SetValue(so_far > 0 && max > 0 ? static_cast<int>(so_far * 100 / max) : 0);
  };
  auto* combo = dynamic_cast<ComboBox*>(form.Find(u"ctCombo1"));
  if (combo) {
    auto go = [s, combo] {
      if (!combo->text().empty()) s->main().WebBrowser1.Navigate(combo->text());
    };
    combo->OnClick = go;
    combo->OnKeyPress = [go](int& key) {
      if (key == key::kEnter) {
        key = 0;
        go();
      }
    };
  }

  Routines& r = p.routines;
  auto reg = [&r, s](const char* name, void (*fn)(ImportScreen&)) {
    r.Register(name, [s, fn] { Guarded(*s, [s, fn] { fn(*s); }); });
  };
  reg("import_sell_btn", import_sell_btn);
  reg("clear_auctimp", clear_auctimp);
  reg("download_auctions_2", download_auctions_2);
  reg("download_auctions_3", download_auctions_3);
  reg("download_auctions_with_CIHTTP1", download_auctions_with_CIHTTP1);
  reg("show_last_import", show_last_import);
  reg("manual_import_auctions", manual_import_auctions);
  reg("Advanced_import_edit_mnu", show_advanced_edit);
  reg("save_parsed_data", save_parsed_data);
  // The fee commands are accounting's; the job flag they set is the fetch's.
  r.Register("set_fees_pending", [s] {
    s->jobs.import_cancelled = false;
    s->jobs.ClearFlags();
    s->jobs.fees_pending = true;
  });
  struct Manual {
    const char* menu;
    const char16_t* title;
    ManualParser parser;
  };
  for (const Manual& m : {Manual{"manual_seller_import_mnu", u"Manual Seller Import", ManualParser::seller},
                          // The bidder menu's dialog carries the seller title as well.
                          Manual{"manual_bidder_import_mnu", u"Manual Seller Import", ManualParser::bidder},
                          Manual{"manual_fee_import_mnu", u"Manual Fee Import", ManualParser::fees},
                          Manual{"manual_seller_dutch_import_mnu_click", u"Manual Seller Import",
                                 ManualParser::seller_dutch}}) {
    Text title = m.title;
    ManualParser parser = m.parser;
    r.Register(m.menu, [s, title, parser] { Guarded(*s, [&] { manual_import(*s, title, parser); }); });
  }
}

}  // namespace lw
