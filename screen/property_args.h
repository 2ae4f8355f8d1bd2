// Reading the bracketed arguments of a property the driver asks for (`list(3)`, `tabcaption(2)`).
#pragma once

#include <string>
#include <vector>

#include "core/primitives/encoding.h"
#include "screen/control.h"
#include "screen/names.h"

namespace lw {

inline int IntArgument(const std::vector<Text>& args, size_t at, TextView property) {
  int v = 0;
  if (at >= args.size() || !ParseInt(args[at], v))
    throw UserError("property " + ToUtf8(property) + " needs a whole number in brackets");
  return v;
}

inline Text BoolText(bool b) {
  return b ? T("True") : T("False");
}
inline Text IntText(long long n) {
  return T(std::to_string(n));
}

}  // namespace lw
