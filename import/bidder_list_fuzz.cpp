// Feeds arbitrary normalised pages to the bidder list import: it must end in its summary or its
// messages, never crash or hang, write no row without an item number, and count in its summary exactly
// the rows it added and no more rows changed than it says it updated.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "import/bidder_list.h"
#include "import/file_display.h"
#include "import/seller_list_fuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static lw::fuzzing::FuzzImport fuzz;
  fuzz.Reset();
  lw::FileDisplay buffer;
  buffer.set_text(lw::FromCp1252(std::string_view(reinterpret_cast<const char*>(data), size)));
  const int64_t before = fuzz.Count(u"Select * From bidder");
  lw::get_ebay_bidder_auctions(*fuzz.ctx, buffer);
  if (!fuzz.ListInvariantsHold(u"bidder", before)) __builtin_trap();
  return 0;
}
