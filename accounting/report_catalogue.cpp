#include "accounting/report_catalogue.h"

#include "core/primitives/text.h"
#include "core/store/store.h"

namespace lw {

namespace {

constexpr ReportEntry kEntries[kReportEntryCount] = {
    {u"Seller", -1},
    {u"Accounting", 0},
    {u"Print Invoice", 1},
    {u"Print Statement", 1},
    {u"Sales between 2 Dates - Full Report", 1},
    {u"Sales between 2 Dates - Summary Report", 1},
    {u"Sales between 2 Dates - Full Report includes no bids", 1},
    {u"Sales between 2 Dates - Summary Report includes no bids", 1},
    {u"Top 100 Sales - Individual Items", 1},
    {u"Top 100 Sales - Combined Items", 1},
    {u"Sales for Individual Item", 1},
    {u"Auction", 0},
    {u"Print Auction Details", 11},
    {u"Print Mailing Label", 11},
    {u"Summary", 0},
    {u"Contact Summary - All Incomplete Auctions", 14},
    {u"Days Since Auction Ended - All Auctions", 14},
    {u"Days Since Auction Ended - Transactions In Progress", 14},
    {u"Feedback Not Sent", 14},
    {u"Bidder", -1},
    {u"Bidder Summary", 19},
    {u"Feedback Not Sent", 20},
    {u"Accounting", 19},
    {u"Purchases between 2 Dates - Full Report", 22},
    {u"Purchases between 2 Dates - Summary Report", 22},
};

constexpr char16_t kInvoiceQuery[] =
    u"Select * From setup, seller where  seller.username = setup.userid  and Seller.email = '{email}' and "
    u"seller.completed =  yes and seller.Reserve_met = yes and seller.status_date = #{today}# order by "
    u"seller.payment asc";
constexpr char16_t kStatementQuery[] =
    u"Select * From setup, seller where  seller.username = setup.userid  and Seller.email = '{email}' and "
    u"seller.completed =  yes and seller.Reserve_met = yes Order by payment asc";
constexpr char16_t kInvoiceView[] =
    u"Select * From seller where Seller.email = '{email}' and seller.completed =  yes and seller.Reserve_met "
    u"= yes Order by payment asc";
constexpr char16_t kSalesQuery[] =
    u"Select * From seller, setup where setup.userid = seller.username and seller.end >= # {d1}# and "
    u"seller.end <= # {d2} 23:59:59# and seller.username = '{userid}' and seller.price > 0 and Reserve_met "
    u"= true order by seller.end";
constexpr char16_t kSalesView[] =
    u"Select * From seller where seller.end >= # {d1}# and seller.end <= # {d2} 23:59:59# and "
    u"seller.username = '{userid}' and seller.price > 0 and Reserve_met = true order by seller.end";
// The entries that include auctions without bids drop the price condition and keep a double blank.
constexpr char16_t kPricedTail[] = u" and seller.price > 0 and Reserve_met = true order by seller.end";
constexpr char16_t kAllTail[] = u"  and Reserve_met = true order by seller.end";
constexpr char16_t kTopQuery[] =
    u"SELECT * From seller Where (((seller.UserName) = '{userid}')) and Reserve_met = true ORDER BY "
    u"Seller.Price DESC";
constexpr char16_t kTopCombinedQuery[] =
    u"SELECT seller.Title, seller.username, Sum(Price) AS Sum_Of_Price, Count(*) AS Count_Of_Seller, "
    u"Sum(Cost) AS SumOfCost, sum(actual_insure_cost) as SumOfInsure, Sum(actual_total_tax) AS SumOftax, "
    u"Sum(fee_insertion) AS SumOffee_insertion, Sum(fee_credit_insertion) AS SumOffee_credit_insertion, "
    u"Sum(fee_final_value) AS SumOffee_final_value, Sum(fee_final_value_fixed) AS "
    u"SumOffee_final_value_fixed, Sum(fee_gallery) AS SumOffee_gallery, Sum(fee_featured_plus) AS "
    u"SumOffee_featured_plus, Sum(fee_10day) AS SumOffee_10day, Sum(fee_picture) AS SumOffee_picture, "
    u"Sum(fee_nosale_credit) AS SumOffee_nosale_credit, Sum(fee_picturepack) AS SumOffee_picturepack, "
    u"Sum(fee_reserve) AS SumOffee_reserve, Sum(fee_reserve_credit) AS SumOffee_reserve_credit, "
    u"Sum(fee_bold) AS SumOffee_bold, Sum(fee_highlight) AS SumOffee_highlight, Sum(fee_home) AS "
    u"SumOffee_home, Sum(actual_ship_cost) AS SumOfShip_cost, Sum(fee_bin) AS SumOffee_bin, "
    u"Sum(fee_scheduled) AS Sumoffee_scheduled, Sum(fee_Gift_Services) AS Sumoffee_Gift_Services, "
    u"Sum(actual_other_cost) AS SumOf_othercost, Sum(ship_cost) AS SumOfbuyerShip_cost, sum(insure_cost) "
    u"as SumOfbuyerInsure, Sum(total_tax) AS SumOfbuyertax From seller WHERE Reserve_met = true GROUP BY "
    u"Seller.Title, Seller.username Having (((seller.UserName) = '{userid}')) ORDER BY Sum(Seller.Price) "
    u"DESC";
// Stored as the entry has always been: "price > 0 = true" tests the comparison, and reserve_met stands
// alone.
constexpr char16_t kSingleItemQuery[] =
    u"SELECT * From seller Where (((seller.UserName) = '{userid}')) and (((seller.title) = '{title}')) and "
    u"completed = true and reserve_met and price > 0 = true ORDER BY Seller.end DESC";
constexpr char16_t kDetailQuery[] = u"Select * From seller where  seller.item = '{item}'";
constexpr char16_t kLabelQuery[] =
    u"Select * From seller, setup where email = '{email}' and setup.userid = seller.username and "
    u"seller.Trans_comp = false and seller.completed = true order by seller.payment asc";
constexpr char16_t kLabelView[] =
    u"Select * From seller where email = '{email}' and seller.Trans_comp = false and seller.completed = "
    u"true order by seller.payment asc";
constexpr char16_t kContactQuery[] =
    u"Select * From seller, setup where setup.userid = seller.username and seller.completed = yes and "
    u"seller.trans_comp = no and seller.username = '{userid}' order by  Seller.Contact desc,  "
    u"Seller.Response desc,  Seller.Payment desc, Seller.status_date asc";
constexpr char16_t kContactView[] =
    u"Select * From seller where seller.completed = yes and seller.trans_comp = no and seller.username = "
    u"'{userid}' order by  Seller.Contact desc,  Seller.Response desc,  Seller.Payment desc, "
    u"Seller.status_date asc";
constexpr char16_t kDaysAllQuery[] =
    u"Select * From seller, setup where setup.userid = seller.username and seller.completed = yes and "
    u"seller.username = '{userid}' order by  Seller.Title asc,  Seller.end asc";
constexpr char16_t kDaysAllView[] =
    u"Select * From seller where seller.completed = yes and seller.username = '{userid}' order by  "
    u"Seller.Title asc,  Seller.end asc";
constexpr char16_t kDaysOpenQuery[] =
    u"Select * From seller, setup where setup.userid = seller.username and seller.completed = yes and "
    u"seller.trans_comp = no and seller.username = '{userid}' order by Seller.end asc";
constexpr char16_t kDaysOpenView[] =
    u"Select * From seller where seller.completed = yes and seller.trans_comp = no and seller.username = "
    u"'{userid}' order by Seller.end asc";
constexpr char16_t kFeedbackQuery[] =
    u"Select * From seller, setup where setup.userid = seller.username and seller.completed = yes and "
    u"seller.trans_comp = yes and seller.feedback = no and seller.price > 0 and seller.reserve_met = yes and "
    u"seller.username = '{userid}' order by Seller.end desc";
constexpr char16_t kFeedbackView[] =
    u"Select * From seller where Feedback = no and username = '{userid}' and completed = yes and trans_comp "
    u"= yes and price > 0 and reserve_met = yes order by end desc";
constexpr char16_t kBidderContactQuery[] =
    u"Select * From bidder, setup where setup.userid = bidder.username and bidder.completed = yes and "
    u"bidder.trans_comp = no and bidder.username = '{userid}' order by  bidder.Contact desc,  "
    u"bidder.Response desc,  bidder.Payment desc, bidder.status_date asc";
constexpr char16_t kBidderFeedbackQuery[] =
    u"Select * From bidder, setup where setup.userid = bidder.username and bidder.completed = yes and "
    u"bidder.trans_comp = yes and bidder.feedback = no and bidder.payment = yes and bidder.price > 0 and "
    u"bidder.id = '{userid}' order by bidder.end desc";
constexpr char16_t kPurchasesQuery[] =
    u"Select * From bidder, setup where setup.userid = bidder.username and bidder.end >= # {d1}# and "
    u"bidder.end <= # {d2} 23:59:59# and bidder.username = '{userid}' and bidder.price > 0 and "
    u"bidder.completed = yes and bidder.username = bidder.id order by bidder.end";

constexpr char16_t kContactStatus[] = u"Contact Summary -  All Incomplete Aucions";
constexpr char16_t kSummaryTitle[] = u"Sales Report for Period (Summary)";

// Puts the inputs into a statement: quoted values go in through the store's quoting, dates as they are.
Text Fill(TextView statement, const ReportInputs& in) {
  Text s(statement);
  struct Slot {
    const char16_t* quoted;
    const Text& value;
  };
  for (const Slot& slot : {Slot{u"'{userid}'", in.userid}, Slot{u"'{email}'", in.email},
                           Slot{u"'{item}'", in.item}, Slot{u"'{title}'", in.title}})
    if (InStr(s, slot.quoted)) s = Replace(s, slot.quoted, Quoted(slot.value));
  s = Replace(s, u"{d1}", in.d1);
  s = Replace(s, u"{d2}", in.d2);
  return Replace(s, u"{today}", in.today);
}

// The report entries: layout, status text, the title they give the layout, their two statements (no
// view statement for the bidder's reports), and whether they are dated, summaries, or take the sales
// without bids as well.
struct ReportRow {
  int index;
  const char16_t* layout;
  const char16_t* status;
  const char16_t* title;
  const char16_t* report;
  const char16_t* view;
  bool dated = false;
  bool summary = false;
  bool without_bids = false;
};

constexpr ReportRow kReports[] = {
    {2, u"invoice", u"Print Invoice", u"Auction Invoice from user id:", kInvoiceQuery, kInvoiceView},
    {3, u"invoice", u"Print Statement", u"Auction Statement/Invoice from user id:", kStatementQuery,
     kInvoiceView},
    {4, u"sale2datesfull", u"Sales between 2 dates - Full Report", u"", kSalesQuery, kSalesView, true},
    {5, u"sale2datesfull", u"Sales between 2 dates - Summary Report", kSummaryTitle, kSalesQuery, kSalesView,
     true, true},
    {6, u"sale2datesfull", u"Sales between 2 dates - Full Report (includes no bids)", u"", kSalesQuery,
     kSalesView, true, false, true},
    {7, u"sale2datesfull", u"Sales between 2 dates - Summary Report (includes no bids)", kSummaryTitle,
     kSalesQuery, kSalesView, true, true, true},
    {8, u"profit100", u"Top 100 Sales", u"", kTopQuery, kTopQuery},
    {9, u"profit100combined", u"Top 100 Sales", u"", kTopCombinedQuery, u""},
    {10, u"sale2datesfull", u"Sales for Single Item", u"Items Listed", kSingleItemQuery, kSingleItemQuery},
    {12, u"auction_detail", u"Print Auction Details", u"", kDetailQuery, kDetailQuery},
    {13, u"maillabelreport", u"Print mailing label", u"", kLabelQuery, kLabelView},
    {15, u"contactsummary_1", kContactStatus, u"", kContactQuery, kContactView},
    {16, u"days_ended", u"Days Since Auction Ended - All Auctions", u"", kDaysAllQuery, kDaysAllView},
    {17, u"days_ended", u"Days Since Auction Ended - Transactions in Progress", u"", kDaysOpenQuery,
     kDaysOpenView},
    {18, u"feedback", u"Feedback Not Sent", u"", kFeedbackQuery, kFeedbackView},
    {20, u"contactsummary_2", kContactStatus, u"", kBidderContactQuery, u""},
    {21, u"feedback_bidder", u"Feedback Not Sent", u"", kBidderFeedbackQuery, u""},
    {23, u"purch2datesfull", u"Purchases between 2 dates - Full Report", u"", kPurchasesQuery, u"", true},
    {24, u"purch2datessum", u"Purchases between 2 dates - Summary Report", u"", kPurchasesQuery, u"", true},
};

}  // namespace

std::span<const ReportEntry> ReportEntries() {
  return kEntries;
}

std::optional<Text> GroupStatus(int index) {
  if (index == 0) return Text(u"nothing");
  if (index == 1) return Text(u"accounting");
  return std::nullopt;
}

bool UsesReportDates(int index) {
  return (index >= 4 && index <= 7) || (index >= 22 && index <= 24);
}

std::optional<ReportChoice> ComposeReport(int index, const ReportInputs& in) {
  for (const ReportRow& row : kReports) {
    if (row.index != index) continue;
    ReportChoice c;
    c.layout = row.layout;
    c.status = row.status;
    c.title = row.title;
    c.dated = row.dated;
    c.summary = row.summary;
    auto compose = [&](TextView statement) {
      Text s(statement);
      if (row.without_bids) s = Replace(s, kPricedTail, kAllTail);
      return s.empty() ? s : Fill(s, in);
    };
    c.report_query = compose(row.report);
    c.view_query = compose(row.view);
    return c;
  }
  return std::nullopt;
}

}  // namespace lw
