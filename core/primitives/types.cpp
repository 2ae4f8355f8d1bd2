#include "core/primitives/types.h"

#include <cmath>
#include <limits>

namespace lw {

namespace {
// Halves to even on a value already scaled; used by both money conversions.
double RoundHalfEven(double x) {
  double r = std::nearbyint(x);  // default rounding mode is to nearest, ties to even
  return r;
}
}  // namespace

Currency Currency::FromDouble(double v) {
  double scaled = v * static_cast<double>(kScale);
  // Binary fractions such as 1.005 * 10000 land a hair off the half; settle them on the decimal value.
  double rounded = RoundHalfEven(scaled);
  if (std::fabs(scaled - rounded) > 0.5 - 1e-7 && std::fabs(scaled - rounded) < 0.5 + 1e-7) {
    double lo = std::floor(scaled);
    rounded = (std::fmod(lo, 2.0) == 0) ? lo : lo + 1;
  }
  if (!std::isfinite(rounded) || std::fabs(rounded) > 9.2e18) throw RuntimeError(err::kOverflow, "Overflow");
  return FromScaled(static_cast<int64_t>(rounded));
}

int64_t Currency::ToWhole() const {
  int64_t q = scaled_ / kScale;
  int64_t rem = scaled_ % kScale;
  int64_t half = kScale / 2;
  if (rem > half || (rem == half && (q % 2 != 0))) return q + 1;
  if (rem < -half || (rem == -half && (q % 2 != 0))) return q - 1;
  return q;
}

namespace {
// Days from 1970-01-01 for a civil date (proleptic Gregorian), after H. Hinnant's algorithm.
int64_t DaysFromCivil(int64_t y, int m, int d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const int64_t yoe = y - era * 400;
  const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}
void CivilFromDays(int64_t z, int& y, int& m, int& d) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const int64_t doe = z - era * 146097;
  const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  int64_t yy = yoe + era * 400;
  const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const int64_t mp = (5 * doy + 2) / 153;
  d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  y = static_cast<int>(yy + (m <= 2));
}
constexpr int64_t kEpochOffset = 25569;  // 1970-01-01 as a serial day
}  // namespace

Date MakeDate(int year, int month, int day, int hour, int minute, int second) {
  // Month overflow rolls into the year, as date arithmetic on parts does.
  int64_t y = year + (month - 1) / 12;
  int m = (month - 1) % 12;
  if (m < 0) {
    m += 12;
    --y;
  }
  double days = static_cast<double>(DaysFromCivil(y, m + 1, 1) + (day - 1) + kEpochOffset);
  double frac = (hour * 3600.0 + minute * 60.0 + second) / 86400.0;
  // Before the epoch day the serial's sign and its fraction part go separate ways.
  if (days < 0) return Date(days - frac);
  return Date(days + frac);
}

CivilTime SplitDate(Date d) {
  double s = d.serial;
  double whole = std::trunc(s);
  double frac = std::fabs(s - whole);
  int64_t secs = static_cast<int64_t>(std::llround(frac * 86400.0));
  if (secs >= 86400) {
    secs -= 86400;
    whole += (s < 0 ? -1 : 1);
  }
  CivilTime t;
  CivilFromDays(static_cast<int64_t>(whole) - kEpochOffset, t.year, t.month, t.day);
  t.hour = static_cast<int>(secs / 3600);
  t.minute = static_cast<int>((secs / 60) % 60);
  t.second = static_cast<int>(secs % 60);
  return t;
}

bool HasTimePart(Date d) {
  CivilTime t = SplitDate(d);
  return t.hour != 0 || t.minute != 0 || t.second != 0;
}

int Weekday(Date d) {
  int64_t days = static_cast<int64_t>(std::floor(d.serial));
  // Serial 0 (1899-12-30) was a Saturday.
  int64_t w = ((days % 7) + 7 + 6) % 7;  // 0 = Sunday
  return static_cast<int>(w) + 1;
}

void RequireNotNull(const Variant& v) {
  if (v.IsNull()) throw RuntimeError(err::kInvalidUseOfNull, "Invalid use of Null");
}

std::optional<double> NumberOf(const Variant& v) {
  switch (v.kind()) {
    case Variant::Kind::Bool:
      return *v.boolean() ? kTrue : kFalse;
    case Variant::Kind::Number:
      return *v.number();
    case Variant::Kind::Currency:
      return v.currency()->ToDouble();
    case Variant::Kind::Date:
      return v.date()->serial;
    case Variant::Kind::Null:
    case Variant::Kind::Text:
      break;
  }
  return std::nullopt;
}

}  // namespace lw
