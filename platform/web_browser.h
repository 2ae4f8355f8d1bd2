// The browser view without a display. It fetches in the background with the run's shared cookies,
// keeps a history for back and forward, and holds the current page's address, title and body in the
// form a desktop browser gives them. Its events reach the model thread through the event port.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/primitives/types.h"
#include "platform/event_port.h"
#include "platform/html_document.h"
#include "platform/http_session.h"

namespace lw {

class WebBrowser {
 public:
  struct Handlers {
    // Bytes so far and bytes expected (0 when unknown); -1 so far when the page is in.
    std::function<void(long long progress, long long progress_max)> progress;
    std::function<void(const std::string& url)> navigate_complete;
    std::function<void(const std::string& url)> document_complete;
  };

  virtual ~WebBrowser() = default;
  virtual void set_handlers(Handlers handlers) = 0;

  // Starts loading an address (http, https or file). A navigation in flight is dropped.
  virtual void Navigate(const std::string& url) = 0;
  // The same with a form body sent by POST.
  virtual void NavigatePost(const std::string& url, const std::string& body) = 0;
  // Fills the named fields of a form of the current page (by its name or id, or by its number from 0
  // when `form` is all digits) and submits it as the browser would. Raises 5 when there is no such
  // form.
  virtual void SubmitForm(const std::string& form, const std::map<std::string, std::string>& values) = 0;
  virtual void GoBack() = 0;
  virtual void GoForward() = 0;
  virtual void Refresh() = 0;
  virtual void Stop() = 0;
  virtual bool busy() const = 0;

  virtual const std::string& LocationURL() const = 0;
  virtual const Text& Title() const = 0;          // Document.Title
  virtual const Text& BodyOuterHtml() const = 0;  // Document.Body.outerhtml
  virtual const std::vector<HtmlForm>& Forms() const = 0;
  // The transfer error of the last navigation, 0 when the page came.
  virtual int last_error() const = 0;
};

// The address a failed navigation shows, as the desktop browser's own error page has it; the import
// code compares against it.
inline constexpr const char* kNavigationErrorPage = "res://C:\\WINDOWS\\SYSTEM\\SHDOCLC.DLL/dnserror.htm#";

class CurlWebBrowser : public WebBrowser {
 public:
  CurlWebBrowser(const HttpSession& session, EventPort port);
  ~CurlWebBrowser() override;

  void set_handlers(Handlers handlers) override { handlers_ = std::move(handlers); }
  void Navigate(const std::string& url) override;
  void NavigatePost(const std::string& url, const std::string& body) override;
  void SubmitForm(const std::string& form, const std::map<std::string, std::string>& values) override;
  void GoBack() override;
  void GoForward() override;
  void Refresh() override;
  void Stop() override;
  bool busy() const override;

  const std::string& LocationURL() const override { return location_; }
  const Text& Title() const override { return document_.title; }
  const Text& BodyOuterHtml() const override { return document_.body_outer_html; }
  const std::vector<HtmlForm>& Forms() const override { return document_.forms; }
  int last_error() const override { return last_error_; }

 private:
  struct Flight;
  void Load(size_t history_index);
  void ReapRetired();

  const HttpSession& session_;
  EventPort port_;
  Handlers handlers_;
  std::vector<HttpRequest> history_;
  size_t current_ = 0;  // index into history_ of the page shown (or being loaded)
  std::string location_;
  HtmlDocument document_;
  int last_error_ = 0;
  std::shared_ptr<Flight> flight_;
  std::vector<std::shared_ptr<Flight>> retired_;
};

}  // namespace lw
