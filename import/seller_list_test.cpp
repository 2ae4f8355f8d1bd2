#include "import/seller_list.h"

#include <chrono>
#include <random>

#include "core/primitives/text.h"
#include "import/seller_list_testing.h"

namespace lw::testing {
namespace {

class SellerListTest : public ListImportTest {
 protected:
  void Import(FileDisplay buffer) { get_ebay_seller_auctions_2(*ctx_, buffer); }
  void ImportFixture() { Import(LoadPage("seller_list.html")); }
  std::unique_ptr<Recordset> Item(const std::string& item) {
    auto rs = Rows("Select * From seller where item = '" + item + "' and Duplicated = no");
    EXPECT_FALSE(rs->Eof()) << item;
    return rs;
  }
  int64_t ImportedRows() { return Count("Select * From seller where pending = no"); }
  // A row stored part way would lack the last value every write gives it.
  int64_t HalfWrittenRows() {
    return Count("Select * From seller where pending = no and lastupdated Is Null");
  }
};

struct Expected {
  const char* item;
  const char* id;
  const char* email;
  double price;
  double length;
  bool completed;
  bool trans_comp;
};

TEST_P(SellerListTest, ImportsEveryKindOfRecordUnderTheLocale) {
  ImportFixture();
  EXPECT_EQ(LastStatus(), u"Importing Auctions Completed.  10 Auctions Added.  1 Auctions Updated.");
  EXPECT_EQ(filters_, 1);
  EXPECT_TRUE(ui_.shown.empty());
  EXPECT_TRUE(std::filesystem::exists(dir_ / "parsed_data.htm"));
  EXPECT_EQ(ImportedRows(), 10);

  const Expected rows[] = {
      {"1100000001", "vasebuyer", "vase@buyer.example", 25.50, 7, true, false},
      {"1100000002", "No Bids", "No Bids", 0, 7, true, true},
      {"1100000003", "3 Dutch bids", "3 Dutch bids", 4.00, 10, false, false},
      {"1100000004", "0 Dutch bids", "0 Dutch bids", 0, 7, true, true},
      {"1100000005", "Store Sale", "Store Sale", 0, 30, false, false},
      {"1100000006", "Store Sale", "Store Sale", 0, 30, true, false},
      {"1100000007", "Private Auction", "Private Auction", 30.00, 7, true, false},
      {"1100000008", "second@buyer.example", "second@buyer.example", 8.00, 7, true, false},
      {"1100000009", "stargazer", "stars@buyer.example", 120.00, 7, true, false},
      {"1100000010", "hiddenbuyer", "hidden@buyer.example", 15.00, 7, true, false},
  };
  for (const Expected& e : rows) {
    SCOPED_TRACE(e.item);
    auto rs = Item(e.item);
    if (rs->Eof()) continue;
    EXPECT_EQ(Str(*rs, "Id"), e.id);
    EXPECT_EQ(Str(*rs, "Email"), e.email);
    EXPECT_DOUBLE_EQ(Num(*rs, "Price"), e.price);
    EXPECT_DOUBLE_EQ(Num(*rs, "Length"), e.length);
    EXPECT_EQ(Flag(*rs, "Completed"), e.completed);
    EXPECT_EQ(Flag(*rs, "Trans_comp"), e.trans_comp);
    EXPECT_TRUE(Flag(*rs, "Reserve_met"));
    EXPECT_FALSE(Flag(*rs, "pending"));
    EXPECT_DOUBLE_EQ(Num(*rs, "quantity"), 1);
    EXPECT_DOUBLE_EQ(Num(*rs, "total_tax"), 0);
    EXPECT_EQ(Str(*rs, "username"), "lotseller");
    EXPECT_EQ(Str(*rs, "site"), "eBay");
  }

  auto first = Item("1100000001");
  EXPECT_DOUBLE_EQ(Num(*first, "rating"), 152);
  EXPECT_EQ(Str(*first, "Title"), "Blue Glass Vase");
  Date start = *first->Fields(u"start").date();
  EXPECT_EQ(start, MakeDate(2026, 11, 10, 18, 30, 0));
  EXPECT_TRUE(Item("1100000002")->Fields(u"rating").IsNull());
  EXPECT_TRUE(Item("1100000007")->Fields(u"rating").IsNull());
  // The ended marker goes from the title too, and its entities are decoded.
  EXPECT_EQ(Str(*Item("1100000008"), "Title"), "Tom & Jerry \"Classic\" Mug");
  EXPECT_EQ(Str(*Item("1100000009"), "Title"), "Antique Brass Telescope with Tripod and Origi");
  EXPECT_DOUBLE_EQ(Num(*Item("1100000010"), "rating"), 0);
}

TEST_P(SellerListTest, SecondImportUpdatesAndAddsNothing) {
  ImportFixture();
  statuses_.clear();
  ImportFixture();
  EXPECT_EQ(LastStatus(), u"Importing Auctions Completed.  0 Auctions Added.  11 Auctions Updated.");
  EXPECT_EQ(ImportedRows(), 10);
  EXPECT_NE(std::find(statuses_.begin(), statuses_.end(), u"Updating Auction Number 1100000009"),
            statuses_.end());
  EXPECT_EQ(Str(*Item("1100000008"), "Email"), "second@buyer.example");
}

INSTANTIATE_TEST_SUITE_P(Locales, SellerListTest, ::testing::Values("en_US", "en_GB", "nl_NL"));

class SellerListEnUsTest : public SellerListTest {
 protected:
  std::string Locale() const override { return "en_US"; }
};

TEST_F(SellerListEnUsTest, RowsTheUserHasTakenOverAreKeptFromTheImport) {
  ImportFixture();
  // Once the buyer is contacted the row is left alone and counts nowhere.
  Exec("UPDATE seller SET contact = true, Price = '99.00' WHERE item = '1100000001'");
  // A real address got from the buyers' page is not replaced by the Dutch or private placeholder.
  Exec("UPDATE seller SET Email = 'real@buyer.example' WHERE item = '1100000003'");
  Exec("UPDATE seller SET Email = 'locket@buyer.example' WHERE item = '1100000007'");
  // The real price of a Store Sale, as the buyers' page supplies it, is overwritten on every update.
  Exec("UPDATE seller SET Price = '7.50' WHERE item = '1100000005'");
  ImportFixture();
  EXPECT_EQ(LastStatus(), u"Importing Auctions Completed.  0 Auctions Added.  8 Auctions Updated.");
  EXPECT_DOUBLE_EQ(Num(*Item("1100000001"), "Price"), 99.0);
  EXPECT_EQ(Str(*Item("1100000003"), "Email"), "real@buyer.example");
  EXPECT_EQ(Str(*Item("1100000007"), "Email"), "locket@buyer.example");
  EXPECT_DOUBLE_EQ(Num(*Item("1100000005"), "Price"), 0);
}

TEST_F(SellerListEnUsTest, ReserveNotMetIsNotedOnceAndClosesTheSale) {
  ImportFixture();
  Exec("UPDATE seller SET Reserve = '50.00', Comments = 'Asked about postage.' WHERE item = '1100000001'");
  ImportFixture();
  ImportFixture();
  auto rs = Item("1100000001");
  EXPECT_EQ(Str(*rs, "Comments"), "Reserve not metAsked about postage.");
  EXPECT_FALSE(Flag(*rs, "Reserve_met"));
  EXPECT_TRUE(Flag(*rs, "Trans_comp"));
}

TEST_F(SellerListEnUsTest, PostedRowIsFoundByItsTitleEvenWithAnApostrophe) {
  {
    auto rs = Rows("Select * From seller where item = ' '");
    rs->AddNew();
    rs->SetField(u"Item", u" ");
    rs->SetField(u"Title", u"Grandma's Patchwork Quilt");
    rs->SetField(u"username", u"lotseller");
    rs->SetField(u"pending", true);
    rs->SetField(u"Reserve", 0);
    rs->Update();
  }
  Import(PageFromHtml(
      ListPage("High Bidder's Email",
               PageRow({"1100000020", "Nov-01-26 10:00:00", "Nov-08-26 10:00:00 (*)", "$55.00",
                        "Grandma&#39;s Patchwork Quilt", "quiltlover(3)", "quilt@buyer.example"}))));
  EXPECT_EQ(LastStatus(), u"Importing Auctions Completed.  0 Auctions Added.  1 Auctions Updated.");
  auto rs = Item("1100000020");
  EXPECT_EQ(Str(*rs, "Title"), "Grandma's Patchwork Quilt");
  EXPECT_FALSE(Flag(*rs, "pending"));
  EXPECT_DOUBLE_EQ(Num(*rs, "Price"), 55.0);
}

TEST_F(SellerListEnUsTest, WithoutTheHeadingParsingBeginsAtPosition23) {
  FileDisplay buffer;
  // A first line as long as the heading, its line end, then two characters the offset skips.
  buffer.set_text(
      u"Lotwright test page\r\nAB1100000030\r\nNov-01-26 10:00:00\r\nNov-08-26 10:00:00\r\n$5.00\r\n"
      u"Brass Bell\r\nbellfan(9)\r\nbell@buyer.example\r\nCopyright eBay Inc. All Rights Reserved.\r\n");
  Import(std::move(buffer));
  EXPECT_EQ(LastStatus(), u"Importing Auctions Completed.  1 Auctions Added.  0 Auctions Updated.");
  auto rs = Item("1100000030");
  EXPECT_EQ(Str(*rs, "Id"), "bellfan");
  EXPECT_DOUBLE_EQ(Num(*rs, "rating"), 9);
}

TEST_F(SellerListEnUsTest, FailedRecordStopsTheImportThroughTheHandler) {
  ui_.answers.push_back(MsgAnswer::Yes);
  // A bracket only in the first place of the bidder cell leaves no id to cut.
  std::string rows = PageRow({"1100000040", "Nov-01-26 10:00:00", "Nov-08-26 10:00:00", "$5.00",
                              "Tin Whistle", "whistler(1)", "w@buyer.example"}) +
                     PageRow({"1100000041", "Nov-01-26 10:00:00", "Nov-08-26 10:00:00", "$6.00", "Tin Drum",
                              "(12)", "d@b.example"}) +
                     PageRow({"1100000042", "Nov-01-26 10:00:00", "Nov-08-26 10:00:00", "$7.00", "Tin Cup",
                              "cupper(2)", "c@b.example"});
  Import(PageFromHtml(ListPage("High Bidder's Email", rows)));
  ASSERT_EQ(ui_.shown.size(), 1u);
  EXPECT_EQ(ui_.shown[0].title, u"Errors Importing Data.");
  EXPECT_EQ(ui_.shown[0].text,
            u"Errors Importing Data. Check the message in the status bar for the auction concerned.\r\n"
            u"Do you want to check the 'Last Import' Form for errors.");
  EXPECT_EQ(ui_.shown[0].buttons, MsgButtons::YesNo);
  EXPECT_EQ(last_import_shown_, 1);
  EXPECT_EQ(LastStatus(), u"Displaying Last Imported Data");
  EXPECT_TRUE(advanced_edit_);
  EXPECT_TRUE(ctx_->state.stop_import);
  for (const Text& slot : ctx_->state.current_fields) EXPECT_TRUE(slot.empty());
  EXPECT_EQ(ImportedRows(), 1);
  EXPECT_EQ(Count("Select * From seller where item = '1100000042'"), 0);
}

TEST_F(SellerListEnUsTest, EachUnreadableDateIsToldBeforeTheStoreRefusesAndEarlierRowsAreKept) {
  std::string rows = PageRow({"1100000050", "Nov-01-26 10:00:00", "Nov-08-26 10:00:00", "$5.00", "Kazoo",
                              "hummer(1)", "h@buyer.example"}) +
                     PageRow({"1100000051", "Nox-01-26 10:00:00", "Nox-08-26 10:00:00", "$6.00", "Banjo",
                              "picker(2)", "p@buyer.example"});
  // What another program finds in the file while the error is on the screen.
  int64_t kept_while_asking = -1;
  ui_.on_message = [&](const Text& title) {
    if (title != u"Errors Importing Data.") return;
    auto other = Database::OpenDatabase(dir_ / "lw.mdb", *regional_);
    kept_while_asking = other->OpenRecordset(u"Select * From seller where pending = no")->RecordCount();
  };
  ui_.answers = {MsgAnswer::OK, MsgAnswer::OK, MsgAnswer::No};
  Import(PageFromHtml(ListPage("High Bidder's Email", rows)));
  ASSERT_EQ(ui_.shown.size(), 3u);
  EXPECT_EQ(ui_.shown[0].title, u"Data Conversion Error");
  EXPECT_EQ(ui_.shown[1].title, u"Data Conversion Error");
  EXPECT_EQ(ui_.shown[2].title, u"Errors Importing Data.");
  EXPECT_EQ(LastStatus(), u"Adding Item Number 1100000051");
  EXPECT_EQ(kept_while_asking, 1);
  EXPECT_EQ(ImportedRows(), 1);
}

TEST_F(SellerListEnUsTest, UsDollarPriceGoesToTheStoreAsItStands) {
  ui_.answers.push_back(MsgAnswer::No);
  Import(LoadPage("seller_list_us_dollar.html"));
  ASSERT_EQ(ui_.shown.size(), 1u);
  EXPECT_EQ(ui_.shown[0].title, u"Errors Importing Data.");
  // The status bar still names the auction the store refused, and the view is rebuilt.
  EXPECT_EQ(LastStatus(), u"Adding Item Number 1100000011");
  EXPECT_EQ(filters_, 1);
  EXPECT_EQ(ImportedRows(), 1);
  EXPECT_EQ(Count("Select * From seller where item = '1100000011'"), 0);
  EXPECT_EQ(HalfWrittenRows(), 0);
}

TEST_F(SellerListEnUsTest, UserErrorPageIsRefused) {
  Import(PageFromHtml("<html><body><p>User Error: bad password</p></body></html>"));
  ASSERT_EQ(ui_.shown.size(), 1u);
  EXPECT_EQ(ui_.shown[0].title, u"Unable to Import");
  EXPECT_EQ(ui_.shown[0].icon, MsgIcon::Critical);
  EXPECT_EQ(ImportedRows(), 0);
}

// Whatever the page holds, the import ends in its summary or one of its messages, in bounded time, and
// leaves no row stored part way.
TEST_F(SellerListEnUsTest, BadPagesEndInAMessageOrTheSummary) {
  std::mt19937 rng(7);
  std::string noise(200000, ' ');
  for (char& c : noise) c = static_cast<char>(rng() % 256);
  std::string fixture = ReadFile(PagePath("seller_list.html"));
  std::string truncated = fixture.substr(0, fixture.size() / 2);
  truncated = truncated.substr(0, truncated.rfind('<'));
  std::string big = "<html><body><table><tr><th>High Bidder's Email</th></tr>\r\n";
  // Cells with nothing in them, as a long page of empty rows reads once its tags are gone.
  while (big.size() < 10 * 1024 * 1024) big += "&nbsp;\r\n   \r\n";
  big += "<p>Copyright 1995-2026 eBay Inc. All Rights Reserved.</p></body></html>";

  struct Case {
    const char* name;
    std::string html;
  };
  const Case cases[] = {{"random bytes", noise},
                        {"truncated", truncated},
                        {"no markers", "<html><body><p>Nothing to see here</p></body></html>"},
                        {"10 MB", big}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ui_.shown.clear();
    statuses_.clear();
    ui_.answers.assign(4, MsgAnswer::No);
    FileDisplay buffer;
    buffer.set_text(FromCp1252(c.html));
    try {
      Normalise(buffer);
    } catch (const RuntimeError& e) {
      // An unclosed tag is the normaliser's failure, reported by its caller; the rest is parsed as text.
      EXPECT_EQ(e.number(), err::kInvalidPropertyValue);
    }
    auto started = std::chrono::steady_clock::now();
    Import(std::move(buffer));
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(20));
    const bool summary = Like(LastStatus(), u"Importing Auctions Completed.*");
    EXPECT_TRUE(summary || !ui_.shown.empty()) << ToUtf8(LastStatus());
    EXPECT_EQ(HalfWrittenRows(), 0);
  }
}

}  // namespace
}  // namespace lw::testing
