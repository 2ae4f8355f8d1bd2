// Normalising a seller list of 5,000 auctions (about 1.5 MB), every row with its own link tags, so
// that each row brings distinct tag texts; and the plain whole-text tag removal on the same page for
// comparison.
#include <benchmark/benchmark.h>

#include <string>

#include "core/primitives/encoding.h"
#include "import/file_display.h"
#include "import/normalise.h"
#include "import/normalise_literal.h"

namespace {

lw::Text SellerList() {
  std::string page =
      "<HTML><HEAD><TITLE>eBay Listings</TITLE></HEAD>\r\n<BODY>\r\n<TABLE border=\"0\" "
      "cellpadding=\"2\">\r\n";
  for (int i = 0; i < 5000; ++i) {
    std::string item = std::to_string(2150000000 + i * 7);
    std::string buyer = "buyer" + std::to_string(i % 1700);
    std::string link = "<A href=\"/ws/eBayISAPI.dll?ViewItem&amp;item=" + item;
    page += "<TR>\r\n<TD>" + link + "\">" + item + "</A></TD>\r\n";
    page +=
        "<TD>Mar-0" + std::to_string(1 + i % 9) + "-03 1" + std::to_string(i % 10) + ":00:00 PST</TD>\r\n";
    page += "<TD>$" + std::to_string(5 + i % 300) + ".50&nbsp;</TD>\r\n";
    page += "<TD>" + link + "&amp;rd=1\">Vintage blue glass vase " + std::to_string(i) + "</A></TD>\r\n";
    page += "<TD><A href=\"mailto:" + buyer + "@example.com\">" + buyer + "</A> (" + std::to_string(i % 500) +
            ")</TD>\r\n</TR>\r\n";
  }
  page += "</TABLE>\r\n(*) indicates that auction has ended.\r\n</BODY></HTML>\r\n";
  return lw::FromUtf8(page);
}

const lw::Text& Page() {
  static const lw::Text page = SellerList();
  return page;
}

// The browser route's order: tags first, then the replacement rows.
void BM_Normalise(benchmark::State& state) {
  for (auto _ : state) {
    lw::FileDisplay buffer;
    buffer.set_text(Page());
    lw::parse_HTML(buffer, nullptr);
    lw::pre_parse_HTML(buffer);
    benchmark::DoNotOptimize(buffer.text().data());
  }
  state.counters["bytes"] = static_cast<double>(Page().size());
}
BENCHMARK(BM_Normalise)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

void BM_ParseHtmlFast(benchmark::State& state) {
  for (auto _ : state) {
    lw::Text text = Page();
    lw::parse_HTML_text(text);
    benchmark::DoNotOptimize(text.data());
  }
}
BENCHMARK(BM_ParseHtmlFast)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

void BM_ParseHtmlLiteral(benchmark::State& state) {
  for (auto _ : state) {
    lw::Text text = Page();
    lw::literal::parse_HTML_text(text);
    benchmark::DoNotOptimize(text.data());
  }
}
BENCHMARK(BM_ParseHtmlLiteral)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(3)
    ->ReportAggregatesOnly(true);

}  // namespace

BENCHMARK_MAIN();
