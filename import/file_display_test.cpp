// The page buffer: CR LF line ends however text arrives, positions from 0, the selection.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "import/file_display.h"

namespace lw {
namespace {

std::filesystem::path TempFile(const char* name) {
  return std::filesystem::temp_directory_path() / (std::to_string(::getpid()) + "_" + name);
}

void WriteBytes(const std::filesystem::path& p, const std::string& bytes) {
  std::ofstream(p, std::ios::binary) << bytes;
}

TEST(FileDisplay, EveryLineEndBecomesCrLf) {
  FileDisplay fd;
  fd.set_text(u"a\nb\rc\r\nd\n\re");
  EXPECT_EQ(fd.text(), u"a\r\nb\r\nc\r\nd\r\n\r\ne");

  // Loaded from a file: no mark and no declaration reads as windows-1252.
  auto path = TempFile("fd_load.htm");
  WriteBytes(path, "x\ny\x80\r");
  fd.LoadFile(path);
  EXPECT_EQ(fd.text(), u"x\r\ny\u20ac\r\n");

  // Saved and read back unchanged, whatever characters it holds.
  fd.set_text(u"caf\u00e9 \u20ac\r\n\u65e5");
  fd.SaveFile(path, 1);
  FileDisplay back;
  back.LoadFile(path);
  EXPECT_EQ(back.text(), fd.text());
  std::filesystem::remove(path);

  try {
    back.LoadFile(TempFile("no_such_file.htm"));
    ADD_FAILURE() << "no error";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), 53);
  }
  EXPECT_THROW(fd.SaveFile("/no/such/folder/x.htm"), RuntimeError);
}

TEST(FileDisplay, FindLinesAndSelection) {
  FileDisplay fd;
  fd.set_text(u"Item 1\nitem 2\nItem 3");
  EXPECT_EQ(fd.Find(u"Item"), 0);
  EXPECT_EQ(fd.Find(u"Item", 1), 16);  // case-sensitive, skips "item"
  EXPECT_EQ(fd.SelStart(), 16);
  EXPECT_EQ(fd.SelLength(), 4);
  EXPECT_EQ(fd.SelText(), u"Item");
  EXPECT_EQ(fd.Find(u"Item"), 16);  // from the caret
  EXPECT_EQ(fd.Find(u"nothing"), -1);
  EXPECT_EQ(fd.SelStart(), 16);  // a miss leaves the selection
  EXPECT_EQ(fd.Find(u"Item", 99), -1);

  EXPECT_EQ(fd.GetLineFromChar(0), 0);
  EXPECT_EQ(fd.GetLineFromChar(8), 1);
  EXPECT_EQ(fd.GetLineFromChar(16), 2);
  EXPECT_EQ(fd.GetLineFromChar(1000), 2);

  // One line from the caret; the next starts after the line and its two line-end characters.
  fd.SetSelStart(8);
  EXPECT_EQ(fd.LineAtCaret(), u"item 2");
  fd.SetSelStart(8 + 6 + 2);
  EXPECT_EQ(fd.LineAtCaret(), u"Item 3");

  fd.SetSelStart(5);
  fd.SetSelLength(1);
  fd.SetSelText(u"one\ntwo");
  EXPECT_EQ(fd.text(), u"Item one\r\ntwo\r\nitem 2\r\nItem 3");
  EXPECT_EQ(fd.SelStart(), 13);
  EXPECT_EQ(fd.SelLength(), 0);

  // A selection starting between CR and LF still leaves only CR LF pairs.
  fd.set_text(u"a\r\nb");
  fd.SetSelStart(2);
  fd.SetSelText(u"x");
  EXPECT_EQ(fd.text().find(u"\r\n"), 1u);
  EXPECT_EQ(FileDisplay::NormaliseLineEnds(fd.text()), fd.text());

  try {
    fd.SetSelLength(-1);
    ADD_FAILURE() << "no error";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), 380);
  }
  fd.SetSelStart(-5);
  EXPECT_EQ(fd.SelStart(), 0);
  fd.SetSelLength(1000);
  EXPECT_EQ(fd.SelLength(), static_cast<long>(fd.text().size()));
}

}  // namespace
}  // namespace lw
