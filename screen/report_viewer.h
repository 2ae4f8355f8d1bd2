// Laid-out report pages and the report viewer that shows them. A page is a list of placed items in
// twips from the page's top left corner: text runs (one line of text each, already fitted to its box),
// check boxes, rules and pictures. Whatever lays a report out fills these; the viewer shows them, the
// desktop view draws them, and every export writes from them, so what is seen is what is saved.
//
// The viewer `arv` holds one laid-out report. The driver reads it with `get arv.pagecount` and
// `get arv.page(I)`: the text of page I (from 1), one line per row of items that share a top, the items
// of a row in order from the left joined by " | ", the lines joined by line feeds.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "screen/control.h"

namespace lw {

struct ReportFont {
  Text name = u"Arial";
  double size = 8;  // points
  bool bold = false;
  bool italic = false;
  bool underline = false;
  friend bool operator==(const ReportFont&, const ReportFont&) = default;
};

enum class ReportAlign { kLeft, kCenter, kRight };

// Colours are 0x00BBGGRR, as on the screen; kNoColour leaves the back of an item transparent.
inline constexpr int32_t kNoColour = -1;

// One line of text in a box. Fonts and spreadsheet number formats are kept once in the document and
// named here by their place in its tables, as a report repeats a handful of them on thousands of lines.
struct ReportRun {
  int left = 0, top = 0, width = 0, height = 0;
  Text text;
  uint16_t font = 0;  // ReportDocument::fonts
  ReportAlign align = ReportAlign::kLeft;
  // A check box: drawn as a box, crossed when `checked`; its text is "[X]" or "[ ]" for text outputs.
  bool check_box = false;
  bool checked = false;
  int32_t forecolor = 0;
  int32_t backcolor = kNoColour;
  // The value behind the text when it is a number, so that a spreadsheet gets a number it can add, in
  // the picture ReportDocument::number_formats[number_format] ("$#,##0.00").
  std::optional<double> number;
  uint8_t number_format = 0;
};

struct ReportRule {
  int x1 = 0, y1 = 0, x2 = 0, y2 = 0;
  int weight = 15;  // twips
  int32_t colour = 0;
};

struct ReportPicture {
  int left = 0, top = 0, width = 0, height = 0;
  std::filesystem::path file;
};

struct ReportPage {
  int width = 12240;  // twips (8.5 in)
  int height = 15840;
  std::vector<ReportRun> runs;
  std::vector<ReportRule> rules;
  std::vector<ReportPicture> pictures;
};

struct ReportDocument {
  Text title;
  std::vector<ReportFont> fonts{ReportFont{}};
  std::vector<Text> number_formats{u"General"};
  std::vector<ReportPage> pages;

  const ReportFont& font(const ReportRun& run) const {
    return run.font < fonts.size() ? fonts[run.font] : fonts.front();
  }
  const Text& number_format(const ReportRun& run) const {
    return run.number_format < number_formats.size() ? number_formats[run.number_format]
                                                     : number_formats.front();
  }
  // The place of a font or a format in its table, added when it is new.
  uint16_t FontIndex(const ReportFont& font);
  uint8_t NumberFormatIndex(const Text& format);
};

// A row of a page as text: the runs that share a top, from the left.
struct ReportLine {
  int top = 0;
  std::vector<const ReportRun*> runs;
};
// The rows of a page from the top. Runs whose tops lie within a few twips of each other share a row.
std::vector<ReportLine> PageLines(const ReportPage& page);
// The text of a page as the driver shows it.
Text PageText(const ReportPage& page);

class ReportViewer : public Control {
 public:
  ReportViewer(Form& form, Text name, int index = -1);

  // Shows a report from its first page; nullptr empties the viewer.
  void SetDocument(std::shared_ptr<const ReportDocument> document);
  const std::shared_ptr<const ReportDocument>& document() const { return document_; }
  int PageCount() const;
  // Page `number` from 1; raises 380 outside the report.
  const ReportPage& page(int number) const;
  // The page on show, from 1 (0 while empty). The desktop view pages through the report.
  int current_page() const { return current_page_; }
  void SetCurrentPage(int number);
  // Counts each new report, so that a view knows when to draw afresh.
  uint64_t revision() const { return revision_; }

  // Place on its page, in twips.
  int left = 0, top = 0, width = 0, height = 0;

  // The viewer's print button.
  std::function<void()> OnPrint;

  // A click takes "print" (the print button) or a page number to turn to.
  void UserClick(const Text* argument) override;
  // Besides the common ones: pagecount, page(I), currentpage, title, left, top, width, height.
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;

 private:
  std::shared_ptr<const ReportDocument> document_;
  int current_page_ = 0;
  uint64_t revision_ = 0;
};

}  // namespace lw
