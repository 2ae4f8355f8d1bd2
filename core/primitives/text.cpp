#include "core/primitives/text.h"

#include <unicode/uchar.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "core/primitives/encoding.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#include <immintrin.h>
#define LW_HAVE_AVX2_PATH 1
#endif

namespace lw {

namespace {

constexpr size_t kNpos = TextView::npos;
constexpr int kInvalidPatternString = 93;

[[noreturn]] void InvalidCall() {
  throw RuntimeError(err::kInvalidProcedureCall, "Invalid procedure call or argument");
}

[[noreturn]] void BadPattern() {
  throw RuntimeError(kInvalidPatternString, "Invalid pattern string");
}

bool SameUnits(const char16_t* a, const char16_t* b, size_t n) {
  return n == 0 || std::memcmp(a, b, n * sizeof(char16_t)) == 0;
}

// Index of the first `c` in [from, n), else kNpos. The importers search megabytes of page text one
// character at a time, so this is vectorised where the machine allows.
size_t FindUnit(const char16_t* s, size_t n, size_t from, char16_t c) {
  size_t i = from;
#if defined(__SSE2__)
  const __m128i want = _mm_set1_epi16(static_cast<short>(c));
  for (; i + 16 <= n; i += 16) {
    __m128i a = _mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i)), want);
    __m128i b = _mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + 8)), want);
    unsigned mask =
        static_cast<unsigned>(_mm_movemask_epi8(a)) | (static_cast<unsigned>(_mm_movemask_epi8(b)) << 16);
    if (mask != 0) return i + static_cast<size_t>(__builtin_ctz(mask)) / 2;
  }
#endif
  for (; i < n; ++i)
    if (s[i] == c) return i;
  return kNpos;
}

// Index of the first occurrence of `needle` (length m >= 2) in s[from, n), else kNpos. Compares the
// first and the last character of the needle eight positions at a time and verifies only where both
// agree, which keeps false candidates rare even on repetitive page text.
size_t FindLong(const char16_t* s, size_t n, size_t from, const char16_t* needle, size_t m) {
  if (n < m || from > n - m) return kNpos;
  const size_t last_start = n - m;  // last index where a match can begin
  size_t i = from;
#if defined(__SSE2__)
  const __m128i first = _mm_set1_epi16(static_cast<short>(needle[0]));
  const __m128i last = _mm_set1_epi16(static_cast<short>(needle[m - 1]));
  // `skip` leading places of the block are left out.
  auto block = [&](size_t base, unsigned skip) {
    __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + base));
    __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + base + m - 1));
    unsigned mask = static_cast<unsigned>(
        _mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi16(a, first), _mm_cmpeq_epi16(b, last))));
    mask &= ~0u << (2 * skip);
    while (mask != 0) {
      size_t at = base + static_cast<size_t>(__builtin_ctz(mask)) / 2;
      if (SameUnits(s + at + 1, needle + 1, m - 2)) return at;
      mask &= mask - 1;  // each lane sets two bits
      mask &= mask - 1;
    }
    return kNpos;
  };
  for (; i + 7 <= last_start; i += 8) {
    size_t at = block(i, 0);
    if (at != kNpos) return at;
  }
  // The last few places go in one block that ends at the last start, leaving out those before i.
  if (i <= last_start && last_start >= 7) {
    return block(last_start - 7, static_cast<unsigned>(i - (last_start - 7)));
  }
#endif
  while (i <= last_start) {
    size_t at = FindUnit(s, last_start + 1, i, needle[0]);
    if (at == kNpos) return kNpos;
    if (s[at + m - 1] == needle[m - 1] && SameUnits(s + at + 1, needle + 1, m - 2)) return at;
    i = at + 1;
  }
  return kNpos;
}

#if defined(LW_HAVE_AVX2_PATH)
// The same two searches sixteen characters at a time, for machines that have the wider registers;
// chosen at run time so that the program still runs on those that do not.
// Bits, two to a position, where the sixteen characters from s[at] equal the one in `want`.
__attribute__((target("avx2"))) inline uint32_t UnitsAgree(const char16_t* s, size_t at, __m256i want) {
  __m256i a = _mm256_cmpeq_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + at)), want);
  return static_cast<uint32_t>(_mm256_movemask_epi8(a));
}

__attribute__((target("avx2"))) size_t FindUnitAvx2(const char16_t* s, size_t n, size_t from, char16_t c) {
  size_t i = from;
  const __m256i want = _mm256_set1_epi16(static_cast<short>(c));
  for (; i + 32 <= n; i += 32) {
    __m256i a = _mm256_cmpeq_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + i)), want);
    __m256i b = _mm256_cmpeq_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + i + 16)), want);
    uint64_t mask = static_cast<uint32_t>(_mm256_movemask_epi8(a)) |
                    (static_cast<uint64_t>(static_cast<uint32_t>(_mm256_movemask_epi8(b))) << 32);
    if (mask != 0) return i + static_cast<size_t>(__builtin_ctzll(mask)) / 2;
  }
  if (i + 16 <= n) {
    uint32_t mask = UnitsAgree(s, i, want);
    if (mask != 0) return i + static_cast<size_t>(__builtin_ctz(mask)) / 2;
    i += 16;
  }
  if (i < n && n >= 16) {
    // One block that ends at the end of the text; the places before i in it were looked at already.
    uint32_t mask = UnitsAgree(s, n - 16, want) & (~0u << (2 * (i - (n - 16))));
    return mask != 0 ? n - 16 + static_cast<size_t>(__builtin_ctz(mask)) / 2 : kNpos;
  }
  return FindUnit(s, n, i, c);
}

// Bits, two to a position, where both the first and the last character of the needle agree.
__attribute__((target("avx2"))) inline uint32_t EndsAgree(const char16_t* s, size_t at, size_t m,
                                                          __m256i first, __m256i last) {
  __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + at));
  __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + at + m - 1));
  return static_cast<uint32_t>(
      _mm256_movemask_epi8(_mm256_and_si256(_mm256_cmpeq_epi16(a, first), _mm256_cmpeq_epi16(b, last))));
}

__attribute__((target("avx2"))) inline __m256i EndsAgreeLanes(const char16_t* s, size_t at, size_t m,
                                                              __m256i first, __m256i last) {
  __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + at));
  __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + at + m - 1));
  return _mm256_and_si256(_mm256_cmpeq_epi16(a, first), _mm256_cmpeq_epi16(b, last));
}

__attribute__((target("avx2"))) size_t FindLongAvx2(const char16_t* s, size_t n, size_t from,
                                                    const char16_t* needle, size_t m) {
  if (n < m || from > n - m) return kNpos;
  const size_t last_start = n - m;
  size_t i = from;
  const __m256i first = _mm256_set1_epi16(static_cast<short>(needle[0]));
  const __m256i last = _mm256_set1_epi16(static_cast<short>(needle[m - 1]));
  auto verify = [&](uint64_t mask, size_t base) {
    while (mask != 0) {
      size_t at = base + static_cast<size_t>(__builtin_ctzll(mask)) / 2;
      if (SameUnits(s + at + 1, needle + 1, m - 2)) return at;
      mask &= mask - 1;  // each lane sets two bits
      mask &= mask - 1;
    }
    return kNpos;
  };
  // Sixty-four places at a time with a single test while nothing agrees, which is most of a page.
  for (; i + 63 <= last_start; i += 64) {
    __m256i any = _mm256_or_si256(
        _mm256_or_si256(EndsAgreeLanes(s, i, m, first, last), EndsAgreeLanes(s, i + 16, m, first, last)),
        _mm256_or_si256(EndsAgreeLanes(s, i + 32, m, first, last),
                        EndsAgreeLanes(s, i + 48, m, first, last)));
    if (_mm256_testz_si256(any, any)) continue;
    for (size_t base = i; base < i + 64; base += 16) {
      size_t at = verify(EndsAgree(s, base, m, first, last), base);
      if (at != kNpos) return at;
    }
  }
  for (; i + 31 <= last_start; i += 32) {
    uint64_t mask =
        EndsAgree(s, i, m, first, last) | (static_cast<uint64_t>(EndsAgree(s, i + 16, m, first, last)) << 32);
    if (mask != 0) {
      size_t at = verify(mask, i);
      if (at != kNpos) return at;
    }
  }
  if (i + 15 <= last_start) {
    size_t at = verify(EndsAgree(s, i, m, first, last), i);
    if (at != kNpos) return at;
    i += 16;
  }
  // As in FindLong, one block that ends at the last start finishes the search.
  if (i <= last_start && last_start >= 15) {
    const size_t base = last_start - 15;
    return verify(EndsAgree(s, base, m, first, last) & (~0u << (2 * (i - base))), base);
  }
  return FindLong(s, n, i, needle, m);
}

bool HaveAvx2() {
  return __builtin_cpu_supports("avx2");
}
#endif

size_t Find(TextView text, TextView find, size_t from) {
  if (find.empty()) return from <= text.size() ? from : kNpos;
  if (from >= text.size()) return kNpos;
#if defined(LW_HAVE_AVX2_PATH)
  // Short texts are done before the wide registers would pay off.
  if (text.size() - from >= 64 && HaveAvx2()) {
    if (find.size() == 1) return FindUnitAvx2(text.data(), text.size(), from, find[0]);
    return FindLongAvx2(text.data(), text.size(), from, find.data(), find.size());
  }
#endif
  if (find.size() == 1) return FindUnit(text.data(), text.size(), from, find[0]);
  return FindLong(text.data(), text.size(), from, find.data(), find.size());
}

// ---- Like ----------------------------------------------------------------------------------------

// Checks the pattern as a whole before matching so that a bad pattern fails the same way whatever
// the text is.
void ValidatePattern(TextView p) {
  for (size_t i = 0; i < p.size(); ++i) {
    char16_t c = p[i];
    if (c == u'[') {
      size_t j = i + 1;
      if (j < p.size() && p[j] == u'!') ++j;
      while (j < p.size() && p[j] != u']') {
        // "x-y" is a range and must ascend; a '-' first or last in the set stands for itself.
        if (j + 2 < p.size() && p[j + 1] == u'-' && p[j + 2] != u']') {
          if (p[j + 2] < p[j]) BadPattern();
          j += 3;
        } else {
          ++j;
        }
      }
      if (j >= p.size()) BadPattern();
      i = j;
    }
  }
}

// Whether `c` is in the set written between p[open] == '[' and p[close] == ']'. Reads ranges the same
// way ValidatePattern does.
bool InSet(TextView p, size_t open, size_t close, char16_t c) {
  size_t j = open + 1;
  bool negate = false;
  if (j < close && p[j] == u'!') {
    negate = true;
    ++j;
  }
  bool hit = false;
  while (j < close && !hit) {
    if (j + 2 < close && p[j + 1] == u'-') {
      hit = c >= p[j] && c <= p[j + 2];
      j += 3;
    } else {
      hit = c == p[j];
      ++j;
    }
  }
  return hit != negate;
}

// One element of a validated pattern, starting at p[i]: its end and how many text characters it takes.
struct Element {
  size_t end;
  size_t width;  // 1, or 0 for the empty set "[]"
};

Element ElementAt(TextView p, size_t i) {
  if (p[i] != u'[') return {i + 1, 1};
  size_t j = i + 1;
  if (j < p.size() && p[j] == u'!') ++j;
  // The first character after '[' or '[!' may be ']' only when it closes the set.
  while (p[j] != u']') ++j;
  bool empty = (j == i + 1);
  return {j + 1, empty ? 0u : 1u};
}

bool ElementMatches(TextView p, size_t i, size_t end, char16_t c) {
  switch (p[i]) {
    case u'?':
      return true;
    case u'#':
      return c >= u'0' && c <= u'9';
    case u'[':
      return InSet(p, i, end - 1, c);
    default:
      return p[i] == c;
  }
}

// A run of pattern elements between stars, which matches a fixed number of characters.
struct Segment {
  size_t begin, end;  // in the pattern
  size_t width;       // characters of text it takes
  bool literal;       // plain characters only
};

Segment ScanSegment(TextView p, size_t from) {
  Segment s{from, from, 0, true};
  size_t i = from;
  while (i < p.size() && p[i] != u'*') {
    Element e = ElementAt(p, i);
    if (p[i] == u'?' || p[i] == u'#' || p[i] == u'[') s.literal = false;
    s.width += e.width;
    i = e.end;
  }
  s.end = i;
  return s;
}

bool SegmentMatchesAt(TextView p, const Segment& seg, TextView text, size_t at) {
  if (seg.literal) return SameUnits(text.data() + at, p.data() + seg.begin, seg.width);
  size_t t = at;
  for (size_t i = seg.begin; i < seg.end;) {
    Element e = ElementAt(p, i);
    if (e.width == 1) {
      if (!ElementMatches(p, i, e.end, text[t])) return false;
      ++t;
    }
    i = e.end;
  }
  return true;
}

// Leftmost position at or after `from` where the segment matches wholly before `limit`, else kNpos.
size_t FindSegment(TextView p, const Segment& seg, TextView text, size_t from, size_t limit) {
  if (limit < seg.width || from > limit - seg.width) return kNpos;
  if (seg.width == 0) return from;
  if (seg.literal) return Find(text.substr(0, limit), p.substr(seg.begin, seg.width), from);
  for (size_t at = from; at + seg.width <= limit; ++at)
    if (SegmentMatchesAt(p, seg, text, at)) return at;
  return kNpos;
}

// Patterns made of plain characters and stars only, by far the most common kind ("*No Bids*",
// "$*"): the segments are the pieces between the stars and are compared as they stand.
bool LikePlain(TextView text, TextView pattern, size_t first_star, size_t last_star, size_t stars) {
  if (first_star == kNpos) return text == pattern;
  TextView head = pattern.substr(0, first_star);
  TextView tail = pattern.substr(last_star + 1);
  if (text.size() < head.size() + tail.size()) return false;
  if (!SameUnits(text.data(), head.data(), head.size())) return false;
  size_t tail_at = text.size() - tail.size();
  if (!SameUnits(text.data() + tail_at, tail.data(), tail.size())) return false;
  TextView within = text.substr(0, tail_at);
  size_t pos = head.size();
  size_t i = first_star + 1;
  while (i < last_star) {
    size_t next = stars == 2 ? last_star : pattern.find(u'*', i);
    if (next > i) {
      TextView piece = pattern.substr(i, next - i);
      size_t at = Find(within, piece, pos);
      if (at == kNpos) return false;
      pos = at + piece.size();
    }
    i = next + 1;
  }
  return true;
}
}  // namespace

bool Like(TextView text, TextView pattern) {
  // One look at the pattern decides the way; most patterns the program uses are plain.
  size_t first_star = kNpos, last_star = kNpos, stars = 0;
  bool plain = true;
  for (size_t k = 0; k < pattern.size(); ++k) {
    char16_t c = pattern[k];
    if (c > u'[') continue;  // letters and most else
    if (c == u'*') {
      if (first_star == kNpos) first_star = k;
      last_star = k;
      ++stars;
    } else if (c == u'[' || c == u'?' || c == u'#') {
      plain = false;
      break;
    }
  }
  if (plain) return LikePlain(text, pattern, first_star, last_star, stars);
  ValidatePattern(pattern);
  // Every element takes a fixed number of characters, so a pattern is a chain of fixed-width
  // segments joined by stars: the first is anchored at the start, the last at the end, and each one
  // between may take its leftmost place. That keeps the match linear in practice and never exponential.
  Segment head = ScanSegment(pattern, 0);
  if (head.end == pattern.size()) {
    return text.size() == head.width && SegmentMatchesAt(pattern, head, text, 0);
  }
  if (text.size() < head.width || !SegmentMatchesAt(pattern, head, text, 0)) return false;

  // The last segment follows the last star that is not inside a set such as "[*]".
  size_t tail_begin = pattern.size();
  for (size_t k = head.end; k < pattern.size();) {
    if (pattern[k] == u'*') {
      tail_begin = ++k;
    } else {
      k = ElementAt(pattern, k).end;
    }
  }
  Segment tail = ScanSegment(pattern, tail_begin);
  if (text.size() < head.width + tail.width) return false;
  size_t tail_at = text.size() - tail.width;
  if (!SegmentMatchesAt(pattern, tail, text, tail_at)) return false;

  size_t pos = head.width;
  size_t i = head.end;
  while (i < tail_begin) {
    if (pattern[i] == u'*') {
      ++i;
      continue;
    }
    Segment mid = ScanSegment(pattern, i);
    size_t at = FindSegment(pattern, mid, text, pos, tail_at);
    if (at == kNpos) return false;
    pos = at + mid.width;
    i = mid.end;
  }
  return true;
}

size_t InStr(size_t start, TextView text, TextView find) {
  if (start == 0) InvalidCall();
  size_t at = Find(text, find, start - 1);
  return at == kNpos ? 0 : at + 1;
}

size_t InStrRev(TextView text, TextView find) {
  if (find.empty()) return text.size();
  if (find.size() > text.size()) return 0;
  const size_t m = find.size();
  const char16_t* s = text.data();
  size_t end = text.size() - m + 1;  // places [0, end) may start a match
#if defined(__SSE2__)
  // Blocks of eight places from the back, first and last character compared at once, the highest
  // agreeing place verified first.
  const __m128i first = _mm_set1_epi16(static_cast<short>(find[0]));
  const __m128i last = _mm_set1_epi16(static_cast<short>(find[m - 1]));
  while (end >= 8) {
    size_t base = end - 8;
    __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + base));
    __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + base + m - 1));
    unsigned mask = static_cast<unsigned>(
        _mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi16(a, first), _mm_cmpeq_epi16(b, last))));
    while (mask != 0) {
      unsigned top = 31u - static_cast<unsigned>(__builtin_clz(mask));
      size_t at = base + top / 2;
      if (SameUnits(s + at, find.data(), m)) return at + 1;
      mask &= ~(3u << (top & ~1u));
    }
    end = base;
  }
#endif
  for (size_t at = end; at-- > 0;) {
    if (s[at] == find[0] && s[at + m - 1] == find[m - 1] && SameUnits(s + at, find.data(), m)) return at + 1;
  }
  return 0;
}

Text Replace(TextView text, TextView find, TextView with) {
  if (find.empty()) return Text(text);
  size_t at = Find(text, find, 0);
  if (at == kNpos) return Text(text);
  Text out;
  out.reserve(with.size() > find.size() ? text.size() + (with.size() - find.size()) * 8 : text.size());
  size_t done = 0;
  while (at != kNpos) {
    out.append(text.data() + done, at - done);
    out.append(with);
    done = at + find.size();
    at = Find(text, find, done);
  }
  out.append(text.data() + done, text.size() - done);
  return out;
}

Text Left(TextView text, size_t count) {
  return Text(text.substr(0, count));
}

Text Right(TextView text, size_t count) {
  if (count >= text.size()) return Text(text);
  return Text(text.substr(text.size() - count));
}

Text Mid(TextView text, size_t start) {
  if (start == 0) InvalidCall();
  if (start > text.size()) return Text();
  return Text(text.substr(start - 1));
}

Text Mid(TextView text, size_t start, size_t count) {
  if (start == 0) InvalidCall();
  if (start > text.size()) return Text();
  return Text(text.substr(start - 1, count));
}

Text Trim(TextView text) {
  size_t b = text.find_first_not_of(u' ');
  if (b == kNpos) return Text();
  size_t e = text.find_last_not_of(u' ');
  return Text(text.substr(b, e - b + 1));
}

Text LTrim(TextView text) {
  size_t b = text.find_first_not_of(u' ');
  return b == kNpos ? Text() : Text(text.substr(b));
}

Text RTrim(TextView text) {
  size_t e = text.find_last_not_of(u' ');
  return e == kNpos ? Text() : Text(text.substr(0, e + 1));
}

namespace {
// Case mapping one 16-bit unit at a time keeps the length and the positions of the text; surrogate
// halves pass through unchanged.
template <bool kUpper>
Text MapCase(TextView text) {
  Text out(text);
  for (char16_t& c : out) {
    if (c < 0x80) {
      if (kUpper ? (c >= u'a' && c <= u'z') : (c >= u'A' && c <= u'Z')) c ^= 0x20;
    } else if (c < 0xD800 || c > 0xDFFF) {
      UChar32 m = kUpper ? u_toupper(c) : u_tolower(c);
      if (m <= 0xFFFF) c = static_cast<char16_t>(m);
    }
  }
  return out;
}
}  // namespace

Text LCase(TextView text) {
  return MapCase<false>(text);
}
Text UCase(TextView text) {
  return MapCase<true>(text);
}

Text Space(size_t n) {
  return Text(n, u' ');
}

Text Chr(int code) {
  if (code < 0 || code > 0xFFFF) InvalidCall();
  if (code >= 0x80 && code <= 0xFF) {
    // The upper half of the byte range is the western code page, as in the files the program reads.
    char byte = static_cast<char>(code);
    return FromCp1252(std::string_view(&byte, 1));
  }
  return Text(1, static_cast<char16_t>(code));
}

int Asc(TextView text) {
  if (text.empty()) InvalidCall();
  char16_t c = text[0];
  if (c < 0x80) return c;
  // The inverse of Chr: a character of the western code page gives its byte value.
  std::string b = ToCp1252(TextView(&c, 1));
  if (b.size() == 1 && b[0] != '?') return static_cast<unsigned char>(b[0]);
  return c;
}

// ---- Val -----------------------------------------------------------------------------------------

namespace {
inline bool IsValBlank(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\n';
}
inline bool IsDigit(char16_t c) {
  return c >= u'0' && c <= u'9';
}
}  // namespace

double Val(TextView text) {
  // Enough significant digits for a correctly rounded double; anything beyond only decides the
  // rounding, which a trailing sticky digit preserves.
  constexpr size_t kMaxDigits = 780;
  char digits[kMaxDigits + 32];
  size_t nd = 0;
  bool sticky = false;
  long long scale = 0;  // power of ten to apply to the digits kept

  const size_t n = text.size();
  size_t i = 0;
  auto skip = [&] {
    while (i < n && IsValBlank(text[i])) ++i;
  };

  skip();
  bool negative = false;
  if (i < n && (text[i] == u'-' || text[i] == u'+')) {
    negative = text[i] == u'-';
    ++i;
  }
  auto take = [&](char16_t c, bool fraction) {
    if (nd == 0 && c == u'0') {
      if (fraction) --scale;
      return;
    }
    if (nd < kMaxDigits) {
      digits[nd++] = static_cast<char>(c);
      if (fraction) --scale;
    } else {
      if (!fraction) ++scale;
      if (c != u'0') sticky = true;
    }
  };
  for (skip(); i < n && IsDigit(text[i]); skip()) take(text[i++], false);
  if (i < n && text[i] == u'.') {
    ++i;
    for (skip(); i < n && IsDigit(text[i]); skip()) take(text[i++], true);
  }
  long long exponent = 0;
  if (i < n && (text[i] == u'e' || text[i] == u'E' || text[i] == u'd' || text[i] == u'D')) {
    size_t j = i + 1;
    while (j < n && IsValBlank(text[j])) ++j;
    bool exp_negative = false;
    if (j < n && (text[j] == u'-' || text[j] == u'+')) {
      exp_negative = text[j] == u'-';
      ++j;
    }
    while (j < n && IsValBlank(text[j])) ++j;
    if (j < n && IsDigit(text[j])) {
      while (j < n && (IsDigit(text[j]) || IsValBlank(text[j]))) {
        if (IsDigit(text[j]) && exponent < 1000000) exponent = exponent * 10 + (text[j] - u'0');
        ++j;
      }
      if (exp_negative) exponent = -exponent;
    }
  }
  if (nd == 0) return 0.0;
  long long total = scale + exponent;
  // Up to fifteen digits and a power of ten that a double holds exactly give a correctly rounded
  // result with one multiplication or division, which covers prices and counts.
  if (nd <= 15 && !sticky && total >= -22 && total <= 22) {
    static constexpr double kPow10[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                        1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    uint64_t mantissa = 0;
    for (size_t k = 0; k < nd; ++k) mantissa = mantissa * 10 + static_cast<uint64_t>(digits[k] - '0');
    double value = static_cast<double>(mantissa);
    value = total >= 0 ? value * kPow10[total] : value / kPow10[-total];
    return negative ? -value : value;
  }
  if (sticky) {
    digits[nd++] = '1';
    --scale;
    --total;
  }
  // Far outside the range of a double the answer is known without parsing.
  if (total + static_cast<long long>(nd) > 400) {
    return negative ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
  }
  if (total + static_cast<long long>(nd) < -400) return 0.0;
  size_t len = nd;
  digits[len++] = 'e';
  auto [end, ec] = std::to_chars(digits + len, digits + sizeof digits, total);
  (void)ec;
  double value = 0;
  auto res = std::from_chars(digits, end, value);
  if (res.ec == std::errc::result_out_of_range) {
    // from_chars leaves the value alone on overflow and underflow alike; tell them apart by the
    // magnitude the digits stand for.
    value = (total + static_cast<long long>(nd) > 0) ? std::numeric_limits<double>::infinity() : 0.0;
  }
  if (value == 0.0) return 0.0;
  return negative ? -value : value;
}

double Val(const Variant& v) {
  if (auto n = NumberOf(v)) return *n;
  if (const Text* t = v.text()) return Val(TextView(*t));
  return 0;  // Null
}

}  // namespace lw
