// The fixed texts and statements of the hand operations on rows: the purges, the cost clean-ups, the
// fee removal, and which site words a copy may carry. Kept apart from the screen so that every statement
// can be checked as text.
//
// Values go into the statements between single quotes through Quoted: a value holding an apostrophe
// raises the malformed-statement error before anything runs, so it never becomes another statement.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "core/primitives/types.h"

namespace lw {

// One entry of the "Purge Database" menu.
struct PurgeEntry {
  const char* menu;           // the menu entry's control name
  bool seller;                // purges `seller` rows, whose fees feed the profit reports
  const char16_t* statement;  // '{userid}' stands for the quoted user id
};
std::span<const PurgeEntry> PurgeEntries();
// The entry's statement for the current user id; raises 3075 when the user id holds an apostrophe.
Text PurgeStatement(const PurgeEntry& entry, TextView userid);
// The four (seller) or three (bidder) lines of the purge question.
Text PurgeQuestion(bool seller);
inline constexpr char16_t kPurgeTitle[] = u"Purging Database";
// The advice shown after every purge, also one that deleted nothing.
Text PurgeCompleteText();

// The site a copy is written with: one of the three words the program knows, else empty.
Text DuplicateSite(TextView word);

// "Remove All Fees (this auction only)": the two statements on the current item.
std::array<Text, 2> RemoveFeesStatements(TextView item);

// "Copy Charged Shipping Cost to Actual Shipping Cost": a zero and an empty actual cost, in that order.
std::array<Text, 2> CopyShipCostStatements(TextView userid);

// "Remove Cost and Shipping Cost from auctions with No Bids": one statement per cost column.
inline constexpr std::array<const char16_t*, 11> kNoBidCostColumns = {u"cost",
                                                                      u"actual_ship_cost",
                                                                      u"ship_cost",
                                                                      u"actual_insure_cost",
                                                                      u"actual_other_cost",
                                                                      u"actual_price_tax",
                                                                      u"actual_ship_tax",
                                                                      u"actual_insure_tax",
                                                                      u"actual_other_tax",
                                                                      u"actual_total_tax",
                                                                      u"total_purchase"};
std::vector<Text> NoBidCostStatements(TextView userid);
// The status after those statements, from the rows each one changed (in the order of kNoBidCostColumns).
Text NoBidCostStatus(std::span<const int64_t> affected);

}  // namespace lw
