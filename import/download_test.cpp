// The update command and its routes on the real main form, over a store installed from the shipped empty
// one and the loopback fixture server: what ends in the store, the work files, the flags and the status.
#include "import/download.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <fstream>

#include "core/primitives/encoding.h"
#include "import/import_days.h"
#include "platform/loopback_http_server.h"
#include "screen/main/main_form.h"
#include "screen/main/startup.h"
#include "screen/testing.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

// The user of these tests: records message boxes, answers the file dialog from a queue and plays the
// modal dialog. (A Ui of its own: the test support of the list parsers has a class of the same name.)
class PlayingUi : public testing::StubUi {
 public:
  struct Box {
    Text title, text;
  };
  std::vector<Box> boxes;
  std::function<void(Form&)> modal;
  int wait = 0;

  MsgAnswer MsgBox(const Text& title, const Text& text, MsgButtons buttons, MsgIcon) override {
    boxes.push_back({title, text});
    return ButtonsOf(buttons).front();
  }
  void SetWaitCursor(bool on) override { wait = on ? 1 : 0; }
  void ShowModal(Form& form) override {
    if (modal) modal(form);
  }
  [[noreturn]] void EndProcess(int code) override { throw ProcessEnd{code}; }
};

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

class DownloadTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = testing::FreshTestHome("lw_download_",
                                  ::testing::UnitTest::GetInstance()->current_test_info()->name());
  }
  void TearDown() override {
    program_.reset();
    settings_.reset();
    fs::remove_all(dir_);
  }

  // `list_host` serves both lists; the sign-in host is the same server.
  void Start(const std::string& list_host, const std::string& userid = "alice") {
    settings_ = std::make_unique<Settings>(dir_ / "config" / "settings.ini");
    settings_->SaveSetting(u"Lotwright", u"Hosts", u"signin", T(list_host));
    settings_->SaveSetting(u"Lotwright", u"Network", u"timeout", u"5");
    program_ = std::make_unique<Program>(ui_, queue_, *settings_,
                                         ProgramFiles{fs::path(LW_BINARY_DIR) / "share" / "lw.mdb",
                                                      dir_ / "lotwright-convert", dir_ / "help"});
    program_->clock.Fix(MakeDate(2026, 11, 20, 12, 0, 0));
    CreateForms(*program_);
    RegisterImport(*program_);
    Main(*program_);
    Exec("UPDATE setup SET Userid = '" + userid + "', Password = 'secret'");
    Exec("UPDATE misc SET servername_import = '" + list_host + "', servername_import1 = '" + list_host + "'");
    Exec("DELETE FROM seller");
    Exec("DELETE FROM bidder");
    program_->startup.misc->Requery();
    if (main().Misc.HasRecordset()) main().Misc.Refresh();
    program_->startup.setup->Requery();
    main().load_userids();
    main().Userid_lst.SetText(T(userid));
    for (const char16_t* site : {u"eBay", u"Yahoo"})
      if (main().site_lst.Find(site) < 0) main().site_lst.AddItem(site);
    main().site_lst.SetText(u"eBay");
    ui_.boxes.clear();
  }

  MainForm& main() { return *program_->main; }
  ImportScreen& screen() { return *static_cast<ImportScreen*>(program_->subsystems.front().get()); }
  void Exec(const std::string& sql) { program_->startup.db->Execute(T(sql)); }
  int64_t Count(const std::string& table) {
    return program_->startup.db->OpenRecordset(T("Select * From " + table))->RecordCount();
  }
  Text Status() { return main().status(); }
  fs::path File(const char16_t* name) { return program_->DbFile(name); }
  // The user's part in the days dialog.
  void Answer(const char* days, bool cancel = false) {
    ui_.modal = [days, cancel](Form& form) {
      auto& dialog = static_cast<ImportDaysForm&>(form);
      dialog.days_completed_lst.SetText(T(days));
      (cancel ? dialog.import_cancel_btn : dialog.import_now_btn).OnClick();
    };
  }
  void Type(const char16_t* type) {
    main().Auction_type_lst.SetText(type);
    ui_.boxes.clear();
  }
  void Pump() { ASSERT_TRUE(queue_.Pump(std::chrono::seconds(20))); }

  fs::path dir_;
  PlayingUi ui_;
  EventQueue queue_;
  std::unique_ptr<Settings> settings_;
  std::unique_ptr<Program> program_;
};

const std::string kPages = std::string(LW_SOURCE_DIR) + "/tests/e2e/pages";

TEST(ImportDaysChoices, ListTextsGiveTheAddressValues) {
  EXPECT_EQ(Text(import_days_value(u"No")), u"0");
  EXPECT_EQ(Text(import_days_value(u"All")), u"30");
  EXPECT_EQ(Text(import_days_value(u"Last 30 Days")), u"30");
  EXPECT_EQ(Text(import_days_value(u"Last 2 Days")), u"2");
  EXPECT_EQ(Text(import_days_value(u"Last 14 Days")), u"14");
  EXPECT_EQ(import_days_value(u"Last Week"), nullptr);
  EXPECT_EQ(Text(import_completed_value(u"All")), u"1");
  EXPECT_EQ(import_completed_value(u"Last Day"), nullptr);
  EXPECT_EQ(Text(import_all_value(u"No, only if high bidder")), u"0");
  EXPECT_EQ(Text(import_all_value(u"Yes, even if not the high bidder")), u"1");
}

// The user's road through the days dialog and the sign-in is the e2e script download_seller's; here the
// browser's next page takes an import the dialog left pending, and what the route keeps and resets.
TEST_F(DownloadTest, TheBrowsersNextPageTakesThePendingImportAfterTheSignIn) {
  testing::LoopbackHttpServer server(kPages, {"--signin", "alice:secret"});
  Start(server.host());
  Answer("All", true);
  screen().jobs.web_view_mode = 1;  // left so by an earlier background import
  program_->routines.Call("import_sell_btn");
  EXPECT_EQ(Status(), u"Importing Auctions Cancelled");
  EXPECT_TRUE(screen().jobs.import_pending);
  EXPECT_TRUE(txtURL(screen()).text().empty());
  const Text list = T(server.base() + "/eBayISAPI.dll?ViewListedItemsWithEmails&x=1");
  // Not signed in: the page asks for it, it is kept as the last good one, nothing is imported, and
  // the completion ends the job.
  main().WebBrowser1.Navigate(list);
  Pump();
  EXPECT_EQ(Status(), u"You have not signed in");
  EXPECT_NE(ReadFile(File(u"\\last_good_ebay_seller_import.htm")).find("Please sign in:"), std::string::npos);
  EXPECT_EQ(Count("seller"), 0);
  EXPECT_FALSE(screen().jobs.import_pending);
  main().WebBrowser1.Navigate(
      T(server.base() + "/aw-cgi/eBayISAPI.dll?SignInWelcome&userid=alice&pass=secret"));
  Pump();
  program_->routines.Call("import_sell_btn");
  main().WebBrowser1.Navigate(list);
  Pump();
  EXPECT_EQ(Count("seller"), 10);
  EXPECT_EQ(screen().jobs.web_view_mode, 0);
  EXPECT_FALSE(screen().jobs.import_pending);
  // The raw page and the text the parser read are left for a look.
  EXPECT_NE(ReadFile(File(u"\\last_good_ebay_seller_import.htm")).find("<TD>"), std::string::npos);
  EXPECT_NE(ReadFile(File(u"\\parsed_data.htm")).find("Blue Glass Vase"), std::string::npos);
  EXPECT_EQ(ui_.wait, 0);
}

TEST_F(DownloadTest, BidderListInTheBackgroundKeepsTheRawPage) {
  testing::LoopbackHttpServer server(kPages);
  Start(server.host());
  Type(u"Bidder");
  ui_.modal = [](Form& form) {
    auto& dialog = static_cast<ImportDaysForm&>(form);
    dialog.days_completed_lst_1.SetText(u"All");
    dialog.high_bid_only_lst.SetText(u"Yes, even if not the high bidder");
    dialog.import_now_btn.OnClick();
  };
  program_->routines.Call("import_sell_btn");
  EXPECT_EQ(txtURL(screen()).text(),
            u"/aw-cgi/eBayISAPI.dll?MfcISAPICommand=ViewBidItems&userid=alice&completed=1&all=1&rows=0");
  EXPECT_EQ(Status(), u"Importing Auction Details.... past 30 days..... even if I'm not the high bidder");
  Pump();
  EXPECT_EQ(Status(), u"Importing Auctions Completed.  4 Auctions Added.  0 Auctions Updated.");
  EXPECT_EQ(Count("bidder"), 4);
  // The background route does not end the browser's mode.
  EXPECT_EQ(screen().jobs.web_view_mode, 1);
  EXPECT_NE(ReadFile(File(u"\\last_good_ebay_bidder_import.htm")).find("<title>eBay View Bidder List"),
            std::string::npos);
  EXPECT_EQ(ui_.wait, 0);
}

TEST_F(DownloadTest, RefusedConnectionReportsAndKeepsTheJob) {
  Start("127.0.0.1:9");
  Type(u"Bidder");
  Answer("No");
  program_->routines.Call("import_sell_btn");
  Pump();
  ASSERT_EQ(ui_.boxes.size(), 1u);
  EXPECT_EQ(ui_.boxes[0].title, u"No Connection");
  EXPECT_EQ(ui_.boxes[0].text,
            u"You are currently not online. Or an error occured while accessing the requested page.\r\n"
            u"Make sure you have a valid connection to your Internet Service Provider.");
  EXPECT_EQ(Status(), u"Connection Failed. Reported error number is 7");
  EXPECT_TRUE(screen().jobs.import_pending);
  EXPECT_EQ(Count("bidder"), 0);
  EXPECT_EQ(ui_.wait, 0);
}

TEST_F(DownloadTest, DispatchByFlagSiteAndType) {
  Start("127.0.0.1:9");
  std::vector<std::string> calls;
  for (const char* name :
       {"get_ebay_seller_auction_description", "get_ebay_bidder_auction_description",
        "get_ebay_seller_auction_description_ebaymotors", "get_ebay_seller_auction_description_with_HTML",
        "get_ebay_seller_auction_description_ebaymotors_with_HTML", "sum_grid"}) {
    std::string n = name;
    program_->routines.Register(name, [&calls, n] { calls.push_back(n); });
  }
  ImportJobs& jobs = screen().jobs;
  // The HTML rows exist for the seller only, and every flag is cleared whatever the type.
  Type(u"Bidder");
  jobs.description_pending = jobs.description_html_pending = jobs.motors_description_html_pending = true;
  dispatch_import(screen(), true);
  EXPECT_EQ(calls, std::vector<std::string>{"get_ebay_bidder_auction_description"});
  EXPECT_FALSE(jobs.description_pending || jobs.description_html_pending ||
               jobs.motors_description_html_pending);
  // Other sites reach the empty dispatch points: nothing imported, nothing said.
  calls.clear();
  Type(u"Seller");
  main().site_lst.SetText(u"Yahoo");
  jobs.import_pending = jobs.motors_description_pending = true;
  jobs.web_view_mode = 1;
  screen().buffer.set_text(u"no list here");
  dispatch_import(screen(), true);
  EXPECT_TRUE(calls.empty());
  EXPECT_FALSE(jobs.import_pending || jobs.motors_description_pending);
  EXPECT_EQ(jobs.web_view_mode, 0);
  EXPECT_TRUE(ui_.boxes.empty());
  // The seller's description on eBay; the background route leaves the browser's mode alone.
  main().site_lst.SetText(u"eBay");
  jobs.description_pending = jobs.import_pending = true;
  jobs.web_view_mode = 1;
  dispatch_import(screen(), false);
  EXPECT_EQ(calls, std::vector<std::string>{"get_ebay_seller_auction_description"});
  EXPECT_EQ(jobs.web_view_mode, 1);
}

TEST_F(DownloadTest, AtSignBidderParsesTheBufferAsItStandsIntoTheSellersFile) {
  Start("127.0.0.1:9", "al@example.com");
  Type(u"Bidder");
  screen().jobs.import_pending = true;
  screen().jobs.web_view_mode = 1;
  screen().buffer.set_text(u"<p>held from before</p>");
  download_auctions_2(screen());
  EXPECT_EQ(
      ReadFile(File(u"\\last_good_ebay_seller_import.htm")).find("held from before") != std::string::npos,
      true);
  EXPECT_FALSE(fs::exists(File(u"\\last_good_ebay_bidder_import.htm")));
  EXPECT_EQ(screen().buffer.text(), u"held from before");
}

TEST_F(DownloadTest, NavigationCompleteReadsTitleAndItem) {
  Start("127.0.0.1:9");
  WebBrowser1_NavigateComplete(screen(), u"http://x/ws/eBayISAPI.dll?ViewItem&item=4455");
  EXPECT_EQ(main().Get(u"bid_auction_no_lbl").caption(), u"Auction # 4455 of $");
  auto& combo = main().Get<ComboBox>(u"ctCombo1");
  EXPECT_EQ(combo.List(combo.ListCount() - 1), u"http://x/ws/eBayISAPI.dll?ViewItem&item=4455");
  int before = combo.ListCount();
  WebBrowser1_NavigateComplete(screen(), u"http:///");
  EXPECT_EQ(combo.ListCount(), before);
  EXPECT_EQ(main().Get(u"bid_auction_no_lbl").caption(), u"Auction # N/A");
  // A page other than the account page ends the fee job with the advice to sign in.
  screen().jobs.fees_pending = true;
  WebBrowser1_NavigateComplete(screen(), u"http://x/signin");
  EXPECT_FALSE(screen().jobs.fees_pending);
  EXPECT_EQ(Status(), u"After signing in press the Get Auction Fees Button again");
  screen().jobs.email_pending = true;
  WebBrowser1_NavigateComplete(screen(), u"http://x/mail?id=1");
  EXPECT_FALSE(screen().jobs.email_pending);
  EXPECT_EQ(screen().email_page_url, u"http://x/mail?id=1");
}

TEST_F(DownloadTest, CompletedPageWithoutAUseridAsksForTheUsersDetails) {
  Start("127.0.0.1:9", "No Userid Set");
  WebBrowser1_DocumentComplete(screen());
  EXPECT_EQ(main().SSTab1.tab(), kSetupPage);
  EXPECT_EQ(main().Get<TabStrip>(u"setup_tabs").tab(), 0);
  EXPECT_EQ(Status(), u"You must setup your ebay user details before continuing.");
  // An empty host of the misc row is the shipped one, for every fetch alike.
  Exec("UPDATE misc SET servername_desc = '', servername_ebaymotors = ''");
  main().Misc.Refresh();
  EXPECT_EQ(screen().MiscHost(u"servername_desc"), u"cgi.ebay.com");
  EXPECT_EQ(screen().MiscHost(u"servername_ebaymotors"), u"cgi.ebaymotors.com");
  EXPECT_EQ(screen().MiscHost(u"servername_import"), u"127.0.0.1:9");
}

TEST_F(DownloadTest, PassIsCapturedOnce) {
  testing::LoopbackHttpServer server(kPages);
  Start(server.host());
  Exec("UPDATE setup SET pass1 = Null");
  main().setup_datacontrl.Refresh();
  main().WebBrowser1.Navigate(T(server.base() + "/seller_list.html?a=1&pass=ABC123&userid=alice"));
  Pump();
  main().WebBrowser1.Navigate(T(server.base() + "/seller_list.html?a=1&pass=OTHER&userid=alice"));
  Pump();
  auto rs = program_->startup.db->OpenRecordset(u"Select pass1 From setup");
  EXPECT_EQ(*rs->Fields(u"pass1").text(), u"ABC123");
}

TEST_F(DownloadTest, SignInFormAndHandEditSaveTheirFiles) {
  Start("127.0.0.1:9");
  screen().buffer.set_text(u"Error: Requestor not the seller");
  EXPECT_TRUE(sign_in_form(screen()));
  std::string filled = ReadFile(File(u"\\signin1.htm"));
  EXPECT_NE(filled.find("name=userid value=alice"), std::string::npos);
  EXPECT_NE(filled.find("name=pass value=secret"), std::string::npos);
  ASSERT_EQ(ui_.boxes.size(), 1u);
  EXPECT_EQ(ui_.boxes[0].title, u"Import Again");
  screen().buffer.set_text(u"an ordinary page");
  EXPECT_FALSE(sign_in_form(screen()));

  program_->routines.Call("Advanced_import_edit_mnu");
  EXPECT_EQ(main().Get(u"FileDisplay").text(), u"an ordinary page");
  main().Get(u"FileDisplay").SetText(u"mended\nby hand");
  main().Get(u"ctbutton1").OnClick();
  EXPECT_EQ(ReadFile(File(u"\\parsed_data.htm")).find("mended\r\nby hand") != std::string::npos, true);
  EXPECT_FALSE(main().SSTab1.page(kAdvEditPage).visible);
}

TEST_F(DownloadTest, BlockingFetchNormalisesUnlessTheParserWantsTheHtml) {
  testing::LoopbackHttpServer server(kPages);
  Start(server.host());
  Text seen;
  for (const char* name :
       {"get_ebay_seller_auction_description", "get_ebay_seller_auction_description_with_HTML"})
    program_->routines.Register(name, [this, &seen] { seen = screen().buffer.text(); });
  ImportJobs& jobs = screen().jobs;
  txtIP(screen()).SetText(T(server.host()));
  txtURL(screen()).SetText(u"/item_ordinary.html");
  jobs.description_pending = true;
  download_auctions_2(screen());
  EXPECT_FALSE(jobs.description_pending);
  EXPECT_EQ(seen.find(u"<"), Text::npos);
  EXPECT_FALSE(seen.empty());
  EXPECT_NE(ReadFile(File(u"\\last_good_ebay_seller_import.htm")).find("<html"), std::string::npos);
  jobs.description_html_pending = true;
  download_auctions_2(screen());
  EXPECT_FALSE(jobs.description_html_pending);
  EXPECT_NE(seen.find(u"<html"), Text::npos);
  // Nothing came: the parser gets an empty page and no message is shown.
  txtIP(screen()).SetText(u"127.0.0.1:9");
  jobs.description_pending = true;
  download_auctions_2(screen());
  EXPECT_TRUE(seen.empty());
  EXPECT_TRUE(ui_.boxes.empty());
  EXPECT_EQ(ui_.wait, 0);
}

}  // namespace
}  // namespace lw
