// A list page reaches the parsers by three roads: the manual menu (the file as saved, tags stripped by
// parse_HTML), the browser view (its body HTML, one cell to a line, then parse_HTML) and the background
// fetch (the transport's text without tags, never passed through parse_HTML). Whatever the road, the
// same page must import into the same rows.
#include <fstream>
#include <sstream>

#include "core/primitives/encoding.h"
#include "import/bidder_list.h"
#include "import/seller_list.h"
#include "import/seller_list_testing.h"
#include "platform/charset.h"
#include "platform/html_document.h"

namespace lw::testing {
namespace {

enum class Road { manual, browser, background };

class TransportRoadsTest : public ListImportTest {
 protected:
  std::string Locale() const override { return "en_US"; }

  static Text PageText(const std::string& file) {
    std::ifstream in(PagePath(file), std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();
    return DecodePage(bytes.str());
  }

  FileDisplay Buffer(const std::string& file, Road road) {
    FileDisplay buffer;
    switch (road) {
      case Road::manual:
        return LoadPage(file);
      case Road::browser:
        buffer.set_text(HtmlDocument::Parse(PageText(file)).body_outer_html);
        Normalise(buffer);
        return buffer;
      case Road::background:
        buffer.set_text(PageTextWithoutTags(PageText(file)));
        pre_parse_HTML(buffer);
        return buffer;
    }
    return buffer;
  }

  // Every row of the table with the columns the list pages fill, in item order.
  std::string Rows(const char* table) {
    auto rs = ListImportTest::Rows(std::string("Select * From ") + table + " order by Item");
    std::string out;
    for (; !rs->Eof(); rs->MoveNext()) {
      for (const char* f : {"Item", "Title", "Id", "Email", "Start", "End", "Quantity", "Completed"}) {
        Variant v = rs->Fields(T(f));
        out += v.text() ? ToUtf8(*v.text()) : v.IsNull() ? "<null>" : std::to_string(Num(*rs, f));
        out += '|';
      }
      out += std::to_string(Num(*rs, "Price")) + "\n";
    }
    return out;
  }
};

TEST_F(TransportRoadsTest, EveryRoadImportsTheSameSellerAndBidderRows) {
  std::string seller_rows[3], bidder_rows[3];
  for (Road road : {Road::manual, Road::browser, Road::background}) {
    Exec("Delete * From seller");
    Exec("Delete * From bidder");
    FileDisplay sellers = Buffer("seller_list.html", road);
    get_ebay_seller_auctions_2(*ctx_, sellers);
    ctx_->userid = ctx_->setup_userid = u"lotbidder";
    FileDisplay bids = Buffer("bidder_list.html", road);
    get_ebay_bidder_auctions(*ctx_, bids);
    ctx_->userid = ctx_->setup_userid = u"lotseller";
    seller_rows[static_cast<int>(road)] = Rows("seller");
    bidder_rows[static_cast<int>(road)] = Rows("bidder");
  }
  EXPECT_NE(seller_rows[0], "");
  EXPECT_NE(bidder_rows[0], "");
  EXPECT_EQ(seller_rows[1], seller_rows[0]) << "browser view";
  EXPECT_EQ(seller_rows[2], seller_rows[0]) << "background fetch";
  EXPECT_EQ(bidder_rows[1], bidder_rows[0]) << "browser view";
  EXPECT_EQ(bidder_rows[2], bidder_rows[0]) << "background fetch";
}

}  // namespace
}  // namespace lw::testing
