// The bid's own work once the confirmation page is in: reading its forms with libxml2's HTML parser,
// moving to the bid form and making the address the browser is sent to. The fixture page, and the same
// form at the end of a page the size of a real item page (some 200 KB of tables).
#include <benchmark/benchmark.h>

#include <fstream>
#include <string>

#include "bidding/bid_form.h"
#include "core/primitives/encoding.h"
#include "platform/form_reader.h"

namespace {

std::string Fixture() {
  std::ifstream in(std::string(LW_SOURCE_DIR) + "/tests/e2e/pages/bid_makebid.htm", std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

lw::Text LargePage() {
  std::string page = Fixture();
  std::string rows;
  for (int i = 0; i < 2000; ++i)
    rows += "<tr><td class=\"x\">Shipping to zone " + std::to_string(i) + "</td><td>US $" +
            std::to_string(i % 40) + ".00</td></tr>\n";
  page.insert(page.find("<h2>"), "<table>" + rows + "</table>");
  return lw::FromUtf8(page);
}

void BidAddress(benchmark::State& state, const lw::Text& page) {
  lw::Text url;
  for (auto _ : state) {
    lw::FormReader reader;
    if (!reader.FindForm(page) || !reader.FindForm()) state.SkipWithError("no bid form");
    url = lw::BuildBidUrl(lw::FromUtf8(reader.FormQuery()), u"http://offer.ebay.com", u"alice", u"P1", u"2");
  }
  if (url.find(u"&user=alice&pass=P1&quant=2") == lw::Text::npos) state.SkipWithError("the address is wrong");
}

void BM_BidAddressFixturePage(benchmark::State& state) {
  BidAddress(state, lw::FromUtf8(Fixture()));
}
void BM_BidAddressLargePage(benchmark::State& state) {
  BidAddress(state, LargePage());
}

BENCHMARK(BM_BidAddressFixturePage)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_BidAddressLargePage)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
