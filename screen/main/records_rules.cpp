#include "screen/main/records_rules.h"

#include <string>

#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "core/store/store.h"

namespace lw {
namespace {

constexpr char16_t kCrLf[] = u"\r\n";
constexpr char16_t kUseridMark[] = u"'{userid}'";

constexpr PurgeEntry kPurges[] = {
    {"purge_nobid_mnu", true,
     u"Delete FROM Seller WHERE username = '{userid}' AND id = 'No Bids' AND trans_comp = yes"},
    {"purge_nobid_1_mnu", true, u"Delete FROM Seller WHERE id = 'No Bids' AND trans_comp = yes"},
    {"purge_complete_3_mnu", true, u"Delete FROM Seller WHERE username = '{userid}' AND trans_comp = yes"},
    {"purge_complete_1_mnu", true, u"Delete FROM Seller WHERE trans_comp = yes"},
    {"purge_unsuccess_bid_mnu", false,
     u"Delete FROM Bidder WHERE username = '{userid}' AND id <> '{userid}' AND trans_comp = yes"},
    {"purge_unsuccess_bid_1_mnu", false, u"Delete FROM Bidder WHERE id <> username AND trans_comp = yes"},
    {"purge_complete_4_mnu", false, u"Delete FROM Bidder WHERE username = '{userid}' AND trans_comp = yes"},
    {"purge_complete_2_mnu", false, u"Delete FROM Bidder WHERE trans_comp = yes"},
};

Text WithUserid(TextView statement, TextView userid) {
  // Only statements that name the user id quote it, so an apostrophe fails only where it would land.
  if (InStr(statement, kUseridMark) == 0) return Text(statement);
  return Replace(statement, kUseridMark, Quoted(userid));
}

Text Count(int64_t n) {
  return FromUtf8(std::to_string(n));
}

}  // namespace

std::span<const PurgeEntry> PurgeEntries() {
  return kPurges;
}

Text PurgeStatement(const PurgeEntry& entry, TextView userid) {
  return WithUserid(entry.statement, userid);
}

Text PurgeQuestion(bool seller) {
  Text q = u"You are about to delete multiple auctions from the database.";
  q += kCrLf;
  if (seller) {
    q += u"Doing so will also remove auction fees that will affect Profit/Tax reports. ";
    q += kCrLf;
  }
  q += u"Once deleted the data is not recoverable.";
  q += kCrLf;
  q += u"Do you want to continue?";
  return q;
}

Text PurgeCompleteText() {
  return Text(u"To recover space in your database you can exit Lotwright") + kCrLf +
         u"and user the Convert Utility to Compact the database.";
}

Text DuplicateSite(TextView word) {
  for (TextView known : {u"eBay", u"Yahoo", u"Sold"})
    if (word == known) return Text(word);
  return Text();
}

std::array<Text, 2> RemoveFeesStatements(TextView item) {
  const Text where = u" where item = " + Quoted(item);
  return {
      u"Update Seller set fee_ref_no = ' ', fee_insertion = 0, fee_credit_insertion = 0, "
      u"fee_final_value = 0, fee_final_value_fixed = 0, fee_gallery = 0, fee_featured_plus = 0, "
      u"fee_10day = 0, fee_picture = 0" +
          where,
      u"Update Seller set fee_nosale_credit = 0, fee_picturepack = 0, fee_reserve = 0, "
      u"fee_reserve_credit = 0, fee_bold = 0, fee_highlight = 0, fee_home = 0, fee_scheduled = 0,  "
      u"fee_Gift_Services = 0, fee_bin = 0" +
          where};
}

std::array<Text, 2> CopyShipCostStatements(TextView userid) {
  const Text head = u"Update Seller set actual_ship_cost = ship_cost where username = " + Quoted(userid) +
                    u" and ship_cost > 0 and actual_ship_cost ";
  return {head + u"= 0", head + u"is null"};
}

std::vector<Text> NoBidCostStatements(TextView userid) {
  const Text user = Quoted(userid);
  std::vector<Text> out;
  for (const char16_t* column : kNoBidCostColumns) {
    Text c = column;
    out.push_back(u"Update Seller set " + c + u" = 0 where username = " + user +
                  u" and trans_comp = true and id = 'No Bids' and " + c + u" > 0");
  }
  return out;
}

Text NoBidCostStatus(std::span<const int64_t> affected) {
  auto n = [&](size_t i) { return i < affected.size() ? Count(affected[i]) : Text(u"0"); };
  // cost, actual_ship_cost, actual_insure_cost, actual_other_cost, ship_cost
  return n(0) + u" Cost Prices Removed, " + n(1) + u" Actual Shipping Costs Removed, " + n(3) +
         u" Insurance Cost Removed, " + n(4) + u" Other Cost Removed, " + n(2) +
         u" Charged Shipping Costs Removed.";
}

}  // namespace lw
