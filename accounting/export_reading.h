// For tests only: reading report exports back the way their readers do. The HTML with libxml2's HTML
// parser, the spreadsheet's sheet from its zip (unzip) with libxml2, the PDF's text with pdftotext.
#pragma once

#include <libxml/HTMLparser.h>
#include <libxml/parser.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace lw::report_export {

// The output of a command, as text.
inline std::string CommandOutput(const std::string& command) {
  std::string out;
  FILE* p = ::popen(command.c_str(), "r");
  if (!p) return out;
  char buf[4096];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
  ::pclose(p);
  return out;
}

inline std::string Content(xmlNode* node) {
  xmlChar* c = xmlNodeGetContent(node);
  std::string s = c ? reinterpret_cast<const char*>(c) : "";
  xmlFree(c);
  return s;
}

inline bool Named(xmlNode* n, const char* name) {
  return n->type == XML_ELEMENT_NODE && xmlStrcasecmp(n->name, reinterpret_cast<const xmlChar*>(name)) == 0;
}

inline void CollectTables(xmlNode* node, std::vector<std::vector<std::vector<std::string>>>& tables) {
  for (xmlNode* n = node; n; n = n->next) {
    if (Named(n, "table")) {
      tables.emplace_back();
      std::vector<xmlNode*> stack{n->children};
      // Rows may sit in an implied tbody.
      for (xmlNode* c = n->children; c; c = c->next) {
        if (Named(c, "tbody"))
          for (xmlNode* r = c->children; r; r = r->next) {
            if (!Named(r, "tr")) continue;
            tables.back().emplace_back();
            for (xmlNode* d = r->children; d; d = d->next)
              if (Named(d, "td") && !Content(d).empty()) tables.back().back().push_back(Content(d));
          }
        if (!Named(c, "tr")) continue;
        tables.back().emplace_back();
        for (xmlNode* d = c->children; d; d = d->next)
          if (Named(d, "td") && !Content(d).empty()) tables.back().back().push_back(Content(d));
      }
      continue;
    }
    CollectTables(n->children, tables);
  }
}

// Every table of an HTML file: its rows, each the text of its cells that are not empty.
inline std::vector<std::vector<std::vector<std::string>>> ReadHtmlTables(const std::filesystem::path& file) {
  std::vector<std::vector<std::vector<std::string>>> tables;
  htmlDocPtr doc = htmlReadFile(file.c_str(), "utf-8", HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING);
  if (!doc) return tables;
  CollectTables(xmlDocGetRootElement(doc), tables);
  xmlFreeDoc(doc);
  return tables;
}

struct SheetCell {
  std::string text;
  std::optional<double> number;
};
using SheetRow = std::map<int, SheetCell>;

// The first sheet of a spreadsheet file, row by row (rows without cells stay empty).
inline std::vector<SheetRow> ReadSheet(const std::filesystem::path& file) {
  std::vector<SheetRow> rows;
  std::string q = "'" + file.string() + "'";
  std::string xml = CommandOutput("unzip -p " + q + " xl/worksheets/sheet1.xml 2>/dev/null");
  std::vector<std::string> shared;
  std::string strings = CommandOutput("unzip -p " + q + " xl/sharedStrings.xml 2>/dev/null");
  if (!strings.empty())
    if (xmlDocPtr sdoc =
            xmlReadMemory(strings.data(), static_cast<int>(strings.size()), nullptr, nullptr, 0)) {
      for (xmlNode* si = xmlDocGetRootElement(sdoc)->children; si; si = si->next)
        if (Named(si, "si")) shared.push_back(Content(si));
      xmlFreeDoc(sdoc);
    }
  xmlDocPtr doc = xmlReadMemory(xml.data(), static_cast<int>(xml.size()), nullptr, nullptr, 0);
  if (!doc) return rows;
  for (xmlNode* part = xmlDocGetRootElement(doc)->children; part; part = part->next) {
    if (!Named(part, "sheetData")) continue;
    for (xmlNode* row = part->children; row; row = row->next) {
      if (!Named(row, "row")) continue;
      for (xmlNode* c = row->children; c; c = c->next) {
        if (!Named(c, "c")) continue;
        xmlChar* ref = xmlGetProp(c, reinterpret_cast<const xmlChar*>("r"));
        xmlChar* type = xmlGetProp(c, reinterpret_cast<const xmlChar*>("t"));
        std::string r = ref ? reinterpret_cast<char*>(ref) : "",
                    t = type ? reinterpret_cast<char*>(type) : "";
        xmlFree(ref);
        xmlFree(type);
        int col = 0;
        size_t i = 0;
        for (; i < r.size() && r[i] >= 'A' && r[i] <= 'Z'; ++i) col = col * 26 + (r[i] - 'A' + 1);
        int number = std::atoi(r.c_str() + i);
        if (number < 1 || col < 1) continue;
        if (rows.size() < static_cast<size_t>(number)) rows.resize(number);
        SheetCell cell;
        std::string content = Content(c);
        if (t == "inlineStr" || t == "str")
          cell.text = content;
        else if (t == "s")
          cell.text = shared.at(std::stoul(content));
        else
          cell.number = std::strtod(content.c_str(), nullptr);
        rows[number - 1][col - 1] = cell;
      }
    }
  }
  xmlFreeDoc(doc);
  return rows;
}

// The text of a PDF laid out as on its pages.
inline std::string PdfText(const std::filesystem::path& file) {
  return CommandOutput("pdftotext -layout '" + file.string() + "' - 2>/dev/null");
}

}  // namespace lw::report_export
