#include "apps/desktop/cookie_bridge.h"

#include <QDateTime>
#include <QMetaObject>
#include <QNetworkCookie>
#include <QUrl>
#include <QWebEngineCookieStore>

#include <set>

namespace lw::desktop {

HttpCookie FromQtCookie(const QNetworkCookie& cookie) {
  HttpCookie c;
  c.domain = cookie.domain().toStdString();
  c.include_subdomains = !c.domain.empty() && c.domain[0] == '.';
  c.path = cookie.path().isEmpty() ? "/" : cookie.path().toStdString();
  c.secure = cookie.isSecure();
  c.http_only = cookie.isHttpOnly();
  c.expires = cookie.isSessionCookie() ? 0 : cookie.expirationDate().toSecsSinceEpoch();
  c.name = cookie.name().toStdString();
  c.value = cookie.value().toStdString();
  return c;
}

QNetworkCookie ToQtCookie(const HttpCookie& c) {
  QNetworkCookie cookie(QByteArray::fromStdString(c.name), QByteArray::fromStdString(c.value));
  // A cookie for its host alone has no domain of its own: the origin it is set for gives the host.
  if (c.include_subdomains) cookie.setDomain(QString::fromStdString(c.domain));
  cookie.setPath(QString::fromStdString(c.path.empty() ? "/" : c.path));
  cookie.setSecure(c.secure);
  cookie.setHttpOnly(c.http_only);
  if (c.expires != 0) cookie.setExpirationDate(QDateTime::fromSecsSinceEpoch(c.expires));
  return cookie;
}

namespace {

QUrl Origin(const HttpCookie& c) {
  std::string host = c.domain;
  if (!host.empty() && host[0] == '.') host.erase(0, 1);
  return QUrl(QString::fromStdString((c.secure ? "https://" : "http://") + host + "/"));
}

}  // namespace

std::string CookieBridge::Key(const HttpCookie& c) {
  std::string domain = c.domain;
  if (!domain.empty() && domain[0] == '.') domain.erase(0, 1);
  return domain + '\t' + c.path + '\t' + c.name;
}

CookieBridge::CookieBridge(HttpSession& session, QWebEngineCookieStore& store)
    : session_(session), store_(&store) {
  QObject::connect(store_, &QWebEngineCookieStore::cookieAdded, &context_,
                   [this](const QNetworkCookie& c) { FromWebView(c, true); });
  QObject::connect(store_, &QWebEngineCookieStore::cookieRemoved, &context_,
                   [this](const QNetworkCookie& c) { FromWebView(c, false); });
  session_.set_cookies_changed([this] {
    QMetaObject::invokeMethod(
        &context_, [this] { FromSession(); }, Qt::QueuedConnection);
  });
  // What the session holds already is the web view's too.
  FromSession();
}

CookieBridge::~CookieBridge() {
  session_.set_cookies_changed(nullptr);
}

void CookieBridge::FromWebView(const QNetworkCookie& cookie, bool added) {
  HttpCookie c = FromQtCookie(cookie);
  const std::string key = Key(c);
  if (added) {
    auto it = shared_.find(key);
    if (it != shared_.end() && it->second.value == c.value && it->second.expires == c.expires) return;
    shared_[key] = c;
    session_.SetCookie(c);
  } else {
    if (!shared_.erase(key)) return;
    session_.RemoveCookie(c);
  }
}

void CookieBridge::FromSession() {
  if (!store_) return;
  std::set<std::string> held;
  for (const HttpCookie& c : session_.Cookies()) {
    const std::string key = Key(c);
    held.insert(key);
    auto it = shared_.find(key);
    if (it != shared_.end() && it->second.value == c.value && it->second.expires == c.expires) continue;
    shared_[key] = c;
    store_->setCookie(ToQtCookie(c), Origin(c));
  }
  for (auto it = shared_.begin(); it != shared_.end();) {
    if (held.count(it->first)) {
      ++it;
      continue;
    }
    store_->deleteCookie(ToQtCookie(it->second), Origin(it->second));
    it = shared_.erase(it);
  }
}

}  // namespace lw::desktop
