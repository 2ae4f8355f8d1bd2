// The tag removal done the plain way, one whole-text replacement per distinct tag, kept as the
// reference the fast one in normalise.cpp must match character for character (tests, fuzzing and the
// benchmark use it). Raises 380 on a "<" without a ">", leaving `text` as far as it got.
#pragma once

#include <string>

#include "core/primitives/types.h"

namespace lw::literal {

inline void ReplaceAllWithNothing(Text& text, TextView find) {
  Text out;
  out.reserve(text.size());
  size_t from = 0;
  for (size_t at = text.find(find); at != Text::npos; at = text.find(find, from)) {
    out.append(text, from, at - from);
    from = at + find.size();
  }
  out.append(text, from, Text::npos);
  text.swap(out);
}

inline void parse_HTML_text(Text& text) {
  size_t start = 0;
  for (;;) {
    size_t open = text.find(u'<', start);
    if (open == Text::npos) return;
    start = open;
    size_t close = text.find(u'>', start);
    if (close == Text::npos) throw RuntimeError(380, "Invalid property value");
    Text tag = text.substr(start, close - start + 1);
    ReplaceAllWithNothing(text, tag);
  }
}

}  // namespace lw::literal
