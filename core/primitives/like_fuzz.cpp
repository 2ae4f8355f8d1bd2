// Splits the input at the first NUL into a text and a pattern and matches them. A bad pattern may
// raise 93; any other error, a crash or a slow match is a fault. Where the input is small enough, the
// answer is checked against a plain dynamic-programming matcher that shares no code with Like, and
// the text search against the standard library's.
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "core/primitives/encoding.h"
#include "core/primitives/text.h"

namespace {

void Check(bool ok) {
  if (!ok) __builtin_trap();
}

struct Token {
  enum Kind { kStar, kAny, kDigit, kSet, kChar, kNothing };
  Token(Kind k, char16_t ch = 0) : kind(k), c(ch) {}
  Kind kind;
  char16_t c;
  std::u16string set;  // pairs lo, hi
  bool negate = false;
};

// Returns false for a pattern that must be refused.
bool Tokenize(const lw::Text& p, std::vector<Token>& out) {
  for (size_t i = 0; i < p.size(); ++i) {
    char16_t c = p[i];
    if (c == u'*') {
      out.emplace_back(Token::kStar);
    } else if (c == u'?') {
      out.emplace_back(Token::kAny);
    } else if (c == u'#') {
      out.emplace_back(Token::kDigit);
    } else if (c != u'[') {
      out.emplace_back(Token::kChar, c);
    } else {
      size_t close = p.find(u']', i + 1);
      if (p.size() > i + 1 && p[i + 1] == u'!') close = p.find(u']', i + 2);
      if (close == lw::Text::npos) return false;
      Token t(Token::kSet);
      size_t j = i + 1;
      if (p[j] == u'!') {
        t.negate = true;
        ++j;
      }
      if (j == close && !t.negate) {
        out.emplace_back(Token::kNothing);
        i = close;
        continue;
      }
      while (j < close) {
        if (j + 2 < close && p[j + 1] == u'-') {
          if (p[j + 2] < p[j]) return false;
          t.set += p[j];
          t.set += p[j + 2];
          j += 3;
        } else {
          t.set += p[j];
          t.set += p[j];
          ++j;
        }
      }
      out.push_back(t);
      i = close;
    }
  }
  return true;
}

bool TokenTakes(const Token& t, char16_t c) {
  switch (t.kind) {
    case Token::kAny:
      return true;
    case Token::kDigit:
      return c >= u'0' && c <= u'9';
    case Token::kChar:
      return t.c == c;
    case Token::kSet: {
      bool in = false;
      for (size_t k = 0; k < t.set.size(); k += 2) in = in || (c >= t.set[k] && c <= t.set[k + 1]);
      return in != t.negate;
    }
    default:
      return false;
  }
}

bool Reference(const lw::Text& text, const std::vector<Token>& toks) {
  // can[j] after consuming i characters of text: whether the first j tokens match them.
  std::vector<char> can(toks.size() + 1, 0), next(toks.size() + 1, 0);
  auto close_over_empty = [&](std::vector<char>& v) {
    for (size_t j = 0; j < toks.size(); ++j)
      if (v[j] && (toks[j].kind == Token::kStar || toks[j].kind == Token::kNothing)) v[j + 1] = 1;
  };
  can[0] = 1;
  close_over_empty(can);
  for (char16_t c : text) {
    std::fill(next.begin(), next.end(), 0);
    for (size_t j = 0; j < toks.size(); ++j) {
      if (!can[j]) continue;
      if (toks[j].kind == Token::kStar)
        next[j] = 1;
      else if (TokenTakes(toks[j], c))
        next[j + 1] = 1;
    }
    close_over_empty(next);
    can.swap(next);
  }
  return can[toks.size()];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view in(reinterpret_cast<const char*>(data), size);
  size_t cut = in.find('\0');
  if (cut == std::string_view::npos) cut = size / 2;
  lw::Text text = lw::FromUtf8(in.substr(0, cut));
  lw::Text pattern = lw::FromUtf8(in.substr(cut < size ? cut + 1 : size));
  // The same halves exercise the text search that Like's plain segments rely on.
  for (size_t start = 1; start <= text.size() + 1; start += 1 + text.size() / 8) {
    size_t want = lw::TextView(text).find(pattern, start - 1);
    Check(lw::InStr(start, text, pattern) == (want == lw::Text::npos ? 0 : want + 1));
  }
  if (!pattern.empty()) {
    size_t want_rev = lw::TextView(text).rfind(pattern);
    Check(lw::InStrRev(text, pattern) == (want_rev == lw::Text::npos ? 0 : want_rev + 1));
  }
  std::vector<Token> toks;
  bool valid = Tokenize(pattern, toks);
  try {
    bool got = lw::Like(text, pattern);
    Check(valid);
    if ((text.size() + 1) * (toks.size() + 1) < 200000) Check(got == Reference(text, toks));
  } catch (const lw::RuntimeError& e) {
    Check(!valid && e.number() == 93);
  }
  return 0;
}
