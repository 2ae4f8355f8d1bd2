#include "import/description.h"

#include <gtest/gtest.h>

#include "core/primitives/encoding.h"
#include "import/seller_list_testing.h"

namespace lw::testing {
namespace {

class DescriptionTest : public ListImportTest {
 protected:
  std::string Locale() const override { return "en_US"; }

  // The page as the dispatcher hands it over: normalised for the plain parsers, raw for "with HTML".
  FileDisplay RawPage(const std::string& file) {
    FileDisplay buffer;
    buffer.LoadFile(PagePath(file));
    return buffer;
  }
  void ShowItem(DataSource& source, const std::string& table, const std::string& item) {
    Exec("INSERT INTO " + table + " (Item, Title, username, site) VALUES ('" + item +
         "', 'Lantern', 'lotseller', 'eBay')");
    source.RecordSource = T("Select * From " + table + " where Item = '" + item + "'");
    source.Refresh();
  }
  static std::string U(const Text& t) { return ToUtf8(t); }

  DescriptionScreen screen_;
};

TEST_F(DescriptionTest, OrdinaryPageFillsTheSellerAndBidderFields) {
  FileDisplay page = LoadPage("item_ordinary.html");
  screen_.flags.description_pending = true;
  get_ebay_seller_auction_description(*ctx_, screen_, page);
  const DescriptionFields& f = screen_.fields;
  EXPECT_EQ(U(f.category_lbl[0]), "Collectibles:Nautical:Lanterns  Lamps");
  EXPECT_EQ(U(f.Description1_txt[0]), "A solid brass lantern from a coastal trader, wick and glass intact.");
  EXPECT_EQ(U(f.Minbid_txt[0]), "US $9.99");
  EXPECT_EQ(U(f.Quantity_txt[0]), "1");
  EXPECT_EQ(f.bids_lbl[0], 7);
  EXPECT_EQ(U(f.location_txt[0]), "Harwich, Essex");
  EXPECT_FALSE(screen_.flags.description_pending);
  EXPECT_TRUE(statuses_.empty());

  FileDisplay again = LoadPage("item_ordinary.html");
  screen_.fields.location_txt[1] = u"kept";
  get_ebay_bidder_auction_description(*ctx_, screen_, again);
  EXPECT_EQ(f.category_lbl[1], f.category_lbl[0]);
  EXPECT_EQ(f.Description1_txt[1], f.Description1_txt[0]);
  EXPECT_FLOAT_EQ(f.ctRealInput1_1, 45.0f);
  EXPECT_EQ(U(f.Minbid_txt[1]), "US $9.99");
  EXPECT_EQ(f.bids_lbl[1], 7);
  EXPECT_EQ(U(f.location_txt[1]), "kept");  // the bidder page takes no location
}
TEST_F(DescriptionTest, MissingMarkerStopsWithError380KeepingEarlierFields) {
  std::string html = ReadFile(PagePath("item_ordinary.html"));
  html.replace(html.find("Country"), 7, "Land");  // the location's end marker is missing
  FileDisplay page = PageFromHtml(html);
  screen_.fields.location_txt[0] = u"old place";
  get_ebay_seller_auction_description(*ctx_, screen_, page);
  EXPECT_EQ(U(screen_.fields.Minbid_txt[0]), "US $9.99");
  EXPECT_EQ(screen_.fields.bids_lbl[0], 7);
  EXPECT_EQ(U(screen_.fields.location_txt[0]), "old place");
  EXPECT_EQ(U(LastStatus()), "Can't find all auction details");

  // A start marker that comes after every end marker makes a negative length too.
  DescriptionScreen other;
  other.fields.category_lbl[0] = u"untouched";
  FileDisplay reversed = PageFromHtml("<p>Price</p><p>Item #4012345678 Toys</p>");
  get_ebay_seller_auction_description(*ctx_, other, reversed);
  EXPECT_EQ(U(other.fields.category_lbl[0]), "untouched");

  for (std::string bad : {std::string(), std::string("\0\xff<<>>&#\x01", 10), std::string(5000, 'x')}) {
    FileDisplay junk;
    junk.set_text(FromCp1252(bad));
    statuses_.clear();
    get_ebay_bidder_auction_description_ebaymotors(*ctx_, other, junk);
    get_ebay_seller_auction_description_ebaymotors_with_HTML(*ctx_, other, junk);
    EXPECT_EQ(U(LastStatus()), "Can't find all auction details");
  }
}

TEST_F(DescriptionTest, RelistNoteIsCutFromTheCategory) {
  FileDisplay page = PageFromHtml(
      "<p>Item #4012345678</p>\n<p>Toys:Trains This auction was relisted Price</p>\n"
      "<p>Description</p>\n<p>Top</p>\n<p>Real text</p>\n<p>Checkout</p>\n");
  get_ebay_seller_auction_description(*ctx_, screen_, page);
  EXPECT_EQ(U(screen_.fields.category_lbl[0]), "Toys:Trains ");
  EXPECT_EQ(U(screen_.fields.Description1_txt[0]), "Real text");
}

TEST_F(DescriptionTest, TheCategoryEndsAtTheFirstEndMarkerFoundInTurn) {
  // Each page lacks the markers tried before the one that ends its category, and has "Price" further
  // down, which is taken only when none of the four before it is there.
  for (const char* end : {"Bidding is closed for this item", "This item is closed.", "Price"}) {
    SCOPED_TRACE(end);
    FileDisplay page =
        PageFromHtml(std::string("<p>Item #4012345678</p>\n<p>Toys:Kites</p>\n<p>") + end +
                     "</p>\n<p>Description</p>\n<p>Top</p>\n<p>Real text</p>\n<p>Checkout</p>\n"
                     "<p>Price guide</p>\n");
    DescriptionScreen screen;
    get_ebay_seller_auction_description(*ctx_, screen, page);
    EXPECT_EQ(U(screen.fields.category_lbl[0]), "Toys:Kites");
    EXPECT_EQ(U(screen.fields.Description1_txt[0]), "Real text");
  }
  // The motors page has a list of its own: "Bidding is closed for this item" before "Currently".
  FileDisplay motors = PageFromHtml(
      "<p>Item located in: Reno, NV Cars:Coupes</p>\n<p>Bidding is closed for this item</p>\n"
      "<p>Currently $900</p>\n");
  DescriptionScreen screen;
  get_ebay_seller_auction_description_ebaymotors(*ctx_, screen, motors);
  EXPECT_EQ(U(screen.fields.category_lbl[0]), "Reno, NV Cars:Coupes");
}

TEST_F(DescriptionTest, WithHtmlKeepsTheSellersOwnMarkup) {
  FileDisplay page = RawPage("item_ordinary_own_html.html");
  screen_.flags.description_html_pending = true;
  get_ebay_seller_auction_description_with_HTML(*ctx_, screen_, page);
  const DescriptionFields& f = screen_.fields;
  EXPECT_EQ(U(f.Description1_txt[0])
                .rfind("<div align=\"center\"><font size=\"4\" color=\"#663300\">Carved oak box", 0),
            0u)
      << U(f.Description1_txt[0]);
  EXPECT_NE(U(f.Description1_txt[0]).find("<i>Hinges replaced in 1950.</i>"), std::string::npos);
  EXPECT_EQ(U(f.category_lbl[0]), "Antiques:Boxes  Chests");
  EXPECT_EQ(U(f.Minbid_txt[0]), "US $20.00");
  EXPECT_EQ(U(f.Quantity_txt[0]), "1");
  EXPECT_EQ(f.bids_lbl[0], 0);
  EXPECT_EQ(U(f.location_txt[0]), "Leiden");
  EXPECT_FALSE(screen_.flags.description_html_pending);
  EXPECT_TRUE(statuses_.empty());
  // The buffer holds the normalised page afterwards, as the Last Import page shows it.
  EXPECT_EQ(page.text().find(u"<div"), Text::npos);
}

TEST_F(DescriptionTest, MotorsPagesOnBothSides) {
  FileDisplay page = LoadPage("item_motors.html");
  screen_.flags.description_pending = screen_.flags.motors_description_pending = true;
  get_ebay_seller_auction_description_ebaymotors(*ctx_, screen_, page);
  const DescriptionFields& f = screen_.fields;
  EXPECT_EQ(U(f.category_lbl[0]), "Cars  Trucks:Roadsters");
  // The slice runs 8 characters into the end marker.
  EXPECT_EQ(U(f.Description1_txt[0]), "Original paint, rebuilt engine, new soft top.Bidding ");
  EXPECT_EQ(U(f.Minbid_txt[0]), "5,000.00");
  EXPECT_EQ(U(f.Quantity_txt[0]), "1");
  EXPECT_EQ(f.bids_lbl[0], 12);
  EXPECT_EQ(U(f.location_txt[0]), "Tulsa, OK");
  EXPECT_FALSE(screen_.flags.description_pending);
  EXPECT_TRUE(screen_.flags.motors_description_pending);  // the dispatcher clears that one

  FileDisplay again = LoadPage("item_motors.html");
  get_ebay_bidder_auction_description_ebaymotors(*ctx_, screen_, again);
  EXPECT_EQ(f.Description1_txt[1], f.Description1_txt[0]);
  EXPECT_EQ(f.bids_lbl[1], 12);
  EXPECT_EQ(U(f.location_txt[1]), "Tulsa, OK");

  FileDisplay own = RawPage("item_motors_own_html.html");
  screen_.flags.motors_description_html_pending = true;
  get_ebay_seller_auction_description_ebaymotors_with_HTML(*ctx_, screen_, own);
  EXPECT_NE(U(f.Description1_txt[0]).find("<div><b>Solid frame</b>, <i>no rust</i>.</div>"),
            std::string::npos)
      << U(f.Description1_txt[0]);
  EXPECT_EQ(U(f.category_lbl[0]), "Cars  Trucks:Pickups");
  EXPECT_EQ(U(f.Minbid_txt[0]), "3,100.00");
  EXPECT_EQ(f.bids_lbl[0], 0);
  EXPECT_EQ(U(f.location_txt[0]), "Boise, ID");
  EXPECT_FALSE(screen_.flags.motors_description_html_pending);
}

TEST_F(DescriptionTest, CommandsPickHostFlagAndFetchAndNeedARow) {
  int tab = -1, cleared = 0;
  screen_.select_tab = [&](int t) { tab = t; };
  screen_.clear_job_flags = [&] { ++cleared; };
  screen_.txtURL = u"/earlier";
  screen_.flags.import_cancelled = true;
  screen_.flags.description_pending = true;
  // No auction on show: refused, but the fetch still follows.
  EXPECT_EQ(run_description_command(*ctx_, screen_, DescriptionCommand::motors_with_html, u"desc.host",
                                    u"motors.host"),
            DescriptionFetch::download_auctions_3);
  EXPECT_EQ(U(screen_.txtIP), "motors.host");
  EXPECT_EQ(U(screen_.txtURL), "/earlier");
  EXPECT_TRUE(screen_.flags.motors_description_html_pending);
  EXPECT_FALSE(screen_.flags.description_pending);
  EXPECT_FALSE(screen_.flags.import_cancelled);
  EXPECT_EQ(cleared, 1);
  ASSERT_EQ(ui_.shown.size(), 1u);
  EXPECT_EQ(U(ui_.shown[0].title), "Can't Import Description");
  EXPECT_EQ(U(ui_.shown[0].text), "Ensure a current auction is displayed before trying to import.");
  EXPECT_EQ(U(LastStatus()), "Can't import without auction displayed.");
  EXPECT_EQ(tab, -1);

  ShowItem(*bidder_, "bidder", "4012345678");
  screen_.auction_type = u"Bidder";
  EXPECT_EQ(run_description_command(*ctx_, screen_, DescriptionCommand::plain, u"desc.host", u"motors.host"),
            DescriptionFetch::download_auctions_2);
  EXPECT_EQ(U(screen_.txtIP), "desc.host");
  EXPECT_EQ(U(screen_.txtURL), "/ws/eBayISAPI.dll?ViewItem&item=4012345678");
  EXPECT_EQ(
      U(LastStatus()),
      "Importing Description for auction ....4012345678. Warning auction HTML code maybe imported too.");
  EXPECT_EQ(tab, 1);
  EXPECT_TRUE(screen_.flags.description_pending);
  EXPECT_FALSE(screen_.flags.motors_description_html_pending);
  EXPECT_EQ(ui_.shown.size(), 1u);

  // The seller side reads its own cursor, which shows nothing yet.
  screen_.auction_type = u"Seller";
  EXPECT_FALSE(description_import(*ctx_, screen_));
}

}  // namespace
}  // namespace lw::testing
