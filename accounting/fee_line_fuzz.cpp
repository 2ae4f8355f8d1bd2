// Fuzzes the walk over an account page and the reading of each line it takes, under two locales. Besides
// not crashing: the lines taken follow each other without a gap, and a line that books something names
// a column and an amount that reads back from the line as the locale writes money.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "accounting/fees_line.h"
#include "accounting/fees_walk.h"
#include "core/primitives/convert.h"
#include "core/primitives/text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const lw::Regional us = lw::Regional::FromLocale("en_US");
  static const lw::Regional nl = lw::Regional::FromLocale("nl_NL");
  const lw::Text page = lw::fee_page_text(std::string_view(reinterpret_cast<const char*>(data), size));
  lw::Text taken;
  lw::walk_fee_page(page, [&](const lw::Text& line) {
    taken += line;
    for (const lw::Regional* r : {&us, &nl}) {
      try {
        std::optional<lw::FeeCharge> charge = lw::read_fee_line(line, *r);
        if (!charge) continue;
        if (!charge->column || charge->ref.empty()) std::abort();
        const lw::Text money = lw::CStr(lw::Variant(charge->amount), *r);
        if (lw::CCur(lw::Variant(money), *r) != charge->amount) std::abort();
      } catch (const lw::RuntimeError&) {
        // The parser's error branch: the line books nothing.
      }
    }
  });
  if (!taken.empty() && page.find(taken) == lw::Text::npos) std::abort();
  return 0;
}
