#include "platform/http_session.h"

#include <cctype>
#include <cstring>

#include <curl/curl.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <mutex>

#include "core/primitives/types.h"
#include "platform/curl_handle.h"

namespace lw {

namespace {

std::once_flag g_curl_init;

void InitCurl() {
  std::call_once(g_curl_init, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

struct Transfer {
  HttpResponse* response;
  const FetchControl* control;
  long long last_received = -1;
  long long last_expected = -1;
};

size_t OnBody(char* data, size_t size, size_t count, void* user) {
  auto* t = static_cast<Transfer*>(user);
  t->response->body.append(data, size * count);
  return size * count;
}

int OnProgress(void* user, curl_off_t dltotal, curl_off_t dlnow, curl_off_t, curl_off_t) {
  auto* t = static_cast<Transfer*>(user);
  if (t->control->cancel && t->control->cancel->load()) return 1;
  if (t->control->progress && (dlnow != t->last_received || dltotal != t->last_expected)) {
    t->last_received = dlnow;
    t->last_expected = dltotal;
    t->control->progress(dlnow, dltotal);
  }
  return 0;
}

int OnPrereq(void* user, char*, char*, int, int) {
  auto* t = static_cast<Transfer*>(user);
  if (t->control->cancel && t->control->cancel->load()) return CURL_PREREQFUNC_ABORT;
  if (t->control->connected && !t->control->connected()) return CURL_PREREQFUNC_ABORT;
  return CURL_PREREQFUNC_OK;
}

}  // namespace

// The shared cookie store, locked because background fetches run on their own threads.
struct HttpSession::Share {
  CURLSH* handle = nullptr;
  std::array<std::mutex, CURL_LOCK_DATA_LAST> locks;

  Share() {
    handle = curl_share_init();
    curl_share_setopt(handle, CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
    curl_share_setopt(handle, CURLSHOPT_SHARE, CURL_LOCK_DATA_DNS);
    curl_share_setopt(handle, CURLSHOPT_USERDATA, this);
    curl_share_setopt(handle, CURLSHOPT_LOCKFUNC, &Share::Lock);
    curl_share_setopt(handle, CURLSHOPT_UNLOCKFUNC, &Share::Unlock);
  }
  ~Share() { curl_share_cleanup(handle); }

  static void Lock(CURL*, curl_lock_data data, curl_lock_access, void* user) {
    static_cast<Share*>(user)->locks[data].lock();
  }
  static void Unlock(CURL*, curl_lock_data data, void* user) {
    static_cast<Share*>(user)->locks[data].unlock();
  }
};

HttpSession::HttpSession() {
  InitCurl();
  share_ = std::make_unique<Share>();
}

HttpSession::~HttpSession() = default;

HttpResponse HttpSession::Perform(const HttpRequest& request, const FetchControl& control) const {
  CurlEasy easy(curl_easy_init());
  if (!easy) throw RuntimeError(CURLE_FAILED_INIT, "Connection Failed: cannot start a transfer");
  HttpResponse response;
  Transfer transfer{&response, &control};
  std::array<char, CURL_ERROR_SIZE> error{};
  CURL* c = easy.get();
  const std::string address = BrowserAddress(request.url);
  curl_easy_setopt(c, CURLOPT_URL, address.c_str());
  curl_easy_setopt(c, CURLOPT_SHARE, share_->handle);
  curl_easy_setopt(c, CURLOPT_COOKIEFILE, "");  // cookie engine on, nothing read from disk
  curl_easy_setopt(c, CURLOPT_PROTOCOLS_STR, "http,https,file");
  curl_easy_setopt(c, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(c, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(c, CURLOPT_MAXREDIRS, 20L);
  curl_easy_setopt(c, CURLOPT_AUTOREFERER, 1L);
  curl_easy_setopt(c, CURLOPT_ACCEPT_ENCODING, "");
  curl_easy_setopt(c, CURLOPT_USERAGENT, user_agent_.c_str());
  curl_easy_setopt(c, CURLOPT_TIMEOUT_MS, static_cast<long>(timeout_.count()));
  curl_easy_setopt(c, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(connect_timeout_.count()));
  curl_easy_setopt(c, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(c, CURLOPT_ERRORBUFFER, error.data());
  curl_easy_setopt(c, CURLOPT_WRITEFUNCTION, &OnBody);
  curl_easy_setopt(c, CURLOPT_WRITEDATA, &transfer);
  curl_easy_setopt(c, CURLOPT_NOPROGRESS, 0L);
  curl_easy_setopt(c, CURLOPT_XFERINFOFUNCTION, &OnProgress);
  curl_easy_setopt(c, CURLOPT_XFERINFODATA, &transfer);
  curl_easy_setopt(c, CURLOPT_PREREQFUNCTION, &OnPrereq);
  curl_easy_setopt(c, CURLOPT_PREREQDATA, &transfer);
  if (!request.referer.empty()) curl_easy_setopt(c, CURLOPT_REFERER, request.referer.c_str());
  CurlList headers;
  if (request.method == "POST") {
    curl_easy_setopt(c, CURLOPT_POST, 1L);
    curl_easy_setopt(c, CURLOPT_POSTFIELDSIZE, static_cast<long>(request.body.size()));
    curl_easy_setopt(c, CURLOPT_POSTFIELDS, request.body.c_str());
    std::string type = "Content-Type: " + request.content_type;
    headers.reset(curl_slist_append(nullptr, type.c_str()));
    curl_easy_setopt(c, CURLOPT_HTTPHEADER, headers.get());
  } else if (request.method != "GET") {
    throw RuntimeError(err::kInvalidProcedureCall, "Unsupported request method " + request.method);
  }

  CURLcode rc = curl_easy_perform(c);
  NoteCookies();
  if (rc != CURLE_OK) {
    std::string why = error[0] ? error.data() : curl_easy_strerror(rc);
    if (control.cancel && control.cancel->load()) why = "the transfer was cancelled";
    throw RuntimeError(static_cast<int>(rc), "Connection Failed: " + why);
  }
  curl_easy_getinfo(c, CURLINFO_RESPONSE_CODE, &response.status);
  char* type = nullptr;
  if (curl_easy_getinfo(c, CURLINFO_CONTENT_TYPE, &type) == CURLE_OK && type) response.content_type = type;
  char* url = nullptr;
  if (curl_easy_getinfo(c, CURLINFO_EFFECTIVE_URL, &url) == CURLE_OK && url) response.url = url;
  return response;
}

std::string HttpSession::CookieList() const {
  CurlEasy easy(curl_easy_init());
  curl_easy_setopt(easy.get(), CURLOPT_SHARE, share_->handle);
  curl_easy_setopt(easy.get(), CURLOPT_COOKIEFILE, "");
  curl_slist* list = nullptr;
  std::string out;
  if (curl_easy_getinfo(easy.get(), CURLINFO_COOKIELIST, &list) == CURLE_OK) {
    for (curl_slist* l = list; l; l = l->next) out += std::string(l->data) + "\n";
    curl_slist_free_all(list);
  }
  return out;
}

void HttpSession::ClearCookies() {
  CurlEasy easy(curl_easy_init());
  curl_easy_setopt(easy.get(), CURLOPT_SHARE, share_->handle);
  curl_easy_setopt(easy.get(), CURLOPT_COOKIELIST, "ALL");
}

namespace {

constexpr char kHttpOnlyPrefix[] = "#HttpOnly_";

std::vector<std::string> SplitTabs(const std::string& line) {
  std::vector<std::string> out;
  size_t from = 0;
  for (size_t tab; (tab = line.find('\t', from)) != std::string::npos; from = tab + 1)
    out.push_back(line.substr(from, tab - from));
  out.push_back(line.substr(from));
  return out;
}

std::string CookieLine(const HttpCookie& c) {
  std::string domain = c.domain;
  bool subdomains = c.include_subdomains || (!domain.empty() && domain[0] == '.');
  if (subdomains && !domain.empty() && domain[0] != '.') domain = "." + domain;
  return std::string(c.http_only ? kHttpOnlyPrefix : "") + domain + "\t" + (subdomains ? "TRUE" : "FALSE") +
         "\t" + (c.path.empty() ? "/" : c.path) + "\t" + (c.secure ? "TRUE" : "FALSE") + "\t" +
         std::to_string(c.expires) + "\t" + c.name + "\t" + c.value;
}

}  // namespace

std::vector<HttpCookie> HttpSession::Cookies() const {
  std::vector<HttpCookie> out;
  const std::string list = CookieList();
  const long long now = static_cast<long long>(std::time(nullptr));
  size_t from = 0;
  while (from < list.size()) {
    size_t end = list.find('\n', from);
    if (end == std::string::npos) end = list.size();
    std::string line = list.substr(from, end - from);
    from = end + 1;
    HttpCookie c;
    if (line.rfind(kHttpOnlyPrefix, 0) == 0) {
      c.http_only = true;
      line.erase(0, sizeof kHttpOnlyPrefix - 1);
    }
    auto f = SplitTabs(line);
    if (f.size() != 7) continue;
    c.domain = f[0];
    c.include_subdomains = f[1] == "TRUE";
    c.path = f[2];
    c.secure = f[3] == "TRUE";
    c.expires = std::strtoll(f[4].c_str(), nullptr, 10);
    c.name = f[5];
    c.value = f[6];
    // An expired cookie is no longer sent; the engine keeps it listed until it next tidies up.
    if (c.expires != 0 && c.expires < now) continue;
    out.push_back(std::move(c));
  }
  return out;
}

void HttpSession::SetCookie(const HttpCookie& cookie) {
  if (cookie.name.empty() || cookie.domain.empty()) return;
  CurlEasy easy(curl_easy_init());
  curl_easy_setopt(easy.get(), CURLOPT_SHARE, share_->handle);
  curl_easy_setopt(easy.get(), CURLOPT_COOKIEFILE, "");
  curl_easy_setopt(easy.get(), CURLOPT_COOKIELIST, CookieLine(cookie).c_str());
  // A change made from outside is no news to the one who made it.
  std::lock_guard lock(cookies_mutex_);
  cookies_seen_ = CookieList();
}

void HttpSession::RemoveCookie(const HttpCookie& cookie) {
  HttpCookie gone = cookie;
  gone.value.clear();
  gone.expires = 1;  // long past: the cookie engine drops it
  SetCookie(gone);
}

void HttpSession::set_cookies_changed(std::function<void()> callback) {
  std::lock_guard lock(cookies_mutex_);
  cookies_changed_ = std::move(callback);
  cookies_seen_ = CookieList();
}

void HttpSession::NoteCookies() const {
  std::function<void()> tell;
  {
    std::lock_guard lock(cookies_mutex_);
    if (!cookies_changed_) return;
    std::string now = CookieList();
    if (now == cookies_seen_) return;
    cookies_seen_ = std::move(now);
    tell = cookies_changed_;
  }
  tell();
}

std::string ResolveUrl(const std::string& base, const std::string& relative) {
  CURLU* u = curl_url();
  std::string out = relative;
  if (curl_url_set(u, CURLUPART_URL, base.c_str(), 0) == CURLUE_OK &&
      curl_url_set(u, CURLUPART_URL, relative.c_str(), 0) == CURLUE_OK) {
    char* full = nullptr;
    if (curl_url_get(u, CURLUPART_URL, &full, 0) == CURLUE_OK) {
      out = full;
      curl_free(full);
    }
  }
  curl_url_cleanup(u);
  return out;
}

namespace {

std::string Encode(const std::string& value, const char* unreserved, bool blank_as_plus) {
  static const char* kHex = "0123456789ABCDEF";
  std::string out;
  for (unsigned char ch : value) {
    if (std::isalnum(ch) || (ch != 0 && std::strchr(unreserved, ch))) {
      out.push_back(static_cast<char>(ch));
    } else if (ch == ' ' && blank_as_plus) {
      out.push_back('+');
    } else {
      out.push_back('%');
      out.push_back(kHex[ch >> 4]);
      out.push_back(kHex[ch & 15]);
    }
  }
  return out;
}

}  // namespace

std::string FormEncode(const std::string& value) {
  return Encode(value, "-_.*", true);
}

std::string PercentEncode(const std::string& value) {
  return Encode(value, "-_.~", false);
}

std::string BrowserAddress(const std::string& address) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out;
  out.reserve(address.size());
  for (unsigned char c : address) {
    if (c <= 0x20 || c >= 0x7F || std::strchr("\"<>\\^`{|}", c)) {
      out += '%';
      out += kHex[c >> 4];
      out += kHex[c & 15];
    } else {
      out += static_cast<char>(c);
    }
  }
  return out;
}

}  // namespace lw
