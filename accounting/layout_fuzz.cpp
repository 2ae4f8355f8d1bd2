// Fuzzes the layout of untrusted text (titles and addresses come from the site and from buyers) and its
// way into every export: arbitrary text in fields of any width and size, growing or cut, across pages
// of any size. Checks that nothing lands below the page's printable area except a piece taller than
// the page itself, and that every line the layout made reaches the text export.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "accounting/export.h"
#include "accounting/layout.h"
#include "core/primitives/encoding.h"

namespace {

namespace fs = std::filesystem;

const fs::path& Folder() {
  static const fs::path dir = [] {
    fs::path d = fs::temp_directory_path() / ("lw-layout-fuzz-" + std::to_string(::getpid()));
    fs::create_directories(d);
    return d;
  }();
  return dir;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 4 || size > 4096) return 0;
  const uint8_t width = data[0], font = data[1], flags = data[2], page = data[3];
  std::string_view rest(reinterpret_cast<const char*>(data + 4), size - 4);
  size_t cut = rest.find('\x01');
  lw::Text first = lw::FromUtf8(rest.substr(0, cut));
  lw::Text second = cut == std::string_view::npos ? lw::Text() : lw::FromUtf8(rest.substr(cut + 1));

  lw::layout::Report r(u"fuzz");
  r.title = first;
  r.page.height = 2000 + (page % 16) * 500;
  r.page.width = 3000 + (page / 16) * 600;
  r.page.top_margin = r.page.bottom_margin = 300;
  r.page.left_margin = r.page.right_margin = 200;
  r.page_header.height = 240;
  r.page_header.AddLabel(u"head", second, 0, 0, 2000);
  r.page_footer.height = 240 * (flags & 3);
  r.page_footer.AddLabel(u"foot", first, 0, 0, 2000);
  lw::layout::Item& a = r.report_header.AddField(u"a", lw::Text(), 0, 0, 50 + width * 20);
  a.font.size = 2 + font % 40;
  a.font.bold = flags & 4;
  a.can_grow = flags & 8;
  a.align = static_cast<lw::ReportAlign>((flags >> 4) % 3);
  lw::layout::Item& b = r.report_header.AddField(u"b", lw::Text(), 100, 240, 1000, u"currency");
  b.can_grow = flags & 64;
  r.report_header.height = 480;
  r.report_header.on_format = [&] {
    a.value = first;
    b.value = second;  // text under a money picture prints as it is
  };
  lw::ReportDocument doc = r.RunEmpty(lw::Regional::FromLocale("en_US"));

  // Only a line taller than the room between header and footer may run past the printable area.
  const int bottom = r.page.height - r.page.bottom_margin;
  const int room = bottom - r.page.top_margin - r.page_header.height - r.page_footer.height;
  for (const lw::ReportPage& p : doc.pages)
    for (const lw::ReportRun& run : p.runs)
      if (run.top < r.page.top_margin || (run.top + run.height > bottom && run.height <= room)) std::abort();

  lw::report_export::WriteHtml(doc, Folder(), u"fuzz");
  lw::report_export::WriteSpreadsheet(doc, Folder() / "fuzz.xls");
  lw::report_export::WriteText(doc, Folder() / "fuzz.txt", u";", u",");
  lw::report_export::WritePdf(doc, Folder() / "fuzz.pdf");
  return 0;
}
