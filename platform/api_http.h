// The XML HTTP request object of the site's XML interface: one synchronous POST of an XML text with the
// headers the caller sets, and the whole reply. The program's thread waits for the reply; a timeout
// bounds the wait.
#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace lw {

namespace err {
// The reply came but is not text in the character set it declares.
inline constexpr int kReplyNotText = -1072896658;
}  // namespace err

class ApiHttp {
 public:
  virtual ~ApiHttp() = default;

  // Starts a request: forgets the headers and the reply of the last one. Only "POST" is spoken.
  virtual void Open(const std::string& method, const std::string& url) = 0;
  // Headers go out in the order they are set.
  virtual void SetRequestHeader(const std::string& name, const std::string& value) = 0;
  // Sends the body and waits for the whole reply. Raises RuntimeError with libcurl's error number when
  // no reply came (refused, timed out, bad address), and kReplyNotText when the reply's bytes are not
  // text in its declared character set. An HTTP error status is a reply like any other.
  virtual void Send(const std::string& body) = 0;
  // The reply's bytes as they came, and its Content-Type header.
  virtual const std::string& ResponseText() const = 0;
  virtual const std::string& ResponseContentType() const = 0;
};

class CurlApiHttp : public ApiHttp {
 public:
  // `timeout` bounds the whole exchange, connection included.
  explicit CurlApiHttp(std::chrono::milliseconds timeout) : timeout_(timeout) {}

  void Open(const std::string& method, const std::string& url) override;
  void SetRequestHeader(const std::string& name, const std::string& value) override;
  void Send(const std::string& body) override;
  const std::string& ResponseText() const override { return reply_; }
  const std::string& ResponseContentType() const override { return content_type_; }

  // A reply larger than this is refused rather than held: no reply of the interface comes near it.
  static constexpr size_t kMaxReply = 256u << 20;

 private:
  std::chrono::milliseconds timeout_;
  std::string url_;
  std::vector<std::pair<std::string, std::string>> headers_;
  std::string reply_;
  std::string content_type_;
};

// The character set of an XML text: the Content-Type's charset, else the encoding of its XML
// declaration, else UTF-8. Lower case.
std::string XmlCharset(const std::string& bytes, const std::string& content_type);
// True when the bytes read as text in that character set (every byte does in the single-byte sets).
bool IsTextIn(const std::string& bytes, const std::string& charset);

}  // namespace lw
