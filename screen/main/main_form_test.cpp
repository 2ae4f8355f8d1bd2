// The main form driven the way a user drives it, on a real store installed from the shipped empty one.
#include "screen/main/main_form.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>
#include <unistd.h>

#include <deque>
#include <fstream>

#include "core/primitives/encoding.h"
#include "screen/main/small_forms.h"
#include "screen/main/startup.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

struct Box {
  Text title, text;
  MsgButtons buttons;
  MsgIcon icon;
};

class FakeUi : public Ui {
 public:
  std::vector<Box> boxes;
  std::deque<MsgAnswer> answers;
  std::vector<Text> modal_forms;
  std::vector<fs::path> started;
  Text clipboard;
  std::function<void(Form&)> on_modal;  // what the user does on a modal form; default: closes it

  MsgAnswer MsgBox(const Text& title, const Text& text, MsgButtons buttons, MsgIcon icon) override {
    boxes.push_back({title, text, buttons, icon});
    if (answers.empty()) return ButtonsOf(buttons).front();
    MsgAnswer a = answers.front();
    answers.pop_front();
    return a;
  }
  std::optional<FileDialogAnswer> ShowOpen(const FileDialogRequest&) override { return std::nullopt; }
  std::optional<FileDialogAnswer> ShowSave(const FileDialogRequest&) override { return std::nullopt; }
  std::optional<Colour> ChooseColour(Colour) override { return std::nullopt; }
  void SetWaitCursor(bool) override {}
  void ShowModal(Form& form) override {
    modal_forms.push_back(form.name());
    if (on_modal) on_modal(form);
    if (form.visible()) form.Unload();
  }
  void PopupMenu(Form&, Menu&) override {}
  void SetClipboardText(const Text& text) override { clipboard = text; }
  void ClearClipboard() override { clipboard.clear(); }
  Text ClipboardText() override { return clipboard; }
  void OpenHelp(const fs::path&, int) override {}
  void OpenAddress(const Text&) override {}
  void StartProgram(const fs::path& program, const std::vector<Text>&) override {
    started.push_back(program);
  }
  [[noreturn]] void EndProcess(int code) override { throw ProcessEnd{code}; }
};

class MainFormTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("lw_main_" + std::to_string(::getpid()) + "_" +
                                        ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_ / "data");
    setenv("XDG_DATA_HOME", (dir_ / "data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (dir_ / "config").c_str(), 1);
    store_ = dir_ / "data" / "lotwright" / "lw.mdb";
  }
  void TearDown() override {
    program_.reset();
    settings_.reset();
    fs::remove_all(dir_);
  }

  // A new run of the program on the same folders. Returns the code the run ended with, if it ended.
  std::optional<int> Start() {
    program_.reset();
    settings_ = std::make_unique<Settings>(dir_ / "config" / "settings.ini");
    ui_ = FakeUi();
    program_ = std::make_unique<Program>(
        ui_, queue_, *settings_, ProgramFiles{LW_SHIPPED_STORE, dir_ / "lotwright-convert", dir_ / "help"});
    CreateForms(*program_);
    try {
      Main(*program_);
    } catch (const ProcessEnd& end) {
      return end.code;
    }
    return std::nullopt;
  }
  std::optional<int> Exit() {
    try {
      main().exit_program();
    } catch (const ProcessEnd& end) {
      return end.code;
    }
    return std::nullopt;
  }
  MainForm& main() { return *program_->main; }
  void Key(int code) {
    int k = code;
    main().OnKeyDown(k, 0);
  }
  std::string Ini() {
    std::ifstream in(store_.parent_path() / "lw.ini", std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }

  fs::path dir_, store_;
  FakeUi ui_;
  EventQueue queue_;
  std::unique_ptr<Settings> settings_;
  std::unique_ptr<Program> program_;
};

TEST_F(MainFormTest, FirstStartInstallsTheStoreAndOpensTheWizard) {
  ASSERT_FALSE(Start().has_value());
  EXPECT_TRUE(fs::exists(store_));
  // The folders made for it and the store itself are the user's alone.
  EXPECT_EQ(fs::status(store_.parent_path()).permissions(), fs::perms::owner_all);
  EXPECT_EQ(fs::status(store_).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_TRUE(ui_.boxes.empty());
  EXPECT_EQ(ui_.modal_forms, std::vector<Text>{u"wizard_frm"});
  EXPECT_EQ(main().status(), u"Couldn't import ini file. Default values loaded.");
  EXPECT_EQ(main().Userid_lst.text(), kNoUserid);
  EXPECT_EQ(main().Auction_status_lst.text(), u"All Auctions");
  // The store's own path, the folder and the file joined as the system joins them.
  EXPECT_EQ(main().caption, u"SELLER AUCTIONS current Database Name - " + FromUtf8(store_.string()));
  EXPECT_FALSE(program_->splash->visible());
  EXPECT_EQ(program_->splash->version_lbl.caption(), u"Version 4.01");
  // Seller list bar: four groups, each led by Quit.
  ASSERT_EQ(main().ctListBar1.GroupCount(), 4);
  EXPECT_EQ(main().ctListBar1.group(3).caption, u"BulkList");
  for (int g = 0; g < 4; ++g) EXPECT_EQ(main().ctListBar1.group(g).items[0].caption, u"Quit");
  // The first user id reaches the duplicate menus.
  EXPECT_TRUE(main().Get(u"duplicate_auction_to_sold_userid", 0).visible());
  EXPECT_FALSE(main().Get(u"duplicate_auction_to_sold_userid", 1).visible());

  // Every activation offers the wizard again while there is no real user id, asks for the current
  // picture and takes the font sizing switch from the misc row.
  int pictures = 0;
  program_->routines.Register("refresh_picture", [&] { ++pictures; });
  program_->startup.db->Execute(u"Update misc SET fontsizing = yes");
  main().Misc.Refresh();
  EXPECT_FALSE(program_->main_screen.fontsizing);
  main().Activate();
  EXPECT_EQ(ui_.modal_forms, (std::vector<Text>{u"wizard_frm", u"wizard_frm"}));
  EXPECT_EQ(pictures, 1);
  EXPECT_TRUE(program_->main_screen.fontsizing);
  program_->startup.db->Execute(u"Update setup SET Userid = 'jan'");
  program_->startup.setup->Requery();
  main().Activate();
  EXPECT_EQ(ui_.modal_forms.size(), 2u);

  // The settings say where the store is now; a second start opens it without a wizard loop.
  ASSERT_EQ(Exit(), 0);
  ASSERT_FALSE(Start().has_value());
  EXPECT_EQ(main().status(), u"Values from last saved query loaded.");
}

TEST_F(MainFormTest, PagesKeysAndTheSetupLock) {
  ASSERT_FALSE(Start().has_value());
  Key(key::kF1 + 2);  // F3
  EXPECT_EQ(main().SSTab1.tab(), 1);
  EXPECT_EQ(main().status(), u"Displaying current auction .... Detail TAB View.");
  Key(key::kF1 + 9);  // F10 has no page
  EXPECT_EQ(main().SSTab1.tab(), 1);
  Key(key::kF1 + 6);  // F7
  EXPECT_EQ(main().status(), u"Post auction either now or via a bulk listing");

  main().SetStatus(u"Letter: *Mail sent successfully* to jan");
  Key(key::kF1 + 1);
  EXPECT_EQ(main().status(), u"Letter: *Mail sent successfully* to jan");

  // Leaving the Setup page needs a user id with a password and a name.
  program_->startup.db->Execute(u"Update setup SET Password = 'pw', Name = 'Tester'");
  Key(key::kF1 + 10);  // F11: Setup locks the rest
  EXPECT_EQ(main().SSTab1.tab(), kSetupPage);
  EXPECT_EQ(main().status(), u"Press Save to exit and re-enable TABS");
  EXPECT_FALSE(main().SSTab1.page(0).enabled);
  EXPECT_TRUE(main().SSTab1.page(kSetupPage).enabled);
  EXPECT_FALSE(main().Userid_lst.enabled());
  EXPECT_FALSE(main().ctListBar1.enabled());
  EXPECT_FALSE(main().Find(u"tab_views_mnu")->enabled());
  Key(key::kF1 + 1);  // F2 cannot leave
  EXPECT_EQ(main().SSTab1.tab(), kSetupPage);
  main().Get(u"setup_btn", 2).OnClick();  // Cancel
  EXPECT_EQ(main().SSTab1.tab(), 0);
  EXPECT_TRUE(main().SSTab1.page(3).enabled);
  EXPECT_TRUE(main().Auction_type_lst.enabled());
}

TEST_F(MainFormTest, CommandsGoThroughTheRegistry) {
  ASSERT_FALSE(Start().has_value());
  // Nothing to mend until an import has failed.
  EXPECT_FALSE(main().Get(u"Advanced_import_edit_mnu").enabled());
  main().ctListBar1.OnItemClick(0, 1, kLeftButton);  // Update Auctions, not built yet
  EXPECT_EQ(main().status(), kNotAvailable);
  EXPECT_EQ(main().ctListBar1.help_context_id, 1007);
  int runs = 0;
  program_->routines.Register("import_sell_btn", [&] { ++runs; });
  main().SetStatus(u"");
  main().ctListBar1.OnItemClick(0, 1, kLeftButton);
  EXPECT_EQ(runs, 1);
  EXPECT_EQ(main().status(), u"");

  // BulkList commands take the Lister page away and give it back.
  main().ctListBar1.OnItemClick(3, 1, kLeftButton);
  EXPECT_FALSE(main().SSTab1.page(kListerPage).enabled);
  main().ctListBar1.OnItemClick(3, 4, kLeftButton);
  EXPECT_TRUE(main().SSTab1.page(kListerPage).enabled);

  // A View command enters the browser page with its target, even from the browser page itself.
  main().ctListBar1.OnItemClick(2, 1, kLeftButton);  // Search
  EXPECT_EQ(main().SSTab1.tab(), kBrowserPage);
  EXPECT_EQ(main().status(), u"Displaying ebay Search page");
  EXPECT_EQ(main().WebBrowser1.location_url, u"http://search.ebay.com/search/items/basicsearch.html");
  main().ctListBar1.OnItemClick(2, 8, kLeftButton);  // PayPal
  EXPECT_EQ(main().status(), u"Displaying PayPal Home Page");
  // With the flags used up the page shows the current auction.
  main().SSTab1.SetTab(0);
  main().SSTab1.SetTab(kBrowserPage);
  EXPECT_EQ(main().status(), u"Displaying Current Auction .... Browser View");

  // A click on the status bar copies panel 1.
  main().StatusBar1.OnPanelClick(1);
  EXPECT_EQ(ui_.clipboard, u"Displaying Current Auction .... Browser View");
}

TEST_F(MainFormTest, BidderSwapsControlsAndListBar) {
  ASSERT_FALSE(Start().has_value());
  main().Auction_type_lst.SetText(u"Bidder");
  EXPECT_EQ(main().ctListBar1.GroupCount(), 3);
  EXPECT_EQ(main().ctListBar1.group(0).items[3].caption, u"Get Email Address");
  EXPECT_FALSE(main().Find(u"ctToolBar3")->visible());
  EXPECT_TRUE(main().Get<Toolbar>(u"ctToolBar1").button(6).enabled);
  EXPECT_FALSE(main().Get<Toolbar>(u"ctToolBar8").button(2).enabled);
  EXPECT_TRUE(main().Get<Toolbar>(u"ctToolBar8").button(5).enabled);
  EXPECT_TRUE(main().Find(u"bid_btn")->visible());
  EXPECT_TRUE(main().Find(u"seller_email_txt")->visible());
  EXPECT_FALSE(main().Get(u"Cost_txt", 0).visible());
  EXPECT_TRUE(main().Get(u"Cost_txt", 1).visible());
  main().Auction_type_lst.SetText(u"Seller");
  EXPECT_TRUE(main().Find(u"ctToolBar3")->visible());
  EXPECT_FALSE(main().Get<Toolbar>(u"ctToolBar1").button(6).enabled);
  EXPECT_FALSE(main().Find(u"bid_btn")->visible());
}

TEST_F(MainFormTest, ExitSavesGeometryAndViewAndOffersTheBackup) {
  ASSERT_FALSE(Start().has_value());
  main().width = 10000;
  main().height = 8000;
  main().left = -30;
  main().window_state = 1;
  ui_.answers.push_back(MsgAnswer::Yes);
  ASSERT_EQ(Exit(), 0);
  EXPECT_EQ(main().window_state, 0);
  EXPECT_EQ(settings_->GetSetting(u"Lotwright", u"Screen", u"Width", u""), u"11445");
  EXPECT_EQ(settings_->GetSetting(u"Lotwright", u"Screen", u"Height", u""), u"9000");
  EXPECT_EQ(settings_->GetSetting(u"Lotwright", u"Screen", u"Left", u""), u"0");
  EXPECT_EQ(Ini(),
            "Seller\r\n\"No Userid Set\"\r\nAll Auctions\r\nSelect * From seller where Completed = no and "
            "username = 'No Userid Set' and site = 'eBay' order by end desc \r\neBay\r\n");
  ASSERT_EQ(ui_.boxes.size(), 1u);  // "Always" asks at every exit
  EXPECT_EQ(ui_.boxes[0].title, u"Backup Database");
  EXPECT_EQ(ui_.boxes[0].text, u"Do you want to backup the database now?");
  EXPECT_EQ(ui_.boxes[0].buttons, MsgButtons::YesNo);
  EXPECT_EQ(ui_.started, std::vector<fs::path>{dir_ / "lotwright-convert"});

  // "2 days" with no stored date never asks; a bidder view leaves lw.ini alone.
  settings_->SaveSetting(u"Lotwright", u"Database", u"Backupevery", u"1");
  ASSERT_FALSE(Start().has_value());
  EXPECT_EQ(main().status(), u"Values from last saved query loaded.");
  std::string before = Ini();
  main().Auction_type_lst.SetText(u"Bidder");
  ASSERT_EQ(Exit(), 0);
  EXPECT_TRUE(ui_.boxes.empty());
  EXPECT_TRUE(ui_.started.empty());
  EXPECT_EQ(Ini(), before);
}

TEST_F(MainFormTest, AnOlderStoreEndsTheStartAndAskedForConversion) {
  fs::create_directories(store_.parent_path());
  sqlite3* db = nullptr;
  sqlite3_open(store_.c_str(), &db);
  sqlite3_exec(
      db,
      "CREATE TABLE seller (Item TEXT, username TEXT, site TEXT, Completed YESNO INTEGER NOT NULL DEFAULT 0,"
      " \"End\" DATETIME REAL);"
      "CREATE TABLE bidder (Item TEXT, username TEXT, site TEXT, watching YESNO INTEGER NOT NULL DEFAULT 0,"
      " \"End\" DATETIME REAL);"
      "CREATE TABLE misc (fontsizing YESNO INTEGER NOT NULL DEFAULT 0);"
      "CREATE TABLE setup (Userid TEXT);"
      "INSERT INTO setup VALUES ('jan');"
      "INSERT INTO seller VALUES ('1', 'jan', 'eBay', 0, 46000);",
      nullptr, nullptr, nullptr);
  sqlite3_close(db);
  EXPECT_EQ(Start(), 0);
  ASSERT_EQ(ui_.boxes.size(), 1u);
  EXPECT_EQ(ui_.boxes[0].title, u"Database Needs Conversion");
  EXPECT_EQ(ui_.boxes[0].icon, MsgIcon::Critical);
  EXPECT_EQ(ui_.started, std::vector<fs::path>{dir_ / "lotwright-convert"});
  EXPECT_TRUE(ui_.modal_forms.empty());  // ended before the main form came up
}

TEST_F(MainFormTest, AStoreThatIsNotOneGivesTheStartupError) {
  fs::create_directories(store_.parent_path());
  std::ofstream(store_) << "not a database at all, just a text file that happens to be named lw.mdb";
  ASSERT_FALSE(Start().has_value());
  ASSERT_FALSE(ui_.boxes.empty());
  EXPECT_EQ(ui_.boxes[0].title, u"Startup Error");
  EXPECT_EQ(ui_.boxes[0].text.rfind(u"Error message is: ", 0), 0u);
  EXPECT_EQ(program_->startup.db, nullptr);
}

}  // namespace
}  // namespace lw
