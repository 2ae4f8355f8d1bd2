// One line of the site's account page: what it charges, to which auction, under which reference. The
// page's money is first rewritten into the locale's currency symbol and decimal mark, then the line is
// recognised by its text; the amount is read exactly, as money, never through a binary fraction.
#pragma once

#include <optional>

#include "core/primitives/regional.h"
#include "core/primitives/types.h"

namespace lw {

// A charge a line books: the fee column it adds to, the auction's item number, the reference number as
// text, and the first money on the line.
struct FeeCharge {
  const char16_t* column = nullptr;
  Text item;
  Text ref;
  Currency amount;
};

// The line with the site's currency marks (US, GBP, EUR, AU, C) turned into the locale's symbol and
// "." into the locale's decimal mark, every replacement over the whole line, in their fixed order.
Text rewrite_fee_line(TextView line, const Regional& regional);

// The fee column a rewritten line books into, or nothing for a line that books nothing: the first of
// the line kinds that matches decides, and the rate lines and free listing days book nothing.
const char16_t* fee_column_of(TextView rewritten);

// Reads a line as the account page gives it. Nothing for a line that books nothing; a line that names a
// fee but lacks its item's end mark or its money raises (5, 13), as the parser's error branch expects.
std::optional<FeeCharge> read_fee_line(TextView line, const Regional& regional);

}  // namespace lw
