// Fuzz target for the message composer, which takes the letter boxes as the user left them: whatever the
// subject and body, the message has only CR LF line ends, no line longer than the 998 characters SMTP
// allows, a header block that ends where the body starts, and a body that decodes back to the letter.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/mail_message.h"

namespace {

void Check(bool ok) {
  if (!ok) std::abort();
}

int Hex(char c) {
  return c <= '9' ? c - '0' : c - 'A' + 10;
}

std::string DecodeQuotedPrintable(const std::string& body) {
  std::string out;
  for (size_t i = 0; i < body.size(); ++i) {
    if (body[i] == '=' && body.compare(i + 1, 2, "\r\n") == 0) {
      i += 2;
    } else if (body[i] == '=') {
      Check(i + 2 < body.size());
      out += static_cast<char>(Hex(body[i + 1]) * 16 + Hex(body[i + 2]));
      i += 2;
    } else {
      out += body[i];
    }
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string input(reinterpret_cast<const char*>(data), size);
  size_t cut = input.find('\0');
  lw::MailMessage m;
  m.from = "Pat Seller<me@shop.example>";
  m.to = "b1@example.com";
  m.subject = cut == std::string::npos ? std::string() : input.substr(0, cut);
  m.body = cut == std::string::npos ? input : input.substr(cut + 1);
  // A subject is one line in the letter box; its line ends are not the composer's to keep.
  for (char& c : m.subject)
    if (c == '\r' || c == '\n') c = ' ';
  std::string message = lw::ComposeMailMessage(m);

  size_t line_start = 0;
  for (size_t i = 0; i < message.size(); ++i) {
    if (message[i] == '\n') Check(i > 0 && message[i - 1] == '\r');
    if (message[i] == '\r') Check(i + 1 < message.size() && message[i + 1] == '\n');
    if (message[i] == '\n') {
      Check(i - line_start <= 999);
      line_start = i + 1;
    }
  }
  size_t split = message.find("\r\n\r\n");
  Check(split != std::string::npos);
  std::string body = message.substr(split + 4);
  bool quoted = message.find("Content-Transfer-Encoding: quoted-printable\r\n") < split;
  Check((quoted ? DecodeQuotedPrintable(body) : body) == lw::CrlfLines(m.body));
  return 0;
}
