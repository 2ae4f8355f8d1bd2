// The list parsers under a fuzzer: a real store copied once into a temporary folder, a Ui that answers
// every message with No, a fixed clock and the statuses shown. Each input is a normalised page; the rows
// it adds are removed again so that the store stays small over millions of inputs.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
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
    ctx->status = [this](const Text& text) { statuses.push_back(text); };
  }
  // Clears what one input left behind, in the store, in the slots and among the statuses.
  void Reset() {
    db->Execute(u"DELETE * FROM seller WHERE pending = no");
    db->Execute(u"DELETE * FROM bidder");
    ctx->state = ImportState{};
    statuses.clear();
  }

  int64_t Count(const Text& sql) { return db->OpenRecordset(sql)->RecordCount(); }

  // What must hold after a list import into `table` whatever the page held: no row without an item
  // number, and a summary, when there is one, that counts exactly the rows added and no more rows
  // changed than it says were updated. Rows changed by the run are those stamped with the fixed clock.
  bool ListInvariantsHold(const Text& table, int64_t rows_before) {
    if (Count(u"Select * From " + table + u" where Item is null or Item = ''") != 0) return false;
    const Text head = u"Importing Auctions Completed.  ";
    for (auto it = statuses.rbegin(); it != statuses.rend(); ++it) {
      if (it->rfind(head, 0) != 0) continue;
      // "... {added} Auctions Added.  {updated} Auctions Updated."
      const double added = Val(it->substr(head.size()));
      const double updated = Val(it->substr(it->find(u"Added.") + 6));
      const int64_t rows = Count(u"Select * From " + table);
      const int64_t touched =
          Count(u"Select * From " + table + u" where lastupdated = #11/22/2026 12:00:00#");
      if (rows - rows_before != added) return false;
      if (touched < added || touched - added > updated) return false;
      return updated != 0 || touched == added;
    }
    return true;  // ended in a message: nothing to count
  }

  std::filesystem::path dir;
  Regional regional;
  std::unique_ptr<Database> db;
  std::unique_ptr<DataSource> seller, bidder;
  Clock clock;
  NoUi ui;
  std::unique_ptr<ImportContext> ctx;
  std::vector<Text> statuses;
};

// A seller list page of `auctions` ended sales as the site serves it (raw HTML, one cell to a source
// line): 5,000 of them make about 1.5 MB. Item numbers are `first_item` onwards.
inline std::string SellerListPage(int auctions, long long first_item = 1200000000) {
  std::string page =
      "<html>\r\n<head><title>My eBay "
      "Selling</title></head>\r\n<body>\r\n<table>\r\n<tr>\r\n<th>Item#</th>\r\n"
      "<th>Start</th>\r\n<th>End</th>\r\n<th>Price</th>\r\n<th>Title</th>\r\n<th>High Bidder</th>\r\n"
      "<th>High Bidder's Email</th>\r\n</tr>\r\n";
  for (int i = 0; i < auctions; ++i) {
    const std::string item = std::to_string(first_item + i);
    const std::string buyer = "buyer" + std::to_string(i % 1700);
    const std::string link =
        "<a href=\"http://cgi.ebay.com/ws/eBayISAPI.dll?ViewItem&amp;item=" + item + "\">";
    const std::string day = std::to_string(10 + i % 9);
    page += "<tr>\r\n<td>" + link + item + "</a></td>\r\n";
    page += "<td>Nov-0" + std::to_string(1 + i % 9) + "-26 1" + std::to_string(i % 10) + ":00:00</td>\r\n";
    page += "<td>Nov-" + day + "-26 1" + std::to_string(i % 10) + ":00:00 (*)</td>\r\n";
    page += "<td>$" + std::to_string(5 + i % 300) + ".50</td>\r\n";
    page += "<td>Vintage blue glass vase number " + std::to_string(i) + "</td>\r\n";
    page += "<td>" + buyer + "(" + std::to_string(i % 500) + ")</td>\r\n";
    page += "<td>" + buyer + "@example.com</td>\r\n</tr>\r\n";
  }
  page +=
      "</table>\r\n<p>About eBay | Announcements | Help</p>\r\n<p>Copyright 1995-2026 eBay Inc. All Rights "
      "Reserved.</p>\r\n</body>\r\n</html>\r\n";
  return page;
}

}  // namespace lw::fuzzing
