// Comma-or-line-end input, as lw.ini and server.ini are read: items separated by commas or line ends,
// an item in double quotes may hold commas. A missing file raises 53; reading past the end raises 62.
#pragma once

#include <filesystem>
#include <string>

#include "core/primitives/types.h"

namespace lw {

class IniInput {
 public:
  // Reads the whole file: UTF-8 when its bytes are valid UTF-8, else windows-1252. Raises 53 when it
  // is missing and 75 when it cannot be read.
  explicit IniInput(const std::filesystem::path& file);
  // Next item: leading blanks and tabs skipped; a quoted item runs to its closing quote and the rest
  // up to the delimiter is dropped; an unquoted one runs to a comma or line end, trailing blanks
  // trimmed. Raises 62 past the end.
  Text Read();
  bool AtEnd() const;

 private:
  Text content_;
  size_t pos_ = 0;
};

}  // namespace lw
