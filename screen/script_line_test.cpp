#include "screen/script_line.h"

#include <gtest/gtest.h>

namespace lw {
namespace {

std::vector<Text> Words(std::string_view line) {
  auto w = SplitScriptLine(line);
  EXPECT_TRUE(w.has_value()) << line;
  return w.value_or(std::vector<Text>{});
}

TEST(ScriptLine, WordsQuotesAndEscapes) {
  EXPECT_EQ(Words("set  Title_txt\t\"Brass \\\"Lamp\\\"\""),
            (std::vector<Text>{u"set", u"Title_txt", u"Brass \"Lamp\""}));
  EXPECT_EQ(Words("set a \"\""), (std::vector<Text>{u"set", u"a", u""}));
  EXPECT_EQ(Words("sql \"a\\nb\\r\\tc\\\\\"\r"), (std::vector<Text>{u"sql", u"a\nb\r\tc\\"}));
  EXPECT_EQ(Words("set x \"caf\xc3\xa9\""), (std::vector<Text>{u"set", u"x", u"caf\u00e9"}));
  EXPECT_FALSE(SplitScriptLine("   # a comment").has_value());
  EXPECT_FALSE(SplitScriptLine(" \t\r").has_value());
  EXPECT_EQ(Words("get a#b"), (std::vector<Text>{u"get", u"a#b"}));
}

TEST(ScriptLine, MalformedLinesAreRefusedWithTheReason) {
  for (const char* bad : {"set a \"open", "set a \"x\\q\"", "set a \"x\"y", "set a b\"c", "set a \"x\\"}) {
    EXPECT_THROW(SplitScriptLine(bad), ScriptSyntaxError) << bad;
  }
}

TEST(ScriptLine, QuotingForOutputRoundTrips) {
  const Text value = u"Line one\r\nline \"two\"\ttab\\ and\nlone\rcr \u00e9";
  EXPECT_EQ(QuoteForScript(value), "\"Line one\\nline \\\"two\\\"\\ttab\\\\ and\\nlone\\rcr \xc3\xa9\"");
  // What the driver prints reads back as the same words, except that CR LF becomes a line break.
  auto back = Words("x " + QuoteForScript(u"a\"b\\c\td"));
  EXPECT_EQ(back[1], u"a\"b\\c\td");
}

TEST(ScriptReference, FormsIndexesAndProperties) {
  auto r = ParseReference(u"wizard.emailletter_txt(3).list(2)");
  ASSERT_EQ(r.size(), 3u);
  EXPECT_EQ(r[0].name, u"wizard");
  EXPECT_EQ(SegmentIndex(r[1]), 3);
  EXPECT_EQ(r[2].args, std::vector<Text>{u"2"});
  auto two = ParseReference(u"ctListBar1.tip( 1 , 2 )");
  EXPECT_EQ(two[1].args, (std::vector<Text>{u"1", u"2"}));
  EXPECT_EQ(SegmentIndex(ParseReference(u"main")[0]), -1);
  EXPECT_THROW(SegmentIndex(ParseReference(u"a(-1)")[0]), ScriptSyntaxError);
  EXPECT_THROW(SegmentIndex(ParseReference(u"a(1,2)")[0]), ScriptSyntaxError);
  for (const char16_t* bad :
       {u"", u"1abc", u"a.", u"a(1", u"a()", u"a(1)x", u"a.b.c.d", u"a((1))", u"a..b", u"a b"}) {
    EXPECT_THROW(ParseReference(bad), ScriptSyntaxError);
  }
}

}  // namespace
}  // namespace lw
