// Comma-or-line-end input, as lw.ini and server.ini are read: items separated by commas or line ends,
// an item in double quotes may hold commas. A missing file raises 53; reading past the end raises 62.
#pragma once

#include <filesystem>
#include <string>

#include "core/primitives/types.h"

namespace lw {

class IniInput {
 public:
  explicit IniInput(const std::filesystem::path& file);  // raises 53 when missing
  Text Read();                                            // next item; raises 62 past the end
  bool AtEnd() const;

 private:
  Text content_;
  size_t pos_ = 0;
};

}  // namespace lw
