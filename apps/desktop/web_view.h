// The web view of a browser control: Qt WebEngine. The program hands it addresses through the control's
// navigator; once a page has loaded, the view reads the page's title and its body's outer HTML and
// reports them through the control, so the program reads what the user sees.
#pragma once

#include <QPointer>
#include <QWebEngineView>

#include <cstdint>

#include "core/primitives/types.h"

class QWebEngineProfile;
class QWebEngineLoadingInfo;
class QWidget;

namespace lw {
class BrowserControl;
}

namespace lw::desktop {

class Desktop;

class WebView {
 public:
  WebView(Desktop& desktop, BrowserControl& control, QWebEngineProfile& profile);
  ~WebView();
  WebView(const WebView&) = delete;
  WebView& operator=(const WebView&) = delete;

  // Loads an address (http, https, file, or a path of the file system). A file of XML that names a
  // stylesheet shows the page the stylesheet makes of it, as the headless view does.
  void Navigate(const Text& address);
  // Shows the view in its place on the form; the view itself is made at the first address.
  void PutInto(QWidget* place);
  // The view, once made.
  QWebEngineView* view() const { return view_; }
  // The number of pages reported complete so far.
  uint64_t pages_complete() const { return pages_complete_; }

 private:
  void Make();
  void OnLoading(const QWebEngineLoadingInfo& info);

  Desktop& desktop_;
  BrowserControl& control_;
  QWebEngineProfile& profile_;
  QPointer<QWidget> place_;
  QPointer<QWebEngineView> view_;
  uint64_t navigation_ = 0;  // counts loads, so that a late report of an earlier one is dropped
  uint64_t pages_complete_ = 0;
  // The file whose styled page is on show: the page itself came as content, without an address.
  QString styled_file_;
};

}  // namespace lw::desktop
