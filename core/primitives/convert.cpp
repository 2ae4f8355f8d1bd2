#include "core/primitives/convert.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "core/primitives/datetime.h"
#include "core/primitives/encoding.h"

namespace lw {

namespace {

[[noreturn]] void Mismatch() {
  throw RuntimeError(err::kTypeMismatch, "Type mismatch");
}
[[noreturn]] void Overflow() {
  throw RuntimeError(err::kOverflow, "Overflow");
}

// Serial days of 1 January 100 and 31 December 9999: the range a date can take.
constexpr double kMinSerial = -657434.0;
constexpr double kMaxSerial = 2958466.0;

bool IsBlank(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\u00A0' || c == u'\u202F';
}
bool IsDigit(char16_t c) {
  return c >= u'0' && c <= u'9';
}

TextView TrimBlanks(TextView s) {
  while (!s.empty() && IsBlank(s.front())) s.remove_prefix(1);
  while (!s.empty() && IsBlank(s.back())) s.remove_suffix(1);
  return s;
}

Text Fold(TextView t) {
  icu::UnicodeString u(false, t.data(), static_cast<int32_t>(t.size()));
  icu::UnicodeString c(u);
  c.foldCase();
  return Text(reinterpret_cast<const char16_t*>(c.getBuffer()), static_cast<size_t>(c.length()));
}

bool StartsWith(TextView s, TextView p) {
  return !p.empty() && s.substr(0, p.size()) == p;
}
bool EndsWith(TextView s, TextView p) {
  return !p.empty() && s.size() >= p.size() && s.substr(s.size() - p.size()) == p;
}

// ---------------------------------------------------------------------------------------------------
// Exact decimal digits of a value: value = (negative ? -1 : 1) * digits * 10^exp10, digits without
// leading zeros ("" stands for zero). Formatting rounds on these, never on the binary double.

struct Decimal {
  bool negative = false;
  std::string digits;
  int exp10 = 0;
  bool IsZero() const { return digits.empty(); }
};

void Normalise(Decimal& d) {
  size_t lead = d.digits.find_first_not_of('0');
  if (lead == std::string::npos) {
    d.digits.clear();
    d.exp10 = 0;
    d.negative = false;
    return;
  }
  d.digits.erase(0, lead);
  while (!d.digits.empty() && d.digits.back() == '0') {
    d.digits.pop_back();
    ++d.exp10;
  }
}

// The double to 15 significant digits, as the desktop runtime shows numbers.
Decimal FromDouble(double v) {
  if (!std::isfinite(v)) Overflow();
  Decimal d;
  if (v == 0) return d;
  char buf[64];
  auto res = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::scientific, 14);
  std::string s(buf, res.ptr);
  size_t e = s.find('e');
  std::string mant = s.substr(0, e);
  int exp = std::stoi(s.substr(e + 1));
  if (mant[0] == '-') {
    d.negative = true;
    mant.erase(0, 1);
  }
  std::string digits;
  for (char c : mant)
    if (c != '.') digits += c;
  d.digits = digits;
  d.exp10 = exp - static_cast<int>(digits.size() - 1);
  Normalise(d);
  return d;
}

Decimal FromCurrency(Currency c) {
  Decimal d;
  int64_t s = c.scaled();
  d.negative = s < 0;
  uint64_t mag = s < 0 ? static_cast<uint64_t>(-(s + 1)) + 1 : static_cast<uint64_t>(s);
  d.digits = std::to_string(mag);
  d.exp10 = -4;
  Normalise(d);
  return d;
}

// Rounds to `places` decimals, halves away from zero.
Decimal RoundPlaces(Decimal d, int places) {
  if (d.IsZero() || d.exp10 >= -places) return d;
  int drop = -places - d.exp10;  // digits to remove from the right
  if (drop > static_cast<int>(d.digits.size())) {
    Decimal z;
    return z;
  }
  bool up = d.digits[d.digits.size() - drop] >= '5';
  std::string keep = d.digits.substr(0, d.digits.size() - drop);
  d.exp10 += drop;
  if (up) {
    int i = static_cast<int>(keep.size()) - 1;
    while (i >= 0 && keep[i] == '9') keep[i--] = '0';
    if (i < 0)
      keep.insert(keep.begin(), '1');
    else
      ++keep[i];
  }
  d.digits = keep;
  Normalise(d);
  return d;
}

// Integer and fraction digits of a decimal (integer part without leading zeros).
void SplitDecimal(const Decimal& d, std::string& int_part, std::string& frac_part) {
  int_part.clear();
  frac_part.clear();
  if (d.IsZero()) return;
  int n = static_cast<int>(d.digits.size());
  if (d.exp10 >= 0) {
    int_part = d.digits + std::string(d.exp10, '0');
  } else if (-d.exp10 >= n) {
    frac_part = std::string(-d.exp10 - n, '0') + d.digits;
  } else {
    int_part = d.digits.substr(0, n + d.exp10);
    frac_part = d.digits.substr(n + d.exp10);
  }
}

Decimal Scale10(Decimal d, int by) {
  if (!d.IsZero()) d.exp10 += by;
  return d;
}

Text Ascii(std::string_view s) {
  return Text(s.begin(), s.end());
}

// Shortest form: no grouping, as many places as needed, exponent form for very large or small values.
Text GeneralForm(const Decimal& d, TextView decimal_mark) {
  if (d.IsZero()) return u"0";
  Text out = d.negative ? u"-" : u"";
  int n = static_cast<int>(d.digits.size());
  int magnitude = n - 1 + d.exp10;  // exponent of the leading digit
  if (magnitude >= 15 || magnitude < -4) {
    out += static_cast<char16_t>(d.digits[0]);
    if (n > 1) {
      out += decimal_mark;
      out += Ascii(d.digits.substr(1));
    }
    out += magnitude < 0 ? u"E-" : u"E+";
    int a = std::abs(magnitude);
    if (a < 10) out += u'0';
    out += Ascii(std::to_string(a));
    return out;
  }
  std::string ip, fp;
  SplitDecimal(d, ip, fp);
  out += ip.empty() ? u"0" : Ascii(ip);
  if (!fp.empty()) {
    out += decimal_mark;
    out += Ascii(fp);
  }
  return out;
}

Text Group(const std::string& int_part, TextView mark) {
  Text out;
  int n = static_cast<int>(int_part.size());
  for (int i = 0; i < n; ++i) {
    if (i > 0 && (n - i) % 3 == 0) out += mark;
    out += static_cast<char16_t>(int_part[i]);
  }
  return out;
}

// Fixed places with or without grouping; the sign is left to the caller.
Text FixedForm(const Decimal& d, int places, TextView decimal_mark, TextView thousands_mark, bool group) {
  Decimal r = RoundPlaces(d, places);
  std::string ip, fp;
  SplitDecimal(r, ip, fp);
  if (ip.empty()) ip = "0";
  fp.resize(places, '0');
  Text out = group ? Group(ip, thousands_mark) : Ascii(ip);
  if (places > 0) {
    out += decimal_mark;
    out += Ascii(fp);
  }
  return out;
}

// ---------------------------------------------------------------------------------------------------
// Numbers from text.

struct ParsedNumber {
  Decimal dec;
  std::string ascii;  // "-123.45e6", for the double
};

bool MatchAt(TextView s, size_t i, TextView what) {
  return !what.empty() && s.substr(i, what.size()) == what;
}

std::optional<ParsedNumber> ParseNumber(TextView in, const Regional& r) {
  TextView s = TrimBlanks(in);
  bool negative = false;
  bool signed_ = false;
  if (s.size() >= 2 && s.front() == u'(' && s.back() == u')') {
    negative = signed_ = true;
    s = TrimBlanks(s.substr(1, s.size() - 2));
  }
  bool had_symbol = false;
  auto take_sign_front = [&]() {
    if (!s.empty() && (s.front() == u'-' || s.front() == u'+')) {
      if (signed_) return false;
      signed_ = true;
      negative = s.front() == u'-';
      s = TrimBlanks(s.substr(1));
    }
    return true;
  };
  auto take_symbol_front = [&]() {
    if (!had_symbol && StartsWith(s, r.currency_symbol)) {
      had_symbol = true;
      s = TrimBlanks(s.substr(r.currency_symbol.size()));
    }
  };
  // "-$5", "$-5", "$ 5", "€ -1,00".
  if (!take_sign_front()) return std::nullopt;
  take_symbol_front();
  if (!take_sign_front()) return std::nullopt;
  auto take_sign_back = [&]() {
    if (!s.empty() && (s.back() == u'-' || s.back() == u'+')) {
      if (signed_) return false;
      signed_ = true;
      negative = s.back() == u'-';
      s = TrimBlanks(s.substr(0, s.size() - 1));
    }
    return true;
  };
  // "5-", "5 €", "1,00 €-", "1,00- €".
  if (!take_sign_back()) return std::nullopt;
  if (!had_symbol && EndsWith(s, r.currency_symbol)) {
    had_symbol = true;
    s = TrimBlanks(s.substr(0, s.size() - r.currency_symbol.size()));
  }
  if (!take_sign_back()) return std::nullopt;
  if (s.empty()) return std::nullopt;

  std::string int_digits, frac_digits;
  bool point = false;
  size_t i = 0;
  const TextView decimals[] = {r.decimal_mark, r.money_decimal_mark};
  const TextView groups[] = {r.thousands_mark, r.money_thousands_mark};
  auto is_group_at = [&](size_t at, size_t& len) {
    for (TextView g : groups) {
      if (MatchAt(s, at, g)) {
        len = g.size();
        return true;
      }
      // Where the mark is a no-break space, people type an ordinary blank.
      if (g == u"\u00A0" && s[at] == u' ') {
        len = 1;
        return true;
      }
    }
    return false;
  };
  auto is_decimal_at = [&](size_t at, size_t& len) {
    for (TextView d : decimals)
      if (MatchAt(s, at, d)) {
        len = d.size();
        return true;
      }
    return false;
  };
  while (i < s.size()) {
    char16_t c = s[i];
    size_t len = 0;
    if (IsDigit(c)) {
      (point ? frac_digits : int_digits) += static_cast<char>(c);
      ++i;
    } else if (!point && is_decimal_at(i, len)) {
      point = true;
      i += len;
    } else if (!point && !int_digits.empty() && is_group_at(i, len) && i + len < s.size() &&
               IsDigit(s[i + len])) {
      // A thousands mark counts only between digits of the whole part.
      i += len;
    } else {
      break;
    }
  }
  if (int_digits.empty() && frac_digits.empty()) return std::nullopt;
  int exp = 0;
  if (i < s.size() && (s[i] == u'E' || s[i] == u'e' || s[i] == u'D' || s[i] == u'd')) {
    size_t j = i + 1;
    bool eneg = false;
    if (j < s.size() && (s[j] == u'+' || s[j] == u'-')) eneg = s[j++] == u'-';
    size_t start = j;
    long long e = 0;
    while (j < s.size() && IsDigit(s[j])) {
      if (e < 100000) e = e * 10 + (s[j] - u'0');
      ++j;
    }
    if (j == start) return std::nullopt;
    exp = static_cast<int>(eneg ? -e : e);
    i = j;
  }
  if (i != s.size()) return std::nullopt;

  ParsedNumber p;
  p.dec.negative = negative;
  p.dec.digits = int_digits + frac_digits;
  p.dec.exp10 = exp - static_cast<int>(frac_digits.size());
  Normalise(p.dec);
  p.ascii = (negative ? "-" : "") + (int_digits.empty() ? std::string("0") : int_digits) + "." +
            (frac_digits.empty() ? std::string("0") : frac_digits) + "e" + std::to_string(exp);
  return p;
}

double ToDouble(const ParsedNumber& p) {
  double v = 0;
  auto res = std::from_chars(p.ascii.data(), p.ascii.data() + p.ascii.size(), v);
  if (res.ec == std::errc::result_out_of_range) {
    // Underflow to zero is harmless; only a value too large to hold is an error.
    if (std::abs(v) > 1) Overflow();
    if (p.dec.exp10 > 0) Overflow();
    return 0;
  }
  if (!std::isfinite(v)) Overflow();
  return v;
}

Currency ToCurrency(const Decimal& d) {
  Decimal r = d;
  // Money keeps four places, halves going to the even neighbour.
  if (!r.IsZero() && r.exp10 < -4) {
    int drop = -4 - r.exp10;
    if (drop > static_cast<int>(r.digits.size())) return Currency();
    std::string keep = r.digits.substr(0, r.digits.size() - drop);
    std::string rest = r.digits.substr(r.digits.size() - drop);
    r.digits = keep;
    r.exp10 = -4;
    bool up = false;
    if (rest[0] > '5') {
      up = true;
    } else if (rest[0] == '5') {
      bool beyond = rest.find_first_not_of('0', 1) != std::string::npos;
      int last = keep.empty() ? 0 : keep.back() - '0';
      up = beyond || (last % 2 == 1);
    }
    if (up) {
      int i = static_cast<int>(r.digits.size()) - 1;
      while (i >= 0 && r.digits[i] == '9') r.digits[i--] = '0';
      if (i < 0)
        r.digits.insert(r.digits.begin(), '1');
      else
        ++r.digits[i];
    }
    Normalise(r);
  }
  if (r.IsZero()) return Currency();
  // Scaled value = digits * 10^(exp10 + 4); the money range is about 9.2e14.
  int shift = r.exp10 + 4;
  if (static_cast<int>(r.digits.size()) + shift > 19) Overflow();
  std::string all = r.digits + std::string(shift, '0');
  unsigned long long mag = 0;
  auto res = std::from_chars(all.data(), all.data() + all.size(), mag);
  if (res.ec != std::errc() || mag > static_cast<unsigned long long>(INT64_MAX)) Overflow();
  int64_t scaled = static_cast<int64_t>(mag);
  return Currency::FromScaled(r.negative ? -scaled : scaled);
}

// ---------------------------------------------------------------------------------------------------
// Dates from text.

int CurrentYear() {
  std::time_t now = std::time(nullptr);
  std::tm tm{};
  localtime_r(&now, &tm);
  return tm.tm_year + 1900;
}

int DaysInMonth(int y, int m) {
  static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (m == 2 && ((y % 4 == 0 && y % 100 != 0) || y % 400 == 0)) return 29;
  return kDays[m - 1];
}

enum class Order { MDY, DMY, YMD };

Order LocaleOrder(const Regional& r) {
  int d = -1, m = -1, y = -1;
  bool quoted = false;
  for (size_t i = 0; i < r.short_date_format.size(); ++i) {
    char16_t c = r.short_date_format[i];
    if (c == u'\'') quoted = !quoted;
    if (quoted) continue;
    if ((c == u'd' || c == u'D') && d < 0) d = static_cast<int>(i);
    if (c == u'M' && m < 0) m = static_cast<int>(i);
    if ((c == u'y' || c == u'Y') && y < 0) y = static_cast<int>(i);
  }
  if (y >= 0 && (d < 0 || y < d) && (m < 0 || y < m)) return Order::YMD;
  if (d >= 0 && m >= 0 && d < m) return Order::DMY;
  return Order::MDY;
}

struct DateToken {
  enum Kind { Number, Word, Separator, Colon, Blank } kind;
  Text text;  // folded, for words
  int value = 0;
  int length = 0;  // digits of a number
  char16_t sep = 0;
};

bool Tokenise(TextView s, std::vector<DateToken>& out) {
  size_t i = 0;
  while (i < s.size()) {
    char16_t c = s[i];
    if (IsDigit(c)) {
      DateToken t{DateToken::Number, {}};
      while (i < s.size() && IsDigit(s[i])) {
        if (t.length >= 9) return false;
        t.value = t.value * 10 + (s[i] - u'0');
        ++t.length;
        ++i;
      }
      out.push_back(t);
    } else if (u_isalpha(c)) {
      size_t j = i;
      while (j < s.size() && u_isalpha(s[j]) && !IsDigit(s[j])) ++j;
      DateToken t{DateToken::Word, Fold(s.substr(i, j - i))};
      out.push_back(t);
      i = j;
    } else if (c == u':') {
      out.push_back({DateToken::Colon, {}});
      ++i;
    } else if (c == u'/' || c == u'-' || c == u'.' || c == u',') {
      DateToken t{DateToken::Separator, {}};
      t.sep = c;
      out.push_back(t);
      ++i;
    } else if (IsBlank(c)) {
      while (i < s.size() && IsBlank(s[i])) ++i;
      out.push_back({DateToken::Blank, {}});
    } else {
      return false;
    }
  }
  return true;
}

// Matches a folded word against folded names; a trailing dot on the name does not count.
// Whether a folded word is `name` folded, with the name's trailing dots left out ("Sept." is "sept").
// Month names are read for every date of an imported page, so plain ASCII names are compared in place
// and only the others go through the full case folding.
bool IsFoldedName(const Text& word, TextView name) {
  while (!name.empty() && name.back() == u'.') name.remove_suffix(1);
  if (name.empty()) return false;
  bool ascii = true;
  for (char16_t c : name) ascii = ascii && c < 0x80;
  if (!ascii) return Fold(name) == word;
  if (name.size() != word.size()) return false;
  for (size_t i = 0; i < name.size(); ++i) {
    char16_t c = name[i];
    if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
    if (c != word[i]) return false;
  }
  return true;
}

int FindName(const Text& word, const Text* names, int count) {
  for (int i = 0; i < count; ++i)
    if (IsFoldedName(word, names[i])) return i;
  return -1;
}

// Whether a folded word is one of the quoted words of a locale date pattern ("d' de 'MMMM").
bool IsPatternWord(const Text& word, TextView pattern) {
  bool quoted = false;
  Text run;
  for (size_t i = 0; i <= pattern.size(); ++i) {
    char16_t c = i < pattern.size() ? pattern[i] : u'\'';
    if (quoted && c != u'\'' && u_isalpha(c)) {
      run += c;
      continue;
    }
    if (!run.empty() && Fold(run) == word) return true;
    run.clear();
    if (c == u'\'') quoted = !quoted;
  }
  return false;
}

struct DateParts {
  bool has_date = false;
  int year = 0, month = 0, day = 0;
  bool has_time = false;
  int hour = 0, minute = 0, second = 0;
};

int WidenYear(const DateToken& t) {
  if (t.length <= 2) return t.value < 30 ? 2000 + t.value : 1900 + t.value;
  return t.value;
}

bool ValidDate(int y, int m, int d) {
  return y >= 100 && y <= 9999 && m >= 1 && m <= 12 && d >= 1 && d <= DaysInMonth(y, m);
}

// `year`: the year of a date written without one; unset means this year by the computer's clock.
std::optional<DateParts> ParseDateText(TextView in, const Regional& r,
                                       std::optional<int> year = std::nullopt) {
  TextView s = TrimBlanks(in);
  if (s.empty()) return std::nullopt;
  std::vector<DateToken> toks;
  if (!Tokenise(s, toks)) return std::nullopt;

  DateParts p;
  const Text am = Fold(r.am_symbol), pm = Fold(r.pm_symbol);
  // 0: none, 1: AM, 2: PM
  auto ampm_of = [&](const Text& w) {
    if (w == u"am" || w == u"a" || (!am.empty() && w == am)) return 1;
    if (w == u"pm" || w == u"p" || (!pm.empty() && w == pm)) return 2;
    return 0;
  };

  // Pick out the time: h:mm, h:mm:ss, each optionally followed by an AM/PM mark, or "3 PM".
  std::vector<bool> used(toks.size(), false);
  int ampm = 0;
  bool time_found = false;
  for (size_t i = 0; i < toks.size(); ++i) {
    if (toks[i].kind != DateToken::Number) continue;
    size_t j = i;
    std::vector<size_t> nums{i};
    while (j + 2 < toks.size() && toks[j + 1].kind == DateToken::Colon &&
           toks[j + 2].kind == DateToken::Number && nums.size() < 3) {
      nums.push_back(j + 2);
      j += 2;
    }
    // An AM/PM mark straight after the time, with or without a blank.
    size_t k = j + 1;
    if (k < toks.size() && toks[k].kind == DateToken::Blank) ++k;
    int mark = (k < toks.size() && toks[k].kind == DateToken::Word) ? ampm_of(toks[k].text) : 0;
    if (nums.size() == 1 && mark == 0) continue;
    if (time_found) return std::nullopt;  // two times
    time_found = true;
    if (j + 1 < toks.size() && toks[j + 1].kind == DateToken::Colon) return std::nullopt;  // "1:2:3:4"
    p.has_time = true;
    p.hour = toks[nums[0]].value;
    if (nums.size() > 1) {
      if (toks[nums[1]].length > 2) return std::nullopt;
      p.minute = toks[nums[1]].value;
    }
    if (nums.size() > 2) {
      if (toks[nums[2]].length > 2) return std::nullopt;
      p.second = toks[nums[2]].value;
    }
    for (size_t u = i; u <= j; ++u) used[u] = true;
    if (mark) {
      for (size_t u = j + 1; u <= k; ++u) used[u] = true;
      ampm = mark;
    }
    i = mark ? k : j;
  }
  if (p.has_time) {
    if (p.minute > 59 || p.second > 59) return std::nullopt;
    if (ampm) {
      if (p.hour > 12) return std::nullopt;
      if (ampm == 1 && p.hour == 12) p.hour = 0;
      if (ampm == 2 && p.hour < 12) p.hour += 12;
    } else if (p.hour > 23) {
      return std::nullopt;
    }
  }

  // What is left is the date: numbers, one month name, weekday names (ignored), separators.
  std::vector<const DateToken*> nums;
  int month_word = -1;
  bool any_element = false;
  bool weekday = false;
  bool pending_sep = false;
  for (size_t i = 0; i < toks.size(); ++i) {
    if (used[i]) {
      // The time stands apart; separators around it are not needed.
      pending_sep = false;
      continue;
    }
    const DateToken& t = toks[i];
    switch (t.kind) {
      case DateToken::Blank:
        break;
      case DateToken::Colon:
        return std::nullopt;
      case DateToken::Separator:
        if (pending_sep) return std::nullopt;  // "22//11"
        // A comma may follow a weekday name or the day ("Sunday, November 22, 2026"); others need an
        // element before them.
        if (!any_element && !(weekday && t.sep == u',')) return std::nullopt;
        pending_sep = true;
        break;
      case DateToken::Number:
        nums.push_back(&t);
        any_element = true;
        pending_sep = false;
        break;
      case DateToken::Word: {
        int m = FindName(t.text, r.month_names.data(), 12);
        if (m < 0) m = FindName(t.text, r.month_abbrevs.data(), 12);
        if (m >= 0) {
          if (month_word >= 0) return std::nullopt;
          month_word = m + 1;
          any_element = true;
          pending_sep = false;
          break;
        }
        if (FindName(t.text, r.day_names.data(), 7) >= 0 || FindName(t.text, r.day_abbrevs.data(), 7) >= 0) {
          weekday = true;
          pending_sep = false;
          break;
        }
        if (IsPatternWord(t.text, r.long_date_format)) break;  // "22 de noviembre de 2026"
        return std::nullopt;
      }
    }
  }
  if (pending_sep) return std::nullopt;  // "22/11/2026/"

  if (month_word < 0 && nums.empty()) {
    if (!p.has_time) return std::nullopt;
    return p;
  }
  p.has_date = true;
  if (month_word > 0) {
    p.month = month_word;
    if (nums.empty() || nums.size() > 2) return std::nullopt;
    if (nums.size() == 1) {
      const DateToken& n = *nums[0];
      if (n.length >= 3 || n.value > 31) {
        p.year = WidenYear(n);
        p.day = 1;
      } else {
        p.year = year ? *year : CurrentYear();
        p.day = n.value;
      }
    } else {
      const DateToken& a = *nums[0];
      const DateToken& b = *nums[1];
      bool a_year = a.length >= 3 || (b.length < 3 && a.value > 31);
      // "2026 nov 22" and "22 nov 2026", "Nov 22, 2026".
      if (a_year) {
        p.year = WidenYear(a);
        p.day = b.value;
      } else {
        p.year = WidenYear(b);
        p.day = a.value;
      }
    }
    if (!ValidDate(p.year, p.month, p.day)) return std::nullopt;
    return p;
  }
  if (nums.size() == 1 || nums.size() > 3) return std::nullopt;
  const Order locale = LocaleOrder(r);
  if (nums.size() == 3) {
    const DateToken& a = *nums[0];
    const DateToken& b = *nums[1];
    const DateToken& c = *nums[2];
    std::vector<Order> orders;
    if (a.length >= 3) {
      orders = {Order::YMD};
    } else {
      orders = {locale, Order::MDY, Order::DMY, Order::YMD};
    }
    for (Order o : orders) {
      int y, m, d;
      const DateToken* yt;
      switch (o) {
        case Order::MDY:
          m = a.value, d = b.value, yt = &c;
          break;
        case Order::DMY:
          d = a.value, m = b.value, yt = &c;
          break;
        default:
          yt = &a, m = b.value, d = c.value;
          break;
      }
      // A year in the middle or a long day/month number cannot be right.
      if (o != Order::YMD && (a.length > 2 || b.length > 2)) continue;
      if (o == Order::YMD && (b.length > 2 || c.length > 2)) continue;
      y = WidenYear(*yt);
      if (ValidDate(y, m, d)) {
        p.year = y, p.month = m, p.day = d;
        return p;
      }
    }
    return std::nullopt;
  }
  // Two numbers: day and month in the locale's order in the current year, or a month and a year.
  const DateToken& a = *nums[0];
  const DateToken& b = *nums[1];
  if (a.length >= 3 || b.length >= 3) {
    const DateToken& yt = a.length >= 3 ? a : b;
    const DateToken& mt = a.length >= 3 ? b : a;
    if (mt.length > 2) return std::nullopt;
    p.year = WidenYear(yt), p.month = mt.value, p.day = 1;
    if (!ValidDate(p.year, p.month, p.day)) return std::nullopt;
    return p;
  }
  int this_year = year ? *year : CurrentYear();
  bool day_first = locale == Order::DMY;
  int tries[2][2] = {{day_first ? a.value : b.value, day_first ? b.value : a.value},
                     {day_first ? b.value : a.value, day_first ? a.value : b.value}};
  for (auto& t : tries) {
    if (ValidDate(this_year, t[1], t[0])) {
      p.year = this_year, p.month = t[1], p.day = t[0];
      return p;
    }
  }
  // "11/45": a month and a two-digit year.
  if (a.value >= 1 && a.value <= 12) {
    p.year = WidenYear(b), p.month = a.value, p.day = 1;
    return p;
  }
  return std::nullopt;
}

std::optional<Date> DateFromText(TextView s, const Regional& r, std::optional<int> year = std::nullopt) {
  auto p = ParseDateText(s, r, year);
  if (!p) return std::nullopt;
  if (!p->has_date) return Date((p->hour * 3600.0 + p->minute * 60.0 + p->second) / 86400.0);
  return MakeDate(p->year, p->month, p->day, p->hour, p->minute, p->second);
}

Date CheckedDate(double serial) {
  if (!std::isfinite(serial) || serial < kMinSerial || serial >= kMaxSerial) Overflow();
  return Date(serial);
}

// ---------------------------------------------------------------------------------------------------
// Dates to text.

Text Pad2(int v) {
  Text t;
  if (v < 10) t += u'0';
  t += Ascii(std::to_string(v));
  return t;
}
Text Num(int v) {
  return Ascii(std::to_string(v));
}
Text Year4(int y) {
  Text t = Num(y);
  while (t.size() < 4) t.insert(t.begin(), u'0');
  return t;
}

// The locale's own date and time patterns: d dd ddd dddd, M MM MMM MMMM, y yy yyyy, h hh H HH, m mm,
// s ss, t tt, 'quoted' literals. Letters are case-sensitive here as in the regional settings.
Text RenderLocalePattern(TextView pat, Date date, const Regional& r) {
  CivilTime c = SplitDate(date);
  int wd = Weekday(MakeDate(c.year, c.month, c.day)) - 1;
  Text out;
  size_t i = 0;
  while (i < pat.size()) {
    char16_t ch = pat[i];
    if (ch == u'\'') {
      size_t j = pat.find(u'\'', i + 1);
      if (j == TextView::npos) j = pat.size();
      out += pat.substr(i + 1, j - i - 1);
      i = j + 1;
      continue;
    }
    size_t n = 1;
    while (i + n < pat.size() && pat[i + n] == ch) ++n;
    switch (ch) {
      case u'd':
        out += n == 1 ? Num(c.day) : n == 2 ? Pad2(c.day) : n == 3 ? r.day_abbrevs[wd] : r.day_names[wd];
        break;
      case u'M':
        out += n == 1   ? Num(c.month)
               : n == 2 ? Pad2(c.month)
               : n == 3 ? r.month_abbrevs[c.month - 1]
                        : r.month_names[c.month - 1];
        break;
      case u'y':
        out += n == 1 ? Num(c.year % 100) : n == 2 ? Pad2(c.year % 100) : Year4(c.year);
        break;
      case u'h': {
        int h12 = c.hour % 12 == 0 ? 12 : c.hour % 12;
        out += n == 1 ? Num(h12) : Pad2(h12);
        break;
      }
      case u'H':
        out += n == 1 ? Num(c.hour) : Pad2(c.hour);
        break;
      case u'm':
        out += n == 1 ? Num(c.minute) : Pad2(c.minute);
        break;
      case u's':
        out += n == 1 ? Num(c.second) : Pad2(c.second);
        break;
      case u't': {
        const Text& mark = c.hour < 12 ? r.am_symbol : r.pm_symbol;
        out += n == 1 ? mark.substr(0, 1) : mark;
        break;
      }
      case u'g':
        break;  // era: the desktop forms of our locales never show it
      default:
        out += Text(n, ch);
        break;
    }
    i += n;
  }
  // A dropped AM/PM mark must not leave a trailing blank ("13:05:00 ").
  while (!out.empty() && out.back() == u' ') out.pop_back();
  return out;
}

Text ShortDate(Date d, const Regional& r) {
  return RenderLocalePattern(r.short_date_format, d, r);
}
Text LongDate(Date d, const Regional& r) {
  return RenderLocalePattern(r.long_date_format, d, r);
}
Text LongTime(Date d, const Regional& r) {
  return RenderLocalePattern(
      r.long_time_format.empty() ? TextView(u"h:mm:ss tt") : TextView(r.long_time_format), d, r);
}

Text GeneralDate(Date d, const Regional& r) {
  CivilTime c = SplitDate(d);
  bool no_day = c.year == 1899 && c.month == 12 && c.day == 30;
  bool has_time = c.hour || c.minute || c.second;
  if (no_day) return LongTime(d, r);
  Text out = ShortDate(d, r);
  if (has_time) {
    out += u' ';
    out += LongTime(d, r);
  }
  return out;
}

// A picture token list for dates.
struct DateItem {
  enum Kind {
    Literal,
    Day,
    Day2,
    DayAbbrev,
    DayName,
    ShortDateK,
    LongDateK,
    WeekdayNum,
    WeekOfYear,
    Month,
    Month2,
    MonthAbbrev,
    MonthName,
    Quarter,
    DayOfYear,
    Year2,
    Year4K,
    Hour,
    Hour2,
    Minute,
    Minute2,
    Second,
    Second2,
    AmPm,
    GeneralDateK,
    LongTimeK
  } kind;
  Text literal;        // for Literal
  int ampm_style = 0;  // 0 "AM/PM", 1 "am/pm", 2 "A/P", 3 "a/p", 4 locale symbols
  DateItem(Kind k, Text lit = {}, int style = 0) : kind(k), literal(std::move(lit)), ampm_style(style) {}
};

bool IEq(TextView s, size_t i, TextView what) {
  if (i + what.size() > s.size()) return false;
  for (size_t k = 0; k < what.size(); ++k) {
    char16_t a = s[i + k], b = what[k];
    if (a >= u'A' && a <= u'Z') a = a - u'A' + u'a';
    if (b >= u'A' && b <= u'Z') b = b - u'A' + u'a';
    if (a != b) return false;
  }
  return true;
}

char16_t Lower(char16_t c) {
  return (c >= u'A' && c <= u'Z') ? c - u'A' + u'a' : c;
}

std::vector<DateItem> ParseDatePicture(TextView pic) {
  std::vector<DateItem> items;
  auto lit = [&](TextView t) {
    if (!items.empty() && items.back().kind == DateItem::Literal)
      items.back().literal += t;
    else
      items.push_back({DateItem::Literal, Text(t)});
  };
  size_t i = 0;
  while (i < pic.size()) {
    char16_t c = pic[i];
    char16_t lc = Lower(c);
    if (c == u'"') {
      size_t j = pic.find(u'"', i + 1);
      if (j == TextView::npos) j = pic.size();
      lit(pic.substr(i + 1, j - i - 1));
      i = j + 1;
      continue;
    }
    if (c == u'\\') {
      if (i + 1 < pic.size()) lit(pic.substr(i + 1, 1));
      i += 2;
      continue;
    }
    if (IEq(pic, i, u"am/pm")) {
      items.push_back({DateItem::AmPm, {}, pic[i] == u'a' ? 1 : 0});
      i += 5;
      continue;
    }
    if (IEq(pic, i, u"a/p")) {
      items.push_back({DateItem::AmPm, {}, pic[i] == u'a' ? 3 : 2});
      i += 3;
      continue;
    }
    if (IEq(pic, i, u"ampm")) {
      items.push_back({DateItem::AmPm, {}, 4});
      i += 4;
      continue;
    }
    if (IEq(pic, i, u"ttttt")) {
      items.push_back({DateItem::LongTimeK});
      i += 5;
      continue;
    }
    size_t n = 1;
    while (i + n < pic.size() && Lower(pic[i + n]) == lc) ++n;
    switch (lc) {
      case u'd': {
        static const DateItem::Kind kinds[] = {DateItem::Day,     DateItem::Day2,       DateItem::DayAbbrev,
                                               DateItem::DayName, DateItem::ShortDateK, DateItem::LongDateK};
        size_t left = n;
        while (left > 0) {
          size_t take = left > 6 ? 6 : left;
          items.push_back({kinds[take - 1]});
          left -= take;
        }
        break;
      }
      case u'm': {
        size_t left = n;
        while (left > 0) {
          size_t take = left > 4 ? 4 : left;
          static const DateItem::Kind kinds[] = {DateItem::Month, DateItem::Month2, DateItem::MonthAbbrev,
                                                 DateItem::MonthName};
          items.push_back({kinds[take - 1]});
          left -= take;
        }
        break;
      }
      case u'y': {
        size_t left = n;
        while (left > 0) {
          if (left >= 4) {
            items.push_back({DateItem::Year4K});
            left -= 4;
          } else if (left >= 2) {
            items.push_back({DateItem::Year2});
            left -= 2;
          } else {
            items.push_back({DateItem::DayOfYear});
            left -= 1;
          }
        }
        break;
      }
      case u'w':
        for (size_t k = 0; k < n; k += 2)
          items.push_back({n - k >= 2 ? DateItem::WeekOfYear : DateItem::WeekdayNum});
        break;
      case u'q':
        for (size_t k = 0; k < n; ++k) items.push_back({DateItem::Quarter});
        break;
      case u'h':
        for (size_t k = 0; k < n; k += 2) items.push_back({n - k >= 2 ? DateItem::Hour2 : DateItem::Hour});
        break;
      case u'n':
        for (size_t k = 0; k < n; k += 2)
          items.push_back({n - k >= 2 ? DateItem::Minute2 : DateItem::Minute});
        break;
      case u's':
        for (size_t k = 0; k < n; k += 2)
          items.push_back({n - k >= 2 ? DateItem::Second2 : DateItem::Second});
        break;
      case u'c':
        for (size_t k = 0; k < n; ++k) items.push_back({DateItem::GeneralDateK});
        break;
      default:
        lit(pic.substr(i, n));
        break;
    }
    i += n;
  }
  // "m" and "mm" right after an hour or right before seconds are minutes ("hh:mm", "mm:ss").
  for (size_t k = 0; k < items.size(); ++k) {
    if (items[k].kind != DateItem::Month && items[k].kind != DateItem::Month2) continue;
    bool minutes = false;
    for (size_t b = k; b-- > 0;) {
      if (items[b].kind == DateItem::Literal) continue;
      minutes = items[b].kind == DateItem::Hour || items[b].kind == DateItem::Hour2;
      break;
    }
    for (size_t a = k + 1; !minutes && a < items.size(); ++a) {
      if (items[a].kind == DateItem::Literal) continue;
      minutes = items[a].kind == DateItem::Second || items[a].kind == DateItem::Second2;
      break;
    }
    if (minutes) items[k].kind = items[k].kind == DateItem::Month ? DateItem::Minute : DateItem::Minute2;
  }
  return items;
}

bool IsDatePicture(TextView pic) {
  for (const DateItem& it : ParseDatePicture(pic))
    if (it.kind != DateItem::Literal) return true;
  return false;
}

Text FormatDatePicture(Date date, TextView pic, const Regional& r) {
  std::vector<DateItem> items = ParseDatePicture(pic);
  bool twelve = false;
  for (const auto& it : items)
    if (it.kind == DateItem::AmPm) twelve = true;
  CivilTime c = SplitDate(date);
  // From the calendar parts, so that times before 1899-12-30 keep their own day.
  int wd = Weekday(MakeDate(c.year, c.month, c.day));  // 1 = Sunday
  int doy = static_cast<int>(MakeDate(c.year, c.month, c.day).serial - MakeDate(c.year, 1, 1).serial) + 1;
  int h12 = c.hour % 12 == 0 ? 12 : c.hour % 12;
  Text out;
  for (const auto& it : items) {
    switch (it.kind) {
      case DateItem::Literal:
        out += it.literal;
        break;
      case DateItem::Day:
        out += Num(c.day);
        break;
      case DateItem::Day2:
        out += Pad2(c.day);
        break;
      case DateItem::DayAbbrev:
        out += r.day_abbrevs[wd - 1];
        break;
      case DateItem::DayName:
        out += r.day_names[wd - 1];
        break;
      case DateItem::ShortDateK:
        out += ShortDate(date, r);
        break;
      case DateItem::LongDateK:
        out += LongDate(date, r);
        break;
      case DateItem::WeekdayNum:
        out += Num(wd);
        break;
      case DateItem::WeekOfYear: {
        int jan1 = Weekday(MakeDate(c.year, 1, 1));
        out += Num((doy + jan1 - 2) / 7 + 1);
        break;
      }
      case DateItem::Month:
        out += Num(c.month);
        break;
      case DateItem::Month2:
        out += Pad2(c.month);
        break;
      case DateItem::MonthAbbrev:
        out += r.month_abbrevs[c.month - 1];
        break;
      case DateItem::MonthName:
        out += r.month_names[c.month - 1];
        break;
      case DateItem::Quarter:
        out += Num((c.month - 1) / 3 + 1);
        break;
      case DateItem::DayOfYear:
        out += Num(doy);
        break;
      case DateItem::Year2:
        out += Pad2(c.year % 100);
        break;
      case DateItem::Year4K:
        out += Year4(c.year);
        break;
      case DateItem::Hour:
        out += Num(twelve ? h12 : c.hour);
        break;
      case DateItem::Hour2:
        out += Pad2(twelve ? h12 : c.hour);
        break;
      case DateItem::Minute:
        out += Num(c.minute);
        break;
      case DateItem::Minute2:
        out += Pad2(c.minute);
        break;
      case DateItem::Second:
        out += Num(c.second);
        break;
      case DateItem::Second2:
        out += Pad2(c.second);
        break;
      case DateItem::GeneralDateK:
        out += GeneralDate(date, r);
        break;
      case DateItem::LongTimeK:
        out += LongTime(date, r);
        break;
      case DateItem::AmPm: {
        bool am = c.hour < 12;
        switch (it.ampm_style) {
          case 0:
            out += am ? u"AM" : u"PM";
            break;
          case 1:
            out += am ? u"am" : u"pm";
            break;
          case 2:
            out += am ? u"A" : u"P";
            break;
          case 3:
            out += am ? u"a" : u"p";
            break;
          default: {
            const Text& m = am ? r.am_symbol : r.pm_symbol;
            out += m.empty() ? (am ? Text(u"AM") : Text(u"PM")) : m;
          }
        }
        break;
      }
    }
  }
  return out;
}

// ---------------------------------------------------------------------------------------------------
// Number pictures.

std::vector<Text> SplitSections(TextView pic) {
  std::vector<Text> out(1);
  for (size_t i = 0; i < pic.size(); ++i) {
    char16_t c = pic[i];
    if (c == u'"') {
      size_t j = pic.find(u'"', i + 1);
      if (j == TextView::npos) j = pic.size() - 1;
      out.back() += pic.substr(i, j - i + 1);
      i = j;
    } else if (c == u'\\' && i + 1 < pic.size()) {
      out.back() += pic.substr(i, 2);
      ++i;
    } else if (c == u';') {
      out.emplace_back();
    } else {
      out.back() += c;
    }
  }
  return out;
}

struct NumItem {
  enum Kind { Literal, Zero, Hash, Point, Exponent } kind;
  Text literal;
  bool exp_plus = false;  // "E+" shows the sign of positive exponents
  char16_t exp_letter = u'E';
  int exp_min_digits = 0;
};

struct NumPicture {
  std::vector<NumItem> items;
  bool grouping = false;
  int scale_thousands = 0;
  int percent = 0;
  int int_places = 0, int_zero_from = -1;   // index among integer placeholders of the first '0'
  int frac_places = 0, frac_zero_upto = 0;  // mandatory fraction digits
  bool has_digits = false;
  bool exponent = false;
};

NumPicture ParseNumberPicture(TextView pic) {
  NumPicture p;
  bool in_frac = false;
  bool in_exp = false;
  auto lit = [&](TextView t) {
    in_exp = false;
    if (!p.items.empty() && p.items.back().kind == NumItem::Literal)
      p.items.back().literal += t;
    else
      p.items.push_back({NumItem::Literal, Text(t)});
  };
  auto next_digit_before_point = [&](size_t from) {
    // Whether another digit placeholder follows in the whole part (commas between them group).
    for (size_t k = from; k < pic.size(); ++k) {
      char16_t c = pic[k];
      if (c == u'0' || c == u'#') return true;
      if (c == u',') continue;
      return false;
    }
    return false;
  };
  for (size_t i = 0; i < pic.size(); ++i) {
    char16_t c = pic[i];
    if (c == u'"') {
      size_t j = pic.find(u'"', i + 1);
      if (j == TextView::npos) j = pic.size();
      lit(pic.substr(i + 1, j - i - 1));
      i = j;
      continue;
    }
    if (c == u'\\') {
      if (i + 1 < pic.size()) lit(pic.substr(i + 1, 1));
      ++i;
      continue;
    }
    if (in_exp) {
      if (c == u'0' || c == u'#') {
        if (c == u'0') ++p.items.back().exp_min_digits;
        continue;
      }
      in_exp = false;
    }
    if (c == u'0' || c == u'#') {
      p.has_digits = true;
      if (in_frac) {
        ++p.frac_places;
        if (c == u'0') p.frac_zero_upto = p.frac_places;
      } else {
        if (c == u'0' && p.int_zero_from < 0) p.int_zero_from = p.int_places;
        ++p.int_places;
      }
      p.items.push_back({c == u'0' ? NumItem::Zero : NumItem::Hash, {}});
      continue;
    }
    if (c == u'.' && !in_frac && !p.exponent) {
      in_frac = true;
      p.items.push_back({NumItem::Point, {}});
      continue;
    }
    if (c == u',' && !in_frac && p.int_places > 0) {
      if (next_digit_before_point(i + 1))
        p.grouping = true;
      else
        ++p.scale_thousands;  // "#,##0," shows thousands
      continue;
    }
    if (c == u'%') {
      ++p.percent;
      lit(u"%");
      continue;
    }
    if ((c == u'E' || c == u'e') && i + 1 < pic.size() && (pic[i + 1] == u'+' || pic[i + 1] == u'-') &&
        p.has_digits && !p.exponent) {
      NumItem e{NumItem::Exponent, {}};
      e.exp_plus = pic[i + 1] == u'+';
      e.exp_letter = c;
      p.items.push_back(e);
      p.exponent = true;
      in_exp = true;
      ++i;
      continue;
    }
    lit(pic.substr(i, 1));
  }
  return p;
}

// Lays the magnitude of d into the picture; the caller adds any sign.
Text LayoutNumber(Decimal d, const NumPicture& p, const Regional& r) {
  d.negative = false;
  d = Scale10(d, 2 * p.percent - 3 * p.scale_thousands);
  int exponent = 0;
  if (p.exponent && !d.IsZero()) {
    // Mantissa with as many whole digits as the picture has whole placeholders (at least one).
    int want = p.int_places > 0 ? p.int_places : 1;
    int magnitude = static_cast<int>(d.digits.size()) - 1 + d.exp10;
    exponent = magnitude - (want - 1);
    d = Scale10(d, -exponent);
    d = RoundPlaces(d, p.frac_places);
    int mag2 = d.IsZero() ? 0 : static_cast<int>(d.digits.size()) - 1 + d.exp10;
    if (mag2 > want - 1) {  // 9.99 rounded to 10.0
      d = Scale10(d, -1);
      ++exponent;
    }
  }
  d = RoundPlaces(d, p.frac_places);
  std::string ip, fp;
  SplitDecimal(d, ip, fp);
  int mandatory_int = p.int_zero_from < 0 ? 0 : p.int_places - p.int_zero_from;
  while (static_cast<int>(ip.size()) < mandatory_int) ip.insert(ip.begin(), '0');
  // Trailing zeros of the fraction show only as far as '0' placeholders ask.
  fp.resize(p.frac_places, '0');
  int shown_frac = p.frac_places;
  while (shown_frac > p.frac_zero_upto && fp[shown_frac - 1] == '0') --shown_frac;

  // Whole part, right to left: each placeholder takes one digit, the leftmost takes what remains.
  std::vector<Text> pieces(p.items.size());
  {
    int digit_pos = static_cast<int>(ip.size());  // digits not yet placed, counted from the left
    int emitted = 0;
    int seen = 0;
    size_t point_at = p.items.size();
    for (size_t k = 0; k < p.items.size(); ++k)
      if (p.items[k].kind == NumItem::Point || p.items[k].kind == NumItem::Exponent) {
        point_at = k;
        break;
      }
    auto place = [&](Text& piece, int count) {
      // Takes `count` digits from the right of what is left, with thousands marks; built backwards.
      Text rev;
      for (int c = 0; c < count && digit_pos > 0; ++c) {
        if (p.grouping && emitted > 0 && emitted % 3 == 0)
          rev.append(r.thousands_mark.rbegin(), r.thousands_mark.rend());
        rev += static_cast<char16_t>(ip[--digit_pos]);
        ++emitted;
      }
      piece.assign(rev.rbegin(), rev.rend());
    };
    for (size_t k = point_at; k-- > 0;) {
      const NumItem& it = p.items[k];
      if (it.kind == NumItem::Zero || it.kind == NumItem::Hash) {
        ++seen;
        bool leftmost = seen == p.int_places;
        place(pieces[k], leftmost ? digit_pos : 1);
      }
    }
  }
  Text out;
  int frac_index = 0;
  bool after_point = false;
  for (size_t k = 0; k < p.items.size(); ++k) {
    const NumItem& it = p.items[k];
    switch (it.kind) {
      case NumItem::Literal:
        out += it.literal;
        break;
      case NumItem::Zero:
      case NumItem::Hash:
        if (!after_point) {
          out += pieces[k];
        } else {
          if (frac_index < shown_frac) out += static_cast<char16_t>(fp[frac_index]);
          ++frac_index;
        }
        break;
      case NumItem::Point:
        out += r.decimal_mark;
        after_point = true;
        break;
      case NumItem::Exponent: {
        after_point = true;
        out += it.exp_letter;
        if (exponent < 0)
          out += u'-';
        else if (it.exp_plus)
          out += u'+';
        Text e = Num(std::abs(exponent));
        while (static_cast<int>(e.size()) < it.exp_min_digits) e.insert(e.begin(), u'0');
        out += e;
        break;
      }
    }
  }
  return out;
}

bool RoundsToZero(const Decimal& d, const NumPicture& p) {
  if (d.IsZero()) return true;
  if (p.exponent) return false;
  return RoundPlaces(Scale10(d, 2 * p.percent - 3 * p.scale_thousands), p.frac_places).IsZero();
}

Text FormatNumberPicture(const Decimal& d, TextView pic, const Regional& r) {
  std::vector<Text> sections = SplitSections(pic);
  Text section = sections[0];
  bool own_negative = false;
  if (d.IsZero() && sections.size() >= 3 && !sections[2].empty()) {
    section = sections[2];
  } else if (d.negative && sections.size() >= 2 && !sections[1].empty()) {
    section = sections[1];
    own_negative = true;
  }
  NumPicture p = ParseNumberPicture(section);
  if (!p.has_digits) {
    // Literal-only section ("\Z\e\r\o"): the literals are the text.
    Text out;
    for (const auto& it : p.items)
      if (it.kind == NumItem::Literal) out += it.literal;
    return out;
  }
  Text body = LayoutNumber(d, p, r);
  if (d.negative && !own_negative && !RoundsToZero(d, p)) return u"-" + body;
  return body;
}

// ---------------------------------------------------------------------------------------------------
// Named formats.

Text CurrencyForm(const Decimal& d, const Regional& r) {
  Text amount = FixedForm(d, 2, r.money_decimal_mark, r.money_thousands_mark, true);
  bool negative = d.negative && !RoundPlaces(d, 2).IsZero();
  Text sym = r.currency_symbol;
  Text space = r.currency_symbol_space ? u" " : u"";
  if (!negative) return r.currency_symbol_first ? sym + space + amount : amount + space + sym;
  if (r.negative_currency_in_parens)
    return u"(" + (r.currency_symbol_first ? sym + space + amount : amount + space + sym) + u")";
  if (r.currency_symbol_first)
    return r.negative_sign_after_symbol ? sym + space + u"-" + amount : u"-" + sym + space + amount;
  return u"-" + amount + space + sym;
}

enum class Named {
  None,
  GeneralDate,
  LongDate,
  MediumDate,
  ShortDate,
  LongTime,
  MediumTime,
  ShortTime,
  GeneralNumber,
  CurrencyK,
  Fixed,
  Standard,
  Percent,
  Scientific,
  YesNo,
  TrueFalse,
  OnOff
};

Named NamedFormat(TextView f) {
  Text l = Fold(TrimBlanks(f));
  static const struct {
    const char16_t* name;
    Named kind;
  } kNames[] = {
      {u"general date", Named::GeneralDate}, {u"long date", Named::LongDate},
      {u"medium date", Named::MediumDate},   {u"short date", Named::ShortDate},
      {u"long time", Named::LongTime},       {u"medium time", Named::MediumTime},
      {u"short time", Named::ShortTime},     {u"general number", Named::GeneralNumber},
      {u"currency", Named::CurrencyK},       {u"fixed", Named::Fixed},
      {u"standard", Named::Standard},        {u"percent", Named::Percent},
      {u"scientific", Named::Scientific},    {u"yes/no", Named::YesNo},
      {u"true/false", Named::TrueFalse},     {u"on/off", Named::OnOff},
  };
  for (const auto& n : kNames)
    if (l == n.name) return n.kind;
  return Named::None;
}

bool IsDateNamed(Named n) {
  return n >= Named::GeneralDate && n <= Named::ShortTime;
}

Text FormatNamedDate(Date d, Named n, const Regional& r) {
  switch (n) {
    case Named::GeneralDate:
      return GeneralDate(d, r);
    case Named::LongDate:
      return LongDate(d, r);
    case Named::MediumDate:
      return FormatDatePicture(d, u"d-mmm-yy", r);
    case Named::ShortDate:
      return ShortDate(d, r);
    case Named::LongTime:
      return LongTime(d, r);
    case Named::MediumTime:
      return FormatDatePicture(d, u"hh:nn AMPM", r);
    default:
      return FormatDatePicture(d, u"hh:nn", r);
  }
}

Text FormatNamedNumber(const Decimal& d, Named n, const Regional& r) {
  Text sign = d.negative ? u"-" : u"";
  switch (n) {
    case Named::GeneralNumber:
      return GeneralForm(d, r.decimal_mark);
    case Named::CurrencyK:
      return CurrencyForm(d, r);
    case Named::Fixed:
      return (d.negative && !RoundPlaces(d, 2).IsZero() ? sign : Text()) +
             FixedForm(d, 2, r.decimal_mark, r.thousands_mark, false);
    case Named::Standard:
      return (d.negative && !RoundPlaces(d, 2).IsZero() ? sign : Text()) +
             FixedForm(d, 2, r.decimal_mark, r.thousands_mark, true);
    case Named::Percent:
      return FormatNumberPicture(d, u"0.00%", r);
    case Named::Scientific:
      return FormatNumberPicture(d, u"0.00E+00", r);
    case Named::YesNo:
      return d.IsZero() ? u"No" : u"Yes";
    case Named::TrueFalse:
      return d.IsZero() ? u"False" : u"True";
    default:
      return d.IsZero() ? u"Off" : u"On";
  }
}

// The value as a number for formatting, exactly where it is money.
std::optional<Decimal> NumberOf(const Variant& v, const Regional& r) {
  switch (v.kind()) {
    case Variant::Kind::Bool:
      return FromDouble(*v.boolean() ? -1 : 0);
    case Variant::Kind::Number:
      return FromDouble(*v.number());
    case Variant::Kind::Currency:
      return FromCurrency(*v.currency());
    case Variant::Kind::Date:
      return FromDouble(v.date()->serial);
    case Variant::Kind::Text: {
      auto p = ParseNumber(*v.text(), r);
      if (!p) return std::nullopt;
      return FromDouble(ToDouble(*p));
    }
    default:
      return std::nullopt;
  }
}

std::optional<Date> DateOf(const Variant& v, const Regional& r) {
  switch (v.kind()) {
    case Variant::Kind::Bool:
      return Date(*v.boolean() ? -1 : 0);
    case Variant::Kind::Number:
      return CheckedDate(*v.number());
    case Variant::Kind::Currency:
      return CheckedDate(v.currency()->ToDouble());
    case Variant::Kind::Date:
      return CheckedDate(v.date()->serial);
    case Variant::Kind::Text:
      return DateFromText(*v.text(), r);
    default:
      return std::nullopt;
  }
}

}  // namespace

double CDbl(const Variant& v, const Regional& r) {
  if (auto n = NumberOf(v)) return *n;
  RequireNotNull(v);
  auto p = ParseNumber(*v.text(), r);
  if (!p) Mismatch();
  return ToDouble(*p);
}

Currency CCur(const Variant& v, const Regional& r) {
  switch (v.kind()) {
    case Variant::Kind::Null:
      RequireNotNull(v);
      break;
    case Variant::Kind::Bool:
      return Currency::FromScaled(*v.boolean() ? -Currency::kScale : 0);
    case Variant::Kind::Number:
      return Currency::FromDouble(*v.number());
    case Variant::Kind::Currency:
      return *v.currency();
    case Variant::Kind::Date:
      return Currency::FromDouble(v.date()->serial);
    case Variant::Kind::Text: {
      auto p = ParseNumber(*v.text(), r);
      if (!p) Mismatch();
      return ToCurrency(p->dec);
    }
  }
  Mismatch();
}

Date CDate(const Variant& v, const Regional& r) {
  switch (v.kind()) {
    case Variant::Kind::Null:
      RequireNotNull(v);
      break;
    case Variant::Kind::Bool:
      return Date(*v.boolean() ? -1 : 0);
    case Variant::Kind::Number:
      return CheckedDate(*v.number());
    case Variant::Kind::Currency:
      return CheckedDate(v.currency()->ToDouble());
    case Variant::Kind::Date:
      return *v.date();
    case Variant::Kind::Text: {
      auto d = DateFromText(*v.text(), r);
      if (!d) Mismatch();
      return *d;
    }
  }
  Mismatch();
}

Date CDate(const Variant& v, const Regional& r, const Clock& clock) {
  if (const Text* t = v.text()) {
    auto d = DateFromText(*t, r, SplitDate(clock.Today()).year);
    if (!d) Mismatch();
    return *d;
  }
  return CDate(v, r);
}

Text CStr(const Variant& v, const Regional& r) {
  switch (v.kind()) {
    case Variant::Kind::Null:
      RequireNotNull(v);
      break;
    case Variant::Kind::Bool:
      return *v.boolean() ? u"True" : u"False";
    case Variant::Kind::Number:
      return GeneralForm(FromDouble(*v.number()), r.decimal_mark);
    case Variant::Kind::Currency:
      return GeneralForm(FromCurrency(*v.currency()), r.decimal_mark);
    case Variant::Kind::Date:
      return GeneralDate(CheckedDate(v.date()->serial), r);
    case Variant::Kind::Text:
      return *v.text();
  }
  Mismatch();
}

bool IsNumeric(const Variant& v, const Regional& r) {
  switch (v.kind()) {
    case Variant::Kind::Null:
      return false;
    case Variant::Kind::Text:
      return ParseNumber(*v.text(), r).has_value();
    default:
      return true;
  }
}

bool IsDate(const Variant& v, const Regional& r) {
  switch (v.kind()) {
    case Variant::Kind::Date:
      return true;
    case Variant::Kind::Text:
      return ParseDateText(*v.text(), r).has_value();
    default:
      return false;
  }
}

Text Format(const Variant& v, TextView format, const Regional& r) {
  if (v.IsNull()) return Text();
  if (TrimBlanks(format).empty()) return CStr(v, r);
  Named named = NamedFormat(format);
  bool date_wanted = named != Named::None ? IsDateNamed(named) : IsDatePicture(format);
  if (v.kind() == Variant::Kind::Text) {
    // Text is formatted as the number or date it reads as, else left as it stands.
    const Text& t = *v.text();
    std::optional<Date> as_date;
    std::optional<Decimal> as_number;
    if (date_wanted) {
      as_date = DateFromText(t, r);
      if (!as_date) {
        if (auto p = ParseNumber(t, r)) as_date = CheckedDate(ToDouble(*p));
      }
      if (!as_date) return t;
    } else {
      if (auto p = ParseNumber(t, r)) {
        as_number = FromDouble(ToDouble(*p));
      } else if (auto d = DateFromText(t, r)) {
        as_number = FromDouble(d->serial);
      } else {
        return t;
      }
    }
    if (as_date)
      return named != Named::None ? FormatNamedDate(*as_date, named, r)
                                  : FormatDatePicture(*as_date, format, r);
    return named != Named::None ? FormatNamedNumber(*as_number, named, r)
                                : FormatNumberPicture(*as_number, format, r);
  }
  if (date_wanted) {
    Date d = *DateOf(v, r);
    return named != Named::None ? FormatNamedDate(d, named, r) : FormatDatePicture(d, format, r);
  }
  Decimal d = *NumberOf(v, r);
  return named != Named::None ? FormatNamedNumber(d, named, r) : FormatNumberPicture(d, format, r);
}

}  // namespace lw
