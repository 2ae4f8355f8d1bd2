// The after-sale screen on a real store under the main form: the log line written to each combined
// auction with the group moved once, the partner's totals with Null sums, Copy Address with its
// question and its count, and the printed letter laid out in the report viewer.
#include <gtest/gtest.h>

#include "accounting/report_screen.h"
#include "aftersale/aftersale_screen.h"
#include "core/primitives/encoding.h"
#include "screen/main/main_form.h"
#include "screen/main/startup.h"
#include "screen/report_viewer.h"
#include "screen/testing.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

class AfterSaleScreen : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = testing::FreshTestHome("lw_aftersale_",
                                  ::testing::UnitTest::GetInstance()->current_test_info()->name());
    settings_ = std::make_unique<Settings>(dir_ / "config" / "settings.ini");
    ui_.modal = [](Form& form) { form.Unload(); };
    program_ = std::make_unique<Program>(ui_, queue_, *settings_,
                                         ProgramFiles{LW_SHIPPED_STORE, dir_ / "convert", dir_ / "help"});
    CreateForms(*program_);
    after_ = RegisterAfterSale(*program_);
    RegisterReports(*program_);
    Main(*program_);
    program_->clock.Fix(MakeDate(2026, 11, 21, 10, 0, 0));
    ui_.boxes.clear();
    // Two ended sales of b1 and one already contacted, one of b2; all of the user id in view.
    for (const char* row : {"'5001', 'Chair', 'b1@x.example', -1, 0, 25, 3, Null, Null",
                            "'5002', 'Table', 'b1@x.example', -1, 0, 10, Null, 0.5, Null",
                            "'5003', 'Lamp', 'b1@x.example', -1, -1, 1, Null, Null, Null",
                            "'5004', 'Rug', 'b2@x.example', -1, 0, 2, Null, Null, 'old line'"}) {
      db().Execute(
          u"INSERT INTO seller (Item, Title, Email, Completed, Contact, Price, Ship_cost, insure_tax, "
          u"status_log) VALUES (" +
          FromUtf8(row) + u")");
    }
    db().Execute(u"Update seller set username = 'No Userid Set', site = 'eBay'");
    Show(u"Select * From seller order by Item");
  }
  void TearDown() override {
    after_.reset();
    program_.reset();
    fs::remove_all(dir_);
  }

  MainForm& main() { return *program_->main; }
  Database& db() { return *program_->startup.db; }
  Variant Field(const Text& sql) {
    auto r = db().OpenRecordset(sql);
    return r->Fields(r->FieldNames().front());
  }
  void Show(const Text& source) {
    main().seller.RecordSource = source;
    main().seller.Refresh();
  }
  void StandOn(const char16_t* item) {
    ASSERT_TRUE(main().seller.FindFirst(u"Item = '" + Text(item) + u"'"));
  }

  fs::path dir_;
  testing::RecordingUi ui_;
  EventQueue queue_;
  std::unique_ptr<Settings> settings_;
  std::unique_ptr<Program> program_;
  std::shared_ptr<AfterSale> after_;
};

TEST_F(AfterSaleScreen, TheWinningLetterTotalsTheGroupAndLeavesTheViewAsItWas) {
  StandOn(u"5002");
  after_->letter.letter_winning_pending = true;
  AuctionTotals t = after_->how_many_auctions();
  EXPECT_EQ(t.auctions_won, 2);
  EXPECT_EQ(t.total_price, Variant(Currency::FromScaled(350000)));
  EXPECT_EQ(t.total_shipping, Variant(Currency::FromScaled(30000)));
  // Sums over nothing but Nulls count as 0 on the seller side; the insurance tax is single precision.
  EXPECT_EQ(t.tax_on_price, Variant(Currency()));
  EXPECT_EQ(t.total_insurance, Variant(Currency()));
  EXPECT_FLOAT_EQ(t.tax_on_insurance, 0.5f);
  EXPECT_EQ(main().seller.RecordSource,
            Text(u"Select * From seller where email = 'b1@x.example' and Trans_comp = no "
                 u"and completed = yes and contact = no and payment = no"));
  EXPECT_EQ(after_->letter.saved_record_source, u"Select * From seller order by Item");
  EXPECT_EQ(main().status(),
            u"This person is the winner of 2 auctions. All auctions for this UserID matching "
            u"this status will be combining into one email.");

  Show(u"Select * From seller order by Item");
  StandOn(u"5002");
  after_->which_letter_to_display();
  EXPECT_EQ(main().Get(u"emailletter_txt", 3).text(), u"Ebay Item Numbers  5001 5002 ");
  EXPECT_EQ(main().seller.RecordSource, u"Select * From seller order by Item");
  EXPECT_EQ(main().Get(u"itemno_txt", 0).text(), u"5001");
  EXPECT_EQ(after_->letter.letter_items, (std::vector<Text>{u"5001", u"5002"}));
}

TEST_F(AfterSaleScreen, TheLogLineGoesOnTopOfEachCombinedAuctionAndTheGroupMovesOnce) {
  StandOn(u"5001");
  after_->which_letter_to_display();
  ASSERT_EQ(after_->letter.letter_item_count, 2);
  main().Get(u"check1", 1).SetValue(1);  // copy the letter to the comments
  // A later auction of the same buyer at the same status moves with the group, though not in the letter.
  db().Execute(
      u"INSERT INTO seller (Item, Email, Completed, username, site) VALUES "
      u"('5005', 'b1@x.example', -1, 'No Userid Set', 'eBay')");
  after_->letter.letter_status_note = u"Winning Bidder Letter mailed - 11/21/2026 10:00:00 AM";
  Show(u"Select * from seller");
  after_->update_status_log(0);
  EXPECT_FALSE(after_->letter.letter_winning_pending);
  EXPECT_EQ(Field(u"Select count(*) From seller where contact = yes and status_date = #11/21/2026#"),
            Variant(3.0));
  after_->update_status_log(1);
  EXPECT_EQ(Field(u"Select count(*) From seller where contact = yes"), Variant(4.0));
  EXPECT_EQ(Field(u"Select status_log From seller where Item = '5002'"),
            Variant(u"Winning Bidder Letter mailed - 11/21/2026 10:00:00 AM\r\n"));
  EXPECT_EQ(Field(u"Select status_log From seller where Item = '5005'"), Variant());
  Text comments = *Field(u"Select Comments From seller where Item = '5001'").text();
  EXPECT_TRUE(comments.starts_with(
      u"------Copied to Comments 11/21/2026 10:00:00 AM------\r\n\r\nEbay Auction Sale"));
  EXPECT_TRUE(comments.ends_with(u"\r\n------End copy to Comments------\r\n\r\n"));

  // A second line goes above the first.
  after_->letter.letter_items = {u"5004"};
  after_->letter.letter_partner_email = u"b2@x.example";
  after_->letter.letter_status_note = u"newer";
  main().Get(u"check1", 1).SetValue(0);
  after_->update_status_log(0);
  EXPECT_EQ(Field(u"Select status_log From seller where Item = '5004'"), Variant(u"newer\r\nold line"));
}

TEST_F(AfterSaleScreen, CopyAddressAsksFirstAndCountsTheRowsItChanged) {
  StandOn(u"5001");
  main().Get(u"hi_bidder_name_txt", 0).SetText(u"Bo Buyer");
  main().Get(u"hi_bidder_address_txt", 0).SetText(u"1 Elm Road");
  ui_.answers = {MsgAnswer::No};
  after_->copy_address_btn();
  EXPECT_EQ(Field(u"Select count(*) From seller where name = 'Bo Buyer'"), Variant(0.0));

  ui_.answers = {MsgAnswer::Yes};
  after_->copy_address_btn();
  EXPECT_EQ(main().status(), u"3 Name and Addresses Updated");
  EXPECT_EQ(Field(u"Select count(*) From seller where address = '1 Elm Road' and email = 'b1@x.example'"),
            Variant(3.0));

  main().Get(u"email_pnl", 0).SetText(Text());
  ui_.boxes.clear();
  ui_.answers = {MsgAnswer::Yes};
  after_->copy_address_btn();
  ASSERT_EQ(ui_.boxes.size(), 2u);
  EXPECT_EQ(ui_.boxes[1].title, u"Unable to Copy");
  EXPECT_EQ(ui_.boxes[1].text,
            u"The email address is blank for this auction.\nEnter a valid email address and try again");
  EXPECT_EQ(main().status(), u"No Name and Addresses Updated");
}

TEST_F(AfterSaleScreen, APrintedLetterReplacesTheUsersLastOneAndIsLaidOutInTheViewer) {
  for (const char16_t* subject : {u"First letter", u"Second letter"}) {
    main().Get(u"emailletter_txt", 1).SetText(u"b1@x.example");
    main().Get(u"emailletter_txt", 3).SetText(subject);
    main().Get(u"emailletter_txt", 0).SetText(u"Dear buyer\r\nThe chair is yours.");
    after_->print_email();
  }
  EXPECT_EQ(Field(u"Select count(*) From bulk where printletter = true"), Variant(1.0));
  EXPECT_EQ(Field(u"Select emailtext_subject From bulk where printletter = true"), Variant(u"Second letter"));
  EXPECT_EQ(main().SSTab1.tab(), 7);
  auto& arv = dynamic_cast<ReportViewer&>(*main().Find(u"arv"));
  ASSERT_EQ(arv.PageCount(), 1);
  const Text page = PageText(arv.document()->pages.at(0));
  for (const char16_t* part : {u"b1@x.example", u"Second letter", u"Dear buyer", u"The chair is yours."})
    EXPECT_NE(page.find(part), Text::npos) << ToUtf8(page);
  EXPECT_EQ(page.find(u"First letter"), Text::npos);
}

}  // namespace
}  // namespace lw
