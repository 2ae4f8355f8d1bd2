// The commands of one auction and the site clock, driven on the real main form over a store installed
// from the shipped empty one: what reaches the screen's fields, flags and address boxes.
#include "import/auction_imports.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <fstream>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "import/download.h"
#include "import/normalise.h"
#include "import/seller_list_testing.h"
#include "import/site_clock_screen.h"
#include "screen/main/main_form.h"
#include "screen/main/startup.h"
#include "screen/testing.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

class AuctionScreenTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = testing::FreshTestHome("lw_auction_",
                                  ::testing::UnitTest::GetInstance()->current_test_info()->name());
  }
  void TearDown() override {
    program_.reset();
    settings_.reset();
    fs::remove_all(dir_);
  }

  void Start(const char* locale = "en_US") {
    // The browser page shows the auction on show at the item host: a closed port on the loopback.
    fs::create_directories(dir_ / "config");
    std::ofstream(dir_ / "config" / "settings.ini") << "[Lotwright/Hosts]\nitem=127.0.0.1:9\n";
    settings_ = std::make_unique<Settings>(dir_ / "config" / "settings.ini");
    program_ = std::make_unique<Program>(
        ui_, queue_, *settings_, ProgramFiles{LW_SHIPPED_STORE, dir_ / "lotwright-convert", dir_ / "help"});
    program_->regional = Regional::FromLocale(locale);
    program_->clock.Fix(MakeDate(2026, 11, 23, 12, 0, 0));
    CreateForms(*program_);
    RegisterImport(*program_);
    Main(*program_);
    // Every fetch of these tests goes to a port where nothing listens.
    Exec(
        "UPDATE misc SET servername_desc = '127.0.0.1:1', servername_ebaymotors = '127.0.0.1:1', "
        "servername_dutch = '127.0.0.1:1', servername_email = '127.0.0.1:1'");
    program_->startup.misc->Requery();
    program_->main->Misc.Refresh();  // the screen's cursor on the row, which the commands read first
    ui_.shown.clear();
  }

  MainForm& main() { return *program_->main; }
  // RegisterImport keeps the import screen first among the subsystems.
  ImportScreen& screen() { return *static_cast<ImportScreen*>(program_->subsystems.front().get()); }
  void Exec(const std::string& sql) { program_->startup.db->Execute(T(sql)); }
  Text Get(const char16_t* name, int index = -1) { return main().Get(name, index).text(); }
  void Show(DataControl& dc, const std::string& table, const std::string& where) {
    dc.RecordSource = T("Select * From " + table + " where " + where + " order by end desc ");
    dc.Refresh();
  }
  // A seller row ending `hours` after the fixed clock.
  void AddSeller(const std::string& item, double hours, const std::string& id = "harbour_lights") {
    Date end(MakeDate(2026, 11, 23, 12, 0, 0).serial + hours / 24.0);
    Exec("INSERT INTO seller (Item, Title, username, site, Id, Completed, Start, End) VALUES ('" + item +
         "', 'Lantern', 'No Userid Set', 'eBay', '" + id + "', -1, #11/20/2026 09:30:00#, " +
         std::to_string(end.serial) + ")");
  }
  // As the setup page saves it: through the screen's own cursor on the misc row.
  void SetHourDifference(double hours) {
    Recordset& misc = main().Misc.recordset();
    misc.Edit();
    misc.SetField(u"Ebay_hour_difference", Variant(hours));
    misc.Update();
  }

  fs::path dir_;
  testing::ImportRecordingUi ui_;
  EventQueue queue_;
  std::unique_ptr<Settings> settings_;
  std::unique_ptr<Program> program_;
};

TEST_F(AuctionScreenTest, RowChangeShowsTheTimeLeftWithItsColourHeadingAndDates) {
  Start();
  AddSeller("100", 12);
  AddSeller("101", 2);
  AddSeller("102", 119.0 / 60);
  AddSeller("103", -1.0 / 60);
  AddSeller("104", 30);
  struct Case {
    const char* item;
    int32_t colour;
    const char16_t* heading;
    const char16_t* left;
  } cases[] = {{"100", 0xFF0000, u"Ends in H:M", u"12:0"},
               {"101", 0xFF0000, u"Ends in H:M", u"2:0"},
               {"102", 255, u"Ends in H:M", u"1:59"},
               {"103", 255, u"Ended", u"0 days"},
               {"104", 32768, u"Ends in H:M", u"30:0"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.item);
    Show(main().seller, "seller", std::string("Item = '") + c.item + "'");
    EXPECT_EQ(Get(u"Label1"), c.heading);
    EXPECT_EQ(Get(u"calculate_time_left_lbl"), c.left);
    EXPECT_EQ(main().Get(u"calculate_time_left_lbl").forecolor(), c.colour);
    EXPECT_EQ(main().Get(u"end_pnl", 0).forecolor(), c.colour);
    EXPECT_EQ(main().Get(u"ctDEdit1", 2).forecolor(), c.colour);
  }
  // The seller side also shows the end time and both dates, month first under en_US.
  Show(main().seller, "seller", "Item = '100'");
  EXPECT_EQ(Get(u"ctDEdit1", 0), u"00:00:00");
  EXPECT_EQ(Get(u"ctDEdit1", 1), u"11/24/2026");
  EXPECT_EQ(Get(u"ctDEdit1", 2), u"11/20/2026");
  // Showing a row's dates is no edit: the row stays as stored.
  EXPECT_FALSE(main().seller.dirty());

  // A row without an end leaves the fields as they were.
  Exec("INSERT INTO seller (Item, username, site) VALUES ('105', 'No Userid Set', 'eBay')");
  Show(main().seller, "seller", "Item = '105'");
  EXPECT_EQ(Get(u"calculate_time_left_lbl"), u"12:0");

  // The timer counts from the computer's clock less the hour difference only.
  SetHourDifference(-3);
  Show(main().seller, "seller", "Item = '104'");
  EXPECT_EQ(Get(u"calculate_time_left_lbl"), u"33:0");
  AddSeller("106", 3);
  Show(main().seller, "seller", "Item = '106'");
  main().Get<Timer>(u"Timer1").Fire();
  EXPECT_EQ(Get(u"calculate_time_left_lbl"), u"6:0");
  EXPECT_TRUE(main().Get<Timer>(u"Timer1").enabled());
}

TEST_F(AuctionScreenTest, DateEditsWriteBackToTheRowAndTheScheduleTimeSpins) {
  Start();
  AddSeller("200", 5);
  Show(main().seller, "seller", "Item = '200'");
  // Text put in the editors while they are hidden is no edit.
  EXPECT_FALSE(main().seller.dirty());
  program_->routines.Call("edit_advanced");
  EXPECT_TRUE(main().Get(u"ctDEdit1", 1).visible());  // filling the editors is no change either
  main().Get(u"ctDEdit1", 1).UserSet(u"12/01/2026");
  EXPECT_FALSE(main().Get(u"ctDEdit1", 1).visible());  // the edit is finished
  EXPECT_EQ(Get(u"end_pnl", 0), u"12/01/2026 17:00:00");
  EXPECT_EQ(Get(u"start_pnl", 0), u"11/20/2026 09:30:00");  // the start keeps its time of day
  main().seller.UpdateRecord();
  auto rs = program_->startup.db->OpenRecordset(u"Select Start, End From seller where Item = '200'");
  EXPECT_EQ(SplitDate(CDate(rs->Fields(u"End"), program_->regional)).day, 1);
  CivilTime start = SplitDate(CDate(rs->Fields(u"Start"), program_->regional));
  EXPECT_EQ(start.hour * 60 + start.minute, 9 * 60 + 30);
  // A change of the start date is copied back even with the editors hidden.
  main().Get(u"ctDEdit1", 2).SetText(u"11/21/2026");
  EXPECT_EQ(Get(u"start_pnl", 0), u"11/21/2026");
  EXPECT_FALSE(main().seller.dirty());  // and saved

  auto& spin = main().Get<DateEditBox>(u"ctDEdit1", 5);
  spin.SetText(u"10:00");
  spin.Spin(1);
  EXPECT_EQ(spin.text(), u"09:59");
  spin.Spin(0);
  spin.Spin(0);
  EXPECT_EQ(spin.text(), u"10:01");
}

TEST_F(AuctionScreenTest, LocaleSetsTheMoneyFieldsAndDayFirstDates) {
  Start("nl_NL");
  EXPECT_EQ(main().Get<MoneyEdit>(u"ctNEdit1", 2).decimal_mark, u",");
  EXPECT_EQ(Get(u"ctNEdit1", 0), u"0,25");
  EXPECT_EQ(Get(u"ctNEdit1", 3), u"0,50");
  EXPECT_EQ(main().Get<DateEditBox>(u"ctDEdit1", 3).day_first, 1);
  EXPECT_EQ(main().Get<DateEditBox>(u"ctDEdit1", 5).day_first, 0);
  EXPECT_EQ(program_->locale.language_name, u"Dutch (Standard)");
  AddSeller("300", 5);
  Show(main().seller, "seller", "Item = '300'");
  EXPECT_EQ(Get(u"ctDEdit1", 2), u"20/11/2026");
  // The site clock: its control runs behind by the hour difference, its labels in the long form.
  SetHourDifference(2);
  program_->routines.Call("calculate_time");
  EXPECT_EQ(main().Get<ClockControl>(u"MhClock_ebay_time").hour_offset, -2);
  EXPECT_NE(Get(u"todays_date_lbl"), Text());
  EXPECT_EQ(program_->locale.site_now, MakeDate(2026, 11, 23, 14, 0, 0));
}

TEST_F(AuctionScreenTest, UnitedKingdomKeepsTheDecimalMarkAndCountsDayFirst) {
  Start("en_GB");
  EXPECT_EQ(main().Get<MoneyEdit>(u"ctNEdit1", 2).decimal_mark, u"");
  EXPECT_EQ(main().Get<DateEditBox>(u"ctDEdit1", 3).day_first, 1);
  EXPECT_EQ(Get(u"ctNEdit1", 1), u"0.25");
}

TEST_F(AuctionScreenTest, DescriptionCommandSetsItsFlagHostAndPathAndTheParserFillsTheFields) {
  Start();
  ImportScreen& s = screen();
  // No row on show: the refusal, yet the command still fetches.
  Show(main().seller, "seller", "Item = 'none'");
  s.jobs.email_pending = true;
  main().RunCommand("get_descrip_ebaymotors_button");
  ASSERT_FALSE(ui_.shown.empty());
  EXPECT_EQ(ui_.shown[0].title, u"Can't Import Description");
  EXPECT_FALSE(s.jobs.email_pending);
  EXPECT_EQ(txtIP(s).text(), u"127.0.0.1:1");

  AddSeller("4012345678", 30);
  Show(main().seller, "seller", "Item = '4012345678'");
  main().RunCommand("get_descrip_button");
  EXPECT_EQ(txtURL(s).text(), u"/ws/eBayISAPI.dll?ViewItem&item=4012345678");
  EXPECT_EQ(main().SSTab1.tab(), 1);

  s.buffer.LoadFile(testing::PagePath("item_ordinary.html"));
  parse_HTML(s.buffer, [](const Text&) {});
  pre_parse_HTML(s.buffer);
  s.jobs.description_pending = true;
  parse_description_page(s, DescriptionParser::seller);
  // What the parser read (its own tests check every field) reaches the screen: the number of bids as a
  // number, and the money box with the amount it can read, so the row can still be left and saved.
  EXPECT_EQ(Get(u"bids_lbl", 0), u"7");
  EXPECT_EQ(Get(u"Minbid_txt", 0), u"9.99");
  EXPECT_EQ(Get(u"location_txt", 0), u"Harwich, Essex");
  EXPECT_FALSE(s.jobs.description_pending);
  // The fields change on the screen only until the row is saved.
  auto stored =
      program_->startup.db->OpenRecordset(u"Select Description1 From seller where Item = '4012345678'");
  EXPECT_TRUE(stored->Fields(u"Description1").IsNull());
  main().seller.UpdateRecord();
  stored =
      program_->startup.db->OpenRecordset(u"Select Minbid, No_bids From seller where Item = '4012345678'");
  EXPECT_EQ(CDbl(stored->Fields(u"Minbid"), program_->regional), 9.99);
  EXPECT_EQ(CDbl(stored->Fields(u"No_bids"), program_->regional), 7);
}

TEST_F(AuctionScreenTest, DutchAndEmailCommandsRefuseWithoutFetching) {
  Start();
  ImportScreen& s = screen();
  AddSeller("500", -5, "harbour_lights");
  Show(main().seller, "seller", "Item = '500'");
  main().RunCommand("import_dutch_btn_2");
  ASSERT_EQ(ui_.shown.size(), 1u);
  EXPECT_EQ(ui_.shown[0].title, u"Incorrect Auction Type");
  EXPECT_TRUE(s.jobs.seller_dutch_pending);
  EXPECT_EQ(txtIP(s).text(), u"127.0.0.1:1");
  EXPECT_TRUE(main().WebBrowser1.location_url.empty());

  // A Dutch placeholder: the item is kept and the page of its high bidders is asked for.
  AddSeller("501", -5, "3 Dutch bids");
  Show(main().seller, "seller", "Item = '501'");
  main().RunCommand("import_dutch_btn_2");
  EXPECT_EQ(s.dutch_item, u"501");
  EXPECT_EQ(main().SSTab1.tab(), 4);
  EXPECT_EQ(
      main().WebBrowser1.location_url,
      u"http://127.0.0.1:1/aw-cgi/eBayISAPI.dll?GetBidderEmails&item=501&pagetype=269&ed=3%20Dutch%20bids");

  // An address already in the field: nothing is fetched, whatever the row.
  main().Auction_type_lst.SetText(u"Bidder");
  Exec(
      "INSERT INTO bidder (Item, username, site, Id, Seller_id, Seller_email, Completed) VALUES "
      "('600', 'No Userid Set', 'eBay', 'someone', 'harbour_lights', 'lanterns@harbour.example', 0)");
  Show(main().Bidder, "bidder", "Item = '600'");
  ui_.shown.clear();
  main().RunCommand("get_email_btn_2");
  EXPECT_EQ(ui_.shown.size(), 1u);  // not completed comes first
  Exec("UPDATE bidder SET Completed = -1, Id = 'No Userid Set' WHERE Item = '600'");
  Show(main().Bidder, "bidder", "Item = '600'");
  ui_.shown.clear();
  main().RunCommand("get_email_btn_2");
  EXPECT_TRUE(ui_.shown.empty());
  EXPECT_EQ(main().status(), u"Email address already found");
  EXPECT_TRUE(s.jobs.email_pending);

  // The member page's address reaches the bidder's field.
  main().Get(u"seller_email_txt").SetText(u"");
  s.buffer.LoadFile(testing::PagePath("member_email.html"));
  parse_HTML(s.buffer, [](const Text&) {});
  parse_member_email_page(s);
  EXPECT_EQ(Get(u"seller_email_txt"), u"lanterns@harbour.example\r\r");
}

}  // namespace
}  // namespace lw
