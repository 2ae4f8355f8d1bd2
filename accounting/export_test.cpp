#include "accounting/export.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <regex>

#include "accounting/export_reading.h"
#include "core/primitives/encoding.h"

namespace lw::report_export {
namespace {

namespace fs = std::filesystem;

ReportRun At(ReportDocument& doc, int left, int top, const char16_t* text, int width = 1440) {
  ReportRun r;
  r.left = left;
  r.top = top;
  r.width = width;
  r.height = 240;
  r.text = text;
  r.font = doc.FontIndex(ReportFont{});
  return r;
}

ReportRun Money(ReportDocument& doc, int left, int top, const char16_t* text, double value) {
  ReportRun r = At(doc, left, top, text);
  r.align = ReportAlign::kRight;
  r.number = value;
  r.number_format = doc.NumberFormatIndex(u"\"$\"#,##0.00");
  return r;
}

// Two pages of a small sales report: a heading in bold, a title with characters that need escaping and
// one outside ASCII, money right-aligned, a red zero.
ReportDocument Sample() {
  ReportDocument doc;
  doc.title = u"Sales Report for Period";
  doc.pages.resize(2);
  ReportRun head = At(doc, 1440, 1440, u"Sales Report for Period", 6000);
  ReportFont bold;
  bold.bold = true;
  bold.size = 12;
  head.font = doc.FontIndex(bold);
  doc.pages[0].runs = {head,
                       At(doc, 1440, 1800, u"Item"),
                       At(doc, 2880, 1800, u"Title"),
                       At(doc, 7200, 1800, u"Profit"),
                       At(doc, 1440, 2100, u"1001"),
                       At(doc, 2880, 2100, u"Jug <large> & \"fine\" caf\u00e9", 4000),
                       Money(doc, 7200, 2100, u"$1,234.50", 1234.5),
                       At(doc, 1440, 2400, u"1002"),
                       At(doc, 2880, 2400, u"Bowl"),
                       Money(doc, 7200, 2400, u"$0.00", 0)};
  doc.pages[0].runs.back().forecolor = 255;
  doc.pages[0].rules.push_back(ReportRule{1440, 2040, 9000, 2040, 15, 0});
  doc.pages[1].runs = {At(doc, 1440, 1440, u"Totals"), Money(doc, 7200, 1440, u"$1,234.50", 1234.5),
                       At(doc, 1440, 1740, u"Average Price"), At(doc, 7200, 1740, u"N/A")};
  return doc;
}

class ExportTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("lw-export-" + std::to_string(::getpid()) + "-" +
                                        ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }
  fs::path dir_;
};

// The figures of a text in the order they stand: money and plain counts.
std::vector<std::string> Figures(const std::string& text) {
  static const std::regex figure(R"(\$[0-9,]+\.[0-9]{2}|N/A)");
  std::vector<std::string> out;
  for (auto it = std::sregex_iterator(text.begin(), text.end(), figure); it != std::sregex_iterator(); ++it)
    out.push_back(it->str());
  return out;
}

TEST_F(ExportTest, EveryFormatCarriesTheSameFiguresAndReadsBack) {
  ReportDocument doc = Sample();
  const std::vector<std::string> expected{"$1,234.50", "$0.00", "$1,234.50", "N/A"};

  // HTML: one table a page, parsed back as a browser would.
  fs::path html = WriteHtml(doc, dir_, u"LWExport");
  EXPECT_EQ(html, dir_ / "LWExport.html");
  auto tables = ReadHtmlTables(html);
  ASSERT_EQ(tables.size(), 2u);
  ASSERT_EQ(tables[0].size(), 4u);
  EXPECT_EQ(tables[0][0], (std::vector<std::string>{"Sales Report for Period"}));
  EXPECT_EQ(tables[0][2],
            (std::vector<std::string>{"1001", "Jug <large> & \"fine\" caf\u00e9", "$1,234.50"}));
  std::string html_text;
  for (auto& t : tables)
    for (auto& row : t)
      for (auto& cell : row) html_text += cell + "\n";
  EXPECT_EQ(Figures(html_text), expected);

  // The spreadsheet: money is a number in a money picture, the rest text, one row a line.
  fs::path xls = dir_ / "LWExport.xls";
  WriteSpreadsheet(doc, xls);
  auto sheet = ReadSheet(xls);
  ASSERT_EQ(sheet.size(), 7u);
  EXPECT_EQ(sheet[2].at(0).text, "1001");
  EXPECT_EQ(sheet[2].at(2).number, 1234.5);
  EXPECT_EQ(sheet[3].at(2).number, 0.0);
  // A blank row parts the pages.
  EXPECT_TRUE(sheet[4].empty());
  EXPECT_EQ(sheet[5].at(0).text, "Totals");
  EXPECT_EQ(sheet[5].at(2).number, 1234.5);
  EXPECT_EQ(sheet[6].at(2).text, "N/A");

  // Text: semicolons between columns padded to one width through the whole report, a comma between
  // pages.
  fs::path txt = dir_ / "LWExport.txt";
  WriteText(doc, txt, u";", u",");
  std::ifstream in(txt, std::ios::binary);
  std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  auto pad = [](int n) { return std::string(n, ' '); };
  // The heading spans every column and leaves their widths to the rest.
  const std::vector<std::string> lines{"Sales Report for Period",
                                       "Item" + pad(9) + ";Title" + pad(20) + ";Profit",
                                       "1001" + pad(9) + ";Jug <large> & \"fine\" caf\u00e9;$1,234.50",
                                       "1002" + pad(9) + ";Bowl" + pad(21) + ";    $0.00",
                                       ",",
                                       "Totals" + pad(7) + ";" + pad(25) + ";$1,234.50",
                                       "Average Price;" + pad(25) + ";N/A"};
  std::string expected_text;
  for (const auto& line : lines) expected_text += line + "\r\n";
  EXPECT_EQ(text, expected_text);

  // PDF: the text comes back out with a reader's tools.
  fs::path pdf = dir_ / "LWExport.pdf";
  WritePdf(doc, pdf);
  std::string pdf_text = PdfText(pdf);
  EXPECT_NE(pdf_text.find("Sales Report for Period"), std::string::npos) << pdf_text;
  EXPECT_NE(pdf_text.find("caf\u00e9"), std::string::npos) << pdf_text;
  EXPECT_EQ(Figures(pdf_text), expected);
  EXPECT_EQ(Figures(text), expected);
}

TEST_F(ExportTest, AFileThatCannotBeWrittenIsAnErrorAndLeavesNothingBehind) {
  ReportDocument doc = Sample();
  fs::path missing = dir_ / "no such folder";
  for (auto write : std::vector<std::function<void()>>{[&] { WriteHtml(doc, missing, u"r"); },
                                                       [&] { WriteSpreadsheet(doc, missing / "r.xls"); },
                                                       [&] { WriteText(doc, missing / "r.txt", u";", u","); },
                                                       [&] { WritePdf(doc, missing / "r.pdf"); }}) {
    try {
      write();
      ADD_FAILURE() << "no error";
    } catch (const RuntimeError& e) {
      EXPECT_EQ(e.number(), 75);
    }
  }
  EXPECT_FALSE(fs::exists(missing));
  // An empty report is still a file each reader opens.
  ReportDocument empty;
  WritePdf(empty, dir_ / "empty.pdf");
  EXPECT_EQ(PdfText(dir_ / "empty.pdf").find_first_not_of(" \n\f"), std::string::npos);
  WriteSpreadsheet(empty, dir_ / "empty.xls");
  EXPECT_TRUE(ReadSheet(dir_ / "empty.xls").empty());
}

}  // namespace
}  // namespace lw::report_export
