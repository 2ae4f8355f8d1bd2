#include "accounting/layout.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/primitives/encoding.h"
#include "core/store/test_store.h"

namespace lw::layout {
namespace {

// The lines of every page, each a vector of " | "-joined rows.
std::vector<std::vector<std::string>> Pages(const ReportDocument& doc) {
  std::vector<std::vector<std::string>> out;
  for (const ReportPage& p : doc.pages) {
    std::vector<std::string> lines;
    for (const ReportLine& l : PageLines(p)) {
      std::string line;
      for (const ReportRun* r : l.runs) line += (line.empty() ? "" : " | ") + ToUtf8(r->text);
      lines.push_back(line);
    }
    out.push_back(lines);
  }
  return out;
}

// Nothing a report prints may run into the page's bottom margin.
void ExpectWithinMargins(const ReportDocument& doc, const PageSetup& page) {
  for (const ReportPage& p : doc.pages)
    for (const ReportRun& r : p.runs) {
      EXPECT_GE(r.top, page.top_margin) << ToUtf8(r.text);
      EXPECT_LE(r.top + r.height, page.height - page.bottom_margin) << ToUtf8(r.text);
    }
}

class LayoutTest : public testing::StoreTest {
 protected:
  void AddSale(const std::string& item, const std::string& title, const std::string& price,
               const std::string& log = "") {
    Exec("INSERT INTO seller (Item, username, Title, Price, status_log) VALUES ('" + item + "', 'ann', '" +
         title + "', '" + price + "', " + (log.empty() ? std::string("Null") : "'" + log + "'") + ")");
  }
};

TEST_F(LayoutTest, GroupsKeepTheirHeadersAndFootersAcrossPageBreaksAndSumTheirOwnRows) {
  // Vases: 7 rows, 10.00 to 16.00 (91.00); Jugs: 2 rows (3.50 + 4.25); Lamps: 1 row.
  for (int i = 0; i < 7; ++i) AddSale("V" + std::to_string(i), "Vase", std::to_string(10 + i) + ".00");
  AddSale("J1", "Jug", "3.50");
  AddSale("J2", "Jug", "4.25");
  AddSale("L1", "Lamp", "99.99");

  Report r(u"groups");
  // Room for the page header, the page footer and five lines of 240 twips in between.
  r.page = PageSetup{12240, 400 + 240 + 5 * 240 + 240 + 400, 720, 400, 720, 400};
  r.data_source = u"Select * From seller where username = 'ann' order by Title, Item";
  r.page_header.height = 240;
  r.page_header.AddLabel(u"head", u"Sales", 0, 0, 3000);
  r.page_footer.height = 240;
  r.page_footer.AddLabel(u"foot", u"Page end", 0, 0, 3000);
  Report::Group& g = r.AddGroup(u"ghTitle", u"gfTitle", u"Title");
  g.header.height = 240;
  g.header.AddField(u"txtTitle", u"Title", 0, 0, 3000);
  r.detail.height = 240;
  r.detail.AddField(u"txtItem", u"Item", 0, 0, 1000);
  r.detail.AddField(u"txtPrice", u"Price", 2000, 0, 1500, u"currency");
  g.footer.height = 240;
  g.footer.AddLabel(u"lblSub", u"Sub Total", 0, 0, 1000);
  g.footer.AddField(u"sub", u"Price", 2000, 0, 1500, u"currency").summary = Summary::kSum;
  g.footer.AddField(u"count", u"Item", 4000, 0, 800).summary = Summary::kCount;
  r.report_footer.height = 240;
  r.report_footer.AddField(u"grand", u"Price", 2000, 0, 1500, u"currency").summary = Summary::kSum;

  ReportDocument doc = r.Run(*db_, regional_);
  auto pages = Pages(doc);
  // 3 groups: 3 headers + 10 rows + 3 footers + the report footer = 17 lines, five to a page.
  ASSERT_EQ(pages.size(), 4u);
  for (const auto& p : pages) {
    EXPECT_EQ(p.front(), "Sales");
    EXPECT_EQ(p.back(), "Page end");
  }
  EXPECT_EQ(pages[0], (std::vector<std::string>{"Sales", "Jug", "J1 | $3.50", "J2 | $4.25",
                                                "Sub Total | $7.75 | 2", "Lamp", "Page end"}));
  // The lamp's group ends on page 2; the vases begin there and end on page 4, where their footer
  // follows their last row, with the sum of their own seven rows.
  EXPECT_EQ(pages[1], (std::vector<std::string>{"Sales", "L1 | $99.99", "Sub Total | $99.99 | 1", "Vase",
                                                "V0 | $10.00", "V1 | $11.00", "Page end"}));
  EXPECT_EQ(pages[2][1], "V2 | $12.00");
  EXPECT_EQ(pages[2][5], "V6 | $16.00");
  EXPECT_EQ(pages[3], (std::vector<std::string>{"Sales", "Sub Total | $91.00 | 7", "$198.74", "Page end"}));
  ExpectWithinMargins(doc, r.page);
  // The footer sits at the foot of every page, the last one too.
  for (const ReportPage& p : doc.pages) {
    auto lines = PageLines(p);
    EXPECT_EQ(lines.back().top, r.page.height - r.page.bottom_margin - 240);
  }

  // A summary: the detail hidden, the totals still count every row.
  r.detail.visible = false;
  pages = Pages(r.Run(*db_, regional_));
  ASSERT_EQ(pages.size(), 2u);
  EXPECT_EQ(pages[0], (std::vector<std::string>{"Sales", "Jug", "Sub Total | $7.75 | 2", "Lamp",
                                                "Sub Total | $99.99 | 1", "Vase", "Page end"}));
  EXPECT_EQ(pages[1], (std::vector<std::string>{"Sales", "Sub Total | $91.00 | 7", "$198.74", "Page end"}));
}

TEST_F(LayoutTest, ASectionTallerThanTheRestOfThePageMovesOnAndOneTallerThanAPageIsSplitByLines) {
  AddSale("1", "Short", "1.00");
  AddSale("2", "Medium", "2.00");
  AddSale("3", "Tall", "3.00");

  Report r(u"tall");
  r.page = PageSetup{12240, 400 + 6 * 240 + 400, 720, 400, 720, 400};  // six lines a page, no header
  r.data_source = u"Select * From seller where username = 'ann' order by Item";
  r.detail.height = 240;
  r.detail.AddField(u"txtItem", u"Item", 0, 0, 600);
  Item& log = r.detail.AddField(u"txtLog", Text(), 1000, 0, 4000);
  log.can_grow = true;
  log.font.size = 10;  // lines of 240 twips
  ASSERT_EQ(LineHeight(log.font), 240);
  // Under the growing log: it must move down with it.
  r.detail.AddField(u"txtTitle", u"Title", 0, 240, 3000);
  r.detail.height = 480;
  int row = 0;
  r.on_start = [&] { row = 0; };
  r.detail.on_format = [&] {
    ++row;
    Text lines;
    int n = row == 1 ? 1 : row == 2 ? 4 : 12;
    for (int i = 1; i <= n; ++i) lines += (i > 1 ? u"\r\n" : u"") + T("line " + std::to_string(i));
    log.value = lines;
  };
  ReportDocument doc = r.Run(*db_, regional_);
  auto pages = Pages(doc);
  // Row 1 takes two lines; row 2 (five lines: four of log, then its title under them) does not fit in
  // the four left and starts page 2 whole; row 3 (thirteen lines) is taller than any page: it starts on
  // a page of its own and goes on over the next ones, no line lost or repeated.
  ASSERT_EQ(pages.size(), 5u);
  EXPECT_EQ(pages[0], (std::vector<std::string>{"1 | line 1", "Short"}));
  EXPECT_EQ(pages[1], (std::vector<std::string>{"2 | line 1", "line 2", "line 3", "line 4", "Medium"}));
  EXPECT_EQ(pages[2],
            (std::vector<std::string>{"3 | line 1", "line 2", "line 3", "line 4", "line 5", "line 6"}));
  EXPECT_EQ(pages[3],
            (std::vector<std::string>{"line 7", "line 8", "line 9", "line 10", "line 11", "line 12"}));
  EXPECT_EQ(pages[4], (std::vector<std::string>{"Tall"}));
  ExpectWithinMargins(doc, r.page);

  // Margins that leave no room are refused rather than looping for ever.
  r.page.top_margin = r.page.height;
  EXPECT_THROW(r.Run(*db_, regional_), RuntimeError);
}

TEST_F(LayoutTest, PerRowCodeColoursAFieldAndAFailingRowKeepsWhatItFilled) {
  AddSale("1", "Paid", "5.00");
  AddSale("2", "Free", "0");
  AddSale("3", "Broken", "7.00");
  Report r(u"colours");
  r.data_source = u"Select * From seller where username = 'ann' order by Item";
  r.detail.height = 240;
  Item& price = r.detail.AddField(u"txtPrice", u"Price", 0, 0, 1200, u"currency");
  Item& note = r.detail.AddField(u"note", Text(), 1500, 0, 2000);
  Item& after = r.detail.AddField(u"after", Text(), 4000, 0, 2000);
  r.detail.on_format = [&] {
    price.forecolor = price.value == Variant(Currency()) ? kRed : kBlack;
    note.value = Text(u"checked ") + r.Get(u"txtPrice").DisplayText(regional_);
    if (price.value == Variant(Currency::FromScaled(70000))) throw RuntimeError(94, "Invalid use of Null");
    after.value = u"done";
  };
  ReportDocument doc = r.Run(*db_, regional_);
  ASSERT_EQ(doc.pages.size(), 1u);
  auto lines = PageLines(doc.pages[0]);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0].runs[0]->forecolor, kBlack);
  EXPECT_EQ(lines[1].runs[0]->forecolor, kRed);
  EXPECT_EQ(lines[1].runs[0]->text, u"$0.00");
  EXPECT_EQ(lines[2].runs[0]->forecolor, kBlack);
  // The failing row printed what its code had filled; the field it never reached keeps the last value.
  EXPECT_EQ(lines[2].runs[1]->text, u"checked $7.00");
  EXPECT_EQ(lines[2].runs[2]->text, u"done");
  // The spreadsheet gets the money as a number in a money picture.
  ASSERT_TRUE(lines[0].runs[0]->number);
  EXPECT_DOUBLE_EQ(*lines[0].runs[0]->number, 5.0);
  EXPECT_EQ(doc.number_format(*lines[0].runs[0]), u"\"$\"#,##0.00");
  EXPECT_FALSE(lines[0].runs[1]->number);
}

}  // namespace
}  // namespace lw::layout
