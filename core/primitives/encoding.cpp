#include "core/primitives/encoding.h"

#include <array>

namespace lw {

namespace {
constexpr char16_t kReplacement = 0xFFFD;

// windows-1252 0x80..0x9F; the bytes it leaves undefined keep their own value.
constexpr std::array<char16_t, 32> kCp1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void AppendCodePoint(Text& out, char32_t cp) {
  if (cp < 0x10000) {
    out.push_back(static_cast<char16_t>(cp));
  } else {
    cp -= 0x10000;
    out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
  }
}
}  // namespace

Text FromUtf8(std::string_view in) {
  Text out;
  out.reserve(in.size());
  size_t i = 0;
  const size_t n = in.size();
  while (i < n) {
    unsigned char c = static_cast<unsigned char>(in[i]);
    if (c < 0x80) {
      out.push_back(c);
      ++i;
      continue;
    }
    int len = 0;
    char32_t cp = 0;
    char32_t min = 0;
    if ((c & 0xE0) == 0xC0) {
      len = 2, cp = c & 0x1F, min = 0x80;
    } else if ((c & 0xF0) == 0xE0) {
      len = 3, cp = c & 0x0F, min = 0x800;
    } else if ((c & 0xF8) == 0xF0) {
      len = 4, cp = c & 0x07, min = 0x10000;
    } else {
      out.push_back(kReplacement);
      ++i;
      continue;
    }
    if (i + len > n) {
      out.push_back(kReplacement);
      ++i;
      continue;
    }
    bool ok = true;
    for (int k = 1; k < len; ++k) {
      unsigned char cc = static_cast<unsigned char>(in[i + k]);
      if ((cc & 0xC0) != 0x80) {
        ok = false;
        break;
      }
      cp = (cp << 6) | (cc & 0x3F);
    }
    if (!ok || cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
      out.push_back(kReplacement);
      ++i;
      continue;
    }
    AppendCodePoint(out, cp);
    i += len;
  }
  return out;
}

std::string ToUtf8(TextView in) {
  std::string out;
  out.reserve(in.size());
  for (size_t i = 0; i < in.size(); ++i) {
    char32_t cp = in[i];
    if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < in.size() && in[i + 1] >= 0xDC00 && in[i + 1] <= 0xDFFF) {
      cp = 0x10000 + ((cp - 0xD800) << 10) + (in[i + 1] - 0xDC00);
      ++i;
    } else if (cp >= 0xD800 && cp <= 0xDFFF) {
      cp = kReplacement;
    }
    if (cp < 0x80) {
      out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
  }
  return out;
}

Text FromCp1252(std::string_view in) {
  Text out;
  out.reserve(in.size());
  for (char ch : in) {
    unsigned char c = static_cast<unsigned char>(ch);
    out.push_back(c >= 0x80 && c < 0xA0 ? kCp1252High[c - 0x80] : static_cast<char16_t>(c));
  }
  return out;
}

std::string ToCp1252(TextView in) {
  std::string out;
  out.reserve(in.size());
  for (char16_t c : in) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) {
      out.push_back(static_cast<char>(c));
      continue;
    }
    char mapped = '?';
    for (size_t k = 0; k < kCp1252High.size(); ++k) {
      if (kCp1252High[k] == c) {
        mapped = static_cast<char>(0x80 + k);
        break;
      }
    }
    out.push_back(mapped);
  }
  return out;
}

}  // namespace lw
