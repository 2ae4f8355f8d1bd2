// The report layouts run over a real store: the profit arithmetic at full depth, the grouped profit
// report, and the averages of the period reports.
#include <gtest/gtest.h>

#include <stb/stb_image_write.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "accounting/export.h"
#include "accounting/export_reading.h"
#include "accounting/report_catalogue.h"
#include "accounting/reports.h"
#include "core/primitives/encoding.h"
#include "core/store/test_store.h"

namespace lw {
namespace {

using layout::kBlack;
using layout::kRed;

// The runs of the line of a page that begins with `first`.
std::vector<const ReportRun*> LineOf(const ReportDocument& doc, TextView first) {
  for (const ReportPage& p : doc.pages)
    for (const ReportLine& l : PageLines(p))
      if (!l.runs.empty() && l.runs.front()->text == first) return l.runs;
  return {};
}

std::vector<std::string> Texts(const std::vector<const ReportRun*>& runs) {
  std::vector<std::string> out;
  for (const ReportRun* r : runs) out.push_back(ToUtf8(r->text));
  return out;
}

class ReportLayoutTest : public testing::StoreTest {
 protected:
  ReportDocument Run(TextView layout, const std::string& query) {
    auto r = MakeReportLayout(layout, LayoutContext{Date(46099)});
    r->data_source = T(query);
    return r->Run(*db_, regional_);
  }
};

TEST_F(ReportLayoutTest, ProfitAddsStoredCreditsKeepsRunningTotalsInSinglePrecisionAndColoursZeroCosts) {
  // 1: fees 1.00 + credit stored as +0.50 + credit stored as -0.25 = 1.25; no costs at all.
  Exec(
      "INSERT INTO seller (Item, Title, username, Reserve_met, Price, Cost, actual_ship_cost, "
      "actual_insure_cost, "
      "actual_other_cost, actual_total_tax, Ship_cost, insure_cost, total_tax, fee_insertion, "
      "fee_credit_insertion, fee_reserve_credit) VALUES ('1', 'Credited', 'ann', yes, 100, 0, 0, 0, 0, 0, 0, "
      "0, "
      "0, 1, 0.5, -0.25)");
  // 2: a profit of 16,777,211.00, where single precision counts in twos.
  Exec(
      "INSERT INTO seller (Item, Title, username, Reserve_met, Price, Cost, actual_ship_cost, "
      "actual_insure_cost, "
      "actual_other_cost, actual_total_tax, Ship_cost, insure_cost, total_tax) VALUES ('2', 'Large', 'ann', "
      "yes, 16777216, 0, 5, 0, 0, 0, 0, 0, 0)");
  // 3: no cost entered at all: the fees are shown, the rest of the arithmetic stops.
  Exec(
      "INSERT INTO seller (Item, Title, username, Reserve_met, Price, fee_insertion) VALUES ('3', 'Unknown', "
      "'ann', "
      "yes, 50, 0.3)");
  ReportDocument doc = Run(u"profit100",
                           "SELECT * From seller Where (((seller.UserName) = 'ann')) and "
                           "Reserve_met = true ORDER BY Seller.Price DESC");
  //                                                       cost    ship    insure  other   tax     fees
  //                                                       c+s+i+f+t  price  buyer's total  profit
  auto large = LineOf(doc, u"1");
  EXPECT_EQ(Texts(large),
            (std::vector<std::string>{"1", "2", "Large", "$0.00", "$5.00", "$0.00", "$0.00", "$0.00", "$0.00",
                                      "$5.00", "$16,777,216.00", "$16,777,216.00", "$16,777,211.00"}));
  EXPECT_EQ(large[3]->forecolor, kRed);
  EXPECT_EQ(large[4]->forecolor, kBlack);
  auto credited = LineOf(doc, u"2");
  EXPECT_EQ(Texts(credited),
            (std::vector<std::string>{"2", "1", "Credited", "$0.00", "$0.00", "$0.00", "$0.00", "$0.00",
                                      "$1.25", "$1.25", "$100.00", "$100.00", "$98.75"}));
  EXPECT_EQ(credited[3]->forecolor, kRed);
  EXPECT_EQ(credited[4]->forecolor, kRed);
  // The failing row has no rank, no sums of its own, and no colour it never reached.
  EXPECT_EQ(Texts(LineOf(doc, u"3")), (std::vector<std::string>{"3", "Unknown", "$0.30", "$50.00"}));
  // Exact sums of the columns beside running totals of single precision: 16,777,211 + 98.75 is
  // 16,777,309.75, which single precision holds as 16,777,310; the failing row adds to neither.
  std::vector<std::string> footer;
  for (const ReportPage& p : doc.pages)
    for (const ReportLine& l : PageLines(p))
      if (l.runs.size() > 2 && l.runs[1]->text == u"Items Sold") footer = Texts(l.runs);
  EXPECT_EQ(footer, (std::vector<std::string>{"3", "Items Sold", "Totals", "$0.00", "$5.00", "$0.00", "$0.00",
                                              "$0.00", "$1.25", "$6.25", "$16,777,366.00", "$16,777,316.00",
                                              "$16,777,310.00"}));
}

TEST_F(ReportLayoutTest, TheCombinedReportRanksTitlesAndAddsTheirSales) {
  for (auto [item, price] : {std::pair{"1", "10"}, std::pair{"2", "15"}})
    Exec(std::string(
             "INSERT INTO seller (Item, Title, username, Reserve_met, Price, Cost, actual_ship_cost, "
             "actual_insure_cost, actual_other_cost, actual_total_tax, Ship_cost, insure_cost, total_tax, "
             "fee_insertion) VALUES ('") +
         item + "', 'Vase', 'ann', yes, " + price + ", 4, 1, 0, 0, 0, 2, 0, 0, 0.5)");
  Exec(
      "INSERT INTO seller (Item, Title, username, Reserve_met, Price, Cost, actual_ship_cost, "
      "actual_insure_cost, "
      "actual_other_cost, actual_total_tax, Ship_cost, insure_cost, total_tax) VALUES ('3', 'Jug', 'ann', "
      "yes, 30, "
      "10, 0, 0, 0, 0, 0, 0, 0)");
  ReportInputs in;
  in.userid = u"ann";
  auto c = ComposeReport(9, in);
  ReportDocument doc = Run(u"profit100combined", ToUtf8(c->report_query));
  // Jug first (30 against 25); each title's row carries its sales and their sums.
  EXPECT_EQ(Texts(LineOf(doc, u"1")), (std::vector<std::string>{"1", "Jug"}));
  EXPECT_EQ(Texts(LineOf(doc, u"2")), (std::vector<std::string>{"2", "Vase"}));
  std::vector<std::vector<std::string>> rows;
  for (const ReportLine& l : PageLines(doc.pages[0]))
    if (l.runs.size() == 11) rows.push_back(Texts(l.runs));
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[1], (std::vector<std::string>{"2", "$8.00", "$2.00", "$0.00", "$0.00", "$0.00", "$1.00",
                                               "$11.00", "$25.00", "$29.00", "$18.00"}));
  auto footer = LineOf(doc, u"3");
  EXPECT_EQ(Texts(footer),
            (std::vector<std::string>{"3", "Items Sold", "Totals", "$18.00", "$2.00", "$0.00", "$0.00",
                                      "$0.00", "$1.00", "$21.00", "$55.00", "$59.00", "$38.00"}));
}

TEST_F(ReportLayoutTest, AveragesDivideExactlyAndShowNAForAnEmptyPeriod) {
  for (auto [item, price] : {std::pair{"1", "0.01"}, std::pair{"2", "0.01"}, std::pair{"3", "0.02"}})
    Exec(std::string(
             "INSERT INTO bidder (Item, Title, username, Id, Completed, Price, Ship_cost, End) VALUES ('") +
         item + "', 'Bell', 'ann', 'ann', yes, " + price + ", 0, #03/05/2026#)");
  const std::string purchases = "Select * From bidder where username = 'ann' order by Item";
  // 0.04 over three is 0.0133 to the ten-thousandth.
  ReportDocument full = Run(u"purch2datesfull", purchases);
  auto average = LineOf(full, u"Average Price");
  EXPECT_EQ(Texts(average), (std::vector<std::string>{"Average Price", "$0.01"}));
  ASSERT_TRUE(average[1]->number);
  EXPECT_DOUBLE_EQ(*average[1]->number, 0.0133);
  ReportDocument empty = Run(u"purch2datessum", "Select * From bidder where username = 'nobody'");
  EXPECT_EQ(Texts(LineOf(empty, u"Average Price")), (std::vector<std::string>{"Average Price", "N/A"}));
  EXPECT_EQ(Texts(LineOf(empty, u"0")), (std::vector<std::string>{"0", "Items Purchased"}));
  // A red shipping cost of 0 in the purchases too.
  auto first = LineOf(full, u"1");
  EXPECT_EQ(first[3]->text, u"$0.00");
  EXPECT_EQ(first[3]->forecolor, kRed);
}

TEST_F(ReportLayoutTest, TheAuctionsPictureReachesThePageTheHtmlAndThePdf) {
  namespace fs = std::filesystem;
  fs::path picture = path_.parent_path() / "vase.png";
  unsigned char pixels[4 * 4 * 3];
  for (size_t i = 0; i < sizeof pixels; ++i) pixels[i] = static_cast<unsigned char>(i * 7);
  ASSERT_TRUE(stbi_write_png(picture.c_str(), 4, 4, 3, pixels, 4 * 3));
  Exec(
      "INSERT INTO seller (Item, Title, username, Price, Pic_location, status_log) VALUES ('1', 'Vase', "
      "'ann', 5, '" +
      picture.string() + "', 'Won by bob')");
  Exec("INSERT INTO seller (Item, Title, username, Price, Pic_location) VALUES ('2', 'Jug', 'ann', 5, '" +
       (path_.parent_path() / "missing.png").string() + "')");
  ReportDocument doc = Run(u"auction_detail", "Select * From seller where  seller.item = '1'");
  ASSERT_EQ(doc.pages.size(), 1u);
  ASSERT_EQ(doc.pages[0].pictures.size(), 1u);
  EXPECT_EQ(doc.pages[0].pictures[0].file, picture);
  // A picture that is not there leaves its place empty.
  EXPECT_TRUE(
      Run(u"auction_detail", "Select * From seller where  seller.item = '2'").pages[0].pictures.empty());

  report_export::WriteHtml(doc, path_.parent_path(), u"detail");
  std::ifstream in(path_.parent_path() / "detail.html");
  std::string html((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  EXPECT_NE(html.find("src=\"data:image/png;base64,iVBORw0KGgo"), std::string::npos);
  report_export::WritePdf(doc, path_.parent_path() / "detail.pdf");
  std::string images = report_export::CommandOutput(
      "pdfimages -list '" + (path_.parent_path() / "detail.pdf").string() + "' 2>/dev/null");
  EXPECT_NE(images.find("     4     4  rgb"), std::string::npos) << images;
}

}  // namespace
}  // namespace lw
