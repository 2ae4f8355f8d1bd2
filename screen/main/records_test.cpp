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
  Text UserId() { return main().Userid_lst.text(); }

  fs::path dir_;
  testing::RecordingUi ui_;
  EventQueue queue_;
  std::unique_ptr<Settings> settings_;
  std::unique_ptr<Program> program_;
};

TEST_F(RecordsTest, AddNewAuctionLeavesTheUserOnABlankUnsubmittedRow) {
  Run("add_new_auction");
  EXPECT_EQ(Number(u"select count(*) as n from seller"), 2);
  auto rs = db().OpenRecordset(u"select * from seller where title is null");
  ASSERT_FALSE(rs->Eof());
  EXPECT_EQ(rs->Fields(u"Item"), Variant(Text(u" ")));
  EXPECT_EQ(rs->Fields(u"username"), Variant(UserId()));
  EXPECT_EQ(rs->Fields(u"site"), Variant(Text(u"eBay")));
  EXPECT_EQ(rs->Fields(u"pending"), Variant(true));
  EXPECT_EQ(rs->Fields(u"Completed"), Variant(false));
  EXPECT_TRUE(rs->Fields(u"End").IsNull());
  EXPECT_EQ(rs->Fields(u"total_tax"), Variant(Currency{}));

  EXPECT_EQ(main().Auction_status_lst.text(), u"Unsubmitted Auctions");
  EXPECT_EQ(main().SSTab1.tab(), 1);
  EXPECT_EQ(main().active_control(), &main().Get(u"Title_txt", 0));
  // The screen stands on the new row, so the quantity and the title the user types land there.
  EXPECT_TRUE(main().seller.recordset().Fields(u"Title").IsNull());
  EXPECT_EQ(main().Get(u"Quantity_txt", 0).text(), u"1");
  main().Get(u"Title_txt", 0).SetText(u"Typed title");
  main().seller.UpdateRecord();
  EXPECT_EQ(Number(u"select quantity from seller where title = 'Typed title'"), 1);
  EXPECT_EQ(Number(u"select count(*) from seller where title = 'Sample Auction'"), 1);
}

TEST_F(RecordsTest, ListBarDeleteAsksTwiceForFeesAndKeepsTheLastRow) {
  Run("delete_auction");  // the shipped sample row is the only one
  EXPECT_EQ(main().status(), u"Can't delete last auction in the database.");
  EXPECT_EQ(Number(u"select count(*) from seller"), 1);
  ASSERT_EQ(ui_.boxes.size(), 1u);
  EXPECT_EQ(ui_.boxes[0].title, u"Delete Auction");
  EXPECT_EQ(ui_.boxes[0].text, u"Do you want to delete this auction?");
  EXPECT_EQ(ui_.boxes[0].icon, MsgIcon::Question);

  Exec(
      u"insert into seller (item, title, username, site, fee_ref_no) values ('7', 'Fees', 'x', 'eBay', "
      u"'R1')");
  Show(u"Fees");
  main().SSTab1.SetTab(2);
  ui_.boxes.clear();
  ui_.answers = {MsgAnswer::Yes, MsgAnswer::No};
  Run("delete_auction");
  ASSERT_EQ(ui_.boxes.size(), 2u);
  EXPECT_EQ(ui_.boxes[1].title, u"Delete Auction Y/N");
  EXPECT_EQ(ui_.boxes[1].text,
            u"There are Fees assigned to this Auction.\r\nDeleting this Auction will affect your Profit/Tax "
            u"Reports\r\nDo you want to Delete this Auction");
  EXPECT_EQ(ui_.boxes[1].icon, MsgIcon::Exclamation);
  EXPECT_EQ(Number(u"select count(*) from seller"), 2);

  ui_.answers = {MsgAnswer::No};
  Run("delete_auction");
  EXPECT_EQ(Number(u"select count(*) from seller"), 2);

  // Typing on the row that goes is dropped with it, not written anywhere.
  main().Get(u"Title_txt", 0).SetText(u"typed");
  ui_.answers = {MsgAnswer::Yes, MsgAnswer::Yes};
  Run("delete_auction");
  EXPECT_EQ(Number(u"select count(*) from seller where title = 'Fees'"), 0);
  EXPECT_EQ(Number(u"select count(*) from seller where title = 'typed'"), 0);
  EXPECT_EQ(Number(u"select count(*) from seller where title = 'Sample Auction'"), 1);
  EXPECT_EQ(main().SSTab1.tab(), 0);
  EXPECT_EQ(main().Get(u"Title_txt", 0).text(), u"Sample Auction");
}

TEST_F(RecordsTest, MenuDeleteTakesTheLastRowOfEitherSide) {
  Exec(u"insert into bidder (item, title, username, site) values ('9', 'Won', 'x', 'eBay')");
  ui_.answers = {MsgAnswer::Yes};
  Run("del_mnu");
  EXPECT_EQ(Number(u"select count(*) from seller"), 0);
  EXPECT_EQ(main().Get(u"Title_txt", 0).text(), u"");

  main().Auction_type_lst.SetText(u"Bidder");
  Show(u"Won", false);
  ui_.answers = {MsgAnswer::No};
  Run("del_mnu");
  EXPECT_EQ(Number(u"select count(*) from bidder"), 1);
  ui_.answers = {MsgAnswer::Yes};
  Run("del_mnu");
  EXPECT_EQ(Number(u"select count(*) from bidder"), 0);
  // Nothing left to delete: the handler reports it and the program goes on.
  main().SetStatus(u"");
  ui_.answers = {MsgAnswer::Yes};
  Run("del_mnu");
  EXPECT_NE(main().status(), u"");
}

TEST_F(RecordsTest, DuplicateWithoutIdCopiesTheCurrentRowToTheChosenUserAndSite) {
  Exec(
      u"insert into seller (item, title, username, site, pending, cost, buyitnow, category_no, "
      u"Description1, Price, Id, Completed, fee_ref_no) values (' ', 'Second blank', 'x', 'eBay', -1, 2.5, "
      u"9.99, '77', 'desc', 12, 'buyer', -1, 'R')");
  Show(u"Second blank");
  Run("duplicate_auction_noid");
  EXPECT_EQ(main().status(), u"Copying complete");
  // Both rows with a blank item are in the narrowed view; the copy is of the one on show.
  auto rs = db().OpenRecordset(u"select * from seller where item = '' and title = 'Second blank'");
  ASSERT_FALSE(rs->Eof());
  EXPECT_EQ(rs->Fields(u"Description1"), Variant(Text(u"desc")));
  EXPECT_EQ(rs->Fields(u"category_no"), Variant(Text(u"77")));
  EXPECT_EQ(rs->Fields(u"category_no2"), Variant(Text(u" ")));
  EXPECT_EQ(rs->Fields(u"buyitnow"), Variant(Currency::FromDouble(9.99)));
  EXPECT_EQ(rs->Fields(u"username"), Variant(UserId()));
  EXPECT_EQ(rs->Fields(u"site"), Variant(Text(u"eBay")));
  EXPECT_EQ(rs->Fields(u"pending"), Variant(true));
  EXPECT_EQ(rs->Fields(u"Completed"), Variant(false));
  EXPECT_TRUE(rs->Fields(u"Price").IsNull());
  EXPECT_TRUE(rs->Fields(u"Id").IsNull());
  EXPECT_TRUE(rs->Fields(u"fee_ref_no").IsNull());
  EXPECT_EQ(rs->Fields(u"total_charges"), Variant(Currency{}));
  EXPECT_EQ(main().seller.RecordSource, u"Select * From seller where item = ' '");

  // The menus copy to the user id of their entry on their own site.
  Show(u"Second blank");
  main().menu_caption = u"otheruser";
  Run("duplicate_auction_to_yahoo_userid");
  EXPECT_EQ(Number(u"select count(*) from seller where username = 'otheruser' and site = 'Yahoo'"), 1);
  // A site the program does not know is not written.
  main().site_lst.AddItem(u"Amazon");
  main().site_lst.SetText(u"Amazon");
  Show(u"Second blank");
  Run("duplicate_auction_noid");
  EXPECT_EQ(Number(u"select count(*) from seller where title = 'Second blank' and site is null"), 1);
}

TEST_F(RecordsTest, DuplicateWithIdRefusesAnEmptyItemButCopiesABlankOne) {
  Exec(u"insert into seller (item, title, username, site) values ('', 'No number', 'x', 'eBay')");
  Exec(
      u"insert into seller (item, title, username, site, start, end, price, completed) values ('4455', "
      u"'Sold twice', 'x', 'eBay', #11/01/2026#, #11/08/2026 20:30:00#, 15, -1)");
  Show(u"No number");
  Run("duplicate_auction_withid");
  ASSERT_EQ(ui_.boxes.size(), 1u);
  EXPECT_EQ(ui_.boxes[0].title, u"Duplicate Error");
  EXPECT_EQ(
      ui_.boxes[0].text,
      u"You can only duplicate auctions where there is already an auction number. Use Duplicate Without "
      u"ID instead. ");
  EXPECT_EQ(Number(u"select count(*) from seller where title = 'No number'"), 1);

  Show(u"Sold twice");
  Run("duplicate_auction_withid");
  auto rs = db().OpenRecordset(u"select * from seller where item = '4455' and duplicated = yes");
  ASSERT_FALSE(rs->Eof());
  EXPECT_EQ(rs->Fields(u"Completed"), Variant(true));
  EXPECT_EQ(rs->Fields(u"Reserve_met"), Variant(true));
  EXPECT_EQ(rs->Fields(u"Price"), Variant(Currency::FromDouble(15)));
  EXPECT_EQ(Field(u"select end from seller where item = '4455' and duplicated = no", u"end"),
            rs->Fields(u"End"));

  Show(u"Sample Auction");  // item of one blank passes
  Run("duplicate_auction_withid");
  EXPECT_EQ(main().status(), u"Copying complete");
  EXPECT_EQ(Number(u"select count(*) from seller where title = 'Sample Auction' and duplicated = yes"), 1);
}

TEST_F(RecordsTest, PurgesAskCountAndAdviseEvenWhenNothingGoes) {
  Text user = UserId();
  Exec(u"insert into seller (title, username, id, trans_comp) values ('a', 'No Userid Set', 'No Bids', -1)");
  Exec(u"insert into seller (title, username, id, trans_comp) values ('b', 'other', 'No Bids', -1)");
  Exec(u"insert into seller (title, username, id, trans_comp) values ('c', 'No Userid Set', 'buyer', -1)");
  Exec(u"insert into bidder (title, username, id, trans_comp) values ('d', 'No Userid Set', 'someone', -1)");
  Exec(
      u"insert into bidder (title, username, id, trans_comp) values ('e', 'No Userid Set', 'no userid set', "
      u"-1)");

  ui_.answers = {MsgAnswer::No};
  Run("purge_nobid_mnu");
  EXPECT_EQ(main().status(), u"Purging Cancelled");
  EXPECT_EQ(ui_.boxes[0].title, u"Purging Database");
  EXPECT_EQ(ui_.boxes[0].text, PurgeQuestion(true));
  EXPECT_EQ(Number(u"select count(*) from seller"), 4);

  ui_.boxes.clear();
  ui_.answers = {MsgAnswer::Yes};
  Run("purge_nobid_mnu");
  EXPECT_EQ(main().status(), u"1 Records Deleted");
  EXPECT_EQ(Number(u"select count(*) from seller where title = 'b'"), 1);
  ASSERT_EQ(ui_.boxes.size(), 2u);
  EXPECT_EQ(ui_.boxes[1].title, u"Purging Complete");
  EXPECT_EQ(ui_.boxes[1].icon, MsgIcon::Information);

  ui_.answers = {MsgAnswer::Yes};
  Run("purge_nobid_mnu");
  EXPECT_EQ(main().status(), u"0 Records Deleted");
  EXPECT_EQ(ui_.boxes.back().title, u"Purging Complete");

  // Unsuccessful bids are those won by someone else; the id compares without regard to case.
  ui_.answers = {MsgAnswer::Yes};
  Run("purge_unsuccess_bid_mnu");
  EXPECT_EQ(main().status(), u"1 Records Deleted");
  EXPECT_EQ(Number(u"select count(*) from bidder where title = 'e'"), 1);

  ui_.answers = {MsgAnswer::Yes};
  Run("purge_complete_1_mnu");
  EXPECT_EQ(main().status(), u"2 Records Deleted");
  EXPECT_EQ(Number(u"select count(*) from seller"), 1);  // the sample row is not complete
  EXPECT_EQ(user, main().Userid_lst.text());
}

TEST_F(RecordsTest, CostCleanUpsLeaveActualCostsThatAreSet) {
  const char16_t* rows[] = {
      u"('a', 'No Userid Set', 5, 0, 3, 1, 'No Bids', -1)", u"('b', 'No Userid Set', 6, null, 0, 0, 'x', 0)",
      u"('c', 'No Userid Set', 7, 4, 0, 0, 'x', 0)",        u"('d', 'other', 8, 0, 2, 2, 'No Bids', -1)",
      u"('e', 'No Userid Set', 0, 0, 0, 0, 'No Bids', -1)",
  };
  for (const char16_t* r : rows)
    Exec(
        u"insert into seller (title, username, ship_cost, actual_ship_cost, cost, actual_insure_cost, id, "
        u"trans_comp) values " +
        Text(r));
  Run("update_ship_cost_mnu_1");
  EXPECT_EQ(main().status(), u"2 Shipping Costs Updated ");
  EXPECT_EQ(Number(u"select actual_ship_cost from seller where title = 'a'"), 5);
  EXPECT_EQ(Number(u"select actual_ship_cost from seller where title = 'b'"), 6);
  EXPECT_EQ(Number(u"select actual_ship_cost from seller where title = 'c'"), 4);
  EXPECT_EQ(Number(u"select actual_ship_cost from seller where title = 'd'"), 0);

  Run("update_ship_cost_mnu");
  EXPECT_EQ(main().status(),
            u"1 Cost Prices Removed, 1 Actual Shipping Costs Removed, 1 Insurance Cost "
            u"Removed, 0 Other Cost Removed, 1 Charged Shipping Costs Removed.");
  EXPECT_EQ(Number(u"select cost + ship_cost + actual_ship_cost from seller where title = 'a'"), 0);
  EXPECT_EQ(Number(u"select cost from seller where title = 'd'"), 2);
  EXPECT_EQ(Number(u"select ship_cost from seller where title = 'b'"), 6);
}

TEST_F(RecordsTest, AnApostropheFailsTheStatementAndChangesNothing) {
  Exec(
      u"insert into seller (item, title, username, fee_ref_no, fee_bold, ship_cost, actual_ship_cost, "
      u"trans_comp) values ('o''neil', 'Quote', 'x', 'R', 2, 3, 0, -1)");
  Exec(
      u"insert into seller (item, title, username, fee_ref_no, fee_bold) values ('o', 'Other', 'x', 'R', 2)");
  Show(u"Quote");
  Run("remove_fees_mnu");
  EXPECT_NE(main().status(), u"Fees Removed");
  EXPECT_EQ(Number(u"select count(*) from seller where fee_bold = 2"), 2);

  Run("duplicate_auction_noid");
  EXPECT_NE(main().status(), u"Copying complete");
  EXPECT_EQ(Number(u"select count(*) from seller"), 3);

  // A user id with an apostrophe: the purge and the clean-ups run no statement at all.
  main().Userid_lst.AddItem(u"o'neil");
  main().Userid_lst.SetText(u"o'neil");
  ui_.answers = {MsgAnswer::Yes};
  Run("purge_complete_3_mnu");
  EXPECT_EQ(Number(u"select count(*) from seller"), 3);
  EXPECT_NE(main().status(), u"0 Records Deleted");
  EXPECT_NE(ui_.boxes.back().title, u"Purging Complete");
  Run("update_ship_cost_mnu_1");
  EXPECT_EQ(Number(u"select count(*) from seller where actual_ship_cost = 3"), 0);

  Show(u"Other");
  Run("remove_fees_mnu");
  EXPECT_EQ(main().status(), u"Fees Removed");
  EXPECT_EQ(Field(u"select fee_ref_no from seller where item = 'o'", u"fee_ref_no"), Variant(Text(u" ")));
  EXPECT_EQ(Number(u"select fee_bold from seller where item = 'o'"), 0);
  EXPECT_EQ(Number(u"select count(*) from seller where fee_bold = 2"), 1);
}

TEST_F(RecordsTest, RelistAndRemoveUnsubmitClearTheRowsFlags) {
  Exec(u"update seller set bulk_list = -1, item = '4455'");
  Show(u"Sample Auction");
  Run("remove_unsubmit_mnu");
  EXPECT_EQ(Field(u"select pending from seller", u"pending"), Variant(false));
  EXPECT_EQ(Field(u"select bulk_list from seller", u"bulk_list"), Variant(false));

  Exec(u"update seller set pending = -1");
  Show(u"Sample Auction");
  Run("relist_auction");
  EXPECT_EQ(Field(u"select pending from seller", u"pending"), Variant(false));
  EXPECT_EQ(main().SSTab1.tab(), kBrowserPage);
  EXPECT_EQ(main().status(), u"Displaying Relist Page");
  EXPECT_NE(main().WebBrowser1.location_url.find(u"item=4455"), Text::npos);
}

TEST_F(RecordsTest, AdvancedEditOpensTheFieldsAndLeavingADateSavesIt) {
  Exec(u"update seller set item = '100', start = #11/01/2026 09:15:00#, end = #11/08/2026 20:30:05#");
  Show(u"Sample Auction");
  MainForm& m = main();
  EXPECT_TRUE(m.Get(u"itemno_txt", 0).locked());
  EXPECT_FALSE(m.Get(u"ctDEdit1", 0).visible());

  Run("edit_advanced");
  EXPECT_EQ(m.SSTab1.tab(), 1);
  EXPECT_EQ(m.status(), u"Allow editing of Aution Number, Price, Start and End Dates");
  EXPECT_FALSE(m.Get(u"itemno_txt", 0).locked());
  EXPECT_FALSE(m.Get(u"ctRealInput1", 0).locked());
  EXPECT_TRUE(m.Get(u"itemno_txt", 1).locked());
  EXPECT_FALSE(m.Get(u"start_pnl", 0).visible());
  EXPECT_FALSE(m.Get(u"db_seller_action_control").enabled());
  EXPECT_EQ(m.Get(u"ctDEdit1", 0).text(), u"20:30:05");
  EXPECT_EQ(m.Get(u"ctDEdit1", 1).text(), u"11/08/2026");
  EXPECT_EQ(m.Get(u"ctDEdit1", 2).text(), u"11/01/2026");

  m.Get(u"itemno_txt", 0).UserSet(u"200");
  m.Get(u"ctDEdit1", 1).UserSet(u"11/09/2026");
  m.Get(u"ctDEdit1", 1).UserLeave();
  EXPECT_EQ(m.status(), u"To Allow editing press Advanced Edit Button Again");
  EXPECT_TRUE(m.Get(u"itemno_txt", 0).locked());
  EXPECT_TRUE(m.Get(u"start_pnl", 0).visible());
  EXPECT_FALSE(m.Get(u"ctDEdit1", 2).visible());
  EXPECT_TRUE(m.Get(u"db_seller_action_control").enabled());
  auto rs = db().OpenRecordset(u"select * from seller");
  EXPECT_EQ(rs->Fields(u"Item"), Variant(Text(u"200")));
  EXPECT_EQ(rs->Fields(u"End"), Variant(MakeDate(2026, 11, 9, 20, 30, 5)));
  EXPECT_EQ(rs->Fields(u"Start"), Variant(MakeDate(2026, 11, 1)));  // the start keeps its date only

  // With the editors put away a leave does nothing.
  m.Get(u"ctDEdit1", 0).SetText(u"");
  m.Get(u"ctDEdit1", 0).UserLeave();
  EXPECT_EQ(Field(u"select end from seller", u"end"), Variant(MakeDate(2026, 11, 9, 20, 30, 5)));
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
