#include <xlsxwriter.h>

#include <map>
#include <tuple>

#include "accounting/export.h"
#include "accounting/export_grid.h"
#include "core/primitives/encoding.h"

namespace lw::report_export {

namespace {

// The spreadsheet's limits: longer text is cut, a report longer than a sheet is refused.
constexpr size_t kCellText = 32767;
constexpr lxw_row_t kRows = 1048576;

[[noreturn]] void Fail(const std::filesystem::path& file, lxw_error e) {
  throw RuntimeError(75,
                     "Path/File access error: cannot write " + file.string() + " (" + lxw_strerror(e) + ")");
}

class Formats {
 public:
  Formats(lxw_workbook* book, const ReportDocument& doc) : book_(book), doc_(doc) {}
  lxw_format* Of(const ReportRun& r, bool as_number) {
    uint8_t number_format = as_number ? r.number_format : 0;
    auto key = std::make_tuple(r.font, r.forecolor, static_cast<int>(r.align), number_format);
    auto it = cache_.find(key);
    if (it != cache_.end()) return it->second;
    lxw_format* f = workbook_add_format(book_);
    const ReportFont& font = doc_.font(r);
    format_set_font_name(f, ToUtf8(font.name).c_str());
    format_set_font_size(f, font.size);
    if (font.bold) format_set_bold(f);
    if (font.italic) format_set_italic(f);
    if (font.underline) format_set_underline(f, LXW_UNDERLINE_SINGLE);
    if (r.forecolor != 0)
      format_set_font_color(
          f, ((r.forecolor & 0xFF) << 16) | (r.forecolor & 0xFF00) | ((r.forecolor >> 16) & 0xFF));
    if (r.align == ReportAlign::kRight) format_set_align(f, LXW_ALIGN_RIGHT);
    if (r.align == ReportAlign::kCenter) format_set_align(f, LXW_ALIGN_CENTER);
    if (number_format) format_set_num_format(f, ToUtf8(doc_.number_formats[number_format]).c_str());
    cache_.emplace(key, f);
    return f;
  }

 private:
  lxw_workbook* book_;
  const ReportDocument& doc_;
  std::map<std::tuple<uint16_t, int32_t, int, uint8_t>, lxw_format*> cache_;
};

}  // namespace

void WriteSpreadsheet(const ReportDocument& doc, const std::filesystem::path& file) {
  std::error_code ec;
  if (!file.parent_path().empty() && !std::filesystem::is_directory(file.parent_path(), ec))
    throw RuntimeError(75, "Path/File access error: cannot write " + file.string() + " (no such folder)");
  lxw_workbook_options options{};
  // Rows go out in order, so they need not all be held until the file is closed.
  options.constant_memory = LXW_TRUE;
  lxw_workbook* book = workbook_new_opt(file.c_str(), &options);
  if (!book) throw RuntimeError(75, "Path/File access error: cannot write " + file.string());
  lxw_error failure = LXW_NO_ERROR;
  try {
    std::string title = ToUtf8(doc.title);
    lxw_doc_properties properties{};
    properties.title = title.data();
    workbook_set_properties(book, &properties);
    lxw_worksheet* sheet = workbook_add_worksheet(book, "Report");
    ColumnGrid grid = GridOf(doc);
    for (size_t c = 0; c < grid.lefts.size(); ++c) {
      int right = c + 1 < grid.lefts.size() ? grid.lefts[c + 1] : grid.lefts[c] + 1440;
      // A column's width counts characters of about 110 twips.
      double chars = std::max(2.0, (right - grid.lefts[c]) / 110.0);
      worksheet_set_column(sheet, static_cast<lxw_col_t>(c), static_cast<lxw_col_t>(c), chars, nullptr);
    }
    Formats formats(book, doc);
    lxw_row_t row = 0;
    for (size_t n = 0; n < doc.pages.size() && failure == LXW_NO_ERROR; ++n) {
      if (n > 0) ++row;  // a blank row where a page ends
      for (const ReportLine& line : PageLines(doc.pages[n])) {
        if (row >= kRows)
          throw RuntimeError(75, "Path/File access error: the report is longer than a spreadsheet");
        for (const GridCell& cell : CellsOf(line, grid)) {
          const ReportRun& r = *cell.run;
          auto col = static_cast<lxw_col_t>(cell.column);
          lxw_error e;
          if (r.number && cell.text == r.text) {
            e = worksheet_write_number(sheet, row, col, *r.number, formats.Of(r, true));
          } else {
            std::string text = ToUtf8(cell.text.substr(0, kCellText));
            e = worksheet_write_string(sheet, row, col, text.c_str(), formats.Of(r, false));
          }
          if (e != LXW_NO_ERROR) {
            failure = e;
            break;
          }
        }
        ++row;
      }
    }
  } catch (...) {
    workbook_close(book);
    std::error_code ec;
    std::filesystem::remove(file, ec);
    throw;
  }
  lxw_error closed = workbook_close(book);
  if (failure == LXW_NO_ERROR) failure = closed;
  if (failure != LXW_NO_ERROR) {
    // Half a spreadsheet is no use to anyone.
    std::error_code ec;
    std::filesystem::remove(file, ec);
    Fail(file, failure);
  }
}

}  // namespace lw::report_export
