// One HTTP session for the run: every transport shares its cookies, so that a sign-in made in the
// browser view holds for the pages fetched in the background too. Built on libcurl; a fetch blocks the
// thread that makes it, and the transports choose which thread that is.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace lw {

struct HttpRequest {
  std::string url;
  std::string method = "GET";  // GET or POST
  std::string body;            // POST only
  std::string content_type = "application/x-www-form-urlencoded";
  std::string referer;
};

struct HttpResponse {
  long status = 0;           // 0 for a file
  std::string body;          // the bytes as they came
  std::string content_type;  // Content-Type header, empty when none
  std::string url;           // the address after redirects
};

// Hooks into one fetch. All run on the fetching thread.
struct FetchControl {
  const std::atomic<bool>* cancel = nullptr;
  // Bytes so far and bytes expected (0 when unknown).
  std::function<void(long long received, long long expected)> progress;
  // The connection stands and the request is about to go; false aborts the fetch.
  std::function<bool()> connected;
};

// A cookie as the session keeps it. A domain with a leading dot, or `include_subdomains`, holds for the
// hosts under it too; a cookie without a Domain attribute holds for its host alone.
struct HttpCookie {
  std::string domain;
  bool include_subdomains = false;
  std::string path = "/";
  bool secure = false;
  bool http_only = false;
  long long expires = 0;  // seconds since 1970; 0 for a cookie that ends with the session
  std::string name;
  std::string value;
  friend bool operator==(const HttpCookie&, const HttpCookie&) = default;
};

// Fetch failures carry libcurl's error number, the number the program reports to the user.
inline constexpr int kCurlTimedOut = 28;
inline constexpr int kCurlAborted = 42;

class HttpSession {
 public:
  HttpSession();
  ~HttpSession();
  HttpSession(const HttpSession&) = delete;
  HttpSession& operator=(const HttpSession&) = delete;

  // Longest a whole fetch may take, and the longest a connection may take to stand.
  void set_timeout(std::chrono::milliseconds t) { timeout_ = t; }
  std::chrono::milliseconds timeout() const { return timeout_; }
  void set_connect_timeout(std::chrono::milliseconds t) { connect_timeout_ = t; }
  void set_user_agent(std::string ua) { user_agent_ = std::move(ua); }

  // Blocking fetch. Raises RuntimeError with libcurl's error number when no answer came (refused,
  // timed out, cancelled, bad address); an HTTP error status is an answer and is returned.
  HttpResponse Perform(const HttpRequest& request, const FetchControl& control = {}) const;

  // The cookies held, in the Netscape file form (for looking at, and for tests).
  std::string CookieList() const;
  void ClearCookies();

  // The cookies held, one by one, so that another cookie store (a desktop web view's) can share them.
  std::vector<HttpCookie> Cookies() const;
  // Adds or replaces a cookie (same domain, path and name); an `expires` in the past removes it.
  void SetCookie(const HttpCookie& cookie);
  void RemoveCookie(const HttpCookie& cookie);
  // Called after a fetch that changed the cookies held, on the thread that fetched; not for changes made
  // through SetCookie or RemoveCookie.
  void set_cookies_changed(std::function<void()> callback);

 private:
  struct Share;
  void NoteCookies() const;
  std::unique_ptr<Share> share_;
  mutable std::mutex cookies_mutex_;
  mutable std::string cookies_seen_;  // the cookie list as last seen, to tell when a fetch changed it
  std::function<void()> cookies_changed_;
  std::chrono::milliseconds timeout_{60000};
  std::chrono::milliseconds connect_timeout_{30000};
  std::string user_agent_ = "Mozilla/4.0 (compatible; Lotwright 4.01)";
};

// Resolves `relative` against `base` as a browser does; `relative` when it cannot.
std::string ResolveUrl(const std::string& base, const std::string& relative);
// Percent-encoding of a form value as a browser posts it: letters, digits and "-_.*" stay, blanks
// become "+", everything else %XX of its UTF-8 bytes.
std::string FormEncode(const std::string& value);
// Percent-encoding of a query value: letters, digits and "-_.~" stay, everything else (blanks too)
// becomes %XX.
std::string PercentEncode(const std::string& value);
// An address as a browser sends it: what cannot stand in an address (blanks, control characters, bytes
// beyond ASCII, quotes, angle brackets ...) becomes %XX; everything else, escapes included, stays.
std::string BrowserAddress(const std::string& address);

}  // namespace lw
