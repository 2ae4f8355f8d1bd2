#include "core/primitives/ini_input.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <vector>

namespace lw {
namespace {

namespace fs = std::filesystem;

class IniInputTest : public ::testing::Test {
 protected:
  fs::path Write(const std::string& bytes) {
    fs::path p = fs::path(::testing::TempDir()) /
                 ("ini_" + std::to_string(::getpid()) + "_" +
                  ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".ini");
    std::ofstream(p, std::ios::binary) << bytes;
    files_.push_back(p);
    return p;
  }
  std::vector<Text> ReadAll(const std::string& bytes) {
    IniInput in(Write(bytes));
    std::vector<Text> items;
    while (!in.AtEnd()) items.push_back(in.Read());
    return items;
  }
  void TearDown() override {
    for (const auto& p : files_) fs::remove(p);
  }
  std::vector<fs::path> files_;
};

using Items = std::vector<Text>;

TEST_F(IniInputTest, SavedViewFileReadsItemByItem) {
  // The saved view: the query line holds commas and so is cut short, as the program has always done.
  EXPECT_EQ(ReadAll("Seller\r\n\"my id, with comma\"\r\nAll Auctions\r\nSelect a, b From seller\r\nUS\r\n"),
            (Items{u"Seller", u"my id, with comma", u"All Auctions", u"Select a", u"b From seller", u"US"}));
}

TEST_F(IniInputTest, QuotesBlanksAndLineEnds) {
  EXPECT_EQ(ReadAll("  \t a b  ,c\n"), (Items{u"a b", u"c"}));
  EXPECT_EQ(ReadAll("\"x\" rest dropped,y"), (Items{u"x", u"y"}));
  EXPECT_EQ(ReadAll("\"  kept  \"\n"), (Items{u"  kept  "}));
  EXPECT_EQ(ReadAll("a\rb\nc\r\nd"), (Items{u"a", u"b", u"c", u"d"}));
  EXPECT_EQ(ReadAll("a\n\nb\n"), (Items{u"a", u"", u"b"}));
  EXPECT_EQ(ReadAll(",a,,b"), (Items{u"", u"a", u"", u"b"}));
  EXPECT_EQ(ReadAll("\"unclosed, to the end"), (Items{u"unclosed, to the end"}));
  EXPECT_EQ(ReadAll("4.02\n"), (Items{u"4.02"}));
  EXPECT_EQ(ReadAll("a\tb\t\n"), (Items{u"a\tb\t"}));  // only blanks are trimmed at the end
}

TEST_F(IniInputTest, BytesAreUtf8OrWindows1252) {
  EXPECT_EQ(ReadAll("\xEF\xBB\xBF"
                    "caf\xC3\xA9,\xE2\x82\xAC"),
            (Items{u"caf\u00E9", u"\u20AC"}));
  EXPECT_EQ(ReadAll("caf\xE9,\x80"), (Items{u"caf\u00E9", u"\u20AC"}));
  // An overlong form is not UTF-8, so the whole file is the code page.
  EXPECT_EQ(ReadAll("\xC0\xAF"), (Items{u"\u00C0\u00AF"}));
}

TEST_F(IniInputTest, MissingFileAndReadingPastTheEnd) {
  try {
    IniInput in(fs::path(::testing::TempDir()) / "no such folder" / "lw.ini");
    ADD_FAILURE() << "opened a missing file";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), 53);
  }
  IniInput in(Write("only\n"));
  EXPECT_EQ(in.Read(), u"only");
  EXPECT_TRUE(in.AtEnd());
  try {
    in.Read();
    ADD_FAILURE() << "read past the end";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), 62);
  }
  IniInput empty(Write(""));
  EXPECT_TRUE(empty.AtEnd());
  EXPECT_THROW(empty.Read(), RuntimeError);
}

}  // namespace
}  // namespace lw
