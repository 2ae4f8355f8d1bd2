#include "import/normalise.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/primitives/encoding.h"
#include "core/primitives/text.h"

namespace lw {

namespace {

struct Row {
  const char16_t* find;
  const char16_t* with;
};

// Each row is one pass in this order; merged into one scan they would give a different text.
constexpr std::array<Row, 16> kPreParseRows = {{
    {u"       ", u" "},
    {u"      ", u" "},
    {u"     ", u" "},
    {u"    ", u" "},
    {u"   ", u" "},
    {u"&nbsp;", u""},
    {u"&nbsp", u""},
    {u"(*) indicates that auction has ended.", u""},
    {u"Seller: You can manage", u"\r\n"},
    {u"<td> </td>", u""},
    {u"</TH>\r\n", u""},
    {u"</TD>\r\n", u""},
    {u"Item was revised. Insertion fee refunded!", u""},
    {u"No Bids \r\n\r\n", u"No Bids "},
    {u" \r\n", u"\r\n"},
    {u"\r\r", u"\r\n"},
}};

constexpr std::array<Row, 10> kTitleRows = {{
    {u"&#38;", u"&"},
    {u"&#34;", u"\""},
    {u"&#39;", u"'"},
    {u"&#62;", u">"},
    {u"&#60;", u"<"},
    {u"&amp;", u"&"},
    {u"&amp", u"&"},
    {u"&quot;", u"\""},
    {u"&lt;", u"<"},
    {u"&gt;", u">"},
}};

// The tag removal without rewriting the whole text for every distinct tag.
//
// The text is cut after every ">" into segments. A tag text starts with "<" and holds exactly one ">",
// its last character, so each of its occurrences is the tail of one segment, and two occurrences never
// overlap. Removing a tag therefore means cutting it off the end of every segment that ends with it
// and joining what is left of each such segment onto the next one. Segments are indexed by their tail
// from their last "<", which every segment ending with a given tag shares with it, so a tag only looks
// at the segments that can hold it instead of at the whole text. What lies before the first segment
// still holding a "<" is final, just as the plain loop never looks back before its start position.
class TagRemover {
 public:
  explicit TagRemover(const Text& text) {
    done_.reserve(text.size());
    // One segment a ">": made room for at once rather than moved about as the list grows.
    segs_.reserve(static_cast<size_t>(std::count(text.begin(), text.end(), u'>')) + 1);
    size_t from = 0;
    for (;;) {
      size_t close = text.find(u'>', from);
      if (close == Text::npos) {
        Add(text.substr(from));
        break;
      }
      Add(text.substr(from, close - from + 1));
      from = close + 1;
    }
    for (int id = 0; id < static_cast<int>(segs_.size()); ++id) Index(id);
  }

  // Runs the removal; false when a "<" has no ">" after it.
  bool Run() {
    for (;;) {
      // Text before the first "<" is final: nothing can be removed from it any more.
      while (cursor_ != kNone && segs_[cursor_].content.find(u'<') == Text::npos) {
        done_ += segs_[cursor_].content;
        cursor_ = segs_[cursor_].next;
      }
      if (cursor_ == kNone) return true;
      Segment& seg = segs_[cursor_];
      if (seg.next == kNone) return false;  // the tail: no ">" after this "<"
      size_t lt = seg.content.find(u'<');
      done_.append(seg.content, 0, lt);
      seg.content.erase(0, lt);
      Text tag = seg.content;
      RemoveEverywhere(tag);
      // The segment under the cursor was the tag itself, so it has gone; its link still names the
      // segment that took its place.
      cursor_ = segs_[cursor_].next;
    }
  }

  Text Result() const {
    Text out = done_;
    for (int id = cursor_; id != kNone; id = segs_[id].next) out += segs_[id].content;
    return out;
  }

 private:
  static constexpr int kNone = -1;
  struct Segment {
    Text content;
    int prev = kNone;
    int next = kNone;
    bool alive = true;
  };

  void Add(Text content) {
    int id = static_cast<int>(segs_.size());
    Segment s;
    s.content = std::move(content);
    s.prev = id - 1;
    if (id > 0) segs_[id - 1].next = id;
    segs_.push_back(std::move(s));
  }

  static bool KeyOf(const Text& content, TextView& key) {
    size_t lt = content.rfind(u'<');
    if (lt == Text::npos) return false;
    key = TextView(content).substr(lt);
    return true;
  }

  void Index(int id) {
    TextView key;
    if (KeyOf(segs_[id].content, key)) index_[Text(key)].push_back(id);
  }

  static bool EndsWith(const Text& s, const Text& tail) {
    return s.size() >= tail.size() && std::equal(tail.rbegin(), tail.rend(), s.rbegin());
  }

  void RemoveEverywhere(const Text& tag) {
    Text key = tag.substr(tag.rfind(u'<'));
    auto it = index_.find(key);
    if (it == index_.end()) return;
    std::vector<int> matched;
    std::vector<int> kept;
    for (int id : it->second) {
      if (!segs_[id].alive) continue;
      (EndsWith(segs_[id].content, tag) ? matched : kept).push_back(id);
    }
    std::sort(kept.begin(), kept.end());
    kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
    it->second = std::move(kept);
    std::sort(matched.begin(), matched.end());
    matched.erase(std::unique(matched.begin(), matched.end()), matched.end());
    // Ids follow the text order and a join keeps the id of the later segment. A run of matching
    // neighbours is joined into the segment after it in one go: joining them one by one would copy the
    // growing text again for every member, which on a page of identical rows never ends.
    for (size_t i = 0; i < matched.size();) {
      size_t j = i;
      while (j + 1 < matched.size() && segs_[matched[j]].next == matched[j + 1]) ++j;
      const int first = matched[i];
      const int target_id = segs_[matched[j]].next;
      Segment& target = segs_[target_id];
      const bool target_had_key = target.content.find(u'<') != Text::npos;
      size_t total = target.content.size();
      for (size_t k = i; k <= j; ++k) total += segs_[matched[k]].content.size() - tag.size();
      Text joined;
      joined.reserve(total);
      for (size_t k = i; k <= j; ++k) {
        Segment& seg = segs_[matched[k]];
        joined.append(seg.content, 0, seg.content.size() - tag.size());
        seg.alive = false;
        Text().swap(seg.content);
      }
      joined += target.content;
      target.content = std::move(joined);
      target.prev = segs_[first].prev;
      if (target.prev != kNone) segs_[target.prev].next = target_id;
      if (!target_had_key) Index(target_id);
      i = j + 1;
    }
  }

  std::vector<Segment> segs_;
  int cursor_ = 0;  // first segment not yet final
  Text done_;       // the final text before it
  std::unordered_map<Text, std::vector<int>> index_;
};

}  // namespace

Text pre_parse_HTML(TextView text) {
  Text out(text);
  for (const Row& row : kPreParseRows) out = Replace(out, row.find, row.with);
  return out;
}

void pre_parse_HTML(FileDisplay& buffer) {
  buffer.set_text(pre_parse_HTML(buffer.text()));
}

void parse_HTML_text(Text& text) {
  TagRemover remover(text);
  bool ok = remover.Run();
  text = remover.Result();
  if (!ok) throw RuntimeError(err::kInvalidPropertyValue, "Invalid property value");
}

void parse_HTML(FileDisplay& buffer, const StatusSink& status) {
  if (status) status(T("Converting Data ..... please Wait"));
  Text text = buffer.text();
  try {
    parse_HTML_text(text);
  } catch (...) {
    buffer.set_text(text);
    throw;
  }
  buffer.set_text(text);
  if (status) status(T("Converting Data finished."));
}

void remove_odd_characters_from_title(Text& title) {
  for (const Row& row : kTitleRows) {
    TextView find(row.find);
    for (size_t at = InStr(title, find); at != 0; at = InStr(title, find))
      title = Left(title, at - 1) + row.with + Mid(title, at + find.size());
  }
}

}  // namespace lw
