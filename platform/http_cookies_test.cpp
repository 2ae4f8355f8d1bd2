// The session's cookies one by one, as another cookie store shares them: what a fetch brings is told,
// what comes from outside is sent with the next fetch and is not told back.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>

#include "platform/http_session.h"
#include "platform/loopback_http_server.h"

namespace lw {
namespace {

const std::string kPages = std::string(LW_SOURCE_DIR) + "/platform/testdata/pages";

HttpRequest Get(const std::string& url) {
  HttpRequest r;
  r.url = url;
  return r;
}

const HttpCookie* Named(const std::vector<HttpCookie>& cookies, const std::string& name) {
  auto it = std::find_if(cookies.begin(), cookies.end(), [&](const HttpCookie& c) { return c.name == name; });
  return it == cookies.end() ? nullptr : &*it;
}

TEST(HttpCookies, SetReadAndRemoveKeepEveryPart) {
  HttpSession session;
  HttpCookie c;
  c.domain = "shop.example";
  c.path = "/ws";
  c.secure = true;
  c.http_only = true;
  c.expires = 4102444800;  // 2100
  c.name = "token";
  c.value = "a b=c";
  session.SetCookie(c);
  HttpCookie wide;
  wide.domain = ".example";
  wide.name = "wide";
  wide.value = "1";
  session.SetCookie(wide);

  auto cookies = session.Cookies();
  ASSERT_EQ(cookies.size(), 2u);
  const HttpCookie* token = Named(cookies, "token");
  ASSERT_NE(token, nullptr);
  EXPECT_EQ(*token, c);
  const HttpCookie* w = Named(cookies, "wide");
  ASSERT_NE(w, nullptr);
  EXPECT_TRUE(w->include_subdomains);
  EXPECT_EQ(w->path, "/");

  c.value = "changed";
  session.SetCookie(c);
  cookies = session.Cookies();
  EXPECT_EQ(cookies.size(), 2u);
  EXPECT_EQ(Named(cookies, "token")->value, "changed");

  session.RemoveCookie(c);
  cookies = session.Cookies();
  EXPECT_EQ(Named(cookies, "token"), nullptr);
  EXPECT_NE(Named(cookies, "wide"), nullptr);
  // A cookie without a name or a domain is nothing a server could have set.
  session.SetCookie(HttpCookie{});
  EXPECT_EQ(session.Cookies().size(), 1u);
}

TEST(HttpCookies, FetchesTellOfNewCookiesAndSendCookiesFromOutside) {
  testing::LoopbackHttpServer server(kPages, {"--signin", "alice:secret"});
  HttpSession session;
  std::atomic<int> told{0};
  session.set_cookies_changed([&] { ++told; });

  // A cookie put in from outside (a web view's sign-in) is not told back, and goes with the next fetch.
  HttpCookie outside;
  outside.domain = "127.0.0.1";
  outside.name = "lw_session";
  outside.value = "not-a-session";
  session.SetCookie(outside);
  EXPECT_EQ(told, 0);
  HttpResponse page = session.Perform(Get(server.base() + "/plain.html"));
  EXPECT_NE(page.body.find("Please sign in:"), std::string::npos);
  HttpResponse log = session.Perform(Get(server.base() + "/__control/log"));
  EXPECT_NE(log.body.find("GET /plain.html not-a-session"), std::string::npos) << log.body;
  EXPECT_EQ(told, 0);

  // The server's own session cookie from a sign-in is news.
  session.Perform(Get(server.base() + "/aw-cgi/eBayISAPI.dll?SignInWelcome&userid=alice&pass=secret"));
  EXPECT_EQ(told, 1);
  const std::vector<HttpCookie> cookies = session.Cookies();  // kept: Named points into it
  const HttpCookie* signed_in = Named(cookies, "lw_session");
  ASSERT_NE(signed_in, nullptr);
  EXPECT_NE(signed_in->value, "not-a-session");
  // A fetch that sets nothing new tells nothing.
  session.Perform(Get(server.base() + "/plain.html"));
  EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace lw
