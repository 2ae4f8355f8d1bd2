// The rules of user ids and the Setup page that need no screen: how credentials are cleaned, what the
// wizard takes for an empty field, the fields of the page by index, the colour defaults, and the
// statements that move or drop a user id's auctions.
#pragma once

#include <span>

#include "core/primitives/types.h"

namespace lw {

class ListControl;

// User ids and passwords are kept lower-case and trimmed: the site compares them that way, and so does
// the bidder test `Id = username`.
Text CleanCredential(TextView text);

// The wizard refuses an empty field and a field of a single blank; two blanks pass.
bool WizardFieldMissing(TextView text);

// The entry of the user list that holds `userid` (case ignored), skipping the entry `except`; -1 when
// there is none.
int FindUserid(const ListControl& list, TextView userid, int except = -1);

inline constexpr int kSetupFieldCount = 32;
inline constexpr int kEvenColourField = 28;
inline constexpr int kOddColourField = 29;
inline constexpr int kListbarColourField = 30;

// What a field of the Setup page shows: a column of the current `setup` row, a column of the `misc`
// row, or (field nullptr) one of the three colours.
struct SetupFieldInfo {
  const char16_t* field;
  bool misc;
};
std::span<const SetupFieldInfo> SetupFields();

// Offered by "Set Default", in blue-green-red byte order.
inline constexpr int32_t kDefaultEvenColour = 13891814;
inline constexpr int32_t kDefaultOddColour = 0xE0F2F3;
inline constexpr int32_t kDefaultListbarColour = 0x808080;

// The placeholders of an empty user id page, by field index.
struct SetupPlaceholder {
  int index;
  const char16_t* text;
};
std::span<const SetupPlaceholder> SetupPlaceholders();

// Statements. Values go between single quotes unescaped: an apostrophe raises the malformed-statement
// error before anything reaches the store.
Text SetupSource(TextView userid);
// "Update {table} SET username = '{to}' Where username = '{from}'"
Text MoveAuctionsStatement(TextView table, TextView to, TextView from);
// "Delete FROM {table} WHERE username = '{userid}'"
Text DeleteAuctionsStatement(TextView table, TextView userid);
// "Update Misc SET {column} = '{value}'"
Text MiscServerStatement(TextView column, TextView value);

}  // namespace lw
