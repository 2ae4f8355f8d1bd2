#include "accounting/export_grid.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

#include "core/primitives/types.h"

namespace lw::report_export {

size_t ColumnGrid::Column(int left) const {
  auto it = std::lower_bound(lefts.begin(), lefts.end(), left);
  if (it == lefts.end()) return lefts.empty() ? 0 : lefts.size() - 1;
  return static_cast<size_t>(it - lefts.begin());
}

size_t ColumnGrid::Span(const ReportRun& run, size_t limit) const {
  size_t first = Column(run.left);
  size_t last = first + 1;
  while (last < limit && last < lefts.size() && lefts[last] < run.left + run.width) ++last;
  return last - first;
}

ColumnGrid GridOf(const ReportDocument& doc) {
  ColumnGrid g;
  for (const ReportPage& p : doc.pages)
    for (const ReportRun& r : p.runs) g.lefts.push_back(r.left);
  std::sort(g.lefts.begin(), g.lefts.end());
  g.lefts.erase(std::unique(g.lefts.begin(), g.lefts.end()), g.lefts.end());
  return g;
}

std::vector<GridCell> CellsOf(const ReportLine& line, const ColumnGrid& grid) {
  std::vector<GridCell> cells;
  for (const ReportRun* r : line.runs) {
    size_t col = grid.Column(r->left);
    if (!cells.empty() && cells.back().column == col) {
      if (!r->text.empty()) cells.back().text += (cells.back().text.empty() ? u"" : u" ") + r->text;
      continue;
    }
    cells.push_back(GridCell{col, 1, r->text, r});
  }
  for (size_t i = 0; i < cells.size(); ++i) {
    size_t limit = i + 1 < cells.size() ? cells[i + 1].column : grid.lefts.size();
    cells[i].span = grid.Span(*cells[i].run, limit);
  }
  return cells;
}

std::string HexColour(int32_t colour) {
  char buf[8];
  std::snprintf(buf, sizeof buf, "%02x%02x%02x", colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF);
  return buf;
}

void WriteFile(const std::filesystem::path& file, const std::string& bytes) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  if (!out) throw RuntimeError(75, "Path/File access error: cannot write " + file.string());
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) throw RuntimeError(75, "Path/File access error: cannot write " + file.string());
}

}  // namespace lw::report_export
