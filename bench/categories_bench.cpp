// The category tree of a site with 20,000 categories on five levels, served by the loopback stand-in of
// the site's XML interface:
//   BM_FetchAndStoreCategories  the GetCategories call at detail level 1, the reply written to its file,
//                               and the site's rows of Categories replaced from it in one transaction
//                               (the goal: under 2 s)
//   BM_FillCategoryTree         the tree control filled from those rows (the goal: under 300 ms)
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "core/store/store.h"
#include "listing/api_calls.h"
#include "listing/category_tree.h"
#include "platform/api_http.h"
#include "platform/loopback_http_server.h"
#include "screen/testing.h"
#include "screen/tree_view.h"

namespace {

namespace fs = std::filesystem;

constexpr int kCategories = 20000;

struct Setting {
  Setting()
      : dir(fs::temp_directory_path() / ("lw_categories_bench_" + std::to_string(::getpid()))),
        server((fs::remove_all(dir), fs::create_directories(dir),
                lw::testing::LoopbackHttpServer::Script{"api_server.py"}),
               {"--dir", (dir / "api").string(), "--tree", std::to_string(kCategories)}) {
    fs::copy_file(LW_BINARY_DIR "/share/lw.mdb", dir / "lw.mdb");
    db = lw::Database::OpenDatabase(dir / "lw.mdb", regional);
  }
  ~Setting() {
    db.reset();
    server.Stop();
    fs::remove_all(dir);
  }
  lw::Regional regional = lw::Regional::FromLocale("en_US");
  fs::path dir;
  lw::testing::LoopbackHttpServer server;
  std::unique_ptr<lw::Database> db;
};

Setting& Shared() {
  static Setting setting;
  return setting;
}

void FetchAndStore(Setting& s) {
  lw::CurlApiHttp http(std::chrono::seconds(30));
  lw::Text request = lw::CategoriesRequest(u"alice", u"secret", 1, u"0");
  http.Open("POST", s.server.base() + lw::kApiPath);
  for (const auto& [name, value] : lw::ApiHeaders("GetCategories", u"0", 1))
    http.SetRequestHeader(name, value);
  http.Send(lw::RequestBytes(request));
  auto rows = s.db->OpenRecordset(u"Select * From Categories");
  fs::path file = s.dir / "getallcategories.xml";
  lw::ReplaceCategories(*s.db, *rows, u"0", file,
                        [&] { std::ofstream(file, std::ios::binary) << http.ResponseText() << "\r\n"; });
}

void BM_FetchAndStoreCategories(benchmark::State& state) {
  Setting& s = Shared();
  for (auto _ : state) FetchAndStore(s);
  auto count = s.db->OpenRecordset(u"Select Count(*) AS n From Categories Where AppSiteId = 0");
  state.counters["rows"] = *count->Fields(u"n").number();
  state.counters["reply_mb"] = static_cast<double>(fs::file_size(s.dir / "getallcategories.xml")) / (1 << 20);
}
BENCHMARK(BM_FetchAndStoreCategories)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

void BM_FillCategoryTree(benchmark::State& state) {
  Setting& s = Shared();
  FetchAndStore(s);
  lw::testing::TestScreen t;
  lw::TreeView& tree = t.form.Add<lw::TreeView>(u"ctcategorytree");
  for (auto _ : state) lw::FillCategoryTree(*s.db, tree, u"0", s.regional);
  state.counters["items"] = tree.NodeCount();
}
BENCHMARK(BM_FillCategoryTree)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);

}  // namespace

BENCHMARK_MAIN();
