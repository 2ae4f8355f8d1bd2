#include "accounting/layout_fonts.h"

#include <hpdf.h>

#include <array>
#include <cmath>

#include "accounting/layout.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"

#include <string_view>

namespace lw::layout {

namespace {

enum Family { kSans, kSerif, kMono };

// Whether `name` holds `part` (lower-case ASCII), ignoring case; text is measured for every field of
// every row, so this stays free of allocations.
bool Holds(TextView name, std::string_view part) {
  for (size_t i = 0; i + part.size() <= name.size(); ++i) {
    size_t k = 0;
    while (k < part.size()) {
      char16_t c = name[i + k];
      if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
      if (c != static_cast<char16_t>(part[k])) break;
      ++k;
    }
    if (k == part.size()) return true;
  }
  return false;
}

Family FamilyOf(const ReportFont& font) {
  TextView n = font.name;
  if (Holds(n, "courier") || Holds(n, "mono") || Holds(n, "consol")) return kMono;
  if (Holds(n, "times") || Holds(n, "serif") || Holds(n, "roman") || Holds(n, "georgia"))
    return Holds(n, "sans") ? kSans : kSerif;
  return kSans;
}

int StyleIndex(const ReportFont& font) {
  return FamilyOf(font) * 4 + (font.bold ? 1 : 0) + (font.italic ? 2 : 0);
}

constexpr const char* kNames[12] = {
    "Helvetica",   "Helvetica-Bold", "Helvetica-Oblique", "Helvetica-BoldOblique",
    "Times-Roman", "Times-Bold",     "Times-Italic",      "Times-BoldItalic",
    "Courier",     "Courier-Bold",   "Courier-Oblique",   "Courier-BoldOblique",
};

struct FontMetrics {
  std::array<int, 256> widths{};  // thousandths of an em, by windows-1252 byte
  int ascent = 718;
  int descent = -207;
};

void IgnoreError(HPDF_STATUS, HPDF_STATUS, void*) {}

// The widths are the fonts' own, read once from the PDF library; they never change while the program
// runs.
const std::array<FontMetrics, 12>& Metrics() {
  static const std::array<FontMetrics, 12> metrics = [] {
    std::array<FontMetrics, 12> m{};
    HPDF_Doc pdf = HPDF_New(IgnoreError, nullptr);
    for (int f = 0; f < 12; ++f) {
      // Should the library be missing a font, a plain average width still lays text out sensibly.
      m[f].widths.fill(f >= 8 ? 600 : 500);
      if (!pdf) continue;
      HPDF_Font font = HPDF_GetFont(pdf, kNames[f], "WinAnsiEncoding");
      if (!font) continue;
      for (int b = 0; b < 256; ++b) {
        char byte = static_cast<char>(b);
        Text t = FromCp1252(std::string_view(&byte, 1));
        HPDF_INT w = HPDF_Font_GetUnicodeWidth(font, static_cast<HPDF_UNICODE>(t[0]));
        if (w > 0) m[f].widths[b] = w;
      }
      m[f].ascent = HPDF_Font_GetAscent(font);
      m[f].descent = HPDF_Font_GetDescent(font);
    }
    if (pdf) HPDF_Free(pdf);
    return m;
  }();
  return metrics;
}

int CharWidth(const FontMetrics& m, char16_t c) {
  return m.widths[Cp1252Byte(c)];
}

int Twips(long long thousandths, double size) {
  return static_cast<int>(std::lround(static_cast<double>(thousandths) * size * 20.0 / 1000.0));
}

}  // namespace

const char* PdfFontName(const ReportFont& font) {
  return kNames[StyleIndex(font)];
}

unsigned char Cp1252Byte(char16_t c) {
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<unsigned char>(c);
  std::string b = ToCp1252(TextView(&c, 1));
  return b.empty() ? '?' : static_cast<unsigned char>(b[0]);
}

int FontAscent(const ReportFont& font) {
  return Metrics()[StyleIndex(font)].ascent;
}

int FontDescent(const ReportFont& font) {
  return Metrics()[StyleIndex(font)].descent;
}

int TextWidth(TextView text, const ReportFont& font) {
  const FontMetrics& m = Metrics()[StyleIndex(font)];
  long long sum = 0;
  for (char16_t c : text) sum += CharWidth(m, c);
  return Twips(sum, font.size);
}

int LineHeight(const ReportFont& font) {
  return static_cast<int>(std::lround(font.size * 20.0 * 1.2));
}

Text FitText(TextView text, const ReportFont& font, int width) {
  const FontMetrics& m = Metrics()[StyleIndex(font)];
  long long sum = 0;
  size_t n = 0;
  for (; n < text.size(); ++n) {
    sum += CharWidth(m, text[n]);
    if (Twips(sum, font.size) > width) break;
  }
  return Text(text.substr(0, n));
}

std::vector<Text> BreakLines(TextView text, const ReportFont& font, int width, bool wrap) {
  std::vector<Text> lines;
  // Most fields hold one short line.
  if (text.find_first_of(u"\r\n") == TextView::npos && (!wrap || TextWidth(text, font) <= width)) {
    lines.emplace_back(text);
    return lines;
  }
  size_t from = 0;
  for (;;) {
    size_t end = text.find_first_of(u"\r\n", from);
    TextView para = text.substr(from, end == TextView::npos ? TextView::npos : end - from);
    if (!wrap) {
      lines.emplace_back(para);
    } else {
      // Greedy: as many words as fit, a word too long for a line of its own broken where it must.
      while (true) {
        if (TextWidth(para, font) <= width) {
          lines.emplace_back(para);
          break;
        }
        Text fit = FitText(para, font, width);
        size_t cut = fit.size();
        size_t blank = fit.find_last_of(u' ');
        if (blank != Text::npos && blank > 0 && cut < para.size()) cut = blank;
        if (cut == 0) cut = 1;  // not even one character fits: one a line rather than none
        lines.emplace_back(RTrim(para.substr(0, cut)));
        para = para.substr(cut);
        while (!para.empty() && para.front() == u' ') para = para.substr(1);
        if (para.empty()) break;
      }
    }
    if (end == TextView::npos) break;
    from = end + 1;
    if (text[end] == u'\r' && from < text.size() && text[from] == u'\n') ++from;
  }
  return lines;
}

}  // namespace lw::layout
