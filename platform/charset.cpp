#include "platform/charset.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <cctype>
#include <memory>

#include "core/primitives/encoding.h"

namespace lw {

namespace {

// Pages declare their charset near the top; a browser looks no further than this either.
constexpr size_t kMetaScanBytes = 4096;

std::string Lower(std::string_view s) {
  std::string out(s);
  std::transform(out.begin(), out.end(), out.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return out;
}

bool IsNameChar(char c) {
  unsigned char u = static_cast<unsigned char>(c);
  return std::isalnum(u) || c == '-' || c == '_' || c == '.' || c == ':';
}

// The value after "charset=" in `s` (already lower case), with quotes and blanks around it dropped.
std::string CharsetAfterKey(std::string_view s) {
  size_t at = s.find("charset");
  while (at != std::string_view::npos) {
    size_t i = at + 7;
    while (i < s.size() && (s[i] == ' ' || s[i] == '\t')) ++i;
    if (i < s.size() && s[i] == '=') {
      ++i;
      while (i < s.size() && (s[i] == ' ' || s[i] == '\t' || s[i] == '"' || s[i] == '\'')) ++i;
      size_t end = i;
      while (end < s.size() && IsNameChar(s[end])) ++end;
      if (end > i) return std::string(s.substr(i, end - i));
    }
    at = s.find("charset", at + 7);
  }
  return {};
}

bool IsUtf8Name(std::string_view n) {
  return n == "utf-8" || n == "utf8" || n == "unicode-1-1-utf-8";
}
bool IsLatin1Name(std::string_view n) {
  return n == "iso-8859-1" || n == "iso8859-1" || n == "latin1" || n == "l1" || n == "iso_8859-1" ||
         n == "iso-ir-100" || n == "csisolatin1" || n == "ibm819" || n == "cp819";
}
bool Is1252Name(std::string_view n) {
  return n == "windows-1252" || n == "cp1252" || n == "x-cp1252" || n == "us-ascii" || n == "ascii";
}

Text Latin1(std::string_view bytes) {
  Text out;
  out.reserve(bytes.size());
  for (char c : bytes) out.push_back(static_cast<unsigned char>(c));
  return out;
}

struct ConverterCloser {
  void operator()(UConverter* c) const { ucnv_close(c); }
};

bool DecodeWithIcu(std::string_view bytes, const std::string& charset, Text& out) {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<UConverter, ConverterCloser> conv(ucnv_open(charset.c_str(), &status));
  if (U_FAILURE(status) || !conv) return false;
  out.assign(bytes.size() * 2 + 16, u'\0');
  UChar* target = reinterpret_cast<UChar*>(out.data());
  UChar* target_end = target + out.size();
  const char* source = bytes.data();
  status = U_ZERO_ERROR;
  ucnv_toUnicode(conv.get(), &target, target_end, &source, bytes.data() + bytes.size(), nullptr, true,
                 &status);
  if (U_FAILURE(status)) return false;
  out.resize(static_cast<size_t>(target - reinterpret_cast<UChar*>(out.data())));
  return true;
}

}  // namespace

std::string CharsetFromContentType(std::string_view content_type) {
  return CharsetAfterKey(Lower(content_type));
}

std::string CharsetFromMeta(std::string_view page) {
  std::string head = Lower(page.substr(0, std::min(page.size(), kMetaScanBytes)));
  size_t at = head.find("<meta");
  while (at != std::string::npos) {
    size_t end = head.find('>', at);
    std::string_view tag =
        std::string_view(head).substr(at, end == std::string::npos ? head.size() - at : end - at);
    std::string cs = CharsetAfterKey(tag);
    if (!cs.empty()) return cs;
    if (end == std::string::npos) break;
    at = head.find("<meta", end);
  }
  return {};
}

Text DecodeCharset(std::string_view bytes, std::string_view charset) {
  std::string name = Lower(charset);
  if (IsUtf8Name(name)) return FromUtf8(bytes);
  if (IsLatin1Name(name)) return Latin1(bytes);
  if (name.empty() || Is1252Name(name)) return FromCp1252(bytes);
  Text out;
  if (DecodeWithIcu(bytes, name, out)) return out;
  return FromCp1252(bytes);
}

Text DecodePage(std::string_view bytes, std::string_view content_type) {
  if (bytes.size() >= 3 && bytes.substr(0, 3) == "\xEF\xBB\xBF") return FromUtf8(bytes.substr(3));
  if (bytes.size() >= 2 && bytes.substr(0, 2) == "\xFF\xFE") {
    Text out;
    for (size_t i = 2; i + 1 < bytes.size(); i += 2)
      out.push_back(static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                          (static_cast<unsigned char>(bytes[i + 1]) << 8)));
    return out;
  }
  if (bytes.size() >= 2 && bytes.substr(0, 2) == "\xFE\xFF") {
    Text out;
    for (size_t i = 2; i + 1 < bytes.size(); i += 2)
      out.push_back(static_cast<char16_t>((static_cast<unsigned char>(bytes[i]) << 8) |
                                          static_cast<unsigned char>(bytes[i + 1])));
    return out;
  }
  std::string charset = CharsetFromContentType(content_type);
  if (charset.empty()) charset = CharsetFromMeta(bytes);
  return DecodeCharset(bytes, charset);
}

}  // namespace lw
