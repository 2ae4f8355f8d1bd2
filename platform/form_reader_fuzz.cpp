// Fuzz target: the form reader on page text that may be anything a site or a broken connection sends.
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/primitives/encoding.h"
#include "platform/form_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  lw::FormReader reader;
  std::string bytes(reinterpret_cast<const char*>(data), size);
  if (!reader.FindForm(lw::FromUtf8(bytes))) return 0;
  int forms = 1;
  do {
    std::string query = reader.FormQuery();
    // Every pair of the query is name=value with nothing left unescaped that would split it.
    for (char c : query)
      if (c == ' ' || c == '\n') __builtin_trap();
  } while (reader.FindForm() && ++forms < 1000);
  if (reader.FindForm() || !reader.FormQuery().empty()) __builtin_trap();
  return 0;
}
