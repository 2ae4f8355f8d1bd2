// Writing laid-out reports to files: HTML (one page, a table for each report page), a spreadsheet (the
// .xlsx format, whatever the name the user gave), text in delimited, fixed-width columns, and PDF.
// Each writes the same runs the viewer shows, so every format carries the same figures. A file that
// cannot be written raises run-time error 75 (path/file access error) with the reason.
#pragma once

#include <filesystem>

#include "core/primitives/types.h"
#include "screen/report_viewer.h"

namespace lw::report_export {

// `folder` / `name` + ".html". Pictures are put in the page itself, so the one file is the whole report.
std::filesystem::path WriteHtml(const ReportDocument& doc, const std::filesystem::path& folder,
                                TextView name);
void WriteSpreadsheet(const ReportDocument& doc, const std::filesystem::path& file);
// One line a row of the report; the columns of the whole report padded to one width each and parted by
// `text_delimiter`; `page_delimiter` on a line of its own between pages. UTF-8, lines ending CR LF.
void WriteText(const ReportDocument& doc, const std::filesystem::path& file, TextView text_delimiter,
               TextView page_delimiter);
void WritePdf(const ReportDocument& doc, const std::filesystem::path& file);

}  // namespace lw::report_export
