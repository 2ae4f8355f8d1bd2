#include "screen/report_viewer.h"

#include <algorithm>

#include "core/primitives/encoding.h"
#include "screen/names.h"
#include "screen/property_args.h"

namespace lw {

namespace {

// Items of one row of a band may differ in top by a point or so (a bold heading beside plain text).
constexpr int kRowTolerance = 40;

}  // namespace

std::vector<ReportLine> PageLines(const ReportPage& page) {
  std::vector<const ReportRun*> runs;
  runs.reserve(page.runs.size());
  for (const ReportRun& r : page.runs) runs.push_back(&r);
  std::stable_sort(runs.begin(), runs.end(), [](const ReportRun* a, const ReportRun* b) {
    return a->top != b->top ? a->top < b->top : a->left < b->left;
  });
  std::vector<ReportLine> lines;
  for (const ReportRun* r : runs) {
    if (lines.empty() || r->top - lines.back().top > kRowTolerance) lines.push_back(ReportLine{r->top, {}});
    lines.back().runs.push_back(r);
  }
  for (ReportLine& line : lines)
    std::stable_sort(line.runs.begin(), line.runs.end(),
                     [](const ReportRun* a, const ReportRun* b) { return a->left < b->left; });
  return lines;
}

Text PageText(const ReportPage& page) {
  Text out;
  bool first_line = true;
  for (const ReportLine& line : PageLines(page)) {
    if (!first_line) out += u'\n';
    first_line = false;
    bool first_run = true;
    for (const ReportRun* r : line.runs) {
      if (!first_run) out += u" | ";
      first_run = false;
      out += r->text;
    }
  }
  return out;
}

uint16_t ReportDocument::FontIndex(const ReportFont& font) {
  for (size_t i = 0; i < fonts.size(); ++i)
    if (fonts[i] == font) return static_cast<uint16_t>(i);
  if (fonts.size() >= UINT16_MAX) return 0;
  fonts.push_back(font);
  return static_cast<uint16_t>(fonts.size() - 1);
}

uint8_t ReportDocument::NumberFormatIndex(const Text& format) {
  for (size_t i = 0; i < number_formats.size(); ++i)
    if (number_formats[i] == format) return static_cast<uint8_t>(i);
  if (number_formats.size() >= UINT8_MAX) return 0;
  number_formats.push_back(format);
  return static_cast<uint8_t>(number_formats.size() - 1);
}

ReportViewer::ReportViewer(Form& form, Text name, int index)
    : Control(form, ControlKind::ReportViewer, std::move(name), index) {}

void ReportViewer::SetDocument(std::shared_ptr<const ReportDocument> document) {
  document_ = std::move(document);
  current_page_ = PageCount() > 0 ? 1 : 0;
  ++revision_;
  Changed(change::kItems | change::kSelection);
}

int ReportViewer::PageCount() const {
  return document_ ? static_cast<int>(document_->pages.size()) : 0;
}

const ReportPage& ReportViewer::page(int number) const {
  if (number < 1 || number > PageCount())
    throw RuntimeError(err::kInvalidPropertyValue, "Invalid property value");
  return document_->pages[number - 1];
}

void ReportViewer::SetCurrentPage(int number) {
  page(number);  // raises for a page the report does not have
  current_page_ = number;
  Changed(change::kSelection);
}

void ReportViewer::UserClick(const Text* argument) {
  if (!argument) return Control::UserClick(nullptr);
  RequireReachable("click");
  if (SameName(*argument, u"print")) {
    if (OnPrint) OnPrint();
    return;
  }
  int number = 0;
  if (!ParseInt(*argument, number))
    throw UserError(ToUtf8(Reference()) + " takes \"print\" or a page number, not \"" + ToUtf8(*argument) +
                    "\"");
  if (number < 1 || number > PageCount())
    throw UserError(ToUtf8(Reference()) + " has no page " + std::to_string(number));
  current_page_ = number;
  Changed(change::kSelection);
}

std::optional<Text> ReportViewer::Property(TextView name, const std::vector<Text>& args) const {
  const Text n = FoldName(name);
  if (args.empty()) {
    if (n == u"pagecount") return IntText(PageCount());
    if (n == u"currentpage") return IntText(current_page_);
    if (n == u"title") return document_ ? document_->title : Text();
    if (n == u"left") return IntText(left);
    if (n == u"top") return IntText(top);
    if (n == u"width") return IntText(width);
    if (n == u"height") return IntText(height);
  } else if (n == u"page") {
    int number = IntArgument(args, 0, name);
    if (number < 1 || number > PageCount())
      throw UserError(ToUtf8(Reference()) + " has no page " + std::to_string(number));
    return PageText(document_->pages[number - 1]);
  }
  return Control::Property(name, args);
}

}  // namespace lw
