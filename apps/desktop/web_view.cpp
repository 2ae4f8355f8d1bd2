#include "apps/desktop/web_view.h"

#include <QFile>
#include <QLayout>
#include <QUrl>
#include <QWebEngineLoadingInfo>
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineView>

#include "apps/desktop/desktop.h"
#include "apps/desktop/qt_convert.h"
#include "core/primitives/encoding.h"
#include "platform/web_browser.h"
#include "platform/xml_stylesheet.h"
#include "screen/control.h"

namespace lw::desktop {

namespace {

// The title and the body as the page's script sees them; a page without a body (a frameset) gives its
// whole document.
constexpr char kPageScript[] =
    "[document.title, document.body ? document.body.outerHTML : document.documentElement ? "
    "document.documentElement.outerHTML : '']";

QUrl AddressUrl(const Text& address) {
  const QString a = Q(address);
  if (a.contains(QLatin1String("://"))) return QUrl(a);
  if (a.startsWith(QLatin1Char('/'))) return QUrl::fromLocalFile(a);
  return QUrl::fromUserInput(a);
}

}  // namespace

WebView::WebView(Desktop& desktop, BrowserControl& control, QWebEngineProfile& profile)
    : desktop_(desktop), control_(control), profile_(profile) {}

WebView::~WebView() {
  // The page goes before the profile it belongs to.
  delete view_.data();
}

void WebView::PutInto(QWidget* place) {
  place_ = place;
  if (view_ && place_ && place_->layout()) place_->layout()->addWidget(view_);
}

void WebView::Make() {
  if (view_) return;
  view_ = new QWebEngineView;
  auto* page = new QWebEnginePage(&profile_, view_);
  view_->setPage(page);
  QObject::connect(page, &QWebEnginePage::loadingChanged,
                   [this](const QWebEngineLoadingInfo& info) { OnLoading(info); });
  QObject::connect(page, &QWebEnginePage::loadProgress, [this](int percent) {
    const uint64_t serial = navigation_;
    desktop_.Dispatch([this, serial, percent] {
      if (serial == navigation_) control_.Progress(percent, 100);
    });
  });
  if (place_ && place_->layout()) place_->layout()->addWidget(view_);
}

void WebView::Navigate(const Text& address) {
  Make();
  control_.busy = true;
  const QUrl url = AddressUrl(address);
  styled_file_.clear();
  if (url.isLocalFile()) {
    QFile file(url.toLocalFile());
    if (file.open(QIODevice::ReadOnly)) {
      const QByteArray bytes = file.readAll();
      if (auto styled = ApplyXmlStylesheet(bytes.toStdString(), url.toString().toStdString())) {
        styled_file_ = url.toString();
        view_->setContent(QByteArray::fromStdString(styled->bytes), Q(FromUtf8(styled->content_type)), url);
        return;
      }
    }
  }
  view_->load(url);
}

void WebView::OnLoading(const QWebEngineLoadingInfo& info) {
  switch (info.status()) {
    case QWebEngineLoadingInfo::LoadStartedStatus:
      ++navigation_;
      return;
    case QWebEngineLoadingInfo::LoadStoppedStatus:
      return;  // given up for another address: that one reports
    case QWebEngineLoadingInfo::LoadSucceededStatus:
    case QWebEngineLoadingInfo::LoadFailedStatus:
      break;
  }
  const uint64_t serial = navigation_;
  // A styled page was handed over as content: it stands at its file's address.
  const QString url = !styled_file_.isEmpty() && info.url().scheme() == QLatin1String("data")
                          ? styled_file_
                          : info.url().toString();
  if (info.status() == QWebEngineLoadingInfo::LoadFailedStatus) {
    // As the headless view does: the error page's address and a page that says why.
    const Text where = FromUtf8(kNavigationErrorPage) + FromQ(url);
    const Text why = FromQ(info.errorString());
    desktop_.Dispatch([this, serial, where, url, why] {
      if (serial != navigation_) return;
      ++pages_complete_;
      control_.Progress(-1, 0);
      control_.NavigateComplete(where, u"Cannot find server");
      control_.DocumentComplete(where, u"Cannot find server",
                                u"<BODY>\r\n<H1>The page cannot be displayed</H1>\r\n<P>" + FromQ(url) +
                                    u"</P>\r\n<P>" + why + u"</P></BODY>");
    });
    return;
  }
  // The body is read from the page as it stands once it has loaded.
  QPointer<QWebEngineView> view = view_;
  view_->page()->runJavaScript(QString::fromLatin1(kPageScript),
                               [this, view, serial, url](const QVariant& page) {
                                 if (!view || serial != navigation_) return;
                                 const QVariantList parts = page.toList();
                                 const Text title = parts.size() == 2 ? FromQ(parts[0].toString()) : Text();
                                 const Text address = FromQ(url);
                                 const Text html = parts.size() == 2 ? FromQ(parts[1].toString()) : Text();
                                 desktop_.Dispatch([this, serial, title, address, html] {
                                   if (serial != navigation_) return;
                                   ++pages_complete_;
                                   control_.Progress(-1, 0);
                                   control_.NavigateComplete(address, title);
                                   control_.DocumentComplete(address, title, html);
                                 });
                               });
}

}  // namespace lw::desktop
