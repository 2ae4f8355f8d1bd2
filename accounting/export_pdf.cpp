#include <hpdf.h>
#include <stb/stb_image.h>

#include <algorithm>
#include <map>
#include <memory>

#include "accounting/export.h"
#include "accounting/layout.h"
#include "accounting/layout_fonts.h"
#include "core/primitives/encoding.h"

namespace lw::report_export {

namespace {

struct PdfErrors {
  HPDF_STATUS first = HPDF_OK;
  HPDF_STATUS detail = 0;
};

void OnError(HPDF_STATUS error, HPDF_STATUS detail, void* data) {
  auto* e = static_cast<PdfErrors*>(data);
  if (e->first == HPDF_OK) {
    e->first = error;
    e->detail = detail;
  }
}

struct DocFree {
  void operator()(HPDF_Doc pdf) const { HPDF_Free(pdf); }
};

// The text as the standard fonts' encoding has it; control characters print as blanks.
std::string Bytes(TextView text) {
  std::string out;
  out.reserve(text.size());
  for (char16_t c : text) {
    unsigned char b = layout::Cp1252Byte(c);
    out += static_cast<char>(b < 0x20 ? ' ' : b);
  }
  return out;
}

void SetRgb(HPDF_Page page, int32_t colour, bool fill) {
  HPDF_REAL r = (colour & 0xFF) / 255.0f, g = ((colour >> 8) & 0xFF) / 255.0f,
            b = ((colour >> 16) & 0xFF) / 255.0f;
  if (fill)
    HPDF_Page_SetRGBFill(page, r, g, b);
  else
    HPDF_Page_SetRGBStroke(page, r, g, b);
}

class PdfWriter {
 public:
  PdfWriter(const ReportDocument& doc, HPDF_Doc pdf) : doc_(doc), pdf_(pdf) {}

  void Page(const ReportPage& p) {
    HPDF_Page page = HPDF_AddPage(pdf_);
    if (!page) return;
    height_ = p.height / 20.0f;
    HPDF_Page_SetWidth(page, p.width / 20.0f);
    HPDF_Page_SetHeight(page, height_);
    for (const ReportRule& r : p.rules) {
      HPDF_Page_SetLineWidth(page, std::max(0.05f, r.weight / 20.0f));
      SetRgb(page, r.colour, false);
      HPDF_Page_MoveTo(page, r.x1 / 20.0f, Y(r.y1));
      HPDF_Page_LineTo(page, r.x2 / 20.0f, Y(r.y2));
      HPDF_Page_Stroke(page);
    }
    for (const ReportPicture& pic : p.pictures) Picture(page, pic);
    // Backgrounds, boxes and underlines first, then all the text of the page in one text object.
    for (const ReportRun& r : p.runs) Decorations(page, r);
    HPDF_Page_BeginText(page);
    text_font_ = -1;
    text_colour_ = -1;
    for (const ReportRun& r : p.runs)
      if (!r.check_box) DrawText(page, r);
    HPDF_Page_EndText(page);
  }

 private:
  HPDF_REAL Y(int twips) const { return height_ - twips / 20.0f; }

  HPDF_Font Font(const ReportRun& r) {
    auto it = fonts_.find(r.font);
    if (it != fonts_.end()) return it->second;
    HPDF_Font f = HPDF_GetFont(pdf_, layout::PdfFontName(doc_.font(r)), "WinAnsiEncoding");
    fonts_.emplace(r.font, f);
    return f;
  }

  // Where the text of a run starts and its baseline lies.
  HPDF_REAL TextX(const ReportRun& r, HPDF_REAL width) const {
    HPDF_REAL left = r.left / 20.0f;
    if (r.align == ReportAlign::kRight) return left + r.width / 20.0f - width;
    if (r.align == ReportAlign::kCenter) return left + (r.width / 20.0f - width) / 2;
    return left;
  }
  HPDF_REAL Baseline(const ReportRun& r) const {
    const ReportFont& f = doc_.font(r);
    return Y(r.top) - static_cast<HPDF_REAL>(layout::FontAscent(f) * f.size / 1000.0);
  }

  void Decorations(HPDF_Page page, const ReportRun& r) {
    if (r.backcolor != kNoColour) {
      SetRgb(page, r.backcolor, true);
      HPDF_Page_Rectangle(page, r.left / 20.0f, Y(r.top + r.height), r.width / 20.0f, r.height / 20.0f);
      HPDF_Page_Fill(page);
    }
    if (r.check_box) {
      HPDF_REAL side = std::min(r.width, r.height) / 20.0f * 0.8f;
      HPDF_REAL x = r.left / 20.0f, y = Y(r.top) - side;
      HPDF_Page_SetLineWidth(page, 0.75f);
      SetRgb(page, r.forecolor, false);
      HPDF_Page_Rectangle(page, x, y, side, side);
      HPDF_Page_Stroke(page);
      if (r.checked) {
        HPDF_Page_MoveTo(page, x, y);
        HPDF_Page_LineTo(page, x + side, y + side);
        HPDF_Page_MoveTo(page, x, y + side);
        HPDF_Page_LineTo(page, x + side, y);
        HPDF_Page_Stroke(page);
      }
      return;
    }
    if (doc_.font(r).underline && !r.text.empty()) {
      HPDF_REAL width = static_cast<HPDF_REAL>(layout::TextWidth(r.text, doc_.font(r)) / 20.0);
      HPDF_REAL x = TextX(r, width), y = Baseline(r) - 1.5f;
      HPDF_Page_SetLineWidth(page, 0.5f);
      SetRgb(page, r.forecolor, false);
      HPDF_Page_MoveTo(page, x, y);
      HPDF_Page_LineTo(page, x + width, y);
      HPDF_Page_Stroke(page);
    }
  }

  void DrawText(HPDF_Page page, const ReportRun& r) {
    if (r.text.empty()) return;
    HPDF_Font font = Font(r);
    if (!font) return;
    const ReportFont& f = doc_.font(r);
    // Thousands of lines share a font and a colour: each is set only where it changes.
    if (text_font_ != r.font) {
      HPDF_Page_SetFontAndSize(page, font, static_cast<HPDF_REAL>(f.size));
      text_font_ = r.font;
    }
    if (text_colour_ != r.forecolor) {
      SetRgb(page, r.forecolor, true);
      text_colour_ = r.forecolor;
    }
    std::string bytes = Bytes(r.text);
    HPDF_REAL width = static_cast<HPDF_REAL>(layout::TextWidth(r.text, f) / 20.0);
    HPDF_Page_TextOut(page, TextX(r, width), Baseline(r), bytes.c_str());
  }

  void Picture(HPDF_Page page, const ReportPicture& p) {
    HPDF_Image image = nullptr;
    auto it = images_.find(p.file);
    if (it != images_.end()) {
      image = it->second;
    } else {
      // Any picture stb reads (JPEG, PNG, GIF, BMP ...) goes in as plain RGB.
      int w = 0, h = 0, n = 0;
      std::unique_ptr<unsigned char, decltype(&stbi_image_free)> pixels(
          stbi_load(p.file.c_str(), &w, &h, &n, 3), &stbi_image_free);
      if (pixels && w > 0 && h > 0)
        image = HPDF_LoadRawImageFromMem(pdf_, pixels.get(), static_cast<HPDF_UINT>(w),
                                         static_cast<HPDF_UINT>(h), HPDF_CS_DEVICE_RGB, 8);
      images_.emplace(p.file, image);
    }
    if (!image) return;
    // Fitted into its box, keeping its proportions.
    double iw = HPDF_Image_GetWidth(image), ih = HPDF_Image_GetHeight(image);
    double scale = std::min(p.width / 20.0 / iw, p.height / 20.0 / ih);
    HPDF_REAL w = static_cast<HPDF_REAL>(iw * scale), h = static_cast<HPDF_REAL>(ih * scale);
    HPDF_Page_DrawImage(page, image, p.left / 20.0f, Y(p.top) - h, w, h);
  }

  const ReportDocument& doc_;
  HPDF_Doc pdf_;
  HPDF_REAL height_ = 792;
  int text_font_ = -1;  // the font of the page's text object, -1 before the first
  int32_t text_colour_ = -1;
  std::map<uint16_t, HPDF_Font> fonts_;
  std::map<std::filesystem::path, HPDF_Image> images_;
};

}  // namespace

void WritePdf(const ReportDocument& doc, const std::filesystem::path& file) {
  PdfErrors errors;
  std::unique_ptr<std::remove_pointer_t<HPDF_Doc>, DocFree> pdf(HPDF_New(OnError, &errors));
  if (!pdf) throw RuntimeError(7, "Out of memory");
  HPDF_SetCompressionMode(pdf.get(), HPDF_COMP_ALL);
  HPDF_SetInfoAttr(pdf.get(), HPDF_INFO_CREATOR, "Lotwright");
  std::string title = Bytes(doc.title);
  if (!title.empty()) HPDF_SetInfoAttr(pdf.get(), HPDF_INFO_TITLE, title.c_str());
  PdfWriter writer(doc, pdf.get());
  for (const ReportPage& page : doc.pages) writer.Page(page);
  // A report with no page at all still makes a document a reader opens.
  if (doc.pages.empty()) writer.Page(ReportPage{});
  if (errors.first != HPDF_OK)
    throw RuntimeError(
        75, "Path/File access error: the PDF could not be made (error " + std::to_string(errors.first) + ")");
  if (HPDF_SaveToFile(pdf.get(), file.c_str()) != HPDF_OK)
    throw RuntimeError(75, "Path/File access error: cannot write " + file.string());
}

}  // namespace lw::report_export
