// The replacement rows, the tag removal against the plain reference, and the title clean-up.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "import/normalise.h"
#include "import/normalise_literal.h"

namespace lw {
namespace {

TEST(PreParse, EachRowInOrderOnePassEach) {
  struct Case {
    const char16_t* in;
    const char16_t* out;
  };
  const std::vector<Case> cases = {
      {u"a       b", u"a b"},          // 1: seven blanks
      {u"a      b", u"a b"},           // 2: six
      {u"a     b", u"a b"},            // 3: five
      {u"a    b", u"a b"},             // 4: four
      {u"a   b", u"a b"},              // 5: three
      {u"a  b", u"a  b"},              // two blanks stay
      {u"a        b", u"a  b"},        // eight keep two: seven become one beside the eighth
      {u"a              b", u"a  b"},  // seven and seven: replaced text is not scanned again
      {u"x&nbsp;y", u"xy"},            // 6
      {u"wo&nbsprd", u"word"},         // 7: inside a word, no blank in its place
      {u"(*)\r\n(*) indicates that auction has ended.", u"(*)\r\n"},  // 8: the marker itself stays
      {u"aSeller: You can manageb", u"a\r\nb"},                       // 9
      {u"a<td> </td>b", u"ab"},                                       // 10
      {u"a</TH>\r\nb</th>\r\n", u"ab</th>\r\n"},                      // 11
      {u"a</TD>\r\nb", u"ab"},                                        // 12
      {u"xItem was revised. Insertion fee refunded!y", u"xy"},        // 13
      {u"No Bids \r\n\r\nMar-01", u"No Bids Mar-01"},                 // 14 before 15
      {u"a \r\nb", u"a\r\nb"},                                        // 15
      {u"a\r\rb", u"a\r\nb"},                                         // 16
      {u"a    \r\n", u"a\r\n"},                                       // 4 then 15
      {u"", u""},
  };
  for (const Case& c : cases) EXPECT_EQ(pre_parse_HTML(TextView(c.in)), Text(c.out));

  FileDisplay buffer;
  buffer.set_text(u"1\nNo Bids \n\n2&nbsp;3     4");
  pre_parse_HTML(buffer);
  EXPECT_EQ(buffer.text(), u"1\r\nNo Bids 23 4");
}

TEST(ParseHtml, EdgeCases) {
  std::vector<Text> status;
  auto sink = [&](const Text& s) { status.push_back(s); };
  FileDisplay buffer;

  // Empty: both status texts, nothing else.
  parse_HTML(buffer, sink);
  EXPECT_EQ(buffer.text(), u"");
  EXPECT_EQ(status, (std::vector<Text>{u"Converting Data ..... please Wait", u"Converting Data finished."}));

  // A tag inside a cell goes without a line break; cells on their own lines stay there.
  buffer.set_text(u"<TD>1234</TD>\r\n<TD><A href=\"x\">Blue vase</A></TD>\r\n");
  parse_HTML(buffer, sink);
  EXPECT_EQ(buffer.text(), u"1234\r\nBlue vase\r\n");

  // A comment holding ">" ends at that ">"; the rest stays as text.
  buffer.set_text(u"a<!-- if x > y -->b");
  parse_HTML(buffer, sink);
  EXPECT_EQ(buffer.text(), u"a y -->b");

  // "<" without ">" raises 380 with the buffer as far as it got, and no "finished" status.
  status.clear();
  buffer.set_text(u"<b>x</b> 1 < 2 <b>");
  try {
    parse_HTML(buffer, sink);
    ADD_FAILURE() << "no error";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), 380);
  }
  EXPECT_EQ(buffer.text(), u"x 1 < 2 ");
  EXPECT_EQ(status.size(), 1u);
  // At the very start too, where the plain loop would never end.
  buffer.set_text(u"<no end");
  EXPECT_THROW(parse_HTML(buffer, sink), RuntimeError);
  EXPECT_EQ(buffer.text(), u"<no end");
}

// Runs both and compares text and failure.
void ExpectSameAsReference(const Text& input) {
  Text fast = input, slow = input;
  bool fast_failed = false, slow_failed = false;
  try {
    parse_HTML_text(fast);
  } catch (const RuntimeError&) {
    fast_failed = true;
  }
  try {
    literal::parse_HTML_text(slow);
  } catch (const RuntimeError&) {
    slow_failed = true;
  }
  std::string shown(input.begin(), input.end());
  EXPECT_EQ(fast_failed, slow_failed) << shown;
  EXPECT_EQ(fast, slow) << shown;
}

TEST(ParseHtml, SameTextAsTheWholeTextRemoval) {
  // Removal joins text into new tag texts, tags nest inside tags, one tag text is the tail of another.
  for (const char16_t* s : {u"<<a>b>", u"<a<b>c<b>>d", u"x<b>y<b><b>z</b>", u"<a>x<<a>>", u"<a><a>",
                            u"<<<>>>", u"a<b<c>d<c>e>f", u"<p>1<p>2<<p>p>3", u"<x>x<y>>y<x>", u">><<>>"})
    ExpectSameAsReference(s);
  // Small random texts over the characters that matter.
  std::mt19937 rng(7);
  const char16_t alphabet[] = {u'<', u'>', u'a', u'b', u'/', u'\r', u'\n', u' '};
  for (int n = 0; n < 20000; ++n) {
    Text t(rng() % 24, u' ');
    for (auto& c : t) c = alphabet[rng() % 8];
    ExpectSameAsReference(t);
    if (HasFailure()) break;
  }
}

TEST(ParseHtml, PageOfIdenticalRows) {
  // Every row leaves the same tag behind, so one removal joins the whole page at once. Done one join
  // at a time this copied the growing text for every row and a large page never finished.
  Text rows;
  for (int i = 0; i < 300; ++i) rows += u"<tr><td>x</td></tr>\r\n";
  ExpectSameAsReference(rows);

  Text page;
  for (int i = 0; i < 400000; ++i) page += u"<tr><td>x</td></tr>";
  parse_HTML_text(page);
  EXPECT_EQ(page, Text(400000, u'x'));
}

TEST(TitleCleanUp, SearchRestartsAfterEachReplacement) {
  auto clean = [](Text t) {
    remove_odd_characters_from_title(t);
    return t;
  };
  EXPECT_EQ(clean(u"&amp;amp;"), u"&");
  EXPECT_EQ(clean(u"Salt &#38;amp; Pepper"), u"Salt & Pepper");
  EXPECT_EQ(clean(u"&#34;Mint&quot; &#39;52 &lt;b&gt; &#60;i&#62;"), u"\"Mint\" '52 <b> <i>");
  EXPECT_EQ(clean(u"&amplifier"), u"&lifier");  // the form without a semicolon goes too
  EXPECT_EQ(clean(u"&nbsp;&copy;"), u"&nbsp;&copy;");
}

}  // namespace
}  // namespace lw
