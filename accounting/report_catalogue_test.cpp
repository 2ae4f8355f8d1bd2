#include "accounting/report_catalogue.h"

#include <gtest/gtest.h>

#include "accounting/reports.h"
#include "core/primitives/encoding.h"

namespace lw {
namespace {

ReportInputs Sample() {
  ReportInputs in;
  in.userid = u"ann";
  in.email = u"bob@example.com";
  in.item = u"1001";
  in.title = u"Blue Vase";
  in.d1 = u"03/01/2026";
  in.d2 = u"03/10/2026";
  in.today = u"03/18/2026";
  return in;
}

TEST(ReportCatalogue, TheTreeNestsEachEntryUnderAGroupBeforeIt) {
  auto entries = ReportEntries();
  ASSERT_EQ(entries.size(), 25u);
  for (size_t i = 0; i < entries.size(); ++i) {
    int parent = entries[i].parent;
    EXPECT_LT(parent, static_cast<int>(i)) << ToUtf8(entries[i].caption);
    // A parent is an entry nothing composes a report for, except the bidder summary, which is both.
    if (parent >= 0 && parent != 20) {
      EXPECT_FALSE(ComposeReport(parent, Sample())) << parent;
    }
  }
  EXPECT_EQ(Text(entries[20].caption), u"Bidder Summary");
  EXPECT_TRUE(ComposeReport(20, Sample()));
  for (int group : {0, 1, 11, 14, 19, 22}) EXPECT_FALSE(ComposeReport(group, Sample())) << group;
  EXPECT_FALSE(ComposeReport(25, Sample()));
  EXPECT_FALSE(ComposeReport(-1, Sample()));
  EXPECT_EQ(GroupStatus(1), Text(u"accounting"));
  EXPECT_FALSE(GroupStatus(11));
  for (int i = 0; i < kReportEntryCount; ++i)
    EXPECT_EQ(UsesReportDates(i), (i >= 4 && i <= 7) || (i >= 22 && i <= 24)) << i;
}

TEST(ReportCatalogue, QueriesTakeTheirValuesAndKeepTheirOwnWording) {
  ReportInputs in = Sample();
  // Every report names a layout that exists.
  for (int i = 0; i < kReportEntryCount; ++i) {
    if (auto c = ComposeReport(i, in)) {
      EXPECT_TRUE(MakeReportLayout(c->layout, LayoutContext{Date(46099)})) << i << " " << ToUtf8(c->layout);
    }
  }
  EXPECT_FALSE(MakeReportLayout(u"no_such_layout", LayoutContext{}));

  auto invoice = ComposeReport(2, in);
  EXPECT_EQ(
      invoice->report_query,
      u"Select * From setup, seller where  seller.username = setup.userid  and Seller.email = "
      u"'bob@example.com' and seller.completed =  yes and seller.Reserve_met = yes and seller.status_date = "
      u"#03/18/2026# order by seller.payment asc");
  EXPECT_EQ(invoice->title, u"Auction Invoice from user id:");

  // Without a price condition, and with the blank it leaves behind.
  auto no_bids = ComposeReport(6, in);
  EXPECT_EQ(
      no_bids->report_query,
      u"Select * From seller, setup where setup.userid = seller.username and seller.end >= # 03/01/2026# and "
      u"seller.end <= # 03/10/2026 23:59:59# and seller.username = 'ann'  and Reserve_met = true order by "
      u"seller.end");
  EXPECT_EQ(
      no_bids->view_query,
      u"Select * From seller where seller.end >= # 03/01/2026# and seller.end <= # 03/10/2026 23:59:59# "
      u"and seller.username = 'ann'  and Reserve_met = true order by seller.end");
  EXPECT_TRUE(ComposeReport(7, in)->summary);
  EXPECT_FALSE(no_bids->summary);

  auto single = ComposeReport(10, in);
  EXPECT_EQ(
      single->report_query,
      u"SELECT * From seller Where (((seller.UserName) = 'ann')) and (((seller.title) = 'Blue Vase')) and "
      u"completed = true and reserve_met and price > 0 = true ORDER BY Seller.end DESC");
  EXPECT_EQ(single->view_query, single->report_query);
  EXPECT_TRUE(ComposeReport(9, in)->view_query.empty());
  EXPECT_TRUE(ComposeReport(23, in)->view_query.empty());

  // An apostrophe breaks only the entries that quote that value.
  in.title = u"Bob's Mug";
  try {
    ComposeReport(10, in);
    ADD_FAILURE() << "the title was taken";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), err::kSyntaxError);
  }
  EXPECT_TRUE(ComposeReport(8, in));
  EXPECT_TRUE(ComposeReport(2, in));
}

}  // namespace
}  // namespace lw
