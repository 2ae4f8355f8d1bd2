// Feeds arbitrary bid lines to the Dutch and Store Sale page walk over a real store: whatever the lines
// hold, it must end in its summary or the handler's message, leave no row half written and never give
// away more than the quantity on offer.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/primitives/text.h"
#include "import/dutch.h"
#include "import/file_display.h"
#include "import/seller_list_fuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace lw;
  static fuzzing::FuzzImport fuzz;
  fuzz.Reset();
  if (size == 0) return 0;
  bool store_sale = data[0] & 1;
  Text lines = FromCp1252(std::string_view(reinterpret_cast<const char*>(data + 1), size - 1));

  fuzz.db->Execute(Text(u"INSERT INTO seller (Item, Title, username, site, Completed, id, Price) VALUES "
                        u"('4019990001', 'Marbles', 'lotseller', 'eBay', true, '") +
                   (store_sale ? u"Store Sale" : u"3 Dutch bids") + u"', 2)");
  fuzz.seller->RecordSource = u"Select * From seller where item = '4019990001' order by end desc ";
  fuzz.seller->Refresh();

  FileDisplay page;
  page.set_text(u"Quantity: 5\r\nBidder Bid Qty Date of Bid(time)\r\n" + lines +
                u"\r\nCopyright eBay Inc. All Rights Reserved.\r\n");
  get_seller_dutch_auctions(*fuzz.ctx, page);

  auto rs = fuzz.db->OpenRecordset(u"Select * From seller where Item = '4019990001'");
  double given = 0;
  for (; !rs->Eof(); rs->MoveNext()) given += Val(rs->Fields(u"Quantity"));
  if (given > 5 + 1e-9) __builtin_trap();
  if (fuzz.seller->HasRecordset() && fuzz.seller->recordset().EditInProgress()) __builtin_trap();

  fuzz.db->Execute(
      u"INSERT INTO bidder (Item, Title, username, site, Completed, id) VALUES ('4019990001', 'Marbles', "
      u"'lotseller', 'eBay', true, '3 Dutch bids')");
  fuzz.bidder->RecordSource = u"Select * From bidder";
  fuzz.bidder->Refresh();
  FileDisplay bidder_page;
  bidder_page.set_text(u"Item Price\r\n" + lines + u"\r\neBay Inc. All Rights Reserved.\r\n");
  get_bidder_dutch_auctions(*fuzz.ctx, bidder_page);
  return 0;
}
