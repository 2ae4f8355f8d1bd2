// The hand operations on rows, driven through the main form's commands on a real store installed from
// the shipped empty one.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include "core/primitives/encoding.h"
#include "screen/main/main_form.h"
#include "screen/main/records_rules.h"
#include "screen/main/startup.h"
#include "screen/testing.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

class RecordsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("lw_records_" + std::to_string(::getpid()) + "_" +
                                        ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_ / "data");
    setenv("XDG_DATA_HOME", (dir_ / "data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (dir_ / "config").c_str(), 1);
    settings_ = std::make_unique<Settings>(dir_ / "config" / "settings.ini");
    ui_.modal = [](Form& form) { form.Unload(); };  // the first-start wizard is closed at once
    program_ = std::make_unique<Program>(ui_, queue_, *settings_,
                                         ProgramFiles{LW_SHIPPED_STORE, dir_ / "convert", dir_ / "help"});
    CreateForms(*program_);
    Main(*program_);
    ui_.boxes.clear();
  }
  void TearDown() override {
    program_.reset();
    fs::remove_all(dir_);
  }

  MainForm& main() { return *program_->main; }
  Database& db() { return *program_->startup.db; }
  void Run(const char* routine) { main().RunCommand(routine); }
  void Exec(const Text& sql) { db().Execute(sql); }
  double Number(const Text& sql) {
    auto rs = db().OpenRecordset(sql);
    Variant v = rs->Fields(rs->FieldNames().front());
    return v.number() ? *v.number() : v.currency() ? v.currency()->ToDouble() : -1;
  }
  Variant Field(const Text& sql, TextView field) { return db().OpenRecordset(sql)->Fields(field); }
  // Shows every seller row (or bidder row) ordered by title and stands on the row with that title.
  void Show(const char16_t* title, bool seller = true) {
    DataControl& d = seller ? main().seller : main().Bidder;
    d.RecordSource = seller ? u"Select * From seller order by title" : u"Select * From bidder order by title";
    d.Refresh();
    ASSERT_TRUE(d.FindFirst(u"title = '" + Text(title) + u"'"));
  }

  fs::path dir_;
  testing::RecordingUi ui_;
  EventQueue queue_;
  std::unique_ptr<Settings> settings_;
  std::unique_ptr<Program> program_;
};

TEST_F(RecordsTest, AddNewAuctionLeavesTheUserOnTheNewRow) {
  Run("add_new_auction");
  EXPECT_EQ(Number(u"select count(*) from seller where title is null and item = ' ' and pending = yes"), 1);
  EXPECT_EQ(main().Auction_status_lst.text(), u"Unsubmitted Auctions");
  EXPECT_EQ(main().SSTab1.tab(), 1);
  EXPECT_EQ(main().active_control(), &main().Get(u"Title_txt", 0));
  // Whatever the view's order, the quantity and the title the user types land on the new row.
  main().Get(u"Title_txt", 0).SetText(u"Typed title");
  main().seller.UpdateRecord();
  EXPECT_EQ(Number(u"select quantity from seller where title = 'Typed title'"), 1);
  EXPECT_EQ(Number(u"select count(*) from seller where title = 'Sample Auction' and quantity = 1"), 1);

  // Again with the status already on unsubmitted auctions: the view is rebuilt all the same.
  Run("add_new_auction");
  main().Get(u"Title_txt", 0).SetText(u"Second title");
  main().seller.UpdateRecord();
  EXPECT_EQ(Number(u"select count(*) from seller where title = 'Second title' and quantity = 1"), 1);
  EXPECT_EQ(main().seller.RecordSource, program_->view.base + program_->view.condition + program_->view.tail);
  EXPECT_EQ(main().seller.recordset().RecordCount(), 3);
}

TEST_F(RecordsTest, MenuDeleteTakesTheLastRowAndShowsTheEmptyView) {
  ui_.answers = {MsgAnswer::Yes};
  Run("del_mnu");
  EXPECT_EQ(Number(u"select count(*) from seller"), 0);
  EXPECT_EQ(main().Get(u"Title_txt", 0).text(), u"");
  // Nothing left to delete: the handler says why and the program goes on.
  main().SetStatus(u"");
  ui_.answers = {MsgAnswer::Yes};
  Run("del_mnu");
  EXPECT_NE(main().status(), u"");
}

TEST_F(RecordsTest, CopiesWithoutIdTakeTheRowOnShowToTheChosenUserAndSite) {
  Exec(
      u"insert into seller (item, title, username, site, pending, cost) values (' ', 'Second', 'x', 'eBay', "
      u"-1, 2)");
  Show(u"Second");
  Run("duplicate_auction_noid");
  EXPECT_EQ(main().status(), u"Copying complete");
  // The view narrowed to the blank item holds both blank rows; the copy is of the one on show.
  EXPECT_EQ(main().seller.RecordSource, u"Select * From seller where item = ' '");
  EXPECT_EQ(Number(u"select count(*) from seller where item = '' and title = 'Second' and cost = 2"), 1);
  EXPECT_EQ(main().seller.recordset().Fields(u"Title"), Variant(Text(u"Second")));

  // The menus copy to the user id of their entry on their own site.
  main().menu_caption = u"otheruser";
  Run("duplicate_auction_to_sold_userid");
  EXPECT_EQ(Number(u"select count(*) from seller where username = 'otheruser' and site = 'Sold'"), 1);
  // A site the program does not know is not written.
  main().site_lst.AddItem(u"Amazon");
  main().site_lst.SetText(u"Amazon");
  Show(u"Second");
  Run("duplicate_auction_noid");
  EXPECT_EQ(Number(u"select count(*) from seller where title = 'Second' and site is null"), 1);

  // An apostrophe in the item number fails the narrowing statement: no copy.
  Exec(u"insert into seller (item, title) values ('o''neil', 'Quote')");
  Show(u"Quote");
  Run("duplicate_auction_noid");
  EXPECT_NE(main().status(), u"Copying complete");
  EXPECT_EQ(Number(u"select count(*) from seller where title = 'Quote'"), 1);
}

TEST_F(RecordsTest, AdvancedEditWorksOnTheBidderSide) {
  Exec(
      u"insert into bidder (item, title, start, end) values ('9', 'Won', #11/01/2026 09:15:00#, "
      u"#11/08/2026 20:30:05#)");
  MainForm& m = main();
  m.Auction_type_lst.SetText(u"Bidder");
  Show(u"Won", false);
  Run("edit_advanced");
  EXPECT_FALSE(m.Get(u"itemno_txt", 1).locked());
  EXPECT_TRUE(m.Get(u"itemno_txt", 0).locked());
  EXPECT_FALSE(m.Get(u"end_pnl", 1).visible());
  EXPECT_FALSE(m.Get(u"db_bidder_action_control").enabled());
  EXPECT_EQ(m.Get(u"ctDEdit1", 0).text(), u"20:30:05");
  EXPECT_EQ(m.Get(u"ctDEdit1", 2).text(), u"11/01/2026 09:15:00");

  m.Get(u"ctDEdit1", 1).UserSet(u"11/09/2026");
  m.Get(u"ctDEdit1", 1).UserLeave();
  EXPECT_TRUE(m.Get(u"end_pnl", 1).visible());
  EXPECT_FALSE(m.Get(u"end_pnl", 0).visible());  // the seller half stays hidden on the bidder side
  EXPECT_TRUE(m.Get(u"db_bidder_action_control").enabled());
  EXPECT_EQ(Field(u"select end from bidder", u"end"), Variant(MakeDate(2026, 11, 9, 20, 30, 5)));
  EXPECT_EQ(Field(u"select start from bidder", u"start"), Variant(MakeDate(2026, 11, 1, 9, 15, 0)));

  // With the editors put away a leave writes nothing.
  m.Get(u"ctDEdit1", 1).SetText(u"12/24/2026");
  m.Get(u"ctDEdit1", 1).UserLeave();
  EXPECT_EQ(Field(u"select end from bidder", u"end"), Variant(MakeDate(2026, 11, 9, 20, 30, 5)));
}

TEST(RecordsRules, StatementsQuoteTheirValuesAndRefuseAnApostrophe) {
  EXPECT_EQ(PurgeStatement(PurgeEntries()[4], u"me"),
            u"Delete FROM Bidder WHERE username = 'me' AND id <> 'me' AND trans_comp = yes");
  EXPECT_THROW(PurgeStatement(PurgeEntries()[0], u"o'neil"), RuntimeError);
  // Entries for the whole store do not name the user id, so any user id works for them.
  EXPECT_EQ(PurgeStatement(PurgeEntries()[1], u"o'neil"),
            u"Delete FROM Seller WHERE id = 'No Bids' AND trans_comp = yes");
  EXPECT_THROW(RemoveFeesStatements(u"1'2"), RuntimeError);
  EXPECT_EQ(PurgeQuestion(false),
            u"You are about to delete multiple auctions from the database.\r\nOnce deleted the data is not "
            u"recoverable.\r\nDo you want to continue?");
  EXPECT_EQ(DuplicateSite(u"Sold"), u"Sold");
  EXPECT_EQ(DuplicateSite(u"ebay"), u"");
}

}  // namespace
}  // namespace lw
