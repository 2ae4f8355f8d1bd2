// The banded report layout engine. A layout is a set of sections, each a band of items (labels, fields
// bound to the columns of the layout's query, check boxes, lines, pictures), printed in this order:
// the report header once, the page header at the top of every page, the group headers when their
// group starts, the detail once for every row, the group footers when their group ends, the page footer
// at the bottom of every page, and the report footer once at the end. A section may carry code that runs
// each time it is formatted, after its fields took the values of the row and before it is printed; the
// code reads and writes the items (values, colours, visibility) and may hide the section.
//
// A footer field can sum or count its column over its scope: the rows of its group in a group footer,
// of the page in the page footer, of the whole report in the report footer. Rows are counted also while
// the detail is hidden, so a summary layout prints only the totals.
//
// Positions are in twips (1440 to the inch) from the top left of the section; the page has a size and
// margins. A field that may grow wraps its text to its width and pushes the items below it down; a
// section that no longer fits on the page moves to the next one, and a section taller than a whole page
// is split between lines. Running a layout gives the laid-out pages of screen/report_viewer.h, which the
// viewer shows and every export writes.
//
// Letters, the mailing label and other printouts use this engine through this header.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "core/primitives/regional.h"
#include "core/primitives/types.h"
#include "screen/report_viewer.h"

namespace lw {

class Database;
class Recordset;

namespace layout {

enum class ItemKind { kLabel, kField, kCheckBox, kLine, kPicture };
enum class Summary { kNone, kSum, kCount };

// Red and black as the layouts colour their fields.
inline constexpr int32_t kRed = 255;
inline constexpr int32_t kBlack = 0;

struct Item {
  Text name;
  ItemKind kind = ItemKind::kField;
  int left = 0, top = 0, width = 1440, height = 240;
  Text caption;        // a label's text
  Text data_field;     // the column a field, check box or picture shows; empty for one that code fills
  Text output_format;  // a Format name or picture ("currency", "d-mmm-yy"); empty shows the value as text
  // What a field shows: set from the row before the section's code runs (for bound fields), by a
  // summary, or by the code. A check box is ticked when it is true; a picture shows the file it names.
  Variant value;
  ReportFont font;
  int32_t forecolor = kBlack;
  int32_t backcolor = kNoColour;
  ReportAlign align = ReportAlign::kLeft;
  bool visible = true;
  bool can_grow = false;  // wraps and grows downwards instead of cutting its text to the box
  Summary summary = Summary::kNone;
  int line_weight = 15;  // lines: from (left, top) to (left + width, top + height)

  // The text the item prints.
  Text DisplayText(const Regional& regional) const;
};

enum class SectionKind {
  kReportHeader,
  kPageHeader,
  kGroupHeader,
  kDetail,
  kGroupFooter,
  kPageFooter,
  kReportFooter
};

class Section {
 public:
  Section(Text name, SectionKind kind) : name(std::move(name)), kind(kind) {}
  Section(const Section&) = delete;
  Section& operator=(const Section&) = delete;

  Text name;
  SectionKind kind;
  int height = 0;
  bool visible = true;
  // Group headers: a new group starts where this column's value changes. Empty: one group over all
  // rows.
  Text group_by;
  // Starts on a new page unless it would be the first thing on its page (one letter a page).
  bool new_page_before = false;
  // The per-row code. An error it raises (RuntimeError) leaves the section as far as it was filled.
  std::function<void()> on_format;

  // Items keep their address for the life of the section, so code can hold on to them.
  Item& Add(Item item);
  // An item of a kind at its place, to be filled in.
  Item& Place(Text name, ItemKind kind, int left, int top, int width, int height);
  Item& AddLabel(Text name, Text caption, int left, int top, int width, int height = 240);
  Item& AddField(Text name, Text data_field, int left, int top, int width, Text output_format = Text(),
                 int height = 240);
  Item& AddLine(Text name, int left, int top, int width, int height = 0);
  Item* Find(TextView name);
  std::deque<Item>& items() { return items_; }
  const std::deque<Item>& items() const { return items_; }

 private:
  std::deque<Item> items_;
};

struct PageSetup {
  int width = 12240;  // letter, portrait
  int height = 15840;
  int left_margin = 1440, top_margin = 1440, right_margin = 1440, bottom_margin = 1440;
};

class Report {
 public:
  explicit Report(Text name);
  Report(const Report&) = delete;
  Report& operator=(const Report&) = delete;
  virtual ~Report() = default;

  Text name;
  Text title;  // the document's title (the PDF's and the HTML page's)
  PageSetup page;
  // The record source of the layout's data control: the query whose rows the report prints.
  Text data_source;

  Section report_header{u"ReportHeader", SectionKind::kReportHeader};
  Section page_header{u"PageHeader", SectionKind::kPageHeader};
  Section detail{u"Detail", SectionKind::kDetail};
  Section page_footer{u"PageFooter", SectionKind::kPageFooter};
  Section report_footer{u"ReportFooter", SectionKind::kReportFooter};
  struct Group {
    Group(const Text& header_name, const Text& footer_name)
        : header(header_name, SectionKind::kGroupHeader), footer(footer_name, SectionKind::kGroupFooter) {}
    Section header;
    Section footer;
  };
  // Groups from the outermost in.
  Group& AddGroup(Text header_name, Text footer_name, Text group_by);
  std::deque<Group>& groups() { return groups_; }

  // Runs before the first row is formatted, each time the report is run: code resets its counters here.
  std::function<void()> on_start;

  // An item of any section by name, or nullptr; Get raises 3265 when there is none.
  Item* Find(TextView name);
  Item& Get(TextView name);
  // Every section in printing order (groups' headers outermost first, their footers innermost first).
  std::vector<Section*> Sections();

  // Lays the report out over the rows of `data_source` from the store, or over a cursor already open
  // (moved to its first row first). Raises the store's errors for a bad query, and 380 for margins that
  // leave no room on the page.
  ReportDocument Run(Database& db, const Regional& regional);
  ReportDocument Run(Recordset& rows, const Regional& regional);
  // Lays out the report with no rows at all.
  ReportDocument RunEmpty(const Regional& regional);

 private:
  std::deque<Group> groups_;
};

// Text measuring for laying out and for the PDF: the widths of the PDF standard fonts the report fonts
// map to (Arial and other sans serif faces to Helvetica, Times faces to Times, Courier faces to
// Courier), in twips.
int TextWidth(TextView text, const ReportFont& font);
// Height of one line of text in the font, in twips.
int LineHeight(const ReportFont& font);
// The text cut to what fits in `width`.
Text FitText(TextView text, const ReportFont& font, int width);
// The text broken into lines at its line breaks and, when `wrap`, between words to fit `width` (a word
// longer than the width is broken where it must).
std::vector<Text> BreakLines(TextView text, const ReportFont& font, int width, bool wrap);

}  // namespace layout
}  // namespace lw
