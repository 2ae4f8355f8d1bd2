// The upload form's log. Its sessions against the loopback FTP server are driven end to
// end (upload_*.lwd).
#include "media/upload_form.h"

#include <gtest/gtest.h>

#include "core/primitives/encoding.h"
#include "screen/testing.h"

namespace lw {
namespace {

std::vector<Text> Lines(const ListBox& list) {
  std::vector<Text> out;
  for (int i = 0; i < list.ListCount(); ++i) out.push_back(list.List(i));
  return out;
}

TEST(FtpTrace, KeepsAboutAHundredLinesAndSplitsTexts) {
  testing::TestScreen t;
  ListBox& list = t.form.Add<ListBox>(u"listTrace");
  ftp_trace(list, u"first\r\nsecond\r\n");
  ftp_trace(list, u"third");
  EXPECT_EQ(Lines(list), (std::vector<Text>{u"first", u"second", u"third"}));
  EXPECT_EQ(list.list_index(), 2);
  for (int i = 4; i <= 101; ++i) ftp_trace(list, FromUtf8(std::to_string(i)));
  // A list of a hundred lines still takes one more; the next one pushes out the oldest.
  EXPECT_EQ(list.ListCount(), 101);
  EXPECT_EQ(list.List(0), u"first");
  ftp_trace(list, u"102");
  EXPECT_EQ(list.ListCount(), 101);
  EXPECT_EQ(list.List(0), u"second");
  EXPECT_EQ(list.List(list.list_index()), u"102");
}

}  // namespace
}  // namespace lw
