#include <cmath>
#include <fstream>
#include <iterator>
#include <sstream>

#include "accounting/export.h"
#include "accounting/export_grid.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"

namespace lw::report_export {

namespace {

void Escape(std::string& out, TextView text) {
  for (char c : ToUtf8(text)) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        // Control characters have no place in HTML text; the report has no use for them either.
        out += (static_cast<unsigned char>(c) < 0x20 && c != '\t') ? ' ' : c;
    }
  }
}

std::string Points(int twips) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.1fpt", twips / 20.0);
  return buf;
}

std::string Base64(const std::string& bytes) {
  static constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  out.reserve((bytes.size() + 2) / 3 * 4);
  size_t i = 0;
  for (; i + 2 < bytes.size(); i += 3) {
    uint32_t v = (static_cast<unsigned char>(bytes[i]) << 16) |
                 (static_cast<unsigned char>(bytes[i + 1]) << 8) | static_cast<unsigned char>(bytes[i + 2]);
    for (int k = 3; k >= 0; --k) out += kAlphabet[(v >> (6 * k)) & 63];
  }
  if (i < bytes.size()) {
    uint32_t v = static_cast<unsigned char>(bytes[i]) << 16;
    if (i + 1 < bytes.size()) v |= static_cast<unsigned char>(bytes[i + 1]) << 8;
    out += kAlphabet[(v >> 18) & 63];
    out += kAlphabet[(v >> 12) & 63];
    out += i + 1 < bytes.size() ? kAlphabet[(v >> 6) & 63] : '=';
    out += '=';
  }
  return out;
}

const char* ImageType(const std::filesystem::path& file) {
  std::string ext = ToUtf8(LCase(FromUtf8(file.extension().string())));
  if (ext == ".jpg" || ext == ".jpeg") return "image/jpeg";
  if (ext == ".png") return "image/png";
  if (ext == ".gif") return "image/gif";
  if (ext == ".bmp") return "image/bmp";
  return nullptr;
}

void Picture(std::string& out, const ReportPicture& p) {
  const char* type = ImageType(p.file);
  if (!type) return;
  std::ifstream in(p.file, std::ios::binary);
  if (!in) return;
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  out += "<img style=\"max-width:" + Points(p.width) + ";max-height:" + Points(p.height) + "\" src=\"data:";
  out += type;
  out += ";base64," + Base64(bytes) + "\" alt=\"\">\n";
}

void CellStyle(std::string& out, const ReportDocument& doc, const ReportRun& r) {
  const ReportFont& f = doc.font(r);
  out += " style=\"font-family:'";
  Escape(out, f.name);
  char size[32];
  std::snprintf(size, sizeof size, "';font-size:%gpt", f.size);
  out += size;
  if (f.bold) out += ";font-weight:bold";
  if (f.italic) out += ";font-style:italic";
  if (f.underline) out += ";text-decoration:underline";
  if (r.forecolor != 0) out += ";color:#" + HexColour(r.forecolor);
  if (r.backcolor != kNoColour) out += ";background:#" + HexColour(r.backcolor);
  if (r.align == ReportAlign::kRight) out += ";text-align:right";
  if (r.align == ReportAlign::kCenter) out += ";text-align:center";
  out += '"';
}

}  // namespace

std::filesystem::path WriteHtml(const ReportDocument& doc, const std::filesystem::path& folder,
                                TextView name) {
  ColumnGrid grid = GridOf(doc);
  std::string out = "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>";
  Escape(out, doc.title);
  out +=
      "</title>\n<style>\n"
      "table.page{border-collapse:collapse;table-layout:fixed;margin-bottom:24pt;page-break-after:always}\n"
      "td{padding:0 2pt;vertical-align:top;white-space:pre;overflow:hidden}\n"
      "</style>\n</head>\n<body>\n";
  for (size_t n = 0; n < doc.pages.size(); ++n) {
    const ReportPage& page = doc.pages[n];
    out += "<table class=\"page\" id=\"page" + std::to_string(n + 1) + "\">\n<colgroup>";
    for (size_t c = 0; c < grid.lefts.size(); ++c) {
      int right = c + 1 < grid.lefts.size() ? grid.lefts[c + 1] : page.width;
      out += "<col style=\"width:" + Points(std::max(0, right - grid.lefts[c])) + "\">";
    }
    out += "</colgroup>\n";
    for (const ReportLine& line : PageLines(page)) {
      out += "<tr>";
      size_t at = 0;
      for (const GridCell& cell : CellsOf(line, grid)) {
        for (; at < cell.column; ++at) out += "<td></td>";
        out += "<td";
        if (cell.span > 1) out += " colspan=\"" + std::to_string(cell.span) + "\"";
        CellStyle(out, doc, *cell.run);
        out += '>';
        Escape(out, cell.text);
        out += "</td>";
        at = cell.column + cell.span;
      }
      out += "</tr>\n";
    }
    out += "</table>\n";
    for (const ReportPicture& p : page.pictures) Picture(out, p);
  }
  out += "</body>\n</html>\n";
  std::filesystem::path file = folder / (ToUtf8(name) + ".html");
  WriteFile(file, out);
  return file;
}

}  // namespace lw::report_export
