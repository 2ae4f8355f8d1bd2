// Formats arbitrary values with arbitrary pictures under a month-first and a day-first locale. The
// input is the value text, a line feed, then the picture. Run-time errors are fine; crashes and hangs
// are not.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"

namespace {

void Exercise(const lw::Text& value, const lw::Text& picture, const lw::Regional& r) {
  auto attempt = [&](const lw::Variant& v) {
    try {
      lw::Format(v, picture, r);
    } catch (const lw::RuntimeError&) {
    }
  };
  attempt(lw::Variant(value));
  try {
    if (lw::IsNumeric(value, r)) {
      attempt(lw::CDbl(value, r));
      attempt(lw::CCur(value, r));
    }
    if (lw::IsDate(value, r)) attempt(lw::CDate(value, r));
  } catch (const lw::RuntimeError&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const lw::Regional us = lw::Regional::FromLocale("en_US");
  static const lw::Regional nl = lw::Regional::FromLocale("nl_NL");
  std::string_view in(reinterpret_cast<const char*>(data), size);
  size_t cut = in.find('\n');
  std::string_view value = in.substr(0, cut);
  std::string_view picture = cut == std::string_view::npos ? std::string_view() : in.substr(cut + 1);
  lw::Text v = lw::FromUtf8(value), p = lw::FromUtf8(picture);
  Exercise(v, p, us);
  Exercise(v, p, nl);
  return 0;
}
