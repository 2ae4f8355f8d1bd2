// The columns of a report for the exports that write cells: every distinct left edge of a text run in
// the whole report starts a column, so the rows of every page line up in one table.
#pragma once

#include <string>
#include <vector>

#include "screen/report_viewer.h"

namespace lw::report_export {

struct ColumnGrid {
  std::vector<int> lefts;  // ascending, twips
  // The column a run's left edge starts.
  size_t Column(int left) const;
  // The columns a run covers from its own up to (not into) `limit`: as far as its right edge reaches.
  size_t Span(const ReportRun& run, size_t limit) const;
};
ColumnGrid GridOf(const ReportDocument& doc);

// A row of a page as cells: the text of each column (runs that start in the same column joined by a
// blank) and the run that decides its look.
struct GridCell {
  size_t column = 0;
  size_t span = 1;
  Text text;
  const ReportRun* run = nullptr;
};
std::vector<GridCell> CellsOf(const ReportLine& line, const ColumnGrid& grid);

// Colour 0x00BBGGRR as "rrggbb".
std::string HexColour(int32_t colour);

// Writes bytes to a file whole, raising 75 when it cannot.
void WriteFile(const std::filesystem::path& file, const std::string& bytes);

}  // namespace lw::report_export
