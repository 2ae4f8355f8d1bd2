// The image page's costs: reading a picture's header (a small JPEG, a large camera-sized JPEG, a GIF),
// which is all the display reads until the front end draws; a row change on the image page of a main
// screen whose rows carry pictures, bound fields, change event and refresh_picture together; and one
// more line in a full upload log.
#include <benchmark/benchmark.h>
#include <stb/stb_image_write.h>

#include <fstream>
#include <string>
#include <vector>

#include "bench/bench_screen.h"
#include "core/primitives/encoding.h"
#include "media/media_screen.h"
#include "media/picture_file.h"
#include "media/upload_form.h"
#include "screen/main/main_form.h"
#include "screen/main/startup.h"

namespace {

namespace fs = std::filesystem;

// A JPEG of the given size, written once into the bench folder.
fs::path Jpeg(const fs::path& dir, int width, int height) {
  fs::path file = dir / ("picture_" + std::to_string(width) + "x" + std::to_string(height) + ".jpg");
  if (fs::exists(file)) return file;
  std::vector<unsigned char> pixels(static_cast<size_t>(width) * height * 3);
  for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<unsigned char>((i * 7) ^ (i >> 9));
  std::ofstream out(file, std::ios::binary);
  stbi_write_jpg_to_func(
      [](void* to, void* data, int size) {
        static_cast<std::ofstream*>(to)->write(static_cast<char*>(data), size);
      },
      &out, width, height, 3, pixels.data(), 90);
  return file;
}

// A main screen over 200 seller rows, every other one with a picture, on the image page.
struct Screen {
  fs::path dir;
  lw::bench::QuietUi ui;
  std::unique_ptr<lw::EventQueue> queue;
  std::unique_ptr<lw::Settings> settings;
  std::unique_ptr<lw::Program> program;

  Screen() {
    dir = lw::bench::PrepareBenchHome(
        "lw_media_bench_",
        "UPDATE setup SET Userid = 'bench'; DELETE FROM seller;"
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 200) "
        "INSERT INTO seller (Item, Title, username, site, \"End\", Pic_name) SELECT 100000000 + i, "
        "'Auction number ' || i, 'bench', 'eBay', 46000 + i, 'picture_640x480.jpg' FROM n;");
    fs::path picture = Jpeg(dir, 640, 480);
    queue = std::make_unique<lw::EventQueue>();
    settings = std::make_unique<lw::Settings>(dir / "config" / "settings.ini");
    program = std::make_unique<lw::Program>(ui, *queue, *settings,
                                            lw::ProgramFiles{LW_SHIPPED_STORE, "/bin/true", "help"});
    lw::CreateForms(*program);
    lw::RegisterMedia(*program);
    lw::Main(*program);
    program->startup.db->Execute(u"UPDATE seller SET Pic_location = '" + lw::FromUtf8(picture.string()) +
                                 u"' WHERE Item Like '*[02468]'");
    program->main->Auction_status_lst.SetText(u"All Auctions");
    program->main->SSTab1.SetTab(3);
  }
  ~Screen() {
    program.reset();
    fs::remove_all(dir);
  }
};

Screen& TheScreen() {
  static Screen screen;
  return screen;
}

void Header(benchmark::State& state, int width, int height) {
  fs::path file = Jpeg(TheScreen().dir, width, height);
  for (auto _ : state) benchmark::DoNotOptimize(lw::ReadPictureFile(file));
  if (lw::ReadPictureFile(file).width != width) state.SkipWithError("the header gave another width");
}
void BM_PictureHeaderSmallJpeg(benchmark::State& state) {
  Header(state, 64, 48);
}
void BM_PictureHeaderCameraJpeg(benchmark::State& state) {
  Header(state, 4000, 3000);
}
void BM_PictureHeaderGif(benchmark::State& state) {
  fs::path file = fs::path(LW_SOURCE_DIR) / "tests/e2e/image_files/marbles.gif";
  for (auto _ : state) benchmark::DoNotOptimize(lw::ReadPictureFile(file));
}

// Next row, over and over, on the image page: half the rows show a picture, half show "NA".
void BM_RowChangeOnImagePage(benchmark::State& state) {
  lw::MainForm& m = *TheScreen().program->main;
  for (auto _ : state) {
    m.seller.MoveNext();
    if (m.seller.recordset().Eof()) m.seller.MoveFirst();
  }
  m.seller.MoveFirst();
  if (m.Get(u"Label1", 89).text() != u"640" && m.Get(u"Label1", 89).text() != u"NA")
    state.SkipWithError("the image page did not follow the rows");
}

void BM_UploadLogLine(benchmark::State& state) {
  lw::testing::TestScreen t;
  lw::ListBox& list = t.form.Add<lw::ListBox>(u"listTrace");
  for (int i = 0; i < 101; ++i) lw::ftp_trace(list, u"200 a line of the server's");
  for (auto _ : state) lw::ftp_trace(list, u"226 Transfer complete.");
  if (list.ListCount() != 101) state.SkipWithError("the log grew past its size");
}

BENCHMARK(BM_PictureHeaderSmallJpeg)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PictureHeaderCameraJpeg)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PictureHeaderGif)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RowChangeOnImagePage)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_UploadLogLine)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
