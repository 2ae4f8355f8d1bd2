// The transports against a real HTTP server on the loopback: charset decoding, cookies across a
// sign-in, the browser view's page form and history, and the background fetch's events and failures.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <vector>

#include "core/primitives/encoding.h"
#include "platform/async_http.h"
#include "platform/inet.h"
#include "platform/loopback_http_server.h"
#include "platform/web_browser.h"

namespace lw {
namespace {

using namespace std::chrono_literals;

const std::string kPages = std::string(LW_SOURCE_DIR) + "/platform/testdata/pages";

// The model thread's queue as the tests need it: closures posted from workers run when pumped.
class TestQueue {
 public:
  EventPort Port() {
    return EventPort{[this](std::function<void()> f) {
                       std::lock_guard<std::mutex> lock(m_);
                       q_.push_back(std::move(f));
                       cv_.notify_all();
                     },
                     nullptr};
  }
  // Runs events until `done` holds; false when `limit` passed first.
  bool PumpUntil(const std::function<bool()>& done, std::chrono::milliseconds limit = 10s) {
    auto deadline = std::chrono::steady_clock::now() + limit;
    while (!done()) {
      std::function<void()> f;
      {
        std::unique_lock<std::mutex> lock(m_);
        if (!cv_.wait_until(lock, deadline, [&] { return !q_.empty(); })) return false;
        f = std::move(q_.front());
        q_.pop_front();
      }
      f();
    }
    return true;
  }
  void PumpFor(std::chrono::milliseconds d) {
    PumpUntil([] { return false; }, d);
  }

 private:
  std::mutex m_;
  std::condition_variable cv_;
  std::deque<std::function<void()>> q_;
};

std::string ReadFile(const std::filesystem::path& p) {
  std::ifstream in(p, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// A port nothing listens on: bound and closed again.
int RefusingPort() {
  int s = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  bind(s, reinterpret_cast<sockaddr*>(&a), sizeof a);
  socklen_t len = sizeof a;
  getsockname(s, reinterpret_cast<sockaddr*>(&a), &len);
  close(s);
  return ntohs(a.sin_port);
}

TEST(Inet, DecodesByDeclaredCharsetAndReturnsErrorPages) {
  testing::LoopbackHttpServer server(kPages, {"--fail", "/broken=500"});
  HttpSession session;
  CurlInet inet(session);
  // Header charset, meta charset, and nothing declared (windows-1252).
  EXPECT_NE(inet.OpenURL(server.base() + "/utf8.htm").find(u"Caf\u00e9"), Text::npos);
  EXPECT_NE(inet.OpenURL(server.base() + "/latin1.htm").find(u"caf\u00e9"), Text::npos);
  Text plain = inet.OpenURL(server.base() + "/plain.htm");
  EXPECT_NE(plain.find(u"\u20ac 5 \u201cquoted\u201d"), Text::npos);
  // Routed by query: the seller list address gives its fixture page.
  EXPECT_NE(
      inet.OpenURL(server.base() + "/eBayISAPI.dll?ViewListedItemsWithEmails&userid=x").find(u"1234567890"),
      Text::npos);
  // An error status is still an answer: the caller gets what came.
  EXPECT_NE(inet.OpenURL(server.base() + "/broken").find(u"Internal Server Error"), Text::npos);
}

TEST(Inet, RaisesTheTransferErrorNumberWhenNothingComes) {
  testing::LoopbackHttpServer server(kPages, {"--stall", "/slow", "--fail", "/cut=close"});
  HttpSession session;
  session.set_timeout(1500ms);
  CurlInet inet(session);
  auto number_of = [&](const std::string& url) {
    try {
      inet.OpenURL(url);
    } catch (const RuntimeError& e) {
      return e.number();
    }
    return 0;
  };
  EXPECT_EQ(number_of("http://127.0.0.1:" + std::to_string(RefusingPort()) + "/x"), 7);
  auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(number_of(server.base() + "/slow"), kCurlTimedOut);
  EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
  EXPECT_EQ(number_of(server.base() + "/cut"), 52);  // empty reply
  EXPECT_NE(number_of("notascheme://x"), 0);
}

TEST(WebBrowser, SignInHoldsForEveryTransportOfTheSession) {
  testing::LoopbackHttpServer server(kPages, {"--signin", "seller1:secret"});
  HttpSession session;
  TestQueue queue;
  CurlWebBrowser browser(session, queue.Port());
  std::vector<std::string> events;
  browser.set_handlers({nullptr, [&](const std::string& u) { events.push_back("nav " + u); },
                        [&](const std::string& u) { events.push_back("doc " + u); }});

  std::string list = server.base() + "/eBayISAPI.dll?ViewListedItemsWithEmails&userid=seller1";
  browser.Navigate(list);
  ASSERT_TRUE(queue.PumpUntil([&] { return events.size() == 2; }));
  EXPECT_EQ(events[0], "nav " + list);
  EXPECT_EQ(events[1], "doc " + list);
  EXPECT_EQ(browser.Title(), u"Sign In");
  EXPECT_NE(browser.BodyOuterHtml().find(u"Please sign in:"), Text::npos);

  // A wrong password keeps the sign-in page; the right one lands on the page asked for.
  browser.SubmitForm("SignInForm", {{"userid", "seller1"}, {"pass", "wrong"}});
  ASSERT_TRUE(queue.PumpUntil([&] { return events.size() == 4; }));
  EXPECT_NE(browser.BodyOuterHtml().find(u"incorrect"), Text::npos);
  browser.SubmitForm("0", {{"userid", "seller1"}, {"pass", "secret"}});
  ASSERT_TRUE(queue.PumpUntil([&] { return events.size() == 6; }));
  EXPECT_EQ(browser.LocationURL(), list);
  EXPECT_EQ(browser.Title(), u"eBay Listings for seller");

  // The background fetch and the blocking fetch see the same session.
  CurlInet inet(session);
  EXPECT_NE(inet.OpenURL(server.base() + "/next.htm").find(u"second"), Text::npos);
  CurlAsyncHttp async(session, queue.Port());
  bool done = false;
  async.set_handlers({[&] { async.StartTransfer(); }, [&] { done = true; }, nullptr});
  async.set_url(server.base() + "/next.htm");
  async.Connect();
  ASSERT_TRUE(queue.PumpUntil([&] { return done; }));
  EXPECT_NE(async.text().find(u"second"), Text::npos);

  // A fresh session is not signed in.
  HttpSession other;
  CurlInet stranger(other);
  EXPECT_NE(stranger.OpenURL(server.base() + "/next.htm").find(u"Please sign in:"), Text::npos);
  EXPECT_THROW(browser.SubmitForm("nosuchform", {}), RuntimeError);
}

TEST(WebBrowser, BodyPutsEachCellOnItsOwnLineAndHistoryWalks) {
  testing::LoopbackHttpServer server(kPages);
  HttpSession session;
  TestQueue queue;
  CurlWebBrowser browser(session, queue.Port());
  int documents = 0;
  long long last_progress = 0;
  browser.set_handlers({[&](long long p, long long) { last_progress = p; }, nullptr,
                        [&](const std::string&) { ++documents; }});
  browser.Navigate(server.base() + "/eBayISAPI.dll?ViewListedItemsWithEmails");
  ASSERT_TRUE(queue.PumpUntil([&] { return documents == 1; }));
  EXPECT_EQ(last_progress, -1);
  const Text& body = browser.BodyOuterHtml();
  EXPECT_EQ(body.rfind(u"<BODY", 0), 0u);
  EXPECT_NE(body.find(u"\r\n<TD>1234567890</TD>\r\n<TD>Mar-01-03 10:00:00</TD>\r\n<TD>$12.50</TD>"),
            Text::npos);
  EXPECT_NE(body.find(u"\r\n<TH>Item</TH>\r\n<TD>2nd</TD>"), Text::npos);
  // Entities come back as entities, the no-break blank as the one the normaliser removes.
  EXPECT_NE(body.find(u">Blue&nbsp;vase &amp; stand</A>"), Text::npos);
  EXPECT_EQ(browser.Forms().size(), 1u);
  EXPECT_EQ(browser.Forms()[0].fields,
            (std::vector<std::pair<std::string, std::string>>{{"q", "x y"}, {"go", "Go"}}));

  browser.Navigate(server.base() + "/next.htm");
  ASSERT_TRUE(queue.PumpUntil([&] { return documents == 2; }));
  browser.GoBack();
  ASSERT_TRUE(queue.PumpUntil([&] { return documents == 3; }));
  EXPECT_EQ(browser.Title(), u"eBay Listings for seller");
  browser.GoForward();
  ASSERT_TRUE(queue.PumpUntil([&] { return documents == 4; }));
  EXPECT_EQ(browser.Title(), u"Next page");
  browser.Refresh();
  ASSERT_TRUE(queue.PumpUntil([&] { return documents == 5; }));
  EXPECT_EQ(browser.LocationURL(), server.base() + "/next.htm");
  // Forward at the end of the history does nothing.
  browser.GoForward();
  EXPECT_FALSE(browser.busy());

  // A form with method get goes as a query on its action.
  browser.GoBack();
  ASSERT_TRUE(queue.PumpUntil([&] { return documents == 6; }));
  browser.SubmitForm("search", {{"q", "a&b"}});
  ASSERT_TRUE(queue.PumpUntil([&] { return documents == 7; }));
  EXPECT_EQ(browser.LocationURL(), server.base() + "/search?q=a%26b&go=Go");

  // A file is shown as well, decoded the same way.
  browser.Navigate("file://" + kPages + "/latin1.htm");
  ASSERT_TRUE(queue.PumpUntil([&] { return documents == 8; }));
  EXPECT_NE(browser.BodyOuterHtml().find(u"caf\u00e9"), Text::npos);
}

TEST(WebBrowser, FailedNavigationShowsTheErrorPageAndAStopIsSilent) {
  testing::LoopbackHttpServer server(kPages, {"--stall", "/slow"});
  HttpSession session;
  TestQueue queue;
  CurlWebBrowser browser(session, queue.Port());
  std::vector<std::string> docs;
  browser.set_handlers({nullptr, nullptr, [&](const std::string& u) { docs.push_back(u); }});
  std::string dead = "http://127.0.0.1:" + std::to_string(RefusingPort()) + "/x";
  browser.Navigate(dead);
  ASSERT_TRUE(queue.PumpUntil([&] { return docs.size() == 1; }));
  EXPECT_EQ(docs[0], kNavigationErrorPage + dead);
  EXPECT_EQ(browser.last_error(), 7);
  EXPECT_EQ(browser.Title(), u"Cannot find server");

  browser.Navigate(server.base() + "/slow");
  EXPECT_TRUE(browser.busy());
  browser.Stop();
  EXPECT_FALSE(browser.busy());
  queue.PumpFor(300ms);
  EXPECT_EQ(docs.size(), 1u);
}

TEST(AsyncHttp, DeliversTextWithoutTagsAndKeepsTheRawPage) {
  testing::LoopbackHttpServer server(kPages);
  HttpSession session;
  TestQueue queue;
  CurlAsyncHttp http(session, queue.Port());
  std::vector<std::string> order;
  http.set_handlers({[&] {
                       order.push_back("connected");
                       http.StartTransfer();
                     },
                     [&] { order.push_back("done"); },
                     [&](int n, const Text&) { order.push_back("error " + std::to_string(n)); }});
  auto file = std::filesystem::temp_directory_path() / ("lw_fetch_" + std::to_string(getpid()) + ".htm");
  http.set_url(server.base() + "/eBayISAPI.dll?ViewListedItemsWithEmails");
  http.set_save_file(file);
  http.set_text_without_tags(true);
  http.set_keep_raw_page(true);
  http.Connect();
  EXPECT_TRUE(http.busy());
  ASSERT_TRUE(queue.PumpUntil([&] { return order.size() == 2; }));
  EXPECT_EQ(order, (std::vector<std::string>{"connected", "done"}));
  EXPECT_FALSE(http.busy());
  EXPECT_NE(
      http.text().find(u"\r\n1234567890\r\nMar-01-03 10:00:00\r\n$12.50\r\nBlue&nbsp;vase &amp; stand\r\n"),
      Text::npos);
  EXPECT_EQ(http.text().find(u"<"), Text::npos);  // the script's "<td>" went with the script
  EXPECT_NE(http.raw_page().find(u"<td>1234567890</td>"), Text::npos);
  EXPECT_EQ(FromUtf8(ReadFile(file).substr(3)), http.raw_page());
  std::filesystem::remove(file);
}

TEST(AsyncHttp, FailuresEndInTheErrorEventWithoutBlocking) {
  testing::LoopbackHttpServer server(kPages, {"--stall", "/slow", "--fail", "/broken=500"});
  HttpSession session;
  session.set_timeout(1500ms);
  TestQueue queue;
  CurlAsyncHttp http(session, queue.Port());
  bool start = true;
  int errors = 0, dones = 0, last = 0;
  http.set_handlers({[&] {
                       if (start) http.StartTransfer();
                     },
                     [&] { ++dones; },
                     [&](int n, const Text&) {
                       ++errors;
                       last = n;
                     }});
  auto run = [&](const std::string& url) {
    int before = errors;
    http.set_url(url);
    auto t0 = std::chrono::steady_clock::now();
    http.Connect();
    // Connect returns at once: the model thread is never held by the fetch.
    EXPECT_LT(std::chrono::steady_clock::now() - t0, 200ms);
    EXPECT_TRUE(queue.PumpUntil([&] { return errors > before; }, 6s)) << url;
    return last;
  };
  EXPECT_EQ(run("http://127.0.0.1:" + std::to_string(RefusingPort()) + "/x"), 7);
  auto t0 = std::chrono::steady_clock::now();
  EXPECT_EQ(run(server.base() + "/slow"), kCurlTimedOut);
  EXPECT_LT(std::chrono::steady_clock::now() - t0, 4s);
  EXPECT_EQ(run(server.base() + "/broken"), 500);
  start = false;  // a transfer the model never lets go times out too
  EXPECT_EQ(run(server.base() + "/next.htm"), kCurlTimedOut);
  EXPECT_EQ(dones, 0);

  // Cancelled: nothing more arrives; the next fetch works.
  start = true;
  http.set_url(server.base() + "/slow");
  http.Connect();
  http.Cancel();
  int before = errors;
  queue.PumpFor(300ms);
  EXPECT_EQ(errors, before);
  http.set_url(server.base() + "/next.htm");
  http.Connect();
  ASSERT_TRUE(queue.PumpUntil([&] { return dones == 1; }));
  EXPECT_NE(http.text().find(u"second"), Text::npos);
}

}  // namespace
}  // namespace lw

namespace lw {
namespace {

TEST(BrowserAddress, OnlyWhatCannotStandInAnAddressIsEscaped) {
  EXPECT_EQ(BrowserAddress("http://h/a b?maxbid=12.50 &q=\xC3\xA9%20&k=a:b"),
            "http://h/a%20b?maxbid=12.50%20&q=%C3%A9%20&k=a:b");
  EXPECT_EQ(BrowserAddress("http://h/x?a=\"<|>\"&b=\x01"), "http://h/x?a=%22%3C%7C%3E%22&b=%01");
  EXPECT_EQ(BrowserAddress("http://h/p?x=1&y=2#top"), "http://h/p?x=1&y=2#top");
}

}  // namespace
}  // namespace lw
