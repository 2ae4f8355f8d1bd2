// The texts the auction views are built from, free of the screen: the condition of each status for each
// side, the filter's fields and its condition, the grids' columns with their sort clauses and heading
// tips, and the sort direction's flip. The view itself stays text (base, condition, tail), since lw.ini
// keeps it as text and other commands replace pieces of it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "core/primitives/types.h"

namespace lw {

inline constexpr char16_t kSellerBase[] = u"Select * From seller ";
inline constexpr char16_t kBidderBase[] = u"Select * From bidder ";

inline constexpr char16_t kInProgress[] = u"Auctions in Progress";
inline constexpr char16_t kEndedInProgress[] = u"Auctions Ended - Transaction in Progress";
inline constexpr char16_t kEndedCompleted[] = u"Auctions Ended - Transaction Completed";
inline constexpr char16_t kAllAuctions[] = u"All Auctions";
inline constexpr char16_t kUnsubmitted[] = u"Unsubmitted Auctions";
inline constexpr char16_t kTemplates[] = u"Template Auctions";
inline constexpr char16_t kWatching[] = u"Watching";

// The condition of a status on one side, "where ... and username = '{userid}' and site = '{site}'";
// nothing for a status the side does not offer (or an empty one). Raises 3075 when the user id or
// site holds an apostrophe, so such a value never becomes a different statement.
std::optional<Text> StatusCondition(bool seller, TextView status, TextView userid, TextView site);

// A field of the filter box: its text in `field_lst`, the column it filters and whether its values are
// text (put between quotes).
struct FilterField {
  const char16_t* text;
  const char16_t* column;
  bool quoted;
};
// In the order `field_lst` shows them.
std::span<const FilterField> FilterFields();
const FilterField* FindFilterField(TextView text);
// The comparisons `compare_lst` offers.
std::span<const char16_t* const> FilterComparisons();

// "where {column} {compare} {quote}{wild}{value}{wild}{quote} and username = '{userid}' and site =
// '{site}'". An apostrophe anywhere in the value, user id or site raises 3075: the statement fails as a
// malformed one and never reads as another.
Text FilterCondition(TextView column, TextView compare, TextView quote, TextView wild, TextView value,
                     TextView userid, TextView site);

// How a grid column shows its field.
enum class ColumnFormat { kPlain, kCurrency, kGeneralNumber };

struct GridColumnInfo {
  const char16_t* heading;
  const char16_t* field;
  ColumnFormat format;
  const char16_t*
      sort;             // the clause a heading click puts in the tail, before the direction; nullptr for none
  const char16_t* tip;  // nullptr for none
};
std::span<const GridColumnInfo> SellerGridColumns();
std::span<const GridColumnInfo> BuyerGridColumns();
// The seller grid's column that sorts by the status chain instead of a clause of its own.
inline constexpr int kStatusChainColumn = 5;

// "desc" becomes "asc", anything else "desc".
Text FlipDirection(TextView direction);
// The tail a click on a heading gives with the direction already flipped; nothing for a heading that
// has no sort (and keeps the tail) or a column number outside the grid.
std::optional<Text> SortTail(bool seller, int column, TextView direction);
// The heading tip of a column; empty for a column without one.
Text HeadingTip(bool seller, int column);

// A row count as the view keeps it, in 16 bits: above 32767 raises the overflow error (6).
int16_t RowsReturned(int64_t count);

}  // namespace lw
