#include "screen/report_viewer.h"

#include <gtest/gtest.h>

#include "screen/testing.h"

namespace lw {
namespace {

using testing::TestScreen;

ReportRun TextAt(int left, int top, const char16_t* text) {
  ReportRun r;
  r.left = left;
  r.top = top;
  r.width = 1000;
  r.height = 200;
  r.text = text;
  return r;
}

TEST(ReportViewers, PageTextReadsRowsFromTheTopAndItemsFromTheLeft) {
  ReportPage page;
  // Added out of order, and a bold heading a few twips off its row.
  page.runs = {TextAt(3000, 500, u"Profit"), TextAt(100, 200, u"Report for Userid:"),
               TextAt(100, 500, u"Rank"),    TextAt(1500, 520, u"Item#"),
               TextAt(2000, 200, u"ann"),    TextAt(100, 900, u"1")};
  EXPECT_EQ(PageText(page), u"Report for Userid: | ann\nRank | Item# | Profit\n1");
  auto lines = PageLines(page);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[1].top, 500);
  EXPECT_EQ(PageText(ReportPage{}), u"");
}

TEST(ReportViewers, HoldsOneReportAndAnswersTheDriver) {
  TestScreen t;
  auto& arv = t.form.Add<ReportViewer>(u"arv");
  EXPECT_EQ(arv.Property(u"pagecount", {}), Text(u"0"));
  EXPECT_THROW(arv.Property(u"page", {u"1"}), UserError);

  auto doc = std::make_shared<ReportDocument>();
  doc->title = u"Profit Report Top 100 Sales";
  doc->pages.resize(2);
  doc->pages[0].runs.push_back(TextAt(0, 0, u"first"));
  doc->pages[1].runs.push_back(TextAt(0, 0, u"second"));
  arv.SetDocument(doc);
  EXPECT_EQ(arv.Property(u"pagecount", {}), Text(u"2"));
  EXPECT_EQ(arv.Property(u"page", {u"2"}), Text(u"second"));
  EXPECT_EQ(arv.current_page(), 1);
  EXPECT_THROW(arv.Property(u"page", {u"3"}), UserError);
  EXPECT_THROW(arv.page(0), RuntimeError);

  int printed = 0;
  arv.OnPrint = [&] { ++printed; };
  Text print = u"print", two = u"2", nine = u"9", word = u"next";
  arv.UserClick(&print);
  arv.UserClick(&two);
  EXPECT_EQ(printed, 1);
  EXPECT_EQ(arv.current_page(), 2);
  EXPECT_THROW(arv.UserClick(&nine), UserError);
  EXPECT_THROW(arv.UserClick(&word), UserError);

  uint64_t revision = arv.revision();
  arv.SetDocument(nullptr);
  EXPECT_GT(arv.revision(), revision);
  EXPECT_EQ(arv.current_page(), 0);
  // Made by kind, as a form built from a table of controls would.
  EXPECT_NE(dynamic_cast<ReportViewer*>(&t.form.Add(ControlKind::ReportViewer, u"arv2")), nullptr);
}

}  // namespace
}  // namespace lw
