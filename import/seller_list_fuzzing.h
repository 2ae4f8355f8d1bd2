// The list parsers under a fuzzer: a real store copied once into a temporary folder, a Ui that answers
// every message with No, and a fixed clock. Each input is a normalised page; the rows it adds are
// removed again so that the store stays small over millions of inputs.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "core/primitives/encoding.h"
#include "core/store/store.h"
#include "import/import_context.h"
#include "screen/testing.h"

namespace lw::fuzzing {

class NoUi : public testing::StubUi {
 public:
  MsgAnswer MsgBox(const Text&, const Text&, MsgButtons buttons, MsgIcon) override {
    return buttons == MsgButtons::YesNo ? MsgAnswer::No : ButtonsOf(buttons).front();
  }
  [[noreturn]] void EndProcess(int code) override { throw ProcessEnd{code}; }
};

struct FuzzImport {
  FuzzImport()
      : dir(std::filesystem::temp_directory_path() / ("lw-list-fuzz-" + std::to_string(::getpid()))),
        regional(Regional::FromLocale("en_US")) {
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    std::filesystem::copy_file(LW_SHIPPED_STORE, dir / "lw.mdb");
    db = Database::OpenDatabase(dir / "lw.mdb", regional);
    seller = std::make_unique<DataSource>(*db, u"seller");
    bidder = std::make_unique<DataSource>(*db, u"Bidder");
    clock.Fix(MakeDate(2026, 11, 22, 12, 0, 0));
    ctx = std::make_unique<ImportContext>(ImportContext{.db = *db,
                                                        .seller = *seller,
                                                        .bidder = *bidder,
                                                        .regional = regional,
                                                        .clock = clock,
                                                        .ui = ui,
                                                        .offsets = {},
                                                        .userid = u"lotseller",
                                                        .site = u"eBay",
                                                        .setup_userid = u"lotseller",
                                                        .folder = dir});
  }
  // Clears what one input left behind, in the store and in the slots.
  void Reset() {
    db->Execute(u"DELETE * FROM seller WHERE pending = no");
    db->Execute(u"DELETE * FROM bidder");
    ctx->state = ImportState{};
  }

  std::filesystem::path dir;
  Regional regional;
  std::unique_ptr<Database> db;
  std::unique_ptr<DataSource> seller, bidder;
  Clock clock;
  NoUi ui;
  std::unique_ptr<ImportContext> ctx;
};

}  // namespace lw::fuzzing
