// The views on a running main form over a real store: the grids' columns, tips, lock and colours, the
// routines others call by name, and what a failed statement leaves behind.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>
#include <unistd.h>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "screen/main/main_form.h"
#include "screen/main/startup.h"
#include "screen/main/view_rules.h"
#include "screen/main/views.h"
#include "screen/testing.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

class ViewsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("lw_views_" + std::to_string(::getpid()) + "_" +
                                        ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_ / "data" / "lotwright");
    setenv("XDG_DATA_HOME", (dir_ / "data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (dir_ / "config").c_str(), 1);
    fs::path store = dir_ / "data" / "lotwright" / "lw.mdb";
    fs::copy_file(LW_SHIPPED_STORE, store);
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(store.c_str(), &db), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(db,
                           "UPDATE setup SET Userid = 'ann'; DELETE FROM seller;"
                           "INSERT INTO seller (Item, Title, username, site, Price, Completed) VALUES"
                           " ('1', 'Lamp', 'ann', 'eBay', 20000, 0), ('2', 'Vase', 'ann', 'eBay', 30000, -1);"
                           "INSERT INTO bidder (Item, Title, username, site, Price) VALUES"
                           " ('9', 'Bid', 'ann', 'eBay', 50000);",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(db);
    settings_ = std::make_unique<Settings>(dir_ / "config" / "settings.ini");
    program_ = std::make_unique<Program>(
        ui_, queue_, *settings_, ProgramFiles{LW_SHIPPED_STORE, dir_ / "lotwright-convert", dir_ / "help"});
    CreateForms(*program_);
    Main(*program_);
  }
  void TearDown() override {
    program_.reset();
    fs::remove_all(dir_);
  }
  MainForm& main() { return *program_->main; }

  fs::path dir_;
  testing::RecordingUi ui_;
  EventQueue queue_;
  std::unique_ptr<Settings> settings_;
  std::unique_ptr<Program> program_;
};

TEST_F(ViewsTest, GridsHaveTheirColumnsTipsLockAndRowColours) {
  Grid& s = main().seller_grid;
  Grid& b = main().buyer_grid;
  ASSERT_EQ(s.ColumnCount(), 18);
  ASSERT_EQ(b.ColumnCount(), 17);
  EXPECT_EQ(s.column(12).data_field, u"Price");
  EXPECT_EQ(b.column(13).data_field, u"Seller_id");
  // Price in the currency format, as the view's total.
  main().Auction_status_lst.SetText(kAllAuctions);
  EXPECT_EQ(s.Cell(0, 12), Format(Variant(Currency::FromScaled(20000)), u"currency", program_->regional));

  Text tip;
  s.OnColumnTip(5, tip);
  EXPECT_EQ(tip, u"Auction Ended");
  b.OnColumnTip(15, tip);
  EXPECT_EQ(tip, u"Seller Name");
  b.OnColumnTip(0, tip);
  EXPECT_EQ(tip, u"");

  EXPECT_FALSE(s.allow_updates);
  EXPECT_FALSE(s.column(4).locked);
  ASSERT_TRUE(program_->routines.Call("lock_seller_grid"));
  for (const Grid::Column& c : s.columns) EXPECT_TRUE(c.locked) << ToUtf8(c.caption);
  EXPECT_FALSE(b.column(4).locked);

  s.even_colour = 111;
  s.odd_colour = 222;
  EXPECT_EQ(GridRowColour(s, 0), 111);
  EXPECT_EQ(GridRowColour(s, 1), 222);
  EXPECT_EQ(GridRowColour(s, 4), 111);
}

TEST_F(ViewsTest, RoutinesByNameSaveSumAndPrint) {
  MainForm& m = main();
  m.Auction_status_lst.SetText(kInProgress);
  EXPECT_EQ(m.status(), u"Records Returned: 1");
  EXPECT_EQ(m.StatusBar1.panel(2),
            u"Total: " + Format(Variant(Currency::FromScaled(20000)), u"currency", program_->regional));

  // An edit typed in a bound box reaches the store through save_data_changed.
  m.Get(u"Title_txt", 0).SetText(u"Brass lamp");
  ASSERT_TRUE(program_->routines.Call("save_data_changed"));
  auto rs = program_->startup.db->OpenRecordset(u"Select Title From seller where Item = '1'");
  EXPECT_EQ(*rs->Fields(u"Title").text(), u"Brass lamp");

  // The total follows the condition, whatever the tail: here a tail that names no column at all
  // would break the statement if it were part of it.
  program_->view.condition = u"where username = 'nobody'";
  program_->view.tail = u" order by nosuch ";
  ASSERT_TRUE(program_->routines.Call("sum_grid"));
  EXPECT_EQ(m.StatusBar1.panel(2), u"Total: ");

  // The print button hands over to the reports once they are there.
  m.Find(u"print_filter_btn")->OnClick();
  EXPECT_EQ(m.status(), kNotAvailable);
  Text printed;
  program_->routines.Register(kPrintViewRoutine, [&] { printed = m.seller.RecordSource; });
  m.Find(u"print_filter_btn")->OnClick();
  EXPECT_EQ(printed,
            u"Select * From seller where Completed = no and pending = no and username = 'ann' and "
            u"site = 'eBay' order by end desc ");
}

TEST_F(ViewsTest, AFailedStatementLeavesTheFormerView) {
  MainForm& m = main();
  m.Auction_status_lst.SetText(kInProgress);
  m.Auction_status_lst.SetText(kAllAuctions);
  const Text shown = m.seller.RecordSource;
  ASSERT_EQ(m.status(), u"Records Returned: 2");

  // A sort on a column the bidder table lacks, then the bidder side: the statement fails.
  m.seller_grid.OnHeadClick(15);
  EXPECT_EQ(program_->view.tail, u" order by rating desc");
  const Text bidder_before = m.Bidder.RecordSource;
  m.Auction_type_lst.SetText(u"Bidder");
  EXPECT_EQ(m.caption, u"BIDDER AUCTIONS current Database Name - " +
                           FromUtf8((dir_ / "data" / "lotwright" / "lw.mdb").string()));
  EXPECT_FALSE(m.SSTab1.page(kListerPage).enabled);
  EXPECT_EQ(m.Bidder.RecordSource, bidder_before);
  EXPECT_EQ(program_->view.condition, u"where watching = no and username = 'ann' and site = 'eBay'");
  EXPECT_TRUE(m.buyer_grid.visible());
  EXPECT_TRUE(ui_.boxes.empty());

  // A bidder heading gives a tail of its own, and the view runs again.
  m.buyer_grid.OnHeadClick(3);
  EXPECT_EQ(m.status(), u"Records Returned: 1");
  EXPECT_EQ(
      m.Bidder.RecordSource,
      u"Select * From bidder where watching = no and username = 'ann' and site = 'eBay' order by title asc");

  // Back on the seller side with an apostrophe in the filter: nothing changes at all.
  m.Auction_type_lst.SetText(u"Seller");
  EXPECT_TRUE(m.SSTab1.page(kListerPage).enabled);
  EXPECT_EQ(m.caption.substr(0, 16), u"SELLER AUCTIONS ");
  const Text seller_view = m.seller.RecordSource;
  const Text condition = program_->view.condition;
  const Text status = m.status();
  m.Get<ComboBox>(u"field_lst").SetText(u"Title");
  m.Get<ComboBox>(u"compare_lst").SetText(u"=");
  m.Find(u"Filter_value_txt")->SetText(u"it's");
  m.Find(u"Apply_flt_chk")->SetValue(1);
  EXPECT_EQ(m.seller.RecordSource, seller_view);
  EXPECT_EQ(program_->view.condition, condition);
  EXPECT_EQ(m.status(), status);
  EXPECT_TRUE(m.seller_grid.enabled());
  EXPECT_NE(seller_view, shown);  // the title sort stayed in force on the way back

  // No field and no comparison chosen: a bad statement like any other, swallowed with the view kept.
  m.Find(u"Apply_flt_chk")->SetValue(0);
  m.Get<ComboBox>(u"field_lst").SetText(u"");
  m.Get<ComboBox>(u"compare_lst").SetText(u"");
  m.Find(u"Filter_value_txt")->SetText(u"lamp");
  const Text all_view = m.seller.RecordSource;
  const Text all_status = m.status();
  m.Find(u"Apply_flt_chk")->SetValue(1);
  EXPECT_EQ(m.Find(u"Apply_flt_chk")->value(), 1);
  EXPECT_EQ(m.seller.RecordSource, all_view);
  EXPECT_EQ(program_->view.condition.substr(0, 8), u"where   ");
  EXPECT_EQ(m.status(), all_status);
  EXPECT_TRUE(m.seller_grid.enabled());
}

TEST_F(ViewsTest, ViewChangesLeaveTheBrowserPageAndKeepTheOthers) {
  MainForm& m = main();
  m.SSTab1.SetTab(kBrowserPage);
  m.Auction_status_lst.SetText(kEndedInProgress);
  EXPECT_EQ(m.SSTab1.tab(), 0);
  EXPECT_EQ(m.status(), u"Records Returned: 1");
  m.SSTab1.SetTab(2);
  m.Auction_status_lst.SetText(kInProgress);
  EXPECT_EQ(m.SSTab1.tab(), 2);
  // A change of type always goes back to the first page, and the filter box's handler waits while
  // code clears it for a change of site.
  m.Auction_type_lst.SetText(u"Bidder");
  EXPECT_EQ(m.SSTab1.tab(), 0);
  m.Get<ComboBox>(u"field_lst").SetText(u"Title");
  m.Get<ComboBox>(u"compare_lst").SetText(u"like");
  m.Find(u"Filter_value_txt")->SetText(u"B");
  m.Find(u"Apply_flt_chk")->SetValue(1);
  EXPECT_EQ(program_->view.condition, u"where Title like '*B*' and username = 'ann' and site = 'eBay'");
  m.site_lst.OnClick();
  EXPECT_EQ(m.Find(u"Apply_flt_chk")->value(), 0);
  EXPECT_EQ(m.Auction_status_lst.text(), kInProgress);
  EXPECT_EQ(program_->view.condition,
            u"where watching = no and Completed = no and username = 'ann' and site = 'eBay'");
}

}  // namespace
}  // namespace lw
