#include "accounting/layout.h"

#include <algorithm>
#include <cmath>
#include <system_error>
#include <unordered_map>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "core/store/store.h"
#include "screen/names.h"

namespace lw::layout {

namespace {

bool Truthy(const Variant& v) {
  switch (v.kind()) {
    case Variant::Kind::Bool:
      return *v.boolean();
    case Variant::Kind::Number:
      return *v.number() != 0;
    case Variant::Kind::Currency:
      return v.currency()->scaled() != 0;
    case Variant::Kind::Text:
      return SameName(*v.text(), u"true") || SameName(*v.text(), u"yes") || *v.text() == u"-1" ||
             *v.text() == u"1";
    default:
      return false;
  }
}

// The spreadsheet's picture for a field's display format; empty where the value is better left as the
// text the report prints (dates, plain text).
Text SpreadsheetFormat(TextView format, const Regional& r) {
  Text f = LCase(format);
  if (f.empty() || f == u"general number") return u"General";
  if (f == u"currency") {
    Text symbol = u"\"" + r.currency_symbol + u"\"";
    if (!r.currency_symbol_first) return u"#,##0.00" + Text(r.currency_symbol_space ? u" " : u"") + symbol;
    return symbol + Text(r.currency_symbol_space ? u" " : u"") + u"#,##0.00";
  }
  if (f == u"$###,##0.00" || f == u"$#,##0.00") return u"\"$\"#,##0.00";
  if (f == u"#,##0") return u"#,##0";
  if (f == u"#######0.00") return u"0.00";
  return Text();
}

// A built section: its pieces relative to the section's top until they are put on a page.
struct Block {
  int height = 0;
  std::vector<ReportRun> runs;
  std::vector<ReportRule> rules;
  std::vector<ReportPicture> pictures;
  bool empty() const { return runs.empty() && rules.empty() && pictures.empty(); }
};

// Where a piece of a block lies, to split the block between pages in order from its top.
struct Piece {
  enum Kind { kRun, kRule, kPicture } kind;
  size_t index;
  int top;
  int height;
};

// A summary: the values of a column over its scope.
struct Accumulator {
  Item* item = nullptr;
  int slot = -1;
  bool money = true;  // every value so far was money: the sum stays exact
  Currency money_sum;
  double number_sum = 0;
  int64_t count = 0;
  void Reset() {
    money = true;
    money_sum = Currency();
    number_sum = 0;
    count = 0;
  }
  void Add(const Variant& v, const Regional& r) {
    if (v.IsNull()) return;
    ++count;
    if (item->summary != Summary::kSum) return;
    if (auto* c = v.currency()) {
      money_sum += *c;
      return;
    }
    double d = 0;
    try {
      d = CDbl(v, r);
    } catch (const RuntimeError&) {
      --count;  // text that is no number is left out of the sum, as it is out of the count
      return;
    }
    money = false;
    number_sum += d;
  }
  Variant Value() const {
    if (item->summary == Summary::kCount) return Variant(static_cast<double>(count));
    if (money) return Variant(money_sum);
    return Variant(number_sum + money_sum.ToDouble());
  }
};

using Row = std::vector<Variant>;

// The smallest size a figure is shrunk to, in points, before it is cut after all.
constexpr double kSmallestFigure = 4;

class Runner {
 public:
  Runner(Report& report, const Regional& regional) : report_(report), regional_(regional) {}

  ReportDocument Run(Recordset* rows);

 private:
  struct Binding {
    Item* item;
    int slot;
  };
  struct SectionState {
    std::vector<Binding> bindings;
    std::vector<Accumulator> sums;
  };

  int Slot(const Text& field);
  void Prepare(Recordset* rows);
  void ReadRow(Recordset& rows, Row& out);

  // Binds, sums and runs the code; true when the section is to be printed.
  bool Format(Section& s, const Row* row);
  Block Build(Section& s);
  void Print(Section& s, const Row* row);
  void Place(Block block);
  void PlaceAt(Block& block, int top);
  void Move(Block& block, const Piece& piece, int dy);
  void BeginPage(bool with_header);
  void FinishPage();
  void NewPage() {
    FinishPage();
    BeginPage(true);
  }
  void AddToPage(Block& block);

  Report& report_;
  const Regional& regional_;
  ReportDocument doc_;
  std::unordered_map<const Section*, SectionState> states_;
  std::vector<Text> columns_;  // by slot: the column a layout names
  std::vector<int> ordinals_;  // by slot: its place in the cursor, -1 when the cursor lacks it
  std::unordered_map<Text, int> slot_by_field_;
  std::vector<int> group_slots_;
  std::unordered_map<const Item*, uint16_t> fonts_;
  const Row* row_in_effect_ = nullptr;  // the row the page header and footer show
  int y_ = 0;
  int content_top_ = 0;
  int limit_ = 0;
  int left_ = 0;
};

int Runner::Slot(const Text& field) {
  Text key = FoldName(field);
  auto it = slot_by_field_.find(key);
  if (it != slot_by_field_.end()) return it->second;
  int slot = static_cast<int>(columns_.size());
  columns_.push_back(field);
  slot_by_field_.emplace(std::move(key), slot);
  return slot;
}

void Runner::Prepare(Recordset* rows) {
  for (Section* s : report_.Sections()) {
    SectionState& st = states_[s];
    for (Item& it : s->items()) {
      if (it.data_field.empty()) continue;
      int slot = Slot(it.data_field);
      if (it.summary == Summary::kNone)
        st.bindings.push_back({&it, slot});
      else
        st.sums.push_back(Accumulator{&it, slot, true, Currency(), 0, 0});
    }
  }
  for (auto& g : report_.groups())
    group_slots_.push_back(g.header.group_by.empty() ? -1 : Slot(g.header.group_by));
  // A layout may name a column by its table ("Seller.Name") where the query has it plain, or the other
  // way round; a column the query does not give at all prints empty.
  ordinals_.assign(columns_.size(), -1);
  if (!rows) return;
  for (size_t i = 0; i < columns_.size(); ++i) {
    int at = rows->FieldOrdinal(columns_[i]);
    size_t dot = columns_[i].find(u'.');
    if (at < 0 && dot != Text::npos) at = rows->FieldOrdinal(TextView(columns_[i]).substr(dot + 1));
    ordinals_[i] = at;
  }
}

void Runner::ReadRow(Recordset& rows, Row& out) {
  out.resize(ordinals_.size());
  for (size_t i = 0; i < ordinals_.size(); ++i)
    out[i] = ordinals_[i] < 0 ? Variant() : rows.FieldAt(ordinals_[i]);
}

bool Runner::Format(Section& s, const Row* row) {
  SectionState& st = states_[&s];
  if (row)
    for (const Binding& b : st.bindings) b.item->value = (*row)[b.slot];
  for (Accumulator& a : st.sums) a.item->value = a.Value();
  if (s.on_format) {
    try {
      s.on_format();
    } catch (const RuntimeError&) {
      // The section's own error branch: it prints as far as its code got.
    }
  }
  return s.visible;
}

Block Runner::Build(Section& s) {
  struct Laid {
    Item* item;
    std::vector<Text> lines;
    int height;
    int growth;
    int shift = 0;
    int font = -1;  // a smaller size the figure was shrunk to, as an index of the document's fonts
  };
  std::vector<Laid> laid;
  laid.reserve(s.items().size());
  bool grows = false;
  for (Item& it : s.items()) {
    if (!it.visible) continue;
    Laid l{&it, {}, it.height, 0};
    if (it.kind == ItemKind::kLabel || it.kind == ItemKind::kField) {
      const ReportFont& font = it.font;
      int lh = LineHeight(font);
      l.lines = BreakLines(it.DisplayText(regional_), font, it.width, it.can_grow);
      if (it.can_grow) {
        l.height = std::max(it.height, static_cast<int>(l.lines.size()) * lh);
      } else {
        size_t fit = std::max<size_t>(1, static_cast<size_t>(std::max(it.height, lh) / lh));
        if (l.lines.size() > fit) l.lines.resize(fit);
        // A figure cut short would be a wrong figure: one too wide for its box prints smaller instead.
        bool figure = it.kind == ItemKind::kField && (it.value.number() || it.value.currency());
        for (Text& line : l.lines) {
          int wide = TextWidth(line, font);
          if (wide <= it.width) continue;
          if (figure && l.lines.size() == 1) {
            ReportFont smaller = font;
            smaller.size = std::max(kSmallestFigure, std::floor(font.size * it.width / wide * 2) / 2);
            l.font = doc_.FontIndex(smaller);
            line = FitText(line, smaller, it.width);
          } else {
            line = FitText(line, font, it.width);
          }
        }
      }
      l.growth = l.height - it.height;
      grows = grows || l.growth > 0;
    }
    laid.push_back(std::move(l));
  }
  // Items below a grown one move down with it, and with whatever moved that one.
  if (grows) {
    std::vector<size_t> order(laid.size());
    for (size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::stable_sort(order.begin(), order.end(),
                     [&](size_t a, size_t b) { return laid[a].item->top < laid[b].item->top; });
    for (size_t i = 0; i < order.size(); ++i) {
      Laid& me = laid[order[i]];
      for (size_t j = 0; j < i; ++j) {
        const Laid& above = laid[order[j]];
        if (above.item->top + above.item->height <= me.item->top)
          me.shift = std::max(me.shift, above.shift + above.growth);
      }
    }
  }

  Block b;
  b.height = s.height;
  for (Laid& l : laid) {
    const Item& it = *l.item;
    int top = it.top + l.shift;
    b.height = std::max(b.height, top + l.height);
    switch (it.kind) {
      case ItemKind::kLabel:
      case ItemKind::kField:
      case ItemKind::kCheckBox: {
        auto f = fonts_.find(&it);
        if (f == fonts_.end()) f = fonts_.emplace(&it, doc_.FontIndex(it.font)).first;
        const uint16_t font = l.font >= 0 ? static_cast<uint16_t>(l.font) : f->second;
        std::optional<double> number;
        uint8_t number_format = 0;
        if (it.kind == ItemKind::kField && l.lines.size() == 1) {
          if (auto* c = it.value.currency())
            number = c->ToDouble();
          else if (auto* d = it.value.number())
            number = *d;
          if (number) {
            Text picture = SpreadsheetFormat(it.output_format, regional_);
            if (picture.empty())
              number.reset();
            else
              number_format = doc_.NumberFormatIndex(picture);
          }
        }
        if (it.kind == ItemKind::kCheckBox) l.lines = {it.DisplayText(regional_)};
        int lh = it.kind == ItemKind::kCheckBox ? it.height : LineHeight(it.font);
        for (size_t i = 0; i < l.lines.size(); ++i) {
          // An empty line takes its room but prints nothing.
          if (l.lines[i].empty() && it.kind != ItemKind::kCheckBox) continue;
          ReportRun r;
          r.left = left_ + it.left;
          r.top = top + static_cast<int>(i) * lh;
          r.width = it.width;
          r.height = lh;
          r.text = std::move(l.lines[i]);
          r.font = font;
          r.align = it.align;
          r.forecolor = it.forecolor;
          r.backcolor = it.backcolor;
          if (it.kind == ItemKind::kCheckBox) {
            r.check_box = true;
            r.checked = Truthy(it.value);
            r.width = std::min(it.width, it.height);
          }
          r.number = number;
          r.number_format = number_format;
          b.runs.push_back(std::move(r));
        }
        break;
      }
      case ItemKind::kLine: {
        ReportRule rule{left_ + it.left, top,         left_ + it.left + it.width, top + it.height,
                        it.line_weight,  it.forecolor};
        b.rules.push_back(rule);
        break;
      }
      case ItemKind::kPicture: {
        const Text* path = it.value.text();
        if (!path || path->empty()) break;
        std::error_code ec;
        std::filesystem::path file(ToUtf8(*path));
        if (!std::filesystem::is_regular_file(file, ec)) break;
        b.pictures.push_back(ReportPicture{left_ + it.left, top, it.width, it.height, file});
        break;
      }
    }
  }
  return b;
}

void Runner::AddToPage(Block& block) {
  ReportPage& page = doc_.pages.back();
  for (ReportRun& r : block.runs) page.runs.push_back(std::move(r));
  page.rules.insert(page.rules.end(), block.rules.begin(), block.rules.end());
  for (ReportPicture& p : block.pictures) page.pictures.push_back(std::move(p));
  block.runs.clear();
  block.rules.clear();
  block.pictures.clear();
}

void Runner::PlaceAt(Block& block, int top) {
  for (ReportRun& r : block.runs) r.top += top;
  for (ReportRule& r : block.rules) {
    r.y1 += top;
    r.y2 += top;
  }
  for (ReportPicture& p : block.pictures) p.top += top;
  AddToPage(block);
}

void Runner::Move(Block& block, const Piece& piece, int dy) {
  ReportPage& page = doc_.pages.back();
  switch (piece.kind) {
    case Piece::kRun:
      block.runs[piece.index].top += dy;
      page.runs.push_back(std::move(block.runs[piece.index]));
      break;
    case Piece::kRule:
      block.rules[piece.index].y1 += dy;
      block.rules[piece.index].y2 += dy;
      page.rules.push_back(block.rules[piece.index]);
      break;
    case Piece::kPicture:
      block.pictures[piece.index].top += dy;
      page.pictures.push_back(std::move(block.pictures[piece.index]));
      break;
  }
}

void Runner::Place(Block block) {
  if (block.height <= 0 && block.empty()) return;
  if (block.height > limit_ - y_ && y_ > content_top_) NewPage();
  if (block.height <= limit_ - y_) {
    PlaceAt(block, y_);
    y_ += block.height;
    return;
  }
  // Taller than a whole page: split between lines, each page taking what fits.
  std::vector<Piece> pieces;
  for (size_t i = 0; i < block.runs.size(); ++i)
    pieces.push_back({Piece::kRun, i, block.runs[i].top, block.runs[i].height});
  for (size_t i = 0; i < block.rules.size(); ++i) {
    const ReportRule& r = block.rules[i];
    pieces.push_back({Piece::kRule, i, std::min(r.y1, r.y2), std::abs(r.y2 - r.y1)});
  }
  for (size_t i = 0; i < block.pictures.size(); ++i)
    pieces.push_back({Piece::kPicture, i, block.pictures[i].top, block.pictures[i].height});
  std::stable_sort(pieces.begin(), pieces.end(),
                   [](const Piece& a, const Piece& b) { return a.top < b.top; });
  int consumed = 0;
  int base = y_;
  int bottom = y_;
  for (const Piece& p : pieces) {
    int top = base + p.top - consumed;
    if (top + p.height > limit_ && top > content_top_) {
      NewPage();
      consumed = p.top;
      base = y_;
      bottom = y_;
      top = base;
    }
    Move(block, p, top - p.top);
    bottom = std::max(bottom, top + p.height);
  }
  y_ = std::max(bottom, base + block.height - consumed);
}

void Runner::BeginPage(bool with_header) {
  const PageSetup& p = report_.page;
  ReportPage page;
  page.width = p.width;
  page.height = p.height;
  // Pages of a report hold much the same number of lines.
  if (!doc_.pages.empty()) page.runs.reserve(doc_.pages.back().runs.size());
  doc_.pages.push_back(std::move(page));
  y_ = p.top_margin;
  content_top_ = y_;
  limit_ = p.height - p.bottom_margin - (report_.page_footer.visible ? report_.page_footer.height : 0);
  for (Accumulator& a : states_[&report_.page_footer].sums) a.Reset();
  if (with_header && Format(report_.page_header, row_in_effect_)) {
    Block b = Build(report_.page_header);
    PlaceAt(b, y_);
    y_ += b.height;
  }
  content_top_ = y_;
}

void Runner::FinishPage() {
  if (!Format(report_.page_footer, row_in_effect_)) return;
  Block b = Build(report_.page_footer);
  PlaceAt(b, report_.page.height - report_.page.bottom_margin - b.height);
}

void Runner::Print(Section& s, const Row* row) {
  row_in_effect_ = row;
  if (!Format(s, row)) return;
  if (s.new_page_before && y_ > content_top_) NewPage();
  Place(Build(s));
}

ReportDocument Runner::Run(Recordset* rows) {
  const PageSetup& p = report_.page;
  if (p.left_margin < 0 || p.right_margin < 0 || p.top_margin < 0 || p.bottom_margin < 0 ||
      p.left_margin + p.right_margin >= p.width || p.top_margin + p.bottom_margin >= p.height)
    throw RuntimeError(err::kInvalidPropertyValue,
                       "Invalid property value: the margins leave no room on the page");
  doc_.title = report_.title;
  left_ = p.left_margin;
  Prepare(rows);
  if (report_.on_start) report_.on_start();
  for (auto& [section, st] : states_)
    for (Accumulator& a : st.sums) a.Reset();

  Row current, previous;
  bool have_row = rows && !rows->Eof();
  if (have_row) ReadRow(*rows, current);
  const Row* first = have_row ? &current : nullptr;

  BeginPage(false);
  size_t pages_before = doc_.pages.size();
  Print(report_.report_header, first);
  // The first page's header comes under the report header, unless that took a page of its own.
  row_in_effect_ = first;
  if (doc_.pages.size() == pages_before && Format(report_.page_header, first))
    Place(Build(report_.page_header));
  content_top_ = y_;

  auto& groups = report_.groups();
  const size_t levels = groups.size();
  auto open = [&](size_t from, const Row& row) {
    for (size_t g = from; g < levels; ++g) {
      for (Accumulator& a : states_[&groups[g].footer].sums) a.Reset();
      Print(groups[g].header, &row);
    }
  };
  auto close = [&](size_t down_to, const Row& row) {
    for (size_t g = levels; g-- > down_to;) Print(groups[g].footer, &row);
  };

  bool first_row = true;
  while (have_row) {
    if (first_row) {
      open(0, current);
    } else {
      size_t changed = levels;
      for (size_t g = 0; g < levels; ++g)
        if (group_slots_[g] >= 0 && !(current[group_slots_[g]] == previous[group_slots_[g]])) {
          changed = g;
          break;
        }
      if (changed < levels) {
        close(changed, previous);
        open(changed, current);
      }
    }
    first_row = false;
    for (size_t g = 0; g < levels; ++g)
      for (Accumulator& a : states_[&groups[g].footer].sums) a.Add(current[a.slot], regional_);
    for (Accumulator& a : states_[&report_.report_footer].sums) a.Add(current[a.slot], regional_);
    Print(report_.detail, &current);
    for (Accumulator& a : states_[&report_.page_footer].sums) a.Add(current[a.slot], regional_);

    std::swap(previous, current);
    rows->MoveNext();
    have_row = !rows->Eof();
    if (have_row) ReadRow(*rows, current);
  }
  const Row* last = first_row ? nullptr : &previous;
  if (last) close(0, *last);
  Print(report_.report_footer, last);
  row_in_effect_ = last;
  FinishPage();
  return std::move(doc_);
}

}  // namespace

Text Item::DisplayText(const Regional& regional) const {
  switch (kind) {
    case ItemKind::kLabel:
      return caption;
    case ItemKind::kField:
      if (value.IsNull()) return Text();
      if (!output_format.empty()) {
        try {
          return lw::Format(value, output_format, regional);
        } catch (const RuntimeError&) {
          // A value the picture cannot take (a word under "currency") prints as it is.
        }
      }
      return CStr(value, regional);
    case ItemKind::kCheckBox:
      return Truthy(value) ? u"[X]" : u"[ ]";
    default:
      return Text();
  }
}

Item& Section::Add(Item item) {
  items_.push_back(std::move(item));
  return items_.back();
}

Item& Section::Place(Text name, ItemKind kind, int left, int top, int width, int height) {
  Item it;
  it.name = std::move(name);
  it.kind = kind;
  it.left = left;
  it.top = top;
  it.width = width;
  it.height = height;
  return Add(std::move(it));
}

Item& Section::AddLabel(Text name, Text caption, int left, int top, int width, int height) {
  Item& it = Place(std::move(name), ItemKind::kLabel, left, top, width, height);
  it.caption = std::move(caption);
  return it;
}

Item& Section::AddField(Text name, Text data_field, int left, int top, int width, Text output_format,
                        int height) {
  Item& it = Place(std::move(name), ItemKind::kField, left, top, width, height);
  it.data_field = std::move(data_field);
  it.output_format = std::move(output_format);
  return it;
}

Item& Section::AddLine(Text name, int left, int top, int width, int height) {
  return Place(std::move(name), ItemKind::kLine, left, top, width, height);
}

Item* Section::Find(TextView name) {
  for (Item& it : items_)
    if (SameName(it.name, name)) return &it;
  return nullptr;
}

Report::Report(Text name) : name(std::move(name)) {}

Report::Group& Report::AddGroup(Text header_name, Text footer_name, Text group_by) {
  groups_.emplace_back(header_name, footer_name);
  groups_.back().header.group_by = std::move(group_by);
  return groups_.back();
}

std::vector<Section*> Report::Sections() {
  std::vector<Section*> out{&report_header, &page_header};
  for (Group& g : groups_) out.push_back(&g.header);
  out.push_back(&detail);
  for (size_t g = groups_.size(); g-- > 0;) out.push_back(&groups_[g].footer);
  out.push_back(&page_footer);
  out.push_back(&report_footer);
  return out;
}

Item* Report::Find(TextView name) {
  for (Section* s : Sections())
    if (Item* it = s->Find(name)) return it;
  return nullptr;
}

Item& Report::Get(TextView name) {
  if (Item* it = Find(name)) return *it;
  throw RuntimeError(err::kItemNotFound, "Item not found in this collection ('" + ToUtf8(name) + "').");
}

ReportDocument Report::Run(Database& db, const Regional& regional) {
  std::unique_ptr<Recordset> rows = db.OpenRecordset(data_source);
  return Run(*rows, regional);
}

ReportDocument Report::Run(Recordset& rows, const Regional& regional) {
  if (!rows.Eof() || !rows.Bof()) rows.MoveFirst();
  return Runner(*this, regional).Run(&rows);
}

ReportDocument Report::RunEmpty(const Regional& regional) {
  return Runner(*this, regional).Run(nullptr);
}

}  // namespace lw::layout
