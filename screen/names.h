// Control, form and property names compare without regard to case, as the desktop runtime has them.
// Names are plain ASCII, so folding ASCII letters is enough.
#pragma once

#include <string>

#include "core/primitives/types.h"

namespace lw {

inline char16_t FoldAscii(char16_t c) {
  return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c - u'A' + u'a') : c;
}

inline Text FoldName(TextView name) {
  Text out(name);
  for (auto& c : out) c = FoldAscii(c);
  return out;
}

inline bool SameName(TextView a, TextView b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (FoldAscii(a[i]) != FoldAscii(b[i])) return false;
  return true;
}

// Whole decimal number with an optional minus sign; nothing for anything else.
inline bool ParseInt(TextView text, int& out) {
  if (text.empty() || text.size() > 10) return false;
  size_t i = text[0] == u'-' ? 1 : 0;
  if (i == text.size()) return false;
  long long v = 0;
  for (; i < text.size(); ++i) {
    if (text[i] < u'0' || text[i] > u'9') return false;
    v = v * 10 + (text[i] - u'0');
  }
  if (text[0] == u'-') v = -v;
  if (v < INT32_MIN || v > INT32_MAX) return false;
  out = static_cast<int>(v);
  return true;
}

}  // namespace lw
