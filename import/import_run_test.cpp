// One import run, one transaction: a list import killed part way through leaves the store as it was,
// intact, and the next run takes everything; what a run keeps after an error is committed at once.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "core/primitives/convert.h"
#include "core/primitives/text.h"
#include "import/seller_list.h"
#include "import/seller_list_fuzzing.h"
#include "import/seller_list_testing.h"

namespace lw::testing {
namespace {

namespace fs = std::filesystem;

constexpr int kAuctions = 1500;

// What another program reading the file finds: SQLite's own check, and the rows of `seller`.
struct StoreOnDisk {
  std::string integrity;
  int64_t sellers = -1;
};

StoreOnDisk Inspect(const fs::path& file) {
  StoreOnDisk out;
  sqlite3* db = nullptr;
  if (sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
    auto one = [db](const char* sql) {
      sqlite3_stmt* st = nullptr;
      std::string value;
      if (sqlite3_prepare_v2(db, sql, -1, &st, nullptr) == SQLITE_OK && sqlite3_step(st) == SQLITE_ROW)
        value = reinterpret_cast<const char*>(sqlite3_column_text(st, 0));
      sqlite3_finalize(st);
      return value;
    };
    out.integrity = one("PRAGMA integrity_check");
    std::string n = one("SELECT count(*) FROM seller");
    if (!n.empty()) out.sellers = std::stoll(n);
  }
  sqlite3_close(db);
  return out;
}

// The seller list import of `page` into the store in `dir`, every status told to `status`.
void ImportSellerList(const fs::path& dir, const Text& page, std::function<void(const Text&)> status) {
  Regional regional = Regional::FromLocale("en_US");
  auto db = Database::OpenDatabase(dir / "lw.mdb", regional);
  DataSource seller(*db, u"seller"), bidder(*db, u"Bidder");
  Clock clock;
  clock.Fix(MakeDate(2026, 11, 22, 12, 0, 0));
  fuzzing::NoUi ui;
  ImportContext ctx{*db, seller, bidder, regional, clock, ui, {}, u"lotseller", u"eBay", u"lotseller", dir};
  ctx.status = std::move(status);
  FileDisplay buffer;
  buffer.set_text(page);
  get_ebay_seller_auctions_2(ctx, buffer);
}

// The import of a child process: tells the parent through `signal_fd` when it starts on auction
// `signal_at`, and then either waits there to be killed or runs on.
[[noreturn]] void ImportInChild(const fs::path& dir, const Text& page, int signal_at, bool wait,
                                int signal_fd) {
  try {
    int started = 0;
    ImportSellerList(dir, page, [&](const Text& text) {
      if (text.rfind(u"Adding Item Number ", 0) != 0 || ++started != signal_at) return;
      char byte = 1;
      if (::write(signal_fd, &byte, 1) != 1) ::_exit(3);
      while (wait) ::pause();
    });
  } catch (...) {
    ::_exit(2);
  }
  ::_exit(0);
}

TEST(ImportRunTest, AnImportKilledPartWayLeavesTheStoreAsItWasAndTheNextRunTakesAll) {
  const fs::path dir = fs::temp_directory_path() / ("lw-import-kill-" + std::to_string(::getpid()));
  fs::remove_all(dir);
  fs::create_directories(dir);
  fs::copy_file(LW_BINARY_DIR "/share/lw.mdb", dir / "lw.mdb");
  FileDisplay normalised;
  normalised.set_text(FromUtf8(fuzzing::SellerListPage(kAuctions)));
  parse_HTML(normalised, [](const Text&) {});
  pre_parse_HTML(normalised);
  const Text page = normalised.text();
  const int64_t before = Inspect(dir / "lw.mdb").sellers;
  ASSERT_GE(before, 0);

  // Twenty kills at points spread over the run. On even rounds the child waits between two rows to be
  // killed; on odd ones it runs on and the kill lands wherever it is, a write or the commit included,
  // so the run may even have finished.
  for (int round = 0; round < 20; ++round) {
    SCOPED_TRACE(round);
    const int signal_at = 1 + round * (kAuctions - 1) / 19;
    const bool wait = round % 2 == 0;
    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      ::close(fds[0]);
      ImportInChild(dir, page, signal_at, wait, fds[1]);
    }
    ::close(fds[1]);
    pollfd ready{fds[0], POLLIN, 0};
    const bool signalled = ::poll(&ready, 1, 60000) == 1;
    char byte = 0;
    const bool read = signalled && ::read(fds[0], &byte, 1) == 1;
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    ::close(fds[0]);
    ASSERT_TRUE(read) << "the child never reached auction " << signal_at;

    StoreOnDisk after = Inspect(dir / "lw.mdb");
    EXPECT_EQ(after.integrity, "ok");
    if (wait)
      EXPECT_EQ(after.sellers, before);
    else
      EXPECT_TRUE(after.sellers == before || after.sellers == before + kAuctions) << after.sellers;
  }

  // A run that is left alone takes every auction.
  Text summary;
  ImportSellerList(dir, page, [&](const Text& text) { summary = text; });
  // "Importing Auctions Completed.  {added} Auctions Added.  {updated} Auctions Updated."
  const double added = Val(Mid(summary, 32));
  const double updated = Val(Mid(summary, InStr(summary, u"Added.") + 6));
  EXPECT_EQ(added + updated, kAuctions) << ToUtf8(summary);
  StoreOnDisk done = Inspect(dir / "lw.mdb");
  EXPECT_EQ(done.integrity, "ok");
  EXPECT_EQ(done.sellers, before + kAuctions);
  fs::remove_all(dir);
}

}  // namespace
}  // namespace lw::testing
