// Val must never fail, whatever the text. Its answer is checked against the C library's correctly
// rounded conversion of the same number with the skipped characters taken out first.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "core/primitives/encoding.h"
#include "core/primitives/text.h"

namespace {

void Check(bool ok) {
  if (!ok) __builtin_trap();
}

bool Digit(char16_t c) {
  return c >= u'0' && c <= u'9';
}

double Reference(const lw::Text& text) {
  std::u16string s;
  for (char16_t c : text)
    if (c != u' ' && c != u'\t' && c != u'\n') s += c;
  std::string num;
  size_t i = 0;
  if (i < s.size() && (s[i] == u'+' || s[i] == u'-')) num += static_cast<char>(s[i++]);
  bool any = false;
  while (i < s.size() && Digit(s[i])) num += static_cast<char>(s[i++]), any = true;
  if (i < s.size() && s[i] == u'.') {
    num += '.';
    ++i;
    while (i < s.size() && Digit(s[i])) num += static_cast<char>(s[i++]), any = true;
  }
  if (!any) return 0;
  if (i < s.size() && (s[i] == u'e' || s[i] == u'E' || s[i] == u'd' || s[i] == u'D')) {
    size_t j = i + 1;
    std::string e = "e";
    if (j < s.size() && (s[j] == u'+' || s[j] == u'-')) e += static_cast<char>(s[j++]);
    if (j < s.size() && Digit(s[j])) {
      while (j < s.size() && Digit(s[j])) e += static_cast<char>(s[j++]);
      num += e;
    }
  }
  return std::strtod(num.c_str(), nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  lw::Text text = lw::FromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
  double got = lw::Val(text);
  double want = Reference(text);
  Check(got == want);
  Check(lw::Val(lw::Variant(text)) == got);
  return 0;
}
