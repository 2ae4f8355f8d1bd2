#include "import/bidder_list.h"

#include <random>

#include "core/primitives/text.h"
#include "import/seller_list_testing.h"

namespace lw::testing {
namespace {

class BidderListTest : public ListImportTest {
 protected:
  void SetUp() override {
    ListImportTest::SetUp();
    ctx_->userid = u"lotbidder";
    ctx_->setup_userid = u"lotbidder";
  }
  std::string Locale() const override { return "en_US"; }
  void Import(FileDisplay buffer) { get_ebay_bidder_auctions(*ctx_, buffer); }
  void ImportFixture() { Import(LoadPage("bidder_list.html")); }
  std::unique_ptr<Recordset> Item(const std::string& item) {
    auto rs = Rows("Select * From bidder where item = '" + item + "'");
    EXPECT_FALSE(rs->Eof()) << item;
    return rs;
  }
};

TEST_F(BidderListTest, WonLostRunningAndDutchAuctions) {
  ImportFixture();
  EXPECT_EQ(LastStatus(), u"Importing Auctions Completed.  4 Auctions Added.  0 Auctions Updated.");
  EXPECT_EQ(filters_, 1);
  EXPECT_EQ(Count("Select * From bidder"), 4);

  auto won = Item("2200000001");
  EXPECT_EQ(Str(*won, "Id"), "lotbidder");
  EXPECT_EQ(Str(*won, "Seller_id"), "watches@seller.example");
  EXPECT_EQ(Str(*won, "Seller_email"), "watches@seller.example");
  // Titles are decoded here but not cut.
  EXPECT_EQ(Str(*won, "Title"), "Pocket Watch & Chain");
  EXPECT_DOUBLE_EQ(Num(*won, "Price"), 14.0);
  EXPECT_DOUBLE_EQ(Num(*won, "Quantity"), 1);
  EXPECT_DOUBLE_EQ(Num(*won, "Ship_cost"), 0);
  EXPECT_EQ(Str(*won, "username"), "lotbidder");
  EXPECT_TRUE(Flag(*won, "Completed"));
  EXPECT_FALSE(Flag(*won, "Trans_comp"));

  auto lost = Item("2200000002");
  EXPECT_EQ(Str(*lost, "Id"), "otherguy");
  EXPECT_EQ(Str(*lost, "Seller_id"), "lampseller");
  EXPECT_TRUE(lost->Fields(u"Seller_email").IsNull());
  EXPECT_DOUBLE_EQ(Num(*lost, "Price"), 20.0);
  EXPECT_TRUE(Flag(*lost, "Trans_comp"));

  auto running = Item("2200000003");
  EXPECT_DOUBLE_EQ(Num(*running, "Price"), 5.0);
  EXPECT_FALSE(Flag(*running, "Completed"));
  EXPECT_FALSE(Flag(*running, "Trans_comp"));

  auto dutch = Item("2200000004");
  EXPECT_EQ(Str(*dutch, "Id"), "2 Dutch bids");
  EXPECT_EQ(Str(*dutch, "Title"), "Bag of Marbles");
  EXPECT_TRUE(Flag(*dutch, "Completed"));
  EXPECT_FALSE(Flag(*dutch, "Trans_comp"));
}

TEST_F(BidderListTest, RowSharedByTwoUserIdsIsUpdatedNotDoubled) {
  ImportFixture();
  ctx_->userid = u"seconduser";
  statuses_.clear();
  ImportFixture();
  EXPECT_EQ(LastStatus(), u"Importing Auctions Completed.  0 Auctions Added.  4 Auctions Updated.");
  EXPECT_EQ(Count("Select * From bidder"), 4);
  EXPECT_EQ(Count("Select * From bidder where username = 'lotbidder'"), 4);
}

TEST_F(BidderListTest, ContactedRowsAndKnownDutchSellersAreLeftAlone) {
  ImportFixture();
  Exec("UPDATE bidder SET contact = true, Title = 'Kept' WHERE item = '2200000001'");
  Exec("UPDATE bidder SET Seller_email = 'marbles@seller.example' WHERE item = '2200000004'");
  Exec("UPDATE bidder SET Title = 'Old title' WHERE item = '2200000003'");
  ImportFixture();
  EXPECT_EQ(LastStatus(), u"Importing Auctions Completed.  0 Auctions Added.  2 Auctions Updated.");
  EXPECT_EQ(Str(*Item("2200000001"), "Title"), "Kept");
  EXPECT_EQ(Str(*Item("2200000004"), "Seller_email"), "marbles@seller.example");
  // Unlike the seller side, the title is renewed.
  EXPECT_EQ(Str(*Item("2200000003"), "Title"), "Bone China Tea Set");
}

TEST_F(BidderListTest, RecordTheStoreRefusesIsTriedAgainAndNeverHalfWritten) {
  std::string rows = PageRow({"2200000010", "Nov-01-26 10:00:00", "not a date", "$1.00", "Odd Row", "someone",
                              "someseller"}) +
                     PageRow({"2200000011", "Nov-01-26 10:00:00", "Nov-08-26 10:00:00", "$2.00", "Even Row",
                              "lotbidder", "x"});
  Import(PageFromHtml(ListPage("Seller", rows)));
  EXPECT_NE(std::find(statuses_.begin(), statuses_.end(), u"Can't add auction 2200000010"), statuses_.end());
  EXPECT_EQ(LastStatus(), u"Importing Auctions Completed.  0 Auctions Added.  0 Auctions Updated.");
  EXPECT_EQ(Count("Select * From bidder"), 0);
  EXPECT_EQ(ctx_->state.bidder_fields[1], u"2200000010");
}

class BidderListDutchLocaleTest : public BidderListTest {
 protected:
  std::string Locale() const override { return "nl_NL"; }
};

// The store cannot read "$14.00" as money under a Dutch locale; the row is kept with the number the
// text starts with, which for a dollar price is 0 until the user mends it.
TEST_F(BidderListDutchLocaleTest, PriceTheStoreCannotReadKeepsTheRow) {
  ImportFixture();
  EXPECT_EQ(LastStatus(), u"Importing Auctions Completed.  4 Auctions Added.  0 Auctions Updated.");
  auto won = Item("2200000001");
  EXPECT_DOUBLE_EQ(Num(*won, "Price"), 0);
  EXPECT_EQ(Str(*won, "Title"), "Pocket Watch & Chain");
  EXPECT_EQ(Str(*won, "Seller_email"), "watches@seller.example");
}

TEST_F(BidderListTest, BadPagesEndInTheSummary) {
  std::mt19937 rng(11);
  std::string noise(100000, ' ');
  for (char& c : noise) c = static_cast<char>(rng() % 256);
  const std::string pages[] = {noise, "", "Seller\r\n\r\nAnnouncements",
                               ReadFile(PagePath("bidder_list.html")).substr(0, 1500)};
  for (const std::string& page : pages) {
    statuses_.clear();
    FileDisplay buffer;
    buffer.set_text(FromCp1252(page));
    try {
      Normalise(buffer);
    } catch (const RuntimeError& e) {
      EXPECT_EQ(e.number(), err::kInvalidPropertyValue);
    }
    Import(std::move(buffer));
    EXPECT_TRUE(Like(LastStatus(), u"Importing Auctions Completed.*")) << ToUtf8(LastStatus());
    EXPECT_EQ(Count("Select * From bidder where lastupdated Is Null"), 0);
  }
}

}  // namespace
}  // namespace lw::testing
