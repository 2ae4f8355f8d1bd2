#include "platform/mail_message.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace lw {
namespace {

constexpr char kCrlf[] = "\r\n";
// Header lines are folded to stay readable, and a body line longer than this may not travel as it is.
constexpr size_t kFoldAt = 78;
constexpr size_t kLongestLine = 998;
constexpr size_t kQuotedPrintableWidth = 76;

bool PlainAscii(const std::string& s) {
  for (unsigned char c : s)
    if (c >= 0x80 || (c < 0x20 && c != '\t')) return false;
  return true;
}

std::string Base64(const std::string& bytes) {
  static const char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  size_t i = 0;
  for (; i + 2 < bytes.size(); i += 3) {
    unsigned v = (static_cast<unsigned char>(bytes[i]) << 16) |
                 (static_cast<unsigned char>(bytes[i + 1]) << 8) | static_cast<unsigned char>(bytes[i + 2]);
    out += kDigits[v >> 18];
    out += kDigits[(v >> 12) & 63];
    out += kDigits[(v >> 6) & 63];
    out += kDigits[v & 63];
  }
  if (i < bytes.size()) {
    unsigned v = static_cast<unsigned char>(bytes[i]) << 16;
    if (i + 1 < bytes.size()) v |= static_cast<unsigned char>(bytes[i + 1]) << 8;
    out += kDigits[v >> 18];
    out += kDigits[(v >> 12) & 63];
    out += i + 1 < bytes.size() ? kDigits[(v >> 6) & 63] : '=';
    out += '=';
  }
  return out;
}

// A run of characters without a blank longer than a header line can hold cannot be folded.
bool Unfoldable(const std::string& text) {
  size_t run = 0;
  for (char c : text) {
    run = c == ' ' ? 0 : run + 1;
    if (run > kLongestLine - kFoldAt) return true;
  }
  return false;
}

// Encoded words of at most 45 bytes of text each (60 after encoding), never splitting a character.
// Plain ASCII that folds stays as it is.
std::string EncodedWords(const std::string& text) {
  if (PlainAscii(text) && !Unfoldable(text)) return text;
  std::string out;
  size_t at = 0;
  while (at < text.size()) {
    size_t end = std::min(text.size(), at + 45);
    while (end < text.size() && end > at && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    // Bytes that are no UTF-8 at all are cut where they fall.
    if (end == at) end = std::min(text.size(), at + 45);
    if (!out.empty()) out += ' ';
    out += "=?UTF-8?B?" + Base64(text.substr(at, end - at)) + "?=";
    at = end;
  }
  return out;
}

// "Name: value", folded before blanks so that lines stay near 78 characters; a run without blanks stays
// whole.
std::string HeaderLine(const std::string& name, const std::string& value) {
  std::string line = name + ": " + value;
  std::string out;
  while (line.size() > kFoldAt) {
    size_t cut = line.rfind(' ', kFoldAt);
    if (cut == std::string::npos || cut <= name.size() + 1) cut = line.find(' ', kFoldAt);
    if (cut == std::string::npos) break;
    out += line.substr(0, cut) + kCrlf;
    line = line.substr(cut);  // the blank starts the continuation line
  }
  return out + line + kCrlf;
}

std::string SenderLine(const std::string& from) {
  size_t angle = from.rfind('<');
  if (angle == std::string::npos || PlainAscii(from)) return HeaderLine("From", from);
  return HeaderLine("From", EncodedWords(from.substr(0, angle)) + from.substr(angle));
}

bool NeedsEncoding(const std::string& body) {
  size_t line = 0;
  for (size_t i = 0; i < body.size(); ++i) {
    unsigned char c = static_cast<unsigned char>(body[i]);
    if (c == '\r' && i + 1 < body.size() && body[i + 1] == '\n') {
      line = 0;
      ++i;
      continue;
    }
    if (c >= 0x80 || (c < 0x20 && c != '\t')) return true;
    if (++line > kLongestLine) return true;
  }
  return false;
}

std::string QuotedPrintable(const std::string& body) {
  static const char kHex[] = "0123456789ABCDEF";
  std::string out;
  size_t start = 0;
  while (start <= body.size()) {
    size_t end = body.find(kCrlf, start);
    bool last = end == std::string::npos;
    if (last) end = body.size();
    std::string line;
    size_t width = 0;
    for (size_t i = start; i < end; ++i) {
      unsigned char c = static_cast<unsigned char>(body[i]);
      bool trailing_blank = (c == ' ' || c == '\t') && i + 1 == end;
      std::string piece;
      if ((c >= 33 && c <= 126 && c != '=') || ((c == ' ' || c == '\t') && !trailing_blank)) {
        piece = std::string(1, static_cast<char>(c));
      } else {
        piece = {'=', kHex[c >> 4], kHex[c & 15]};
      }
      if (width + piece.size() > kQuotedPrintableWidth - 1) {
        line += "=\r\n";
        width = 0;
      }
      line += piece;
      width += piece.size();
    }
    out += line;
    if (last) break;
    out += kCrlf;
    start = end + 2;
  }
  return out;
}

}  // namespace

std::string CrlfLines(const std::string& text) {
  std::string out;
  out.reserve(text.size() + text.size() / 32);
  for (size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (c == '\r') {
      out += kCrlf;
      if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
    } else if (c == '\n') {
      out += kCrlf;
    } else {
      out += c;
    }
  }
  return out;
}

std::string MailDateNow() {
  static const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  static const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  long offset = local.tm_gmtoff / 60;
  char sign = offset < 0 ? '-' : '+';
  if (offset < 0) offset = -offset;
  char buf[64];
  std::snprintf(buf, sizeof buf, "%s, %02d %s %04d %02d:%02d:%02d %c%02ld%02ld", kDays[local.tm_wday],
                local.tm_mday, kMonths[local.tm_mon], local.tm_year + 1900, local.tm_hour, local.tm_min,
                local.tm_sec, sign, offset / 60, offset % 60);
  return buf;
}

std::string ComposeMailMessage(const MailMessage& m) {
  std::string out;
  if (!m.date.empty()) out += HeaderLine("Date", m.date);
  out += SenderLine(m.from);
  out += HeaderLine("To", m.to);
  if (!m.cc.empty()) out += HeaderLine("Cc", m.cc);
  out += HeaderLine("Subject", EncodedWords(m.subject));
  for (const std::string& line : m.extra_headers) out += line + kCrlf;
  out += "MIME-Version: 1.0\r\nContent-Type: text/plain; charset=UTF-8\r\n";
  std::string body = CrlfLines(m.body);
  if (NeedsEncoding(body)) {
    out += "Content-Transfer-Encoding: quoted-printable\r\n\r\n";
    out += QuotedPrintable(body);
  } else {
    out += "Content-Transfer-Encoding: 7bit\r\n\r\n";
    out += body;
  }
  return out;
}

}  // namespace lw
