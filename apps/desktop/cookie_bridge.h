// One cookie jar for what the user sees and what the program fetches: the web view's cookie store and
// the program's HTTP session hand every cookie one sets to the other, so that a sign-in on the site's
// page in the visible browser serves the next import, and a cookie the program's fetches brought is
// sent by the page.
#pragma once

#include <QObject>
#include <QPointer>

#include <map>
#include <string>

#include "platform/http_session.h"

class QNetworkCookie;
class QWebEngineCookieStore;

namespace lw::desktop {

// Between the two forms of a cookie.
HttpCookie FromQtCookie(const QNetworkCookie& cookie);
QNetworkCookie ToQtCookie(const HttpCookie& cookie);

class CookieBridge {
 public:
  CookieBridge(HttpSession& session, QWebEngineCookieStore& store);
  ~CookieBridge();
  CookieBridge(const CookieBridge&) = delete;
  CookieBridge& operator=(const CookieBridge&) = delete;

 private:
  // The session's cookies changed (a fetch on some thread): the web view takes the new ones on the GUI
  // thread, and loses the ones the session dropped.
  void FromSession();
  void FromWebView(const QNetworkCookie& cookie, bool added);
  static std::string Key(const HttpCookie& cookie);

  HttpSession& session_;
  QPointer<QWebEngineCookieStore> store_;
  QObject context_;  // lives on the GUI thread: the session's news is queued to it
  // What both sides hold, by domain, path and name, as last handed across.
  std::map<std::string, HttpCookie> shared_;
};

}  // namespace lw::desktop
