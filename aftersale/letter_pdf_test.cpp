// Letters on paper: long lines break at a blank that fits (or are cut where none does) and keep their
// line ends, and the PDF written reads back as the letter, page after page, in the PDF reader the tests
// use (pdftotext).
#include "aftersale/letter_pdf.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

namespace lw {
namespace {

TEST(LetterPdf, LongLinesBreakAtTheLastBlankThatFits) {
  EXPECT_EQ(WrapLines(u"one two three\r\nfour\nfive", 9),
            (std::vector<Text>{u"one two", u"three", u"four", u"five"}));
  EXPECT_EQ(WrapLines(u"abcdefghijkl", 5), (std::vector<Text>{u"abcde", u"fghij", u"kl"}));
  EXPECT_EQ(WrapLines(u"\r\n\r\nx", 5), (std::vector<Text>{u"", u"", u"x"}));
  EXPECT_EQ(WrapLines(u"", 5), (std::vector<Text>{u""}));
}

TEST(LetterPdf, ThePrintedLetterReadsBack) {
  namespace fs = std::filesystem;
  fs::path file = fs::temp_directory_path() / ("lw_letter_" + std::to_string(::getpid()) + ".pdf");
  Text body = u"Dear buyer,\r\nTotal Auction Price \u20ac 25,00\r\n";
  for (int i = 0; i < 70; ++i) body += u"Line " + Text(1, static_cast<char16_t>(u'A' + i % 26)) + u"\r\n";
  WriteLetterPdf(file, {{u"b1@example.com", u"Ebay Item # 7001 Oak Chair", body}}, false);
  std::string text;
  if (FILE* p = popen(("pdftotext -layout '" + file.string() + "' -").c_str(), "r")) {
    char buf[4096];
    size_t n;
    while ((n = fread(buf, 1, sizeof buf, p)) > 0) text.append(buf, n);
    EXPECT_EQ(pclose(p), 0);
  }
  fs::remove(file);
  EXPECT_NE(text.find("To: b1@example.com\nSubject: Ebay Item # 7001 Oak Chair\n\nDear buyer,\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("Total Auction Price \xE2\x82\xAC 25,00"), std::string::npos);
  // Seventy lines and the head do not fit on one page: the rest goes on the next.
  EXPECT_NE(text.find('\f'), std::string::npos);
  EXPECT_NE(text.find("Line R"), std::string::npos);
  EXPECT_THROW(WriteLetterPdf("/nonexistent/folder/letter.pdf", {}, true), RuntimeError);
}

}  // namespace
}  // namespace lw
