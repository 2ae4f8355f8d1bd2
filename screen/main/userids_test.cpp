// User ids, the Setup page and the wizard, driven as a user drives them on a store installed from the
// shipped empty one.
#include "screen/main/userids.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <deque>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "screen/main/small_forms.h"
#include "screen/main/startup.h"
#include "screen/main/userids_rules.h"
#include "screen/testing.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

TEST(UseridRules, CredentialsAndWizardFields) {
  EXPECT_EQ(CleanCredential(u"  JanSmit "), u"jansmit");
  EXPECT_EQ(CleanCredential(u"   "), u"");
  EXPECT_TRUE(WizardFieldMissing(u""));
  EXPECT_TRUE(WizardFieldMissing(u" "));
  EXPECT_FALSE(WizardFieldMissing(u"  "));
  EXPECT_FALSE(WizardFieldMissing(u" a"));
}

TEST(UseridRules, StatementsRefuseAnApostrophe) {
  EXPECT_EQ(MoveAuctionsStatement(u"Seller", u"new", u"old"),
            u"Update Seller SET username = 'new' Where username = 'old'");
  EXPECT_EQ(DeleteAuctionsStatement(u"Bidder", u"jan"), u"Delete FROM Bidder WHERE username = 'jan'");
  EXPECT_EQ(SetupSource(u"jan"), u"Select * from setup where Userid = 'jan'");
  for (auto make : {+[] { return SetupSource(u"o'brien"); },
                    +[] { return MoveAuctionsStatement(u"Seller", u"o'brien", u"jan"); },
                    +[] { return DeleteAuctionsStatement(u"Seller", u"o'brien"); },
                    +[] { return MiscServerStatement(u"servername_desc", u"x'y"); }}) {
    try {
      make();
      ADD_FAILURE() << "an apostrophe made a statement";
    } catch (const RuntimeError& e) {
      EXPECT_EQ(e.number(), 3075);
    }
  }
}

class Ui : public testing::RecordingUi {
 public:
  std::deque<Colour> colours;
  std::optional<Colour> ChooseColour(Colour initial) override {
    asked_colour = initial;
    if (colours.empty()) return std::nullopt;
    Colour c = colours.front();
    colours.pop_front();
    return c;
  }
  // A modal form the user leaves open is closed, as with its close box.
  void ShowModal(Form& form) override {
    if (modal) modal(form);
    if (form.visible()) form.Unload();
  }
  std::optional<Colour> asked_colour;
};

class UseridTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = testing::FreshTestHome("lw_userids_",
                                  ::testing::UnitTest::GetInstance()->current_test_info()->name());
  }
  void TearDown() override {
    program_.reset();
    settings_.reset();
    fs::remove_all(dir_);
  }

  static void Type(Form& form, const char16_t* name, int index, const Text& text) {
    form.Get(name, index).UserSet(text);
  }
  static std::vector<Text> Wizard(const Text& userid) {
    return {userid, u" Secret ", u"jan@example.com", u"Jan O'Brien", u"Street 1", u"Jan", u"Leiden"};
  }
  // Starts the program; the wizard, when it opens, is filled with `wizard` (left as it is when empty).
  void Start(std::vector<Text> wizard = Wizard(u" Jan ")) {
    program_.reset();
    settings_ = std::make_unique<Settings>(dir_ / "config" / "settings.ini");
    ui_.modal = [wizard](Form& form) {
      if (form.name() != u"wizard_frm" || wizard.empty()) return;
      for (int i = 0; i < 7; ++i) Type(form, u"wizard_txt", i, wizard[i]);
      form.Get(u"savebtn").UserClick(nullptr);
    };
    program_ = std::make_unique<Program>(ui_, queue_, *settings_,
                                         ProgramFiles{LW_SHIPPED_STORE, dir_ / "convert", dir_ / "help"});
    CreateForms(*program_);
    Main(*program_);
  }
  MainForm& main() { return *program_->main; }
  Control& field(int i) { return main().Get(u"setup_txt", i); }
  void Click(const char16_t* name, int index = -1) { main().Get(name, index).UserClick(nullptr); }
  void Toolbar5(int button) {
    Text n = FromUtf8(std::to_string(button));
    main().Get(u"ctToolBar5").UserClick(&n);
  }
  void Execute(const char16_t* sql) { program_->startup.db->Execute(sql); }
  int64_t Count(const Text& sql) { return program_->startup.db->OpenRecordset(sql)->RecordCount(); }
  Text Value(const Text& sql, const char16_t* column) {
    auto rs = program_->startup.db->OpenRecordset(sql);
    if (rs->Eof()) return u"<none>";
    Variant v = rs->Fields(column);
    return v.IsNull() ? u"<null>" : CStr(v, program_->regional);
  }
  std::vector<Text> Titles() {
    std::vector<Text> t;
    for (const auto& b : ui_.boxes) t.push_back(b.title);
    ui_.boxes.clear();
    return t;
  }
  // The store with a second user id, "piet", with one auction on each side; Setup open on "jan".
  void TwoUsers() {
    Start();
    Execute(u"Insert Into setup (Userid, Password, Name) Values ('piet', 'pw', 'Piet')");
    Execute(u"Insert Into seller (Item, username, site, Title) Values ('1', 'piet', 'eBay', 'Lamp')");
    Execute(u"Insert Into bidder (Item, username, site, Title) Values ('2', 'piet', 'eBay', 'Vase')");
    program_->startup.setup->Requery();
    main().load_userids();
    main().Userid_lst.UserSet(u"jan");
    main().SSTab1.UserTab(kSetupPage);
    ui_.boxes.clear();
  }

  fs::path dir_;
  Ui ui_;
  EventQueue queue_;
  std::unique_ptr<Settings> settings_;
  std::unique_ptr<Program> program_;
};

TEST_F(UseridTest, WizardRefusesEmptyFieldsAndStoresTheFirstUserid) {
  // Every field in turn: empty and a single blank are refused; the form stays until it is left.
  for (int missing = 0; missing < 7; ++missing) {
    for (const char16_t* bad : {u"", u" "}) {
      auto fields = Wizard(u"jan");
      fields[missing] = bad;
      Start(fields);
      ASSERT_EQ(Titles(), std::vector<Text>{u"Information Required"}) << missing;
      EXPECT_EQ(Value(u"Select * From setup", u"Userid"), kNoUserid);
      program_.reset();
      fs::remove_all(dir_ / "data");
    }
  }
  Start(Wizard(u"  Jan  "));
  ASSERT_EQ(ui_.boxes.size(), 1u);
  EXPECT_EQ(ui_.boxes[0].title, u"Simple Setup Wizard Complete");
  EXPECT_EQ(ui_.boxes[0].text, u"More advanced setup options can be changed on the Setup Screen");
  EXPECT_EQ(ui_.boxes[0].icon, MsgIcon::Information);
  ui_.boxes.clear();
  EXPECT_EQ(Value(u"Select * From setup", u"Userid"), u"jan");
  EXPECT_EQ(Value(u"Select * From setup", u"Password"), u"secret");
  EXPECT_EQ(Value(u"Select * From setup", u"Name"), u"Jan O'Brien");  // bound, not a statement
  EXPECT_EQ(Value(u"Select * From setup", u"Location"), u"Leiden");
  EXPECT_EQ(Value(u"Select * From seller where Title = 'Sample Auction'", u"username"), u"jan");
  EXPECT_EQ(main().Userid_lst.text(), u"jan");
  EXPECT_EQ(main().Userid_lst.ListCount(), 1);
  EXPECT_EQ(main().Get(u"duplicate_auction_to_ebay_userid", 0).caption(), u"jan");
  EXPECT_EQ(field(0).text(), u"jan");  // the Setup page shows the new row

  // Two blanks are data; no wizard at the next start.
  program_.reset();
  fs::remove_all(dir_ / "data");
  auto blanks = Wizard(u"piet");
  blanks[4] = u"  ";
  Start(blanks);
  EXPECT_EQ(Titles(), std::vector<Text>{u"Simple Setup Wizard Complete"});
  EXPECT_EQ(Value(u"Select * From setup", u"address"), u"  ");
}

TEST_F(UseridTest, WizardApostropheInUseridChangesNothing) {
  Start(Wizard(u"o'brien"));
  // No box of its own: the wizard stays without a word, the status bar says why.
  EXPECT_TRUE(Titles().empty());
  EXPECT_NE(InStr(main().status(), u"apostrophe"), 0u);
  EXPECT_EQ(Value(u"Select * From setup", u"Userid"), kNoUserid);
  EXPECT_EQ(Value(u"Select * From seller", u"username"), kNoUserid);
}

TEST_F(UseridTest, AddRefusesAnIdThatDiffersOnlyInCapitalsFromAListedOne) {
  // An id stored with capitals (by an older version or by hand): the store matches auctions to user ids
  // without regard to case, so a new "piet" would take over the auctions of "Piet".
  Start();
  Execute(u"Insert Into setup (Userid, Password, Name) Values ('Piet', 'pw', 'Piet')");
  program_->startup.setup->Requery();
  main().load_userids();
  main().Userid_lst.UserSet(u"jan");
  main().SSTab1.UserTab(kSetupPage);
  ui_.boxes.clear();
  Toolbar5(1);
  Type(main(), u"setup_txt", 0, u"piet");
  field(0).UserLeave();
  EXPECT_EQ(Titles(), std::vector<Text>{u"Can't Add Userid"});
  EXPECT_EQ(Count(u"Select * From setup"), 2);
  EXPECT_EQ(main().Userid_lst.text(), u"jan");
}

TEST_F(UseridTest, AddChecksDuplicatesAndCancelRemovesTheRow) {
  TwoUsers();
  EXPECT_FALSE(field(0).enabled());
  Toolbar5(1);  // Add Userid
  EXPECT_TRUE(field(0).enabled());
  EXPECT_FALSE(main().Get<Toolbar>(u"ctToolBar5").button(3).enabled);
  EXPECT_EQ(field(0).text(), u"");
  Type(main(), u"setup_txt", 0, u"PIET");
  field(0).UserLeave();
  EXPECT_EQ(Titles(), std::vector<Text>{u"Can't Add Userid"});
  EXPECT_EQ(Count(u"Select * From setup"), 2);
  EXPECT_EQ(main().SSTab1.tab(), 0);  // back to the screen
  EXPECT_EQ(main().Userid_lst.text(), u"jan");
  EXPECT_EQ(field(0).text(), u"jan");

  // An add cancelled leaves neither row nor list entry; the old id is current again.
  main().SSTab1.UserTab(kSetupPage);
  Toolbar5(1);
  Type(main(), u"setup_txt", 0, u"Klaas");
  field(0).UserLeave();
  EXPECT_EQ(field(0).text(), u"klaas");
  EXPECT_EQ(main().Userid_lst.text(), u"klaas");
  field(0).UserLeave();  // leaving again is not a duplicate of itself
  EXPECT_TRUE(ui_.boxes.empty());
  // An emptied id enters the list as well; saving it is refused.
  Type(main(), u"setup_txt", 0, u"");
  field(0).UserLeave();
  EXPECT_EQ(main().Userid_lst.text(), u"");
  EXPECT_EQ(main().Userid_lst.ListCount(), 3);
  Type(main(), u"setup_txt", 0, u"Klaas");
  field(0).UserLeave();
  EXPECT_EQ(main().Userid_lst.text(), u"klaas");
  Type(main(), u"setup_txt", 1, u"pw");
  Type(main(), u"setup_txt", 3, u"Klaas");
  Click(u"setup_btn", 2);
  EXPECT_EQ(Count(u"Select * From setup"), 2);
  EXPECT_EQ(main().Userid_lst.ListCount(), 2);
  EXPECT_EQ(main().Userid_lst.text(), u"jan");
  EXPECT_EQ(field(3).text(), u"Jan O'Brien");

  // Saved, the row is there with the id lower-cased, and it becomes the current one.
  main().SSTab1.UserTab(kSetupPage);
  Toolbar5(1);
  Type(main(), u"setup_txt", 0, u"Klaas");
  Click(u"setup_btn", 0);
  EXPECT_EQ(main().status(), u"You must enter valid userid and password details before exiting");
  EXPECT_EQ(main().SSTab1.tab(), kSetupPage);
  Type(main(), u"setup_txt", 1, u"pw");
  Click(u"setup_btn", 0);
  EXPECT_EQ(main().status(), u"You must enter your name before exiting");
  Type(main(), u"setup_txt", 3, u"Klaas");
  Click(u"setup_btn", 0);
  EXPECT_EQ(main().SSTab1.tab(), 0);
  EXPECT_EQ(Value(u"Select * From setup where Userid = 'klaas'", u"Name"), u"Klaas");
  EXPECT_EQ(Count(u"Select * From setup where Userid = 'jan'"), 1);
  EXPECT_EQ(main().Userid_lst.text(), u"klaas");
  EXPECT_EQ(main().Get(u"duplicate_auction_to_yahoo_userid", 2).caption(), u"klaas");
  EXPECT_FALSE(field(0).enabled());
}

TEST_F(UseridTest, AddWithApostropheWritesNothing) {
  TwoUsers();
  Toolbar5(1);
  Type(main(), u"setup_txt", 0, u"o'brien");
  Type(main(), u"setup_txt", 1, u"pw");
  Type(main(), u"setup_txt", 3, u"O'Brien");
  Click(u"setup_btn", 0);
  EXPECT_EQ(Count(u"Select * From setup"), 2);
  EXPECT_EQ(main().SSTab1.tab(), kSetupPage);
}

TEST_F(UseridTest, RenameMovesAuctionsAndCancelRestoresTheId) {
  TwoUsers();
  main().Userid_lst.SetEnabled(true);
  main().Userid_lst.UserSet(u"piet");
  main().SSTab1.UserTab(kSetupPage);
  // Saved with an empty password: refused, but the auctions have already moved.
  Toolbar5(2);
  Type(main(), u"setup_txt", 0, u"Pieter");
  Type(main(), u"setup_txt", 1, u"");
  Click(u"setup_btn", 0);
  EXPECT_EQ(main().status(), u"You must enter valid userid and password details before exiting");
  EXPECT_EQ(Value(u"Select * From seller where Item = '1'", u"username"), u"pieter");
  EXPECT_EQ(Value(u"Select * From bidder where Item = '2'", u"username"), u"pieter");
  // Cancelled, the old id is back in the field and in the list, and the setup row keeps it.
  Type(main(), u"setup_txt", 1, u"pw");
  Click(u"setup_btn", 2);
  EXPECT_EQ(field(0).text(), u"piet");
  EXPECT_EQ(main().Userid_lst.text(), u"piet");
  EXPECT_EQ(Count(u"Select * From setup where Userid = 'piet'"), 1);
  EXPECT_EQ(main().SSTab1.tab(), 0);

  // An apostrophe in the new id fails the first statement: nothing moves.
  main().SSTab1.UserTab(kSetupPage);
  Toolbar5(2);
  Type(main(), u"setup_txt", 0, u"d'arcy");
  Click(u"setup_btn", 0);
  EXPECT_EQ(Count(u"Select * From seller where username = 'pieter'"), 1);
  EXPECT_EQ(Count(u"Select * From setup where Userid = 'piet'"), 1);
  EXPECT_EQ(main().SSTab1.tab(), kSetupPage);
  // Renamed onto another id: refused.
  Type(main(), u"setup_txt", 0, u"jan");
  Click(u"setup_btn", 0);
  EXPECT_EQ(Titles(), std::vector<Text>{u"Can't Rename Userid"});
  // A good rename moves the setup row and the list with it.
  Type(main(), u"setup_txt", 0, u"pieter");
  Click(u"setup_btn", 0);
  EXPECT_EQ(Count(u"Select * From setup where Userid = 'pieter'"), 1);
  EXPECT_EQ(main().Userid_lst.text(), u"pieter");
  EXPECT_EQ(main().Userid_lst.Find(u"piet"), -1);
  EXPECT_FALSE(program_->main_screen.renaming);
}

TEST_F(UseridTest, DeleteRefusesTheLastIdAndMovesToTheFirst) {
  Start();
  main().SSTab1.UserTab(kSetupPage);
  ui_.boxes.clear();
  Toolbar5(3);
  ASSERT_EQ(ui_.boxes.size(), 1u);
  EXPECT_EQ(ui_.boxes[0].title, u"Can't Delete");
  EXPECT_EQ(ui_.boxes[0].text, u"You can't delete the last UserId in the Database");
  EXPECT_EQ(ui_.boxes[0].icon, MsgIcon::Critical);
  EXPECT_EQ(Count(u"Select * From setup"), 1);

  TwoUsers();
  main().Userid_lst.SetEnabled(true);
  main().Userid_lst.UserSet(u"piet");
  main().SSTab1.UserTab(kSetupPage);
  program_->view.condition = u"where username = 'piet' and site = 'eBay'";
  ui_.answers.push_back(MsgAnswer::No);
  Toolbar5(3);
  EXPECT_EQ(Titles(), std::vector<Text>{u"Delete User Id"});
  EXPECT_EQ(Count(u"Select * From setup"), 2);
  int letter_icons = 0;
  program_->routines.Register("which_letter_icon_status_to_display", [&] { ++letter_icons; });
  Toolbar5(3);  // the first button, Yes
  EXPECT_EQ(Count(u"Select * From setup"), 1);
  EXPECT_EQ(Count(u"Select * From seller where username = 'piet'"), 0);
  EXPECT_EQ(Count(u"Select * From bidder where username = 'piet'"), 0);
  EXPECT_EQ(Count(u"Select * From seller where username = 'jan'"), 1);
  EXPECT_EQ(main().Userid_lst.text(), u"jan");
  EXPECT_EQ(main().Userid_lst.ListCount(), 1);
  EXPECT_FALSE(main().Get(u"duplicate_auction_to_sold_userid", 1).visible());
  EXPECT_EQ(field(0).text(), u"jan");
  EXPECT_EQ(program_->view.condition, u"where username = 'jan' and site = 'eBay'");
  // The first id is selected as a user selects it: the whole handling of the list runs.
  EXPECT_EQ(letter_icons, 1);
  EXPECT_EQ(main().SSTab1.tab(), 0);
  EXPECT_EQ(main().status(), u"Records Returned: 1");
  EXPECT_EQ(program_->main_screen.password, u"secret");
}

TEST_F(UseridTest, SaveWritesMiscSettingsAndColours) {
  Start();
  main().SSTab1.UserTab(kSetupPage);
  ui_.boxes.clear();
  main().Get<TabStrip>(u"setup_tabs").UserTab(4);
  Type(main(), u"setup_txt", 11, u"desc.example.com");
  Type(main(), u"setup_txt", 14, u"fees.example.com");
  Type(main(), u"setup_txt", 21, u"7");
  Type(main(), u"setup_txt", 22, u"half");
  Type(main(), u"setup_txt", 27, u"19");
  main().Get(u"setup_chk", 2).UserSet(u"1");
  main().Get<ComboBox>(u"backup_lst").UserSet(u"5 days");
  ui_.colours.push_back(0x123456);
  Click(u"setup_txt", kOddColourField);
  EXPECT_EQ(main().seller_grid.odd_colour, 0x123456);
  main().Get(u"setup_chk", 5).UserSet(u"1");  // Set Default
  EXPECT_EQ(main().seller_grid.even_colour, kDefaultEvenColour);
  EXPECT_EQ(main().buyer_grid.odd_colour, kDefaultOddColour);
  EXPECT_EQ(main().ctListBar1.backcolor(), kDefaultListbarColour);
  ui_.colours.push_back(0x00FF00);
  Click(u"setup_txt", kListbarColourField);
  EXPECT_EQ(ui_.asked_colour, kDefaultListbarColour);

  // ESMTP needs the mail logon: the box asks for it and shows the fields.
  main().Get<TabStrip>(u"setup_tabs").UserTab(1);
  EXPECT_FALSE(field(8).visible());
  main().Get(u"setup_chk", 1).UserSet(u"1");
  EXPECT_EQ(Titles(), std::vector<Text>{u"Enter Userid and Password"});
  EXPECT_TRUE(field(8).visible());
  Type(main(), u"setup_txt", 8, u"mailer");

  Click(u"setup_btn", 0);
  EXPECT_EQ(main().SSTab1.tab(), 0);
  EXPECT_EQ(Value(u"Select * From misc", u"servername_desc"), u"desc.example.com");
  EXPECT_EQ(Value(u"Select * From misc", u"servername_fees"), u"fees.example.com");
  EXPECT_EQ(Value(u"Select * From misc", u"Ebay_hour_difference"), u"7");
  EXPECT_EQ(Value(u"Select * From misc", u"Ebay_minute_difference"), u"0");
  EXPECT_EQ(Value(u"Select * From misc", u"refurl"), u"http://www.lotwright.com/cgi-bin/ref.cgi?");
  EXPECT_EQ(Value(u"Select * From setup", u"taxrate"), u"19");
  EXPECT_EQ(Value(u"Select * From setup", u"taxprice"), u"True");
  EXPECT_EQ(Value(u"Select * From setup", u"mailconnecttype"), u"2");
  EXPECT_EQ(Value(u"Select * From setup", u"emailusername"), u"mailer");
  const Settings& s = *settings_;
  EXPECT_EQ(s.GetSetting(u"Lotwright", u"Database", u"Backupevery", u""), u"3");
  EXPECT_EQ(s.GetSetting(u"Lotwright", u"Screen", u"Evengrid", u""), u"13891814");
  EXPECT_EQ(s.GetSetting(u"Lotwright", u"Screen", u"Listbar", u""), u"65280");

  // The placeholders of an empty page: field 6 is the import host, the mail server stays as it is.
  main().SSTab1.UserTab(kSetupPage);
  Text smtp = field(7).text();
  program_->routines.Call("set_default_options");
  EXPECT_EQ(field(0).text(), u"Your Username here");
  EXPECT_EQ(field(6).text(), u"mail.yourmailserver.com");
  EXPECT_EQ(field(7).text(), smtp);
  EXPECT_EQ(field(22).text(), u"0");
  Click(u"setup_btn", 2);
  EXPECT_EQ(field(0).text(), u"jan");                     // cancelled: the row is shown again
  EXPECT_FALSE(main().Get(u"setup_txt", 3).Reachable());  // the page's fields go with the page

  // Cancel drops what the page holds; the credentials are cleaned when clicked.
  main().SSTab1.UserTab(kSetupPage);
  main().Get<TabStrip>(u"setup_tabs").UserTab(0);
  Type(main(), u"setup_txt", 3, u"Someone Else");
  Type(main(), u"setup_txt", 2, u" Jan@Example.COM ");
  Click(u"setup_txt", 2);
  EXPECT_EQ(field(2).text(), u"jan@example.com");
  Click(u"setup_btn", 2);
  EXPECT_EQ(main().SSTab1.tab(), 0);
  EXPECT_EQ(Value(u"Select * From setup", u"Name"), u"Jan O'Brien");
  EXPECT_EQ(field(3).text(), u"Jan O'Brien");
}

}  // namespace
}  // namespace lw
