#include "core/primitives/ini_input.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <system_error>

#include "core/primitives/encoding.h"

namespace lw {

namespace {

constexpr int kPathFileAccessError = 75;

// Strict check: overlong forms, surrogates and values past U+10FFFF make a file windows-1252, since a
// file written by an old editor in that code page may by chance hold bytes that look like UTF-8 leads.
bool ValidUtf8(std::string_view s) {
  size_t i = 0;
  while (i < s.size()) {
    unsigned char c = static_cast<unsigned char>(s[i]);
    if (c < 0x80) {
      ++i;
      continue;
    }
    size_t len;
    uint32_t cp;
    if (c >= 0xC2 && c <= 0xDF) {
      len = 2;
      cp = c & 0x1F;
    } else if (c >= 0xE0 && c <= 0xEF) {
      len = 3;
      cp = c & 0x0F;
    } else if (c >= 0xF0 && c <= 0xF4) {
      len = 4;
      cp = c & 0x07;
    } else {
      return false;
    }
    if (i + len > s.size()) return false;
    for (size_t k = 1; k < len; ++k) {
      unsigned char cc = static_cast<unsigned char>(s[i + k]);
      if ((cc & 0xC0) != 0x80) return false;
      cp = (cp << 6) | (cc & 0x3F);
    }
    if ((len == 3 && cp < 0x800) || (len == 4 && (cp < 0x10000 || cp > 0x10FFFF)) ||
        (cp >= 0xD800 && cp <= 0xDFFF))
      return false;
    i += len;
  }
  return true;
}

bool IsLineEnd(char16_t c) {
  return c == u'\r' || c == u'\n';
}

}  // namespace

IniInput::IniInput(const std::filesystem::path& file) {
  std::error_code ec;
  auto status = std::filesystem::status(file, ec);
  if (!std::filesystem::exists(status)) throw RuntimeError(err::kFileNotFound, "File not found");
  if (std::filesystem::is_directory(status))
    throw RuntimeError(kPathFileAccessError, "Path/File access error");
  std::ifstream in(file, std::ios::binary);
  if (!in) throw RuntimeError(kPathFileAccessError, "Path/File access error");
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) throw RuntimeError(kPathFileAccessError, "Path/File access error");
  if (ValidUtf8(bytes)) {
    std::string_view body(bytes);
    if (body.size() >= 3 && body.substr(0, 3) == "\xEF\xBB\xBF") body.remove_prefix(3);
    content_ = FromUtf8(body);
  } else {
    content_ = FromCp1252(bytes);
  }
}

bool IniInput::AtEnd() const {
  return pos_ >= content_.size();
}

Text IniInput::Read() {
  if (AtEnd()) throw RuntimeError(err::kInputPastEnd, "Input past end of file");
  const Text& s = content_;
  const size_t n = s.size();
  size_t i = pos_;
  while (i < n && (s[i] == u' ' || s[i] == u'\t')) ++i;

  Text item;
  if (i < n && s[i] == u'"') {
    size_t close = s.find(u'"', i + 1);
    if (close == Text::npos) close = n;  // an unclosed quote runs to the end of the file
    item.assign(s, i + 1, close - i - 1);
    i = close < n ? close + 1 : n;
    // Whatever follows the closing quote up to the delimiter is not part of the item.
    while (i < n && s[i] != u',' && !IsLineEnd(s[i])) ++i;
  } else {
    size_t start = i;
    while (i < n && s[i] != u',' && !IsLineEnd(s[i])) ++i;
    size_t end = i;
    while (end > start && s[end - 1] == u' ') --end;
    item.assign(s, start, end - start);
  }

  // Step over the delimiter: a comma, or one line end of any of the three kinds.
  if (i < n) {
    if (s[i] == u',') {
      ++i;
    } else if (s[i] == u'\r') {
      ++i;
      if (i < n && s[i] == u'\n') ++i;
    } else {
      ++i;
    }
  }
  pos_ = i;
  return item;
}

}  // namespace lw
