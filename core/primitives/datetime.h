// Date arithmetic and the clock. Now and Today read an injectable clock so that tests and the driver
// can fix the time.
#pragma once

#include <functional>
#include <optional>

#include "core/primitives/types.h"

namespace lw {

// Unit "d" days, "h" hours, "n" minutes, in either case; any other unit raises 5. A fractional n is cut
// toward zero. A result outside the years 100 to 9999 raises 5.
Date DateAdd(TextView unit, double n, Date d);
// Whole units from a to b, negative when b is earlier; "n" counts minute boundaries crossed,
// "h" hour boundaries, "d" midnights.
int64_t DateDiff(TextView unit, Date a, Date b);

// Local wall-clock time; a fixed moment can be set and cleared.
class Clock {
 public:
  Date Now() const;
  Date Today() const;  // Now without its time part
  void Fix(Date moment) { fixed_ = moment; }
  void Release() { fixed_.reset(); }
  bool fixed() const { return fixed_.has_value(); }

 private:
  std::optional<Date> fixed_;
};

}  // namespace lw
