#include "screen/main/view_rules.h"

#include <array>
#include <string>

#include "core/primitives/encoding.h"
#include "core/store/store.h"

namespace lw {
namespace {

// The tail of every status condition: the view is always one user id's rows of one site.
Text OwnerClause(TextView userid, TextView site) {
  return u"username = " + Quoted(userid) + u" and site = " + Quoted(site);
}

constexpr FilterField kFilterFields[] = {
    {u"Title", u"Title", true},
    {u"Item", u"Item", true},
    {u"High Bidder ID", u"id", true},
    {u"High Bidder Email", u"email", true},
    {u"High Bidder Name", u"Name", true},
    {u"Full Description", u"Description1", true},
    {u"Seller Id (Bidder Auction)", u"Seller_id", true},
    {u"Seller Email (Bidder Auction)", u"Seller_email", true},
    {u"Auction Comments", u"Comments", true},
    {u"Status Log", u"status_log", true},
    {u"Shipping Tracking Number", u"tracking_no", true},
    {u"Payment Method", u"Pay_method", true},
    {u"Feedback Sent", u"Feedback", false},
    {u"Item Taxable", u"Taxable", false},
    {u"Reserve Met", u"Reserve_met", false},
    {u"Auction End Contact Made", u"Contact", false},
    {u"Response Received", u"Response", false},
    {u"Payment Received/Sent", u"Payment", false},
    {u"Item Shipped/Received", u"Trans_comp", false},
    {u"High Bidder Address", u"Address", true},
    {u"Cost Price", u"Cost", false},
    {u"Sale Price", u"Price", false},
    {u"Picture Name", u"pic_name", true},
};

constexpr const char16_t* kComparisons[] = {u"=", u"like", u">", u"<"};

using F = ColumnFormat;
constexpr GridColumnInfo kSellerColumns[] = {
    {u"Bulk List", u"Bulk_list", F::kPlain, nullptr, nullptr},
    {u"Category", u"category_no", F::kPlain, nullptr, nullptr},
    {u"Category 2", u"category_no2", F::kPlain, nullptr, nullptr},
    {u"Item", u"Item", F::kPlain, u" order by item ", u"Auction ID"},
    {u"Title", u"Title", F::kPlain, u" order by title ", u"Title"},
    {u"Ended", u"Completed", F::kPlain, nullptr, u"Auction Ended"},  // the status chain
    {u"Contact", u"Contact", F::kPlain, u" order by contact ", u"Bidder Notified"},
    {u"Response", u"Response", F::kPlain, u" order by response ", u"Response Received"},
    {u"Payment", u"Payment", F::kPlain, u" order by payment ", u"Payment Received"},
    {u"Complete", u"Trans_comp", F::kPlain, u" order by trans_comp ", u"Transaction Complete"},
    {u"Start", u"Start", F::kPlain, u" order by start ", u"Auction Start Date"},
    {u"End", u"End", F::kPlain, u" order by end ", u"Auction End Date"},
    {u"Price", u"Price", F::kCurrency, u" order by price ", u"Auction Price"},
    {u"Bidder", u"Id", F::kPlain, u" order by id ", u"Bidder Id"},
    {u"Email", u"Email", F::kPlain, u" order by email ", u"Bidder Email Address"},
    {u"rating", u"rating", F::kGeneralNumber, u" order by rating ", u"Feedback Rating"},
    {u"Status Date", u"Status_date", F::kPlain, u" order by status_date ", u"Status Date"},
    {u"Last Updated", u"lastupdated", F::kPlain, u" order by lastupdated ", u"Last time data imported"},
};

// Two of the bidder grid's clauses start without a blank; the condition before them always ends in a
// quote, so the statement still reads.
constexpr GridColumnInfo kBuyerColumns[] = {
    {u"Bulk List", u"Bulk_list", F::kPlain, nullptr, nullptr},
    {u"Category", u"category", F::kPlain, nullptr, nullptr},
    {u"Item", u"Item", F::kPlain, u" order by item ", u"Auction ID"},
    {u"Title", u"Title", F::kPlain, u" order by title ", u"Title"},
    {u"Ended", u"Completed", F::kPlain, u" order by completed ", u"Auction Ended"},
    {u"Contact", u"Contact", F::kPlain, u" order by contact ", u"Seller Contacted"},
    {u"Response", u"Response", F::kPlain, u" order by response ", u"Response Received"},
    {u"Payment", u"Payment", F::kPlain, u" order by payment ", u"Payment Sent"},
    {u"Complete", u"Trans_comp", F::kPlain, u" order by trans_comp ", u"Transaction Complete"},
    {u"Start", u"Start", F::kPlain, u"order by start ", u"Auction Start Date"},
    {u"End", u"End", F::kPlain, u"order by end ", u"Auction End Date"},
    {u"Price", u"Price", F::kCurrency, u" order by price ", u"Auction Price"},
    {u"High Bidder", u"Id", F::kPlain, u" order by id ", u"High Bidder ID"},
    {u"Seller", u"Seller_id", F::kPlain, u" order by seller_id ", u"Seller ID"},
    {u"Status Date", u"Status_date", F::kPlain, u" order by Status_date ", u"Status Date"},
    {u"Name", u"Name", F::kPlain, u" order by name ", u"Seller Name"},
    {u"Last Updated", u"lastupdated", F::kPlain, u" order by lastupdated ", u"Last time data imported"},
};

[[noreturn]] void BadValue(TextView value) {
  throw RuntimeError(err::kSyntaxError, "Syntax error (missing operator) in query expression: the value '" +
                                            ToUtf8(value) + "' cannot stand in a condition");
}

// A value written without quotes (numbers, yes/no) must stay one word: anything that could end it and
// start more statement text makes the statement fail instead.
void CheckBareValue(TextView value) {
  for (char16_t c : value) {
    if (c <= u' ' || c == u'\'' || c == u'"' || c == u'(' || c == u')' || c == u'[' || c == u']' || c == u';')
      BadValue(value);
  }
}

}  // namespace

std::optional<Text> StatusCondition(bool seller, TextView status, TextView userid, TextView site) {
  // Only the statuses the side offers have a condition; the bidder side never shows watched rows
  // except under "Watching".
  const char16_t* where = nullptr;
  if (seller) {
    if (status == kInProgress) where = u"where Completed = no and pending = no and ";
    if (status == kEndedInProgress)
      where = u"where Completed = yes and trans_comp = no and pending = no and ";
    if (status == kEndedCompleted)
      where = u"where Completed = yes and trans_comp = yes and pending = no and ";
    if (status == kAllAuctions) where = u"where ";
    if (status == kUnsubmitted) where = u"where pending = yes and ";
    if (status == kTemplates) where = u"where template = yes and ";
  } else {
    if (status == kInProgress) where = u"where watching = no and Completed = no and ";
    if (status == kEndedInProgress)
      where = u"where watching = no and Completed = yes and trans_comp = no and ";
    if (status == kEndedCompleted)
      where = u"where watching = no and Completed = yes and trans_comp = yes and ";
    if (status == kAllAuctions) where = u"where watching = no and ";
    if (status == kWatching) where = u"where watching = yes and ";
  }
  if (!where) return std::nullopt;
  return Text(where) + OwnerClause(userid, site);
}

std::span<const FilterField> FilterFields() {
  return kFilterFields;
}

const FilterField* FindFilterField(TextView text) {
  for (const FilterField& f : kFilterFields)
    if (text == f.text) return &f;
  return nullptr;
}

std::span<const char16_t* const> FilterComparisons() {
  return kComparisons;
}

Text FilterCondition(TextView column, TextView compare, TextView quote, TextView wild, TextView value,
                     TextView userid, TextView site) {
  Text pattern = Text(wild) + Text(value) + Text(wild);
  Text operand;
  if (quote.empty()) {
    CheckBareValue(pattern);
    operand = pattern;
  } else {
    operand = Quoted(pattern);
  }
  return u"where " + Text(column) + u" " + Text(compare) + u" " + operand + u" and " +
         OwnerClause(userid, site);
}

std::span<const GridColumnInfo> SellerGridColumns() {
  return kSellerColumns;
}

std::span<const GridColumnInfo> BuyerGridColumns() {
  return kBuyerColumns;
}

Text FlipDirection(TextView direction) {
  return direction == u"desc" ? u"asc" : u"desc";
}

std::optional<Text> SortTail(bool seller, int column, TextView direction) {
  auto columns = seller ? SellerGridColumns() : BuyerGridColumns();
  if (column < 0 || column >= static_cast<int>(columns.size())) return std::nullopt;
  const Text dir(direction);
  if (seller && column == kStatusChainColumn)
    return u" Order by Contact " + dir + u", Response " + dir + u", Payment " + dir + u", status_date asc";
  const char16_t* clause = columns[column].sort;
  if (!clause) return std::nullopt;
  return Text(clause) + dir;
}

Text HeadingTip(bool seller, int column) {
  auto columns = seller ? SellerGridColumns() : BuyerGridColumns();
  if (column < 0 || column >= static_cast<int>(columns.size()) || !columns[column].tip) return Text();
  return columns[column].tip;
}

int16_t RowsReturned(int64_t count) {
  if (count < INT16_MIN || count > INT16_MAX) throw RuntimeError(err::kOverflow, "Overflow");
  return static_cast<int16_t>(count);
}

}  // namespace lw
