#include "import/dutch.h"

#include <gtest/gtest.h>

#include "core/primitives/encoding.h"
#include "import/normalise.h"
#include "import/seller_list_testing.h"

namespace lw::testing {
namespace {

class DutchTest : public ListImportTest {
 protected:
  std::string Locale() const override { return "en_US"; }

  void Placeholder(const std::string& item, const std::string& id, const std::string& price) {
    Exec(
        "INSERT INTO seller (Item, Title, username, site, Completed, Duplicated, id, Price, Ship_cost, "
        "Quantity) "
        "VALUES ('" +
        item + "', 'Lot of " + item + "', 'lotseller', 'eBay', true, false, '" + id + "', " + price +
        ", 3.5, 1)");
  }
  // The cursor as the seller's command leaves it: the sale's rows, newest end first, on `id`'s row.
  void ShowSale(const std::string& item, const std::string& id) {
    seller_->RecordSource = T("Select * From seller where item = '" + item + "' order by end desc ");
    seller_->Refresh();
    seller_->recordset().FindFirst(T("Item = '" + item + "'and id = '" + id + "'"));
    ASSERT_FALSE(seller_->recordset().NoMatch());
  }
  // The browser view's page: tags removed only.
  FileDisplay DutchPage(const std::string& file) {
    FileDisplay buffer;
    buffer.LoadFile(PagePath(file));
    parse_HTML(buffer, [](const Text&) {});
    return buffer;
  }
  std::string Buyers(const std::string& item) {
    auto rs = Rows("Select * From seller where Item = '" + item + "' order by id");
    std::string out;
    for (; !rs->Eof(); rs->MoveNext()) {
      out += Str(*rs, "id") + "|" + Str(*rs, "Email") + "|" +
             std::to_string(static_cast<int>(Num(*rs, "rating"))) + "|" +
             std::to_string(static_cast<int>(Num(*rs, "Quantity"))) + "|" +
             std::to_string(Num(*rs, "Price")).substr(0, 5) + "|" +
             (Flag(*rs, "Duplicated") ? "dup" : "own") + "|" + Str(*rs, "Title") + "\n";
    }
    return out;
  }
};

TEST_F(DutchTest, FirstBuyerTakesThePlaceholderAndARerunAddsNothing) {
  Placeholder("4019990001", "3 Dutch bids", "2");
  ShowSale("4019990001", "3 Dutch bids");
  FileDisplay page = DutchPage("dutch_auction.html");
  get_seller_dutch_auctions(*ctx_, page);
  const std::string expected =
      "glass_eye|eye@example.com|7|1|2.000|dup|Lot of 4019990001\n"
      "last_one|last@example.com|0|1|2.000|dup|Lot of 4019990001\n"  // 2 wanted, 1 left of the 5
      "marble_fan|fan@example.com|42|3|6.000|dup|Lot of 4019990001\n";
  EXPECT_EQ(Buyers("4019990001"), expected);
  EXPECT_EQ(ToUtf8(LastStatus()), "Importing Auctions Completed.  Auctions Added 3 Items Sold 5");
  EXPECT_TRUE(ui_.shown.empty());
  EXPECT_TRUE(std::filesystem::exists(dir_ / "parsed_data.htm"));

  ShowSale("4019990001", "marble_fan");
  FileDisplay again = DutchPage("dutch_auction.html");
  get_seller_dutch_auctions(*ctx_, again);
  EXPECT_EQ(Buyers("4019990001"), expected);
  EXPECT_EQ(ToUtf8(LastStatus()), "No Buyers Found");

  // A later list import put a fresh placeholder back; the next run drops it at the first known buyer.
  Placeholder("4019990001", "3 Dutch bids", "2");
  ShowSale("4019990001", "3 Dutch bids");
  FileDisplay third = DutchPage("dutch_auction.html");
  get_seller_dutch_auctions(*ctx_, third);
  EXPECT_EQ(Buyers("4019990001"), expected);
}

TEST_F(DutchTest, StoreSalePricesCutQuantityAndBadLine) {
  Placeholder("4019990002", "Store Sale", "0");
  ShowSale("4019990002", "Store Sale");
  FileDisplay page = DutchPage("dutch_store_sale.html");
  get_seller_dutch_auctions(*ctx_, page);
  // The line with no bracket goes to the handler and ends; the buyers after it still come in.
  ASSERT_EQ(ui_.shown.size(), 1u);
  EXPECT_EQ(ToUtf8(ui_.shown[0].title), "Errors Importing Data.");
  EXPECT_TRUE(advanced_edit_);
  EXPECT_EQ(Buyers("4019990002"),
            "kitchen_kate|kate@example.com|18|1|12.50|dup|Lot of 4019990002\n"
            "late_larry|larry@example.com|3|0|0.000|dup|Lot of 4019990002\n"
            "towel_lover|tl@example.com|130|2|25.00|dup|Lot of 4019990002\n");
  EXPECT_EQ(ToUtf8(LastStatus()), "Importing Auctions Completed.  Auctions Added 3 Items Sold 3");

  // Copied listing details and the selectors' user and site.
  auto rs = Rows("Select * From seller where Item = '4019990002' and id = 'late_larry'");
  ASSERT_FALSE(rs->Eof());
  EXPECT_EQ(Num(*rs, "Ship_cost"), 3.5);
  EXPECT_EQ(Str(*rs, "username"), "lotseller");
  EXPECT_TRUE(Flag(*rs, "Completed"));
  EXPECT_TRUE(Flag(*rs, "Reserve_met"));

  // The price is read by Val as the page gives it: a thousands mark ends the number.
  Placeholder("4019990005", "Store Sale", "0");
  ShowSale("4019990005", "Store Sale");
  FileDisplay dear;
  dear.set_text(
      u"Quantity: 1\r\nBuyer Price Qty Date of Bid(time)\r\nrich_rita (rita@example.com) (5) $1,250.00 1 "
      u"Nov-19-26\r\neBay Inc. All Rights Reserved.\r\n");
  get_seller_dutch_auctions(*ctx_, dear);
  auto rita = Rows("Select * From seller where Item = '4019990005' and id = 'rich_rita'");
  ASSERT_FALSE(rita->Eof());
  EXPECT_EQ(Num(*rita, "Price"), 1);
}

TEST_F(DutchTest, PagesWithoutBidsOrForAnotherSeller) {
  Placeholder("4019990003", "2 Dutch bids", "1");
  for (std::string html :
       {std::string(), std::string("Date of Bid\n\x01\xff(((\n)))$$$\n\t\n"), std::string(20000, '(')}) {
    ShowSale("4019990003", "2 Dutch bids");
    FileDisplay page;
    page.set_text(FromCp1252(html));
    ui_.answers.assign(8, MsgAnswer::No);
    get_seller_dutch_auctions(*ctx_, page);
  }
  EXPECT_EQ(Count("Select * From seller where Item = '4019990003'"), 1);
  // Another seller's sale: the browser page with the site's answer, left where it is; the buffer holds
  // the page as rewritten.
  FileDisplay refused;
  refused.set_text(u"Error: Requestor not the seller&nbsp; at 10:00 PST\r\n");
  get_seller_dutch_auctions(*ctx_, refused);
  EXPECT_EQ(browser_page_shown_, 1);
  EXPECT_EQ(last_import_shown_, 0);
  EXPECT_EQ(refused.text().find(u"&nbsp;"), Text::npos);
  EXPECT_EQ(refused.text().find(u"PST"), Text::npos);
}

TEST_F(DutchTest, BidderFindsOwnLine) {
  Exec(
      "INSERT INTO bidder (Item, Title, username, site, Completed, id, Price) VALUES "
      "('4019990004', 'Buttons', 'lotseller', 'eBay', true, '4 Dutch bids', 1)");
  bidder_->RecordSource = u"Select * From bidder where Item = '4019990004'";
  bidder_->Refresh();
  FileDisplay page;
  page.set_text(
      u"Bidder Item Price Quantity Date of Bid\r\nsomeone (3) 1 $0.80 Nov-1-26 PST\r\n"
      u"lotseller (12) 2 $0.75 Nov-2-26 PST\r\nCopyright eBay Inc. All Rights Reserved.\r\n");
  EXPECT_TRUE(get_bidder_dutch_auctions(*ctx_, page));
  EXPECT_EQ(ToUtf8(LastStatus()), "Dutch Bid Auction Updated");
  auto rs = Rows("Select * From bidder where Item = '4019990004'");
  EXPECT_EQ(Num(*rs, "Quantity"), 2);
  EXPECT_EQ(Num(*rs, "Price"), 0.75);
  EXPECT_EQ(Str(*rs, "id"), "lotseller");

  ctx_->userid = u"nobody_here";
  FileDisplay other;
  other.set_text(page.text());
  EXPECT_FALSE(get_bidder_dutch_auctions(*ctx_, other));
  ASSERT_EQ(ui_.shown.size(), 1u);
  EXPECT_EQ(ToUtf8(ui_.shown[0].title), "Userid Not Found");

  // The bidder's price is read by Val as the page gives it, as the seller's is.
  ctx_->userid = u"lotseller";
  FileDisplay dear;
  dear.set_text(
      u"Bidder Item Price Quantity Date of Bid\r\nlotseller (12) 1 $1,250.00 Nov-2-26 PST\r\n"
      u"Copyright eBay Inc. All Rights Reserved.\r\n");
  EXPECT_TRUE(get_bidder_dutch_auctions(*ctx_, dear));
  EXPECT_EQ(Num(*Rows("Select * From bidder where Item = '4019990004'"), "Price"), 1);
}

TEST_F(DutchTest, SellerCommandChecksAndAddresses) {
  DutchScreen screen;
  screen.servername_dutch = u"dutch.example";
  screen.Quantity_txt[0] = u"10";
  std::vector<std::string> went;
  screen.navigate = [&](const Text& a) { went.push_back(ToUtf8(a)); };
  Exec(
      "INSERT INTO seller (Item, Title, username, site, Completed, id) VALUES "
      "('4019990005', 'Running', 'lotseller', 'eBay', false, '2 Dutch bids')");
  ShowSale("4019990005", "2 Dutch bids");
  EXPECT_FALSE(import_dutch_btn_2(*ctx_, screen));
  EXPECT_EQ(ToUtf8(ui_.shown.back().title), "Auction Still in Progress");

  Exec("UPDATE seller SET Completed = true WHERE Item = '4019990005'");
  ShowSale("4019990005", "2 Dutch bids");
  screen.id_pnl[0] = u"a_single_buyer";
  EXPECT_FALSE(import_dutch_btn_2(*ctx_, screen));
  EXPECT_EQ(ToUtf8(ui_.shown.back().title), "Incorrect Auction Type");
  EXPECT_EQ(Num(*Rows("Select * From seller where Item = '4019990005'"), "Quantity"), 10);

  screen.id_pnl[0] = u"2 Dutch bids";
  EXPECT_EQ(ToUtf8(import_dutch_btn_2(*ctx_, screen).value_or(u"")),
            "http://dutch.example/aw-cgi/eBayISAPI.dll?GetBidderEmails&item=4019990005&pagetype=269&ed=2 "
            "Dutch bids");
  EXPECT_EQ(ToUtf8(screen.dutch_item), "4019990005");
  EXPECT_TRUE(screen.seller_dutch_pending);
  screen.pass1 = u"secret";
  EXPECT_EQ(ToUtf8(import_dutch_btn_2(*ctx_, screen).value_or(u"")),
            "http://dutch.example/aw-cgi/eBayISAPI.dll?ViewBidDutchHighBidderEmails&de=off&item=4019990005"
            "&acceptcookie=0&ed=0&pass=secret&userid=lotseller");
  EXPECT_EQ(went.size(), 2u);

  // The bidder's command fetches for the type "Bidder" only.
  Exec(
      "INSERT INTO bidder (Item, Title, username, site, Completed, id) VALUES "
      "('4019990006', 'Beads', 'lotseller', 'eBay', true, '3 Dutch bids')");
  bidder_->RecordSource = u"Select * From bidder where Item = '4019990006'";
  bidder_->Refresh();
  screen.id_pnl[1] = u"3 Dutch bids";
  screen.txtURL.clear();
  screen.auction_type = u"Seller";
  EXPECT_FALSE(import_dutch_bidder_btn(*ctx_, screen));
  EXPECT_TRUE(screen.txtURL.empty());
  EXPECT_TRUE(screen.bidder_dutch_pending);
  screen.auction_type = u"Bidder";
  EXPECT_EQ(ToUtf8(import_dutch_bidder_btn(*ctx_, screen).value_or(u"")),
            "/aw-cgi/eBayISAPI.dll?MfcISAPICommand=ViewBidsDutchHighBidder&item=4019990006");
}

}  // namespace
}  // namespace lw::testing
