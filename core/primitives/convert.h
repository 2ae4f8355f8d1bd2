// Plain conversions under the locale, the formatting of values, and the Is* tests. Unlike Val these
// honour the locale and fail with run-time error 13 on anything they cannot read whole.
#pragma once

#include "core/primitives/datetime.h"
#include "core/primitives/regional.h"
#include "core/primitives/types.h"

namespace lw {

// Number from text: the locale's decimal and thousands marks and currency symbol, surrounding blanks,
// a sign or parentheses; trailing rubbish raises 13. A Variant number/money/date/bool converts directly.
double CDbl(const Variant& v, const Regional& r);
Currency CCur(const Variant& v, const Regional& r);
// Date from text under the locale's short date order, month names of the locale's language, optional
// time with seconds and AM/PM, two-digit years 1930..2029. Raises 13 when it cannot.
Date CDate(const Variant& v, const Regional& r);
// The same, where a date written without its year ("22 nov", "11/22") takes the year of the program's
// clock rather than the computer's, so that a fixed clock fixes it too.
Date CDate(const Variant& v, const Regional& r, const Clock& clock);
// Text of a value as the desktop runtime would show it (locale decimal mark, short date, general date).
Text CStr(const Variant& v, const Regional& r);

bool IsNumeric(const Variant& v, const Regional& r);
bool IsDate(const Variant& v, const Regional& r);
inline bool IsNull(const Variant& v) {
  return v.IsNull();
}

// Format with the named formats ("short date", "long date", "medium date", "general date",
// "general number", "currency") and the picture formats the program uses. A Null formats as "".
Text Format(const Variant& v, TextView format, const Regional& r);

}  // namespace lw
