#include "accounting/fees_walk.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "core/primitives/text.h"
#include "platform/charset.h"

namespace lw {

namespace {

long long CountLineFeeds(TextView text, size_t from, size_t to) {
  return std::count(text.begin() + static_cast<long>(from), text.begin() + static_cast<long>(to), u'\n');
}

}  // namespace

Text fee_page_text(std::string_view bytes) {
  const Text decoded = DecodePage(bytes);
  // A page edited by hand may end its lines with a lone CR or LF; the walk steps over CR LF pairs.
  Text page;
  page.reserve(decoded.size() + decoded.size() / 32);
  for (size_t i = 0; i < decoded.size(); ++i) {
    const char16_t c = decoded[i];
    if (c != u'\r' && c != u'\n') {
      page.push_back(c);
      continue;
    }
    page += u"\r\n";
    if (c == u'\r' && i + 1 < decoded.size() && decoded[i + 1] == u'\n') ++i;
  }
  return page;
}

Text load_fee_page(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw RuntimeError(err::kFileNotFound, "File not found: " + path.string());
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) throw RuntimeError(err::kFileNotFound, "File not found: " + path.string());
  return fee_page_text(bytes);
}

void walk_fee_page(TextView page, const std::function<void(const Text& fee_line)>& take) {
  const size_t end_mark = page.find(u"eBay Inc. All Rights Reserved");
  const size_t heading = page.find(u"DebitBalance");
  if (end_mark == TextView::npos || heading == TextView::npos) return;
  const long long end_line = CountLineFeeds(page, 0, end_mark);

  // Line numbers are kept as the selection moves on, not counted from the top each time: a page of
  // thousands of fees would otherwise take time growing with the square of its length.
  size_t start = std::min(heading + 20, page.size());
  size_t length = 1;
  long long line = CountLineFeeds(page, 0, start);
  while (start < page.size()) {
    // The selection grows by two until its end lies on the next line, that is past the line feed.
    size_t feed = page.find(u'\n', start);
    size_t taken = page.size() - start;
    if (feed != TextView::npos) {
      const size_t need = feed - start + 1;
      if (length < need) length += (need - length + 1) / 2 * 2;
      taken = std::min(length, taken);
    }
    Text fee_line(page.substr(start, taken));
    if (Like(fee_line, u"*ount Balance;*")) return;
    take(fee_line);
    line += CountLineFeeds(page, start, start + taken);
    start += taken;
    length = 0;
    if (line > end_line) return;
  }
}

}  // namespace lw
