#include "core/primitives/datetime.h"

#include <chrono>
#include <cmath>
#include <ctime>

namespace lw {

namespace {

[[noreturn]] void InvalidCall() {
  throw RuntimeError(err::kInvalidProcedureCall, "Invalid procedure call or argument");
}

enum class Unit { Day, Hour, Minute };

Unit ParseUnit(TextView unit) {
  if (unit.size() == 1) {
    switch (unit[0]) {
      case u'd':
      case u'D':
        return Unit::Day;
      case u'h':
      case u'H':
        return Unit::Hour;
      case u'n':
      case u'N':
        return Unit::Minute;
      default:
        break;
    }
  }
  InvalidCall();
}

constexpr int64_t kSecondsPerDay = 86400;
constexpr int64_t kMsPerDay = kSecondsPerDay * 1000;
constexpr int64_t UnitMs(Unit u) {
  return u == Unit::Day ? kMsPerDay : u == Unit::Hour ? 3600 * 1000 : 60 * 1000;
}

// Dates run from the year 100 to the year 9999, as the store keeps them.
constexpr double kFirstSerial = -657434.0;     // 0100-01-01
constexpr double kLastSerial = 2958465.99999;  // 9999-12-31 23:59:59

// A serial before the epoch keeps its time of day as a positive fraction below the negative day
// number (-1.25 is 1899-12-29 06:00), so it is not a straight time line. These two map between the
// serial and a plain count of milliseconds from the epoch.
int64_t ToLinearMs(Date d) {
  double s = d.serial;
  double whole = std::trunc(s);
  double linear = whole + std::fabs(s - whole);
  return std::llround(linear * static_cast<double>(kMsPerDay));
}

int64_t FloorDiv(int64_t a, int64_t b) {
  int64_t q = a / b;
  if ((a % b != 0) && ((a < 0) != (b < 0))) --q;
  return q;
}

Date FromLinearMs(int64_t ms) {
  int64_t day = FloorDiv(ms, kMsPerDay);
  double frac = static_cast<double>(ms - day * kMsPerDay) / static_cast<double>(kMsPerDay);
  double d = static_cast<double>(day);
  return Date(day < 0 ? d - frac : d + frac);
}

}  // namespace

Date DateAdd(TextView unit, double n, Date d) {
  Unit u = ParseUnit(unit);
  if (!std::isfinite(n) || !std::isfinite(d.serial)) InvalidCall();
  // Only whole units are added; a fraction is dropped toward zero.
  double whole = std::trunc(n);
  // Beyond this even a count of minutes leaves the calendar, so it need not reach the integer maths.
  if (std::fabs(whole) > 1e10) InvalidCall();
  int64_t ms = ToLinearMs(d) + static_cast<int64_t>(whole) * UnitMs(u);
  Date out = FromLinearMs(ms);
  if (out.serial < kFirstSerial || out.serial > kLastSerial) InvalidCall();
  return out;
}

int64_t DateDiff(TextView unit, Date a, Date b) {
  Unit u = ParseUnit(unit);
  if (!std::isfinite(a.serial) || !std::isfinite(b.serial)) InvalidCall();
  if (std::fabs(a.serial) > 1e7 || std::fabs(b.serial) > 1e7) InvalidCall();
  // Whole seconds first, as the dates are shown, so that 10:00:59.9999 is not a minute short.
  int64_t sa = FloorDiv(ToLinearMs(a) + 500, 1000);
  int64_t sb = FloorDiv(ToLinearMs(b) + 500, 1000);
  int64_t per = UnitMs(u) / 1000;
  // Counting boundaries crossed is the difference of the unit numbers each moment falls in.
  return FloorDiv(sb, per) - FloorDiv(sa, per);
}

Date Clock::Now() const {
  if (fixed_) return *fixed_;
  std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm local{};
  if (localtime_r(&now, &local) == nullptr) gmtime_r(&now, &local);
  return MakeDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                  local.tm_sec);
}

Date Clock::Today() const {
  // The day number is the whole part on both sides of the epoch.
  return Date(std::trunc(Now().serial));
}

}  // namespace lw
