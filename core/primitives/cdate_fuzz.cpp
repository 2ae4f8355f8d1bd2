// Feeds arbitrary text to the date and number conversions under a month-first and a day-first locale.
// Run-time errors are the expected answer to rubbish; anything else (a crash, a hang, a conversion
// that IsDate and CDate disagree on, a date that does not read back from its own text) is a fault.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"

namespace {

void Check(bool ok) {
  if (!ok) __builtin_trap();
}

void Exercise(const lw::Text& text, const lw::Regional& r) {
  lw::Variant v(text);
  bool is_date = lw::IsDate(v, r);
  try {
    lw::Date d = lw::CDate(v, r);
    Check(is_date);
    // Its own general-date text must read back as the same moment.
    lw::Date back = lw::CDate(lw::CStr(d, r), r);
    Check(std::fabs(back.serial - d.serial) < 1.0 / 86400);
    // And its long date as the same day.
    lw::Date day = lw::CDate(lw::Format(d, u"long date", r), r);
    Check(day.serial == std::trunc(d.serial));
    lw::Format(d, u"medium date", r);
  } catch (const lw::RuntimeError& e) {
    Check(!is_date || e.number() == lw::err::kOverflow);
  }
  bool is_number = lw::IsNumeric(v, r);
  try {
    double x = lw::CDbl(v, r);
    Check(is_number);
    lw::CStr(x, r);
  } catch (const lw::RuntimeError& e) {
    Check(!is_number || e.number() == lw::err::kOverflow);
  }
  try {
    lw::Currency c = lw::CCur(v, r);
    // Money written out reads back exactly.
    Check(lw::CCur(lw::CStr(c, r), r) == c);
  } catch (const lw::RuntimeError&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const lw::Regional us = lw::Regional::FromLocale("en_US");
  static const lw::Regional nl = lw::Regional::FromLocale("nl_NL");
  lw::Text text = lw::FromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
  Exercise(text, us);
  Exercise(text, nl);
  return 0;
}
