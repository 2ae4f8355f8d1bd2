// The winning bid letter of a buyer with 200 ended auctions in a store of 30,000 seller rows, composed
// as the Email page composes it: the setup row read, the buyer's auctions counted, summed and the view
// narrowed to them, the letter written, and the view put back over all 30,000 rows.
#include <benchmark/benchmark.h>

#include <memory>

#include "aftersale/aftersale_screen.h"
#include "bench/bench_screen.h"
#include "screen/main/main_form.h"

namespace {

// 30,000 rows of user id "bench": every 150th (200 in all) an ended sale of big@buyer.example, the
// others ended sales of 2,000 other buyers.
constexpr char kFill[] =
    "UPDATE setup SET Userid = 'bench', UserEmail = 'me@bench.example', Name = 'Bench Seller', "
    "address = '1 Bench Street', Signiture = 'Bench', Sale_conditions = 'Payment within 7 days.', "
    "taxprice = -1, taxshipping = -1; DELETE FROM seller;"
    "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 30000) "
    "INSERT INTO seller (Item, Title, username, site, Price, Ship_cost, price_tax, \"End\", Completed, "
    "Quantity, Id, Email, taxable) SELECT 100000000 + i, 'Auction number ' || i, 'bench', 'eBay', i * 10000, "
    "25000, 1000, 46000 + i / 100.0, -1, 1, CASE WHEN i % 150 = 0 THEN 'bigbuyer' ELSE 'buyer' || (i % 2000) "
    "END, "
    "CASE WHEN i % 150 = 0 THEN 'big@buyer.example' ELSE 'b' || (i % 2000) || '@buyer.example' END, -1 FROM "
    "n;";

void BM_WinningLetterOf200Auctions(benchmark::State& state) {
  std::shared_ptr<lw::AfterSale> after;
  lw::bench::BenchProgram screen(lw::bench::PrepareBenchHome("lw_letters_bench_", kFill),
                                 [&after](lw::Program& p) { after = lw::RegisterAfterSale(p); });
  lw::MainForm& m = screen.main();
  m.Auction_status_lst.SetText(u"All Auctions");
  m.Auction_status_lst.OnClick();
  if (!m.seller.FindFirst(u"Item = '100000150'"))
    state.SkipWithError("the buyer's first auction is not on show");
  for (auto _ : state) after->which_letter_to_display();
  if (after->letter.letter_item_count != 200 ||
      m.Get(u"emailletter_txt", 0).text().find(u"Total Auction Bid Price is") == lw::Text::npos)
    state.SkipWithError("the letter did not combine the 200 auctions");
  if (m.Get(u"itemno_txt", 0).text() != u"100000150") state.SkipWithError("the view did not come back");
}

BENCHMARK(BM_WinningLetterOf200Auctions)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
