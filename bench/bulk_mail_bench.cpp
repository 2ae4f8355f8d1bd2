// 500 queued letters sent in one bulk run to the loopback SMTP server, as "Send Bulk Mail Now" sends
// them over a store of 30,000 seller rows: each letter mailed, its auction found and logged, its row
// taken off the list. Beside it the same 500 messages sent by a plain libcurl loop, one transfer each,
// to show what the program adds to the mail itself.
#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <sqlite3.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>

#include "aftersale/aftersale_screen.h"
#include "bench/bench_screen.h"
#include "platform/mail_message.h"
#include "platform/mail_test_server.h"
#include "screen/main/main_form.h"

namespace {

namespace fs = std::filesystem;
constexpr int kLetters = 500;

std::string Body(int i) {
  std::string body =
      "Ebay Auction Sale Notice from Ebay User: bench\r\nAt E-mail Address: me@bench.example\r\n\r\n";
  body += "Congratulations buyer" + std::to_string(i) +
          " you are a winning bidder on the following item(s): \r\n";
  for (int line = 0; line < 12; ++line)
    body += std::to_string(100000000 + i) + "  Auction number " + std::to_string(i) +
            "                               Qty. 1      Bid Price $12.50\r\n";
  return body + "\r\nPayment within 7 days.\r\n\r\nBench\r\n\r\n";
}

struct Screen {
  std::unique_ptr<lw::testing::MailTestServer> smtp;
  std::unique_ptr<lw::bench::BenchProgram> bench;
  fs::path store;

  Screen() {
    fs::path home = lw::bench::PrepareBenchHome(
        "lw_bulk_mail_bench_",
        "DELETE FROM seller;"
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 30000) "
        "INSERT INTO seller (Item, Title, username, site, Price, \"End\", Completed, Contact, Quantity, Id, "
        "Email) "
        "SELECT 100000000 + i, 'Auction number ' || i, 'bench', 'eBay', i * 10000, 46000 + i / 100.0, -1, "
        "-1, 1, "
        "'buyer' || i, 'b' || i || '@buyer.example' FROM n;");
    store = home / "data" / "lotwright" / "lw.mdb";
    smtp = std::make_unique<lw::testing::MailTestServer>("smtp", home / "smtp");
    Exec(
        "UPDATE setup SET Userid = 'bench', UserEmail = 'me@bench.example', emailusername = 'bench', "
        "mailconnecttype = 0, mapi_compliant = 0, smtphost = '" +
        smtp->host() + "'");
    bench = std::make_unique<lw::bench::BenchProgram>(home, [](lw::Program& p) { lw::RegisterAfterSale(p); });
  }
  ~Screen() {
    bench.reset();
    smtp.reset();
  }
  void Exec(const std::string& sql) {
    sqlite3* db = nullptr;
    sqlite3_open(store.c_str(), &db);
    sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr);
    sqlite3_close(db);
  }

  // Puts 500 letters on the list, one to each of the first 500 buyers, each with its status row.
  void Queue() {
    sqlite3* db = nullptr;
    sqlite3_open(store.c_str(), &db);
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt* mail = nullptr;
    sqlite3_stmt* status = nullptr;
    sqlite3_prepare_v2(
        db,
        "INSERT INTO bulk (username, site, bulkmail, emailtext_to, emailtext_subject, emailtext) "
        "VALUES ('bench', 'eBay', -1, ?1, ?2, ?3)",
        -1, &mail, nullptr);
    sqlite3_prepare_v2(
        db,
        "INSERT INTO bulkstatuslog (auction_number, status_log_note, auction_type, "
        "emailtext_subject, emailto) VALUES (?1, 'Winning Bidder Letter mailed - ', 'Seller', ?2, ?3)",
        -1, &status, nullptr);
    for (int i = 1; i <= kLetters; ++i) {
      std::string to = "b" + std::to_string(i) + "@buyer.example";
      std::string subject =
          "Ebay Item # " + std::to_string(100000000 + i) + " Auction number " + std::to_string(i);
      std::string body = Body(i);
      sqlite3_bind_text(mail, 1, to.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(mail, 2, subject.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(mail, 3, body.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_step(mail);
      sqlite3_reset(mail);
      std::string item = std::to_string(100000000 + i);
      sqlite3_bind_text(status, 1, item.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(status, 2, subject.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(status, 3, to.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_step(status);
      sqlite3_reset(status);
    }
    sqlite3_finalize(mail);
    sqlite3_finalize(status);
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(db);
  }
  int64_t Queued() {
    auto r = bench->program->startup.db->OpenRecordset(u"Select count(*) AS n From bulk");
    return static_cast<int64_t>(*lw::NumberOf(r->Fields(u"n")));
  }
};

Screen& TheScreen() {
  static Screen screen;
  return screen;
}

void BM_BulkRunOf500Letters(benchmark::State& state) {
  Screen& s = TheScreen();
  lw::MainForm& m = s.bench->main();
  m.Auction_status_lst.SetText(u"All Auctions");
  m.Auction_status_lst.OnClick();
  for (auto _ : state) {
    state.PauseTiming();
    s.Queue();
    s.bench->program->routines.Call("ctToolBar7(2)");  // the list as "Refresh List" shows it
    state.ResumeTiming();
    s.bench->program->routines.Call("ctToolBar7(1)");
    state.PauseTiming();
    if (s.Queued() != 0) state.SkipWithError("letters were left on the list");
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kLetters);
}

// The same messages through libcurl alone: one transfer per message, nothing else.
void BM_PlainLibcurlLoopOf500Letters(benchmark::State& state) {
  Screen& s = TheScreen();
  std::vector<std::string> messages;
  for (int i = 1; i <= kLetters; ++i) {
    lw::MailMessage m;
    m.from = "bench<me@bench.example>";
    m.to = "b" + std::to_string(i) + "@buyer.example";
    m.subject = "Ebay Item # " + std::to_string(100000000 + i) + " Auction number " + std::to_string(i);
    m.extra_headers = {"X-Mailer: Lotwright"};
    m.body = Body(i);
    m.date = lw::MailDateNow();
    messages.push_back(lw::ComposeMailMessage(m));
  }
  const std::string url = "smtp://" + s.smtp->host() + "/";
  for (auto _ : state) {
    for (int i = 0; i < kLetters; ++i) {
      CURL* c = curl_easy_init();
      struct Upload {
        const std::string* data;
        size_t at;
      } upload{&messages[i], 0};
      curl_slist* rcpt =
          curl_slist_append(nullptr, ("<b" + std::to_string(i + 1) + "@buyer.example>").c_str());
      curl_easy_setopt(c, CURLOPT_URL, url.c_str());
      curl_easy_setopt(c, CURLOPT_MAIL_FROM, "<me@bench.example>");
      curl_easy_setopt(c, CURLOPT_MAIL_RCPT, rcpt);
      curl_easy_setopt(c, CURLOPT_UPLOAD, 1L);
      curl_easy_setopt(c, CURLOPT_READDATA, &upload);
      curl_easy_setopt(
          c, CURLOPT_READFUNCTION, +[](char* buf, size_t size, size_t n, void* user) -> size_t {
            auto* u = static_cast<Upload*>(user);
            size_t k = std::min(size * n, u->data->size() - u->at);
            std::memcpy(buf, u->data->data() + u->at, k);
            u->at += k;
            return k;
          });
      if (curl_easy_perform(c) != CURLE_OK) state.SkipWithError("a plain send failed");
      curl_slist_free_all(rcpt);
      curl_easy_cleanup(c);
    }
  }
  state.SetItemsProcessed(state.iterations() * kLetters);
}

BENCHMARK(BM_BulkRunOf500Letters)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);
BENCHMARK(BM_PlainLibcurlLoopOf500Letters)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
