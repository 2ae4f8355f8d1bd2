// Feeds arbitrary item pages to the six description parsers and member pages to get_seller_email. None
// may crash or let an error out; a slice is always a piece of the page or no slice at all; the member's
// address never keeps a line feed, and is either what stood in the field before or a piece of the page.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/primitives/text.h"
#include "import/description.h"
#include "import/file_display.h"
#include "import/member_email.h"
#include "import/seller_list_fuzzing.h"

namespace {

bool IsPieceOf(const lw::Text& piece, const lw::Text& text) {
  return text.find(piece) != lw::Text::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace lw;
  static fuzzing::FuzzImport fuzz;
  const Text page = FromCp1252(std::string_view(reinterpret_cast<const char*>(data), size));

  // The slices of the ordinary and motors pages, with their fallbacks among the end markers.
  const Slice slices[] = {
      {u"Item #",
       17,
       {u"This auction has ended but the item has been relisted.", u"Bidding is closed for this item",
        u"Current bid", u"This item is closed.", u"Price"}},
      {u"unless otherwise noted.", 23, {u"Bidding", u"Checkout"}, 15},
      {u"# of bids", 0, {u"Bid history"}},
  };
  for (const Slice& slice : slices) {
    try {
      if (!IsPieceOf(cut_slice(page, slice), page)) __builtin_trap();
    } catch (const RuntimeError& e) {
      if (e.number() != 380) __builtin_trap();
    }
  }

  using Parser = void (*)(ImportContext&, DescriptionScreen&, FileDisplay&);
  for (Parser parse :
       {Parser{get_ebay_seller_auction_description}, Parser{get_ebay_bidder_auction_description},
        Parser{get_ebay_seller_auction_description_with_HTML},
        Parser{get_ebay_seller_auction_description_ebaymotors},
        Parser{get_ebay_bidder_auction_description_ebaymotors},
        Parser{get_ebay_seller_auction_description_ebaymotors_with_HTML}}) {
    DescriptionScreen screen;
    FileDisplay buffer;
    buffer.set_text(page);
    parse(*fuzz.ctx, screen, buffer);  // an error out of a parser ends the fuzzer as a crash
  }

  FileDisplay member;
  member.set_text(page);
  const Text before = u"kept@example.org";
  Text field = before;
  get_seller_email(*fuzz.ctx, member, field);
  if (field.find(u'\n') != Text::npos) __builtin_trap();
  if (field != before && !IsPieceOf(field, Replace(member.text(), u"\n", u""))) __builtin_trap();
  return 0;
}
