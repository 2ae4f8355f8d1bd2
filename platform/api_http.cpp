#include "platform/api_http.h"

#include <curl/curl.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>

#include <algorithm>
#include <cctype>
#include <memory>
#include <mutex>

#include "core/primitives/types.h"
#include "platform/charset.h"
#include "platform/curl_handle.h"

namespace lw {

namespace {

struct ConverterCloser {
  void operator()(UConverter* c) const { ucnv_close(c); }
};

struct Exchange {
  std::string* reply;
  std::string* content_type;
  bool too_big = false;
};

size_t OnBody(char* data, size_t size, size_t count, void* user) {
  auto* x = static_cast<Exchange*>(user);
  size_t n = size * count;
  if (x->reply->size() + n > CurlApiHttp::kMaxReply) {
    x->too_big = true;
    return 0;  // aborts the transfer
  }
  x->reply->append(data, n);
  return n;
}

size_t OnHeader(char* data, size_t size, size_t count, void* user) {
  auto* x = static_cast<Exchange*>(user);
  std::string line(data, size * count);
  constexpr std::string_view kName = "content-type:";
  if (line.size() > kName.size()) {
    std::string head = line.substr(0, kName.size());
    std::transform(head.begin(), head.end(), head.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (head == kName) {
      std::string value = line.substr(kName.size());
      auto blank = [](unsigned char c) { return std::isspace(c) != 0; };
      while (!value.empty() && blank(value.front())) value.erase(value.begin());
      while (!value.empty() && blank(value.back())) value.pop_back();
      *x->content_type = value;
    }
  }
  return size * count;
}

std::string Lower(std::string s) {
  std::transform(s.begin(), s.end(), s.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return s;
}

bool IsUtf8(const std::string& s) {
  size_t i = 0;
  const size_t n = s.size();
  auto cont = [&](size_t at) { return at < n && (static_cast<unsigned char>(s[at]) & 0xC0) == 0x80; };
  while (i < n) {
    unsigned char c = static_cast<unsigned char>(s[i]);
    if (c < 0x80) {
      ++i;
    } else if (c >= 0xC2 && c <= 0xDF) {
      if (!cont(i + 1)) return false;
      i += 2;
    } else if (c >= 0xE0 && c <= 0xEF) {
      if (!cont(i + 1) || !cont(i + 2)) return false;
      unsigned char c1 = static_cast<unsigned char>(s[i + 1]);
      if ((c == 0xE0 && c1 < 0xA0) || (c == 0xED && c1 >= 0xA0)) return false;  // overlong, surrogate
      i += 3;
    } else if (c >= 0xF0 && c <= 0xF4) {
      if (!cont(i + 1) || !cont(i + 2) || !cont(i + 3)) return false;
      unsigned char c1 = static_cast<unsigned char>(s[i + 1]);
      if ((c == 0xF0 && c1 < 0x90) || (c == 0xF4 && c1 >= 0x90)) return false;
      i += 4;
    } else {
      return false;
    }
  }
  return true;
}

bool IsSingleByteName(const std::string& n) {
  return n == "iso-8859-1" || n == "iso8859-1" || n == "latin1" || n == "windows-1252" || n == "cp1252" ||
         n == "us-ascii" || n == "ascii";
}

}  // namespace

std::string XmlCharset(const std::string& bytes, const std::string& content_type) {
  std::string cs = CharsetFromContentType(content_type);
  if (!cs.empty()) return cs;
  size_t start = bytes.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
  if (bytes.compare(start, 5, "<?xml") == 0) {
    size_t end = bytes.find("?>", start);
    std::string decl = Lower(bytes.substr(start, end == std::string::npos ? 200 : end - start));
    size_t at = decl.find("encoding");
    if (at != std::string::npos) {
      size_t q = decl.find_first_of("'\"", at);
      if (q != std::string::npos) {
        size_t close = decl.find(decl[q], q + 1);
        if (close != std::string::npos) return decl.substr(q + 1, close - q - 1);
      }
    }
  }
  return "utf-8";
}

bool IsTextIn(const std::string& bytes, const std::string& charset) {
  std::string name = Lower(charset);
  if (name == "utf-8" || name == "utf8") {
    size_t start = bytes.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
    return IsUtf8(start ? bytes.substr(start) : bytes);
  }
  if (IsSingleByteName(name)) return true;
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<UConverter, ConverterCloser> conv(ucnv_open(name.c_str(), &status));
  if (U_FAILURE(status) || !conv) return true;  // read as windows-1252, where every byte is a character
  ucnv_setToUCallBack(conv.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
  std::u16string out(bytes.size() * 2 + 16, u'\0');
  UChar* target = reinterpret_cast<UChar*>(out.data());
  const char* source = bytes.data();
  status = U_ZERO_ERROR;
  ucnv_toUnicode(conv.get(), &target, target + out.size(), &source, bytes.data() + bytes.size(), nullptr,
                 true, &status);
  return U_SUCCESS(status);
}

void CurlApiHttp::Open(const std::string& method, const std::string& url) {
  if (method != "POST")
    throw RuntimeError(err::kInvalidProcedureCall, "Only POST is spoken to the interface");
  url_ = url;
  headers_.clear();
  reply_.clear();
  content_type_.clear();
}

void CurlApiHttp::SetRequestHeader(const std::string& name, const std::string& value) {
  headers_.emplace_back(name, value);
}

void CurlApiHttp::Send(const std::string& body) {
  static std::once_flag init;
  std::call_once(init, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
  reply_.clear();
  content_type_.clear();
  CurlEasy curl(curl_easy_init());
  if (!curl) throw RuntimeError(CURLE_FAILED_INIT, "The connection could not be made ready");

  curl_slist* list = nullptr;
  for (const auto& [name, value] : headers_) list = curl_slist_append(list, (name + ": " + value).c_str());
  // The body is an XML text; without these libcurl would call it a form and wait for a "continue".
  list = curl_slist_append(list, "Content-Type: text/xml");
  list = curl_slist_append(list, "Expect:");
  CurlList header_list(list);

  Exchange x{&reply_, &content_type_};
  CURL* c = curl.get();
  curl_easy_setopt(c, CURLOPT_URL, url_.c_str());
  curl_easy_setopt(c, CURLOPT_POST, 1L);
  curl_easy_setopt(c, CURLOPT_POSTFIELDS, body.data());
  curl_easy_setopt(c, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
  curl_easy_setopt(c, CURLOPT_HTTPHEADER, header_list.get());
  curl_easy_setopt(c, CURLOPT_WRITEFUNCTION, &OnBody);
  curl_easy_setopt(c, CURLOPT_WRITEDATA, &x);
  curl_easy_setopt(c, CURLOPT_HEADERFUNCTION, &OnHeader);
  curl_easy_setopt(c, CURLOPT_HEADERDATA, &x);
  curl_easy_setopt(c, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(c, CURLOPT_TIMEOUT_MS, static_cast<long>(timeout_.count()));
  curl_easy_setopt(c, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(timeout_.count()));
  curl_easy_setopt(c, CURLOPT_USERAGENT, "Lotwright 4.01");

  CURLcode rc = curl_easy_perform(c);
  if (x.too_big) {
    reply_.clear();
    throw RuntimeError(CURLE_WRITE_ERROR, "The reply of the interface is too large");
  }
  if (rc != CURLE_OK) {
    reply_.clear();
    throw RuntimeError(static_cast<int>(rc), curl_easy_strerror(rc));
  }
  if (!IsTextIn(reply_, XmlCharset(reply_, content_type_))) {
    reply_.clear();
    throw RuntimeError(err::kReplyNotText,
                       "System error: the reply is not text in its declared character set");
  }
}

}  // namespace lw
