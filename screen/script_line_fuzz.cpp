// Feeds arbitrary lines to the script line reader and every word to the reference reader: they may
// refuse a line, but must never crash, hang or accept a reference they cannot give back whole.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "screen/script_line.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view line(reinterpret_cast<const char*>(data), size);
  try {
    auto words = lw::SplitScriptLine(line);
    if (!words) return 0;
    for (const auto& w : *words) {
      std::string quoted = lw::QuoteForScript(w);
      auto again = lw::SplitScriptLine("x " + quoted);
      // A word printed by the driver reads back as one word (CR LF pairs become a line break).
      if (!again || again->size() != 2) __builtin_trap();
      try {
        auto segments = lw::ParseReference(w);
        if (segments.empty() || segments.size() > 3) __builtin_trap();
        for (const auto& s : segments) {
          if (s.name.empty()) __builtin_trap();
          try {
            lw::SegmentIndex(s);
          } catch (const lw::ScriptSyntaxError&) {
          }
        }
      } catch (const lw::ScriptSyntaxError&) {
      }
    }
  } catch (const lw::ScriptSyntaxError&) {
  }
  return 0;
}
