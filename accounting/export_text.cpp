#include <algorithm>

#include "accounting/export.h"
#include "accounting/export_grid.h"
#include "core/primitives/encoding.h"

namespace lw::report_export {

void WriteText(const ReportDocument& doc, const std::filesystem::path& file, TextView text_delimiter,
               TextView page_delimiter) {
  ColumnGrid grid = GridOf(doc);
  // Each column as wide as its widest text anywhere in the report, so the figures of every page line up.
  // Text that spans several columns (a title, a note) takes their room and leaves their widths alone.
  std::vector<size_t> widths(grid.lefts.size(), 0);
  std::vector<std::vector<std::vector<GridCell>>> pages;
  pages.reserve(doc.pages.size());
  for (const ReportPage& page : doc.pages) {
    std::vector<std::vector<GridCell>> rows;
    for (const ReportLine& line : PageLines(page)) {
      rows.push_back(CellsOf(line, grid));
      for (const GridCell& c : rows.back())
        if (c.span == 1) widths[c.column] = std::max(widths[c.column], c.text.size());
    }
    pages.push_back(std::move(rows));
  }
  Text out;
  for (size_t n = 0; n < pages.size(); ++n) {
    if (n > 0) out += Text(page_delimiter) + u"\r\n";
    for (const auto& row : pages[n]) {
      size_t at = 0;
      for (const GridCell& cell : row) {
        for (; at < cell.column; ++at) out += Text(widths[at], u' ') + Text(text_delimiter);
        size_t room = 0;
        for (size_t c = cell.column; c < cell.column + cell.span; ++c)
          room += widths[c] + (c > cell.column ? text_delimiter.size() : 0);
        Text pad(room > cell.text.size() ? room - cell.text.size() : 0, u' ');
        if (cell.run->align == ReportAlign::kRight)
          out += pad + cell.text;
        else if (cell.run->align == ReportAlign::kCenter)
          out += pad.substr(pad.size() / 2) + cell.text + pad.substr(0, pad.size() / 2);
        else
          out += cell.text + pad;
        at = cell.column + cell.span;
        if (&cell != &row.back()) out += text_delimiter;
      }
      // Blanks at the end of a line carry nothing.
      while (!out.empty() && out.back() == u' ') out.pop_back();
      out += u"\r\n";
    }
  }
  WriteFile(file, ToUtf8(out));
}

}  // namespace lw::report_export
