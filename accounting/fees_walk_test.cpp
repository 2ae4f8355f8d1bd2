// The walk over the normalised account page: where it starts and stops, the lines it hands over, and
// pages that lack its marks or end without a line end.
#include "accounting/fees_walk.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <vector>

#include "core/primitives/encoding.h"

namespace lw {
namespace {

// The heading line ends 23 characters behind the start of the walk, so its first line is whole.
constexpr char16_t kHeading[] = u"Ref #DateTitleItemCreditDebitBalanceFees and credits of this period\r\n";
constexpr char16_t kEnd[] = u"Current Account Balance;$1.00\r\nCopyright eBay Inc. All Rights Reserved.\r\n";

std::vector<Text> Walk(TextView page) {
  std::vector<Text> lines;
  walk_fee_page(page, [&lines](const Text& line) { lines.push_back(line); });
  return lines;
}

TEST(FeeWalk, TakesEachLineWithItsEndUpToTheBalance) {
  EXPECT_EQ(Walk(u"Your account\r\n" + Text(kHeading) + u"ab\r\n\r\n1234\r\n" + kEnd + u"after\r\n"),
            (std::vector<Text>{u" credits of this period\r\n", u"ab\r\n", u"\r\n", u"1234\r\n"}));
  // Without a balance line the walk ends behind the line of the closing notice.
  EXPECT_EQ(
      Walk(Text(kHeading) + u"ab\r\neBay Inc. All Rights Reserved.\r\nafter\r\nmore\r\n"),
      (std::vector<Text>{u" credits of this period\r\n", u"ab\r\n", u"eBay Inc. All Rights Reserved.\r\n"}));
}

// The balance line is known all the same when it has lost its first character.
TEST(FeeWalk, AnOddLineTakesTheFirstCharacterOfTheNext) {
  EXPECT_EQ(Walk(Text(kHeading) + u"abc\r\n1234\r\nxy\r\n" + kEnd),
            (std::vector<Text>{u" credits of this period\r\n", u"abc\r\n1", u"234\r\nx", u"y\r\nC"}));
}

TEST(FeeWalk, PagesWithoutItsMarksOrItsLineEnds) {
  EXPECT_TRUE(Walk(u"").empty());
  EXPECT_TRUE(Walk(Text(kHeading) + u"ab\r\n").empty());
  EXPECT_TRUE(Walk(u"ab\r\n" + Text(kEnd)).empty());
  // A closing notice before the table: the first line is taken and the walk is over.
  EXPECT_EQ(Walk(u"eBay Inc. All Rights Reserved.\r\n" + Text(kHeading) + u"ab\r\ncd\r\n").size(), 1u);
  // The text ends on the line of the notice, or straight behind the heading: no line end to wait for.
  EXPECT_EQ(
      Walk(Text(kHeading) + u"ab\r\neBay Inc. All Rights Reserved."),
      (std::vector<Text>{u" credits of this period\r\n", u"ab\r\n", u"eBay Inc. All Rights Reserved."}));
  EXPECT_TRUE(Walk(u"eBay Inc. All Rights Reserved. DebitBalance12345678").empty());
}

TEST(FeeWalk, ALargePageIsWalkedOnce) {
  Text page = kHeading;
  const Text row = u"60000000 Nov-01-26Insertion fee4099000000--$0.30 $1.00 \r\n";
  for (int i = 0; i < 150000; ++i) page += row;  // about 9 MB of text
  page += kEnd;
  size_t lines = 0;
  walk_fee_page(page, [&lines](const Text&) { ++lines; });
  EXPECT_EQ(lines, 150001u);
}

TEST(FeeWalk, LoadsThePageAsThePageBufferHoldsIt) {
  const std::string path = ::testing::TempDir() + "lw_fee_page_" + std::to_string(::getpid()) + ".htm";
  std::ofstream(path, std::ios::binary) << "\xEF\xBB\xBF"
                                        << "caf\xC3\xA9\nline\rend\r\n";
  EXPECT_EQ(load_fee_page(path), u"café\r\nline\r\nend\r\n");
  std::remove(path.c_str());
  try {
    load_fee_page(path);
    FAIL() << "a missing page must raise";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), err::kFileNotFound);
  }
}

}  // namespace
}  // namespace lw
