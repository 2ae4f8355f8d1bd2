// The web view the user sees and the program's own fetches share one cookie jar: a sign-in and a
// cookie a page's script sets in the visible browser go with the next import's fetch, and a cookie the
// import's fetch brought goes with the pages the browser loads. Served by the loopback HTTP server.
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QToolBox>
#include <QWebEnginePage>

#include <algorithm>
#include <iostream>
#include <sstream>

#include "apps/desktop/desktop_testing.h"
#include "apps/desktop/web_view.h"
#include "core/primitives/encoding.h"
#include "platform/http_session.h"
#include "platform/loopback_http_server.h"
#include "screen/main/main_form.h"

namespace lw::desktop {
namespace {

using testing::Home;
using testing::User;

class DesktopWebView : public testing::DesktopTest {};

// The lines of the server's record of requests whose target holds `target`.
std::vector<std::string> Requests(const lw::testing::LoopbackHttpServer& server, const std::string& target) {
  HttpSession look;
  HttpRequest r;
  r.url = server.base() + "/__control/cookies";
  std::istringstream lines(look.Perform(r).body);
  std::vector<std::string> out;
  for (std::string line; std::getline(lines, line);)
    if (line.find(target) != std::string::npos) out.push_back(line);
  return out;
}

bool HasCookie(HttpSession& session, const std::string& name) {
  auto cookies = session.Cookies();
  return std::any_of(cookies.begin(), cookies.end(), [&](const HttpCookie& c) { return c.name == name; });
}

TEST_F(DesktopWebView, SignInAndPageCookiesServeTheImportAndTheImportsCookiesServeThePage) {
  lw::testing::LoopbackHttpServer server(
      std::string(LW_SOURCE_DIR) + "/tests/e2e/pages",
      {"--signin", "alice:secret", "--set-cookie", "/aw-cgi/eBayISAPI.dll=lw_seen=bidder-list"});
  Home home("web_cookies", false, testing::ClosedHosts("signin", server.host()));
  testing::Sql(home.store,
               "UPDATE setup SET Userid = 'alice', Password = 'secret'; DELETE FROM bidder;"
               "UPDATE misc SET servername_import1 = '" +
                   server.host() + "'");
  Desktop d(home.Options());
  User user(d);
  MainForm* main = nullptr;
  WebView* web = nullptr;
  uint64_t pages = 0;
  auto load = [&](const std::string& path) {
    pages = web->pages_complete();
    d.Dispatch([&, path] { main->WebBrowser1.Navigate(FromUtf8(server.base() + path)); });
  };
  auto loaded = [&] { return web && web->pages_complete() > pages && !main->WebBrowser1.busy; };

  user.Then("the sign-in page in the web view", testing::MainWindowShown(d),
            [&] {
              main = d.program().main;
              d.Dispatch([&] { main->SSTab1.UserTab(kBrowserPage); });
              web = &d.renderer().WebViewFor(main->WebBrowser1);
              // The page asks for a sign-in first, and comes once signed in.
              load("/desktop_cookie_page.html");
            })
      .Then("signing in on the page", loaded,
            [&] {
              EXPECT_EQ(main->WebBrowser1.document_title, u"Sign In");
              EXPECT_NE(main->WebBrowser1.document_text.find(u"Please sign in:"), Text::npos);
              pages = web->pages_complete();
              // What the user types into the site's form, and the press of its button.
              web->view()->page()->runJavaScript(
                  "var f = document.forms['SignInForm']; f.userid.value = 'alice'; f.pass.value = 'secret';"
                  "f.signin.click();");
            })
      .ThenOpening(
          "both cookies in the program's session",
          [&] {
            return loaded() && main->WebBrowser1.document_title == u"A page that keeps a cookie" &&
                   HasCookie(d.http_session(), "lw_session") && HasCookie(d.http_session(), "lw_page");
          },
          [&] {
            EXPECT_EQ(main->WebBrowser1.document_title, u"A page that keeps a cookie");
            // The bidder's import fetches in the background, with the program's own transport.
            d.Dispatch([&] { main->Auction_type_lst.UserSet(u"Bidder"); });
            auto* bar = qobject_cast<QToolBox*>(d.renderer().WidgetOf(main->ctListBar1));
            ASSERT_NE(bar, nullptr);
            auto* list = qobject_cast<QListWidget*>(bar->widget(0));
            auto found = list->findItems("Update Auctions", Qt::MatchExactly);
            ASSERT_EQ(found.size(), 1);
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(found[0]).center());
          })
      .Then(
          "the import dialog",
          [&] {
            Form* days = d.program().screen.FindForm(u"import_days_frm");
            return days && days->visible() && d.renderer().WindowOf(*days) &&
                   d.renderer().WindowOf(*days)->isVisible();
          },
          [&] {
            Form& days = *d.program().screen.FindForm(u"import_days_frm");
            auto* now = qobject_cast<QPushButton*>(d.renderer().WidgetOf(days.Get(u"import_now_btn")));
            ASSERT_NE(now, nullptr);
            QTest::mouseClick(now, Qt::LeftButton);
          })
      .Then(
          "the bidder's auctions imported",
          [&] {
            EventQueue& q = d.program().screen.queue();
            return q.Queued() == 0 && q.Outstanding() == 0 &&
                   main->StatusBar1.panel(1).find(u"Auctions Added") != Text::npos;
          },
          [&] {
            // Signed in, the import was given the bidder's list rather than the sign-in page.
            EXPECT_EQ(main->StatusBar1.panel(1),
                      u"Importing Auctions Completed.  4 Auctions Added.  0 Auctions Updated.");
            auto rs =
                d.program().startup.db->OpenRecordset(u"Select Item From bidder where username = 'alice'");
            EXPECT_FALSE(rs->Eof());
            // The import's fetch went with the web view's sign-in and the page's own cookie.
            auto fetched = Requests(server, "ViewBidItems");
            ASSERT_EQ(fetched.size(), 1u);
            EXPECT_NE(fetched[0].find("lw_session="), std::string::npos) << fetched[0];
            EXPECT_NE(fetched[0].find("lw_page=from-script"), std::string::npos) << fetched[0];
            EXPECT_NE(fetched[0].find("GET "), std::string::npos);
            // The cookie the import's answer set is the web view's now.
            ASSERT_TRUE(HasCookie(d.http_session(), "lw_seen"));
          })
      .Then("the page again, once the web view holds the import's cookie",
            [&] {
              // The web view's cookie store takes the session's news on the GUI thread.
              QTest::qWait(200);
              load("/desktop_cookie_page.html?again");
            })
      .Then("the page's request with the import's cookie", loaded, [&] {
        auto asked = Requests(server, "desktop_cookie_page.html?again");
        ASSERT_FALSE(asked.empty());
        EXPECT_NE(asked.back().find("lw_seen=bidder-list"), std::string::npos) << asked.back();
        EXPECT_NE(asked.back().find("lw_session="), std::string::npos) << asked.back();
        d.Quit(0);
      });
  const bool played = user.Play(90000);
  if (!played && main)
    for (const auto& line : Requests(server, "")) std::cerr << "server: " << line << "\n";
  ASSERT_TRUE(played) << user.stuck() << " (status: " << (main ? ToUtf8(main->StatusBar1.panel(1)) : "")
                      << ")";
}

}  // namespace
}  // namespace lw::desktop
