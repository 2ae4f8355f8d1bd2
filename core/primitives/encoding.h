// Conversions between the program's 16-bit text and the byte encodings of files, pages and libraries.
#pragma once

#include <string>
#include <string_view>

#include "core/primitives/types.h"

namespace lw {

// UTF-8 bytes to text. Malformed sequences become U+FFFD; never fails.
Text FromUtf8(std::string_view bytes);
// Text to UTF-8. A lone surrogate becomes U+FFFD.
std::string ToUtf8(TextView text);
// windows-1252 bytes to text (the five undefined bytes map to the C1 controls of the same value).
Text FromCp1252(std::string_view bytes);
// Text to windows-1252; characters it cannot hold become '?'.
std::string ToCp1252(TextView text);
// Plain ASCII/UTF-8 literal to text, for program constants: T("Seller").
inline Text T(std::string_view utf8) {
  return FromUtf8(utf8);
}

}  // namespace lw
