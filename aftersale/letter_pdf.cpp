#include "aftersale/letter_pdf.h"

#include <hpdf.h>

#include <memory>

#include "core/primitives/encoding.h"

namespace lw {
namespace {

constexpr int kPathFileAccessError = 75;
constexpr float kMargin = 54;  // three quarters of an inch
constexpr float kFontSize = 9;
constexpr float kLeading = 12;
// Courier's characters are all 0.6 of the type size wide.
constexpr float kCharWidth = kFontSize * 0.6f;

void OnPdfError(HPDF_STATUS error, HPDF_STATUS detail, void* user) {
  auto* failed = static_cast<HPDF_STATUS*>(user);
  if (*failed == 0) *failed = error ? error : detail;
}

struct DocCloser {
  void operator()(HPDF_Doc d) const { HPDF_Free(d); }
};

// Writes lines down the pages, starting a new page at the foot of the last.
class PageWriter {
 public:
  PageWriter(HPDF_Doc doc, HPDF_Font font, bool letter_size)
      : doc_(doc), font_(font), letter_size_(letter_size) {}

  size_t Columns() const {
    float width = letter_size_ ? 612.f : 595.f;
    return static_cast<size_t>((width - 2 * kMargin) / kCharWidth);
  }

  void NewPage() {
    EndPage();
    page_ = HPDF_AddPage(doc_);
    HPDF_Page_SetSize(page_, letter_size_ ? HPDF_PAGE_SIZE_LETTER : HPDF_PAGE_SIZE_A4, HPDF_PAGE_PORTRAIT);
    HPDF_Page_BeginText(page_);
    HPDF_Page_SetFontAndSize(page_, font_, kFontSize);
    y_ = HPDF_Page_GetHeight(page_) - kMargin;
  }

  void Line(const Text& line) {
    if (!page_ || y_ < kMargin) NewPage();
    std::string bytes = ToCp1252(line);
    HPDF_Page_TextOut(page_, kMargin, y_, bytes.c_str());
    y_ -= kLeading;
  }

  void EndPage() {
    if (page_) HPDF_Page_EndText(page_);
    page_ = nullptr;
  }

 private:
  HPDF_Doc doc_;
  HPDF_Font font_;
  bool letter_size_;
  HPDF_Page page_ = nullptr;
  float y_ = 0;
};

}  // namespace

std::vector<Text> WrapLines(const Text& text, size_t width) {
  std::vector<Text> out;
  if (width == 0) width = 1;
  size_t start = 0;
  while (start <= text.size()) {
    size_t end = text.find_first_of(u"\r\n", start);
    Text line = text.substr(start, end == Text::npos ? Text::npos : end - start);
    while (line.size() > width) {
      size_t cut = line.rfind(u' ', width);
      if (cut == Text::npos || cut == 0) cut = width;
      out.push_back(line.substr(0, cut));
      line.erase(0, cut < line.size() && line[cut] == u' ' ? cut + 1 : cut);
    }
    out.push_back(line);
    if (end == Text::npos) break;
    start = end + (text.compare(end, 2, u"\r\n") == 0 ? 2 : 1);
  }
  return out;
}

void WriteLetterPdf(const std::filesystem::path& file, const std::vector<PrintedLetter>& letters,
                    bool letter_size) {
  HPDF_STATUS failed = 0;
  std::unique_ptr<std::remove_pointer_t<HPDF_Doc>, DocCloser> doc(HPDF_New(&OnPdfError, &failed));
  if (!doc) throw RuntimeError(kPathFileAccessError, "Cannot start the printed letter");
  HPDF_SetCompressionMode(doc.get(), HPDF_COMP_ALL);
  HPDF_Font font = HPDF_GetFont(doc.get(), "Courier", "WinAnsiEncoding");
  PageWriter pages(doc.get(), font, letter_size);
  for (const PrintedLetter& l : letters) {
    pages.NewPage();
    for (const Text& line : WrapLines(u"To: " + l.to, pages.Columns())) pages.Line(line);
    for (const Text& line : WrapLines(u"Subject: " + l.subject, pages.Columns())) pages.Line(line);
    pages.Line(Text());
    for (const Text& line : WrapLines(l.body, pages.Columns())) pages.Line(line);
  }
  if (letters.empty()) pages.NewPage();
  pages.EndPage();
  if (failed == 0) HPDF_SaveToFile(doc.get(), file.c_str());
  if (failed != 0)
    throw RuntimeError(kPathFileAccessError, "The printed letter could not be written to " + file.string() +
                                                 " (error " + std::to_string(failed) + ")");
}

}  // namespace lw
