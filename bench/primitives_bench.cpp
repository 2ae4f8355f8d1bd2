// The text primitives against the plainest byte scan that could do the same job: memchr for the
// first character and memcmp for the rest, over the same content held one byte a character. The page
// importers run these over whole pages, so each should stay within a small factor of that scan.
#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "core/primitives/encoding.h"
#include "core/primitives/text.h"

namespace {

constexpr size_t kPageSize = 1 << 20;

// Page-like text: words, markup and prices, a line break now and then, and "&nbsp;" about every
// couple of hundred characters. The same seed gives the same page in every run.
const std::string& PageBytes() {
  static const std::string page = [] {
    static const char* const kWords[] = {"<td>",     "</td>",  "<tr>", "Item",  "number",   "ended",
                                         "Bids",     "$12.50", "US",   "Buyer", "feedback", "seller",
                                         "shipping", "the",    "and",  "of",    "a",        "Auction",
                                         "price",    "time",   "left"};
    std::mt19937 rng(42);
    std::string s;
    s.reserve(kPageSize + 64);
    while (s.size() < kPageSize) {
      unsigned r = rng();
      if (r % 40 == 0) s += "&nbsp;";
      s += kWords[r % (sizeof kWords / sizeof *kWords)];
      s += (r % 13 == 0) ? '\n' : ' ';
    }
    s.resize(kPageSize);
    return s;
  }();
  return page;
}

const lw::Text& PageText() {
  static const lw::Text text = lw::FromUtf8(PageBytes());
  return text;
}

// memchr for the first byte, memcmp for the rest.
size_t ByteFind(const char* s, size_t n, const char* needle, size_t m, size_t from) {
  if (m == 0) return from;
  size_t i = from;
  while (n >= m && i <= n - m) {
    const void* hit = std::memchr(s + i, needle[0], n - m + 1 - i);
    if (hit == nullptr) return std::string::npos;
    size_t at = static_cast<const char*>(hit) - s;
    if (std::memcmp(s + at + 1, needle + 1, m - 1) == 0) return at;
    i = at + 1;
  }
  return std::string::npos;
}

// ---- Replace a six-character text over 1 MB ----

void BM_Replace(benchmark::State& state) {
  const lw::Text& page = PageText();
  for (auto _ : state) {
    lw::Text out = lw::Replace(page, u"&nbsp;", u" ");
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(state.iterations() * kPageSize);
}

void BM_ReplaceBaseline(benchmark::State& state) {
  const std::string& page = PageBytes();
  for (auto _ : state) {
    std::string out;
    out.reserve(page.size());
    size_t done = 0;
    for (size_t at = ByteFind(page.data(), page.size(), "&nbsp;", 6, 0); at != std::string::npos;
         at = ByteFind(page.data(), page.size(), "&nbsp;", 6, done)) {
      out.append(page, done, at - done);
      out += ' ';
      done = at + 6;
    }
    out.append(page, done, std::string::npos);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(state.iterations() * kPageSize);
}

// ---- InStr over 1 MB (the text sought is at the very end) ----

const char kNeedle[] = "Reserve price not met";

void BM_InStr(benchmark::State& state) {
  lw::Text page = PageText() + lw::FromUtf8(kNeedle);
  lw::Text find = lw::FromUtf8(kNeedle);
  for (auto _ : state) benchmark::DoNotOptimize(lw::InStr(page, find));
  state.SetBytesProcessed(state.iterations() * kPageSize);
}

void BM_InStrBaseline(benchmark::State& state) {
  std::string page = PageBytes() + kNeedle;
  const size_t m = std::strlen(kNeedle);
  for (auto _ : state) benchmark::DoNotOptimize(ByteFind(page.data(), page.size(), kNeedle, m, 0));
  state.SetBytesProcessed(state.iterations() * kPageSize);
}

// ---- Like "*pattern*" over 10,000 lines ----

std::vector<std::string> LineBytes() {
  const std::string& page = PageBytes();
  std::vector<std::string> lines;
  std::mt19937 rng(7);
  size_t at = 0;
  while (lines.size() < 10000) {
    size_t len = 40 + rng() % 80;
    if (at + len > page.size()) at = 0;
    std::string line = page.substr(at, len);
    if (rng() % 100 == 0) line.insert(line.size() / 2, "Dutch Bid");
    lines.push_back(std::move(line));
    at += len;
  }
  return lines;
}

void BM_Like(benchmark::State& state) {
  std::vector<lw::Text> lines;
  for (const auto& l : LineBytes()) lines.push_back(lw::FromUtf8(l));
  const lw::Text pattern = u"*Dutch Bid*";
  for (auto _ : state) {
    int hits = 0;
    for (const auto& l : lines) hits += lw::Like(l, pattern);
    benchmark::DoNotOptimize(hits);
  }
  state.SetItemsProcessed(state.iterations() * lines.size());
}

void BM_LikeBaseline(benchmark::State& state) {
  std::vector<std::string> lines = LineBytes();
  for (auto _ : state) {
    int hits = 0;
    for (const auto& l : lines) hits += ByteFind(l.data(), l.size(), "Dutch Bid", 9, 0) != std::string::npos;
    benchmark::DoNotOptimize(hits);
  }
  state.SetItemsProcessed(state.iterations() * lines.size());
}

// ---- Val over 100,000 short texts ----

std::vector<std::string> NumberBytes() {
  static const char* const kShapes[] = {"12.50", "$5",      " 1 2", "1,000.00", "3.99 USD", "-7e2",
                                        "0.01",  "1234567", "42",   "19.95abc", "  8.5 ",   "100.00"};
  std::vector<std::string> v;
  for (size_t i = 0; i < 100000; ++i) v.emplace_back(kShapes[(i * 7) % (sizeof kShapes / sizeof *kShapes)]);
  return v;
}

void BM_Val(benchmark::State& state) {
  std::vector<lw::Text> texts;
  for (const auto& s : NumberBytes()) texts.push_back(lw::FromUtf8(s));
  for (auto _ : state) {
    double sum = 0;
    for (const auto& t : texts) sum += lw::Val(lw::TextView(t));
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * texts.size());
}

void BM_ValBaseline(benchmark::State& state) {
  std::vector<std::string> texts = NumberBytes();
  for (auto _ : state) {
    double sum = 0;
    for (const auto& t : texts) {
      // Digits before and after one point, nothing else.
      double acc = 0, scale = 1;
      bool fraction = false;
      for (char c : t) {
        if (c >= '0' && c <= '9') {
          acc = acc * 10 + (c - '0');
          if (fraction) scale *= 10;
        } else if (c == '.' && !fraction) {
          fraction = true;
        } else if (c != ' ') {
          break;
        }
      }
      sum += acc / scale;
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * texts.size());
}

#define LW_BENCH(fn) BENCHMARK(fn)->Repetitions(5)->ReportAggregatesOnly(true)->Unit(benchmark::kMicrosecond)
LW_BENCH(BM_Replace);
LW_BENCH(BM_ReplaceBaseline);
LW_BENCH(BM_InStr);
LW_BENCH(BM_InStrBaseline);
LW_BENCH(BM_Like);
LW_BENCH(BM_LikeBaseline);
LW_BENCH(BM_Val);
LW_BENCH(BM_ValBaseline);

}  // namespace

BENCHMARK_MAIN();
