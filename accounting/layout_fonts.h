// The PDF standard fonts behind the report fonts, shared by the measuring of the layout engine and the
// PDF export, so that text is cut and wrapped by the widths it is printed with.
#pragma once

#include <string>

#include "screen/report_viewer.h"

namespace lw::layout {

// "Helvetica-Bold", "Times-Italic", "Courier" ...: the standard font for a report font.
const char* PdfFontName(const ReportFont& font);
// The windows-1252 byte the standard fonts print for a character ('?' for one they lack).
unsigned char Cp1252Byte(char16_t c);
// Ascent and descent of the standard font, in thousandths of the font size.
int FontAscent(const ReportFont& font);
int FontDescent(const ReportFont& font);

}  // namespace lw::layout
