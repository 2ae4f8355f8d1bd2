#include "core/primitives/text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace lw {
namespace {

int ErrorNumber(auto&& call) {
  try {
    call();
  } catch (const RuntimeError& e) {
    return e.number();
  }
  return 0;
}

TEST(Like, WildCardsAndAnchoring) {
  EXPECT_TRUE(Like(u"", u"*"));
  EXPECT_FALSE(Like(u"", u"?"));
  EXPECT_TRUE(Like(u"Item ended: No Bids yet", u"*No Bids*"));
  EXPECT_FALSE(Like(u"Item ended: no bids yet", u"*No Bids*"));  // case counts
  EXPECT_TRUE(Like(u"$12.50", u"$*"));
  EXPECT_FALSE(Like(u"US $12.50", u"$*"));  // a prefix test, not a substring test
  EXPECT_FALSE(Like(u"abcx", u"abc"));      // the whole text must match
  EXPECT_TRUE(Like(u"abc", u"a?c"));
  EXPECT_FALSE(Like(u"ac", u"a?c"));
  EXPECT_TRUE(Like(u"abcabc", u"*abc"));
  EXPECT_TRUE(Like(u"aXbXc", u"a*b*c"));
  // Head and tail must not share characters.
  EXPECT_FALSE(Like(u"ab", u"ab*ab"));
  EXPECT_TRUE(Like(u"abab", u"ab*ab"));
  EXPECT_TRUE(Like(u"mississippi", u"*issip*"));
  EXPECT_FALSE(Like(u"mississippi", u"m*pp*ss*"));
}

TEST(Like, DigitsAndSets) {
  EXPECT_TRUE(Like(u"Item 42", u"Item ##"));
  EXPECT_FALSE(Like(u"Item 4x", u"Item ##"));
  EXPECT_TRUE(Like(u"b", u"[a-c]"));
  EXPECT_FALSE(Like(u"d", u"[a-c]"));
  EXPECT_FALSE(Like(u"B", u"[a-c]"));
  EXPECT_TRUE(Like(u"d", u"[!a-c]"));
  EXPECT_TRUE(Like(u"7x", u"[0-9a-f]x"));
  EXPECT_TRUE(Like(u"-", u"[a-]"));  // a dash at an edge stands for itself
  EXPECT_TRUE(Like(u"*", u"[*]"));   // specials are plain inside a set
  EXPECT_FALSE(Like(u"x", u"[*]"));
  EXPECT_TRUE(Like(u"a*b", u"a[*]*"));
  EXPECT_TRUE(Like(u"ab", u"a[]b"));  // the empty set takes no character
  EXPECT_TRUE(Like(u"Dutch Bid 3", u"*Dutch [Bb]id #"));
  EXPECT_TRUE(Like(u"x12-y", u"*#-[!0-9]"));
}

TEST(Like, BadPatternsRaise93) {
  EXPECT_EQ(ErrorNumber([] { Like(u"abc", u"a[bc"); }), 93);
  EXPECT_EQ(ErrorNumber([] { Like(u"", u"["); }), 93);
  EXPECT_EQ(ErrorNumber([] { Like(u"x", u"x*[!"); }), 93);
  EXPECT_EQ(ErrorNumber([] { Like(u"b", u"[c-a]"); }), 93);
  // A stray ']' is an ordinary character.
  EXPECT_TRUE(Like(u"a]", u"a]"));
}

TEST(Like, ManyStarsStayFast) {
  // Backtracking on every star would take ages here.
  Text text(5000, u'a');
  Text pattern;
  for (int i = 0; i < 200; ++i) pattern += u"*a";
  pattern += u"*b";
  EXPECT_FALSE(Like(text, pattern));
  text += u'b';
  EXPECT_TRUE(Like(text, pattern));
}

TEST(InStr, PositionsAndStart) {
  EXPECT_EQ(InStr(u"hello world", u"o"), 5u);
  EXPECT_EQ(InStr(6, u"hello world", u"o"), 8u);
  EXPECT_EQ(InStr(u"hello world", u"world"), 7u);
  EXPECT_EQ(InStr(u"hello world", u"World"), 0u);
  EXPECT_EQ(InStr(u"abc", u"abcd"), 0u);
  EXPECT_EQ(InStr(4, u"abc", u"c"), 0u);
  EXPECT_EQ(InStr(2, u"abc", u""), 2u);
  EXPECT_EQ(InStr(4, u"abc", u""), 4u);
  EXPECT_EQ(InStr(5, u"abc", u""), 0u);
  EXPECT_EQ(ErrorNumber([] { InStr(0, u"abc", u"a"); }), 5);
  // Long texts go through the vectorised scan; the match must be found wherever it falls, including
  // in the last few characters that the blocks do not cover.
  for (size_t at : {0u, 7u, 8u, 15u, 16u, 33u, 994u, 995u, 996u}) {
    Text hay(1000, u'x');
    hay.replace(at, 4, u"ab\u20ACd");
    EXPECT_EQ(InStr(hay, u"ab\u20ACd"), at + 1) << at;
    EXPECT_EQ(InStr(hay, u"\u20AC"), at + 3) << at;
  }
  // Every length and place around the block edges of the vector scans, against a plain search.
  for (size_t n = 0; n < 100; ++n) {
    for (size_t m : {1u, 2u, 3u, 9u, 17u}) {
      for (size_t at = 0; at + m <= n; at += 3) {
        Text hay(n, u'a');
        Text find(m, u'b');
        find.front() = u'a';  // first character everywhere, last character only in the match
        hay.replace(at, m, find);
        for (size_t start : {size_t{1}, at + 1, at + 2}) {
          size_t want = hay.find(find, start - 1);
          EXPECT_EQ(InStr(start, hay, find), want == Text::npos ? 0 : want + 1) << n << " " << m << " " << at;
        }
        Text twice = hay + hay;
        EXPECT_EQ(InStrRev(twice, find), twice.rfind(find) + 1) << n << " " << m << " " << at;
      }
    }
  }
  // Near misses where the first and last characters agree.
  EXPECT_EQ(InStr(u"axxbaxybaxyb", u"axyb"), 5u);
  EXPECT_EQ(InStrRev(u"abcabc", u"bc"), 5u);
  EXPECT_EQ(InStrRev(u"abcabc", u"x"), 0u);
  EXPECT_EQ(InStrRev(u"ab", u"abc"), 0u);
}

TEST(Replace, LeftToRightWithoutRescanning) {
  EXPECT_EQ(Replace(u"aaa", u"aa", u"b"), u"ba");
  EXPECT_EQ(Replace(u"abc", u"", u"x"), u"abc");
  EXPECT_EQ(Replace(u"a.b.c", u".", u".."), u"a..b..c");  // replaced text is not searched again
  EXPECT_EQ(Replace(u"<br><br>", u"<br>", u"\r\n"), u"\r\n\r\n");
  EXPECT_EQ(Replace(u"", u"a", u"b"), u"");
  EXPECT_EQ(Replace(u"Aa", u"a", u""), u"A");
}

TEST(Substrings, CountsBeyondTheEnd) {
  EXPECT_EQ(Left(u"abc", 2), u"ab");
  EXPECT_EQ(Left(u"abc", 10), u"abc");
  EXPECT_EQ(Right(u"abc", 2), u"bc");
  EXPECT_EQ(Mid(u"abcdef", 3), u"cdef");
  EXPECT_EQ(Mid(u"abcdef", 3, 2), u"cd");
  EXPECT_EQ(Mid(u"abcdef", 5, 100), u"ef");
  EXPECT_EQ(Mid(u"abc", 4), u"");
  EXPECT_EQ(Mid(u"abc", 9, 2), u"");
  EXPECT_EQ(ErrorNumber([] { Mid(u"abc", 0); }), 5);
}

TEST(Blanks, TrimTouchesBlanksOnly) {
  EXPECT_EQ(Trim(u"  a b  "), u"a b");
  EXPECT_EQ(LTrim(u"  a "), u"a ");
  EXPECT_EQ(RTrim(u" a  "), u" a");
  EXPECT_EQ(Trim(u"\ta\r\n"), u"\ta\r\n");
  EXPECT_EQ(Trim(u"   "), u"");
  EXPECT_EQ(Space(3), u"   ");
}

TEST(Characters, CaseAndCodes) {
  EXPECT_EQ(LCase(u"ABC \u00C9\u0130x"), Text(u"abc \u00E9") + Text(1, u'i') + u"x");
  EXPECT_EQ(UCase(u"abc \u00E9\u00DF"), u"ABC \u00C9\u00DF");  // one unit stays one unit
  EXPECT_EQ(Chr(65), u"A");
  EXPECT_EQ(Chr(13) + Chr(10), u"\r\n");
  EXPECT_EQ(Chr(128), u"\u20AC");
  EXPECT_EQ(Chr(163), u"\u00A3");
  EXPECT_EQ(Chr(0x4E2D), u"\u4E2D");
  EXPECT_EQ(ErrorNumber([] { Chr(-1); }), 5);
  EXPECT_EQ(ErrorNumber([] { Chr(70000); }), 5);
  EXPECT_EQ(Asc(u"Abc"), 65);
  EXPECT_EQ(Asc(u"\u20AC"), 128);
  EXPECT_EQ(Asc(u"\u4E2D"), 0x4E2D);
  EXPECT_EQ(ErrorNumber([] { Asc(u""); }), 5);
  for (int c = 1; c < 300; ++c) EXPECT_EQ(Asc(Chr(c)), c) << c;
}

TEST(Val, NumberAtTheStart) {
  EXPECT_EQ(Val(u""), 0);
  EXPECT_EQ(Val(u" 1 2"), 12);
  EXPECT_EQ(Val(u"12.50abc"), 12.5);
  EXPECT_EQ(Val(u"$5"), 0);
  EXPECT_EQ(Val(u"1,000"), 1);
  EXPECT_EQ(Val(u"-3.5e2x"), -350);
  EXPECT_EQ(Val(u"\t\n-\t4 2 . 5"), -42.5);
  EXPECT_EQ(Val(u"\r5"), 0);  // a carriage return is not skipped
  EXPECT_EQ(Val(u"+.5"), 0.5);
  EXPECT_EQ(Val(u"1.2.3"), 1.2);  // one point only
  EXPECT_EQ(Val(u"2e"), 2);       // an exponent without digits is dropped
  EXPECT_EQ(Val(u"1D3"), 1000);
  EXPECT_EQ(Val(u"0.1"), 0.1);  // correctly rounded, as a literal would be
  EXPECT_EQ(Val(u"1.7976931348623157e308"), std::numeric_limits<double>::max());
  EXPECT_TRUE(std::isinf(Val(u"1e999")));
  // Too large through its digits alone, with no exponent to say so.
  EXPECT_EQ(Val(u"-1" + Text(352, u'0')), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(Val(u"1e-999"), 0);
  EXPECT_FALSE(std::signbit(Val(u"-0")));
  // Hundreds of digits still round correctly.
  EXPECT_EQ(Val(u"0." + Text(300, u'0') + u"1"), 1e-301);
  Text big = u"1" + Text(800, u'0') + u"e-800";
  EXPECT_EQ(Val(big), 1);
  Text nearly_one = u"0." + Text(1000, u'9');
  EXPECT_EQ(Val(nearly_one), 1);
}

TEST(Val, OfAVariant) {
  EXPECT_EQ(Val(Variant()), 0);
  EXPECT_EQ(Val(Variant(2.25)), 2.25);
  EXPECT_EQ(Val(Variant(Currency::FromScaled(123456))), 12.3456);
  EXPECT_EQ(Val(Variant(u"7 5 kg")), 75);
}

}  // namespace
}  // namespace lw
