// Fuzzes the tag removal against the plain whole-text reference: both must give the same text and
// fail on the same inputs. Also runs the replacement rows and the title clean-up for crashes.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/primitives/encoding.h"
#include "import/normalise.h"
#include "import/normalise_literal.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  lw::Text input = lw::FromCp1252(std::string_view(reinterpret_cast<const char*>(data), size));
  lw::Text fast = input, slow = input;
  bool fast_failed = false, slow_failed = false;
  try {
    lw::parse_HTML_text(fast);
  } catch (const lw::RuntimeError&) {
    fast_failed = true;
  }
  try {
    lw::literal::parse_HTML_text(slow);
  } catch (const lw::RuntimeError&) {
    slow_failed = true;
  }
  if (fast_failed != slow_failed || fast != slow) std::abort();

  lw::FileDisplay buffer;
  buffer.set_text(input);
  lw::pre_parse_HTML(buffer);
  lw::Text title = input;
  lw::remove_odd_characters_from_title(title);
  return 0;
}
