// Building and validating item requests against the loopback stand-in of the site's XML interface:
// each iteration builds a full request from the Sell page's fields, sends it as VerifyAddItem with the
// call's headers, and wraps the reply for the Validation page. Run with 1,000 iterations, so that one
// run is 1,000 validations; requests per second are the items_per_second counter, and the counters
// build_share, transport_share and wrap_share say where the time went. The server records every
// request to its folder as it does in the tests, so the transport includes that work.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>

#include "listing/api_calls.h"
#include "listing/item_request.h"
#include "platform/api_http.h"
#include "platform/loopback_http_server.h"

namespace {

using Clock = std::chrono::steady_clock;

lw::SellForm FullForm() {
  lw::SellForm f;
  f.userid = u"alice";
  f.password = u"secret";
  f.site_id = u"0";
  f.description_footer = u"<p>Thanks for looking!</p>";
  f.has_pic_name = true;
  f.clean_title = u"Oak Chair 30&quot; high";
  f.category = u"12345";
  f.description = lw::Text(2000, u'x');
  f.clean_location = u"Springfield, IL";
  f.quantity = u"2";
  f.minimum_bid = u"9.99";
  f.reserve = u"0";
  f.buy_it_now = u"25.00";
  f.duration = u"7";
  f.picture_url = u"http://www.example.com/pics/chair.jpg";
  f.paypal_address = u"alice@example.com";
  f.country = u"United States";
  f.region_code = lw::RegionCode(u"IL-Chicago");
  f.gift_code = u"1";
  f.counter_code = lw::CounterCode(u"Honesty Style");
  f.tax_state_code = lw::TaxStateCode(u"Illinois");
  f.gallery = 1;
  f.sell_format = 0;
  f.escrow = 1;
  f.ship_destination = 2;
  f.schedule = 1;
  f.shipping_cost = 1;
  f.insurance_row = 2;
  f.payby = {true, false, true, false, false, false, true, false, false, false, true};
  f.display[3] = true;
  f.payshipping[1] = true;
  f.other_location[0] = f.other_location[8] = true;
  f.shipping_handling = u"4.50";
  f.additional_shipping = u"1.00";
  f.insurance_fee = u"1.25";
  f.sales_tax_percent = u"6.25";
  f.checkout_instructions = u"Returns within 14 days.";
  f.schedule_time = u"2003-12-01 02:00:00";
  return f;
}

void BM_ValidateRequests(benchmark::State& state) {
  namespace fs = std::filesystem;
  fs::path dir = fs::temp_directory_path() / ("lw_listing_bench_" + std::to_string(::getpid()));
  fs::remove_all(dir);
  lw::testing::LoopbackHttpServer server(lw::testing::LoopbackHttpServer::Script{"api_server.py"},
                                         {"--dir", dir.string()});
  lw::CurlApiHttp http(std::chrono::seconds(10));
  const std::string url = server.base() + lw::kApiPath;
  lw::SellForm form = FullForm();
  Clock::duration build{}, transport{}, wrap{};
  benchmark::IterationCount fee_pages = 0;
  for (auto _ : state) {
    auto t0 = Clock::now();
    form.uuid = lw::NewUuid();
    lw::Text request = lw::BuildItemRequest(form);
    std::string body = lw::RequestBytes(request);
    auto t1 = Clock::now();
    http.Open("POST", url);
    for (const auto& [name, value] : lw::ApiHeaders("VerifyAddItem", form.site_id, 0))
      http.SetRequestHeader(name, value);
    http.Send(body);
    auto t2 = Clock::now();
    std::string page =
        lw::WrapReply(http.ResponseText(), lw::ReplyPage::kValidation, u"http://pics/logo.gif");
    if (!lw::ReplyHasErrors(page)) ++fee_pages;
    auto t3 = Clock::now();
    build += t1 - t0;
    transport += t2 - t1;
    wrap += t3 - t2;
  }
  if (fee_pages != state.iterations()) state.SkipWithError("a validation came back with errors");
  double total = std::chrono::duration<double>(build + transport + wrap).count();
  state.SetItemsProcessed(state.iterations());
  state.counters["build_share"] = std::chrono::duration<double>(build).count() / total;
  state.counters["transport_share"] = std::chrono::duration<double>(transport).count() / total;
  state.counters["wrap_share"] = std::chrono::duration<double>(wrap).count() / total;
  server.Stop();
  fs::remove_all(dir);
}
BENCHMARK(BM_ValidateRequests)->Iterations(1000)->Unit(benchmark::kMillisecond)->UseRealTime();

// The building alone, for scale.
void BM_BuildRequest(benchmark::State& state) {
  lw::SellForm form = FullForm();
  for (auto _ : state) {
    form.uuid = lw::NewUuid();
    benchmark::DoNotOptimize(lw::RequestBytes(lw::BuildItemRequest(form)));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_BuildRequest)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
