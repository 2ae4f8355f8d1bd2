#include "core/primitives/settings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace lw {
namespace {

namespace fs = std::filesystem;

class SettingsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::path(::testing::TempDir()) / ("settings_" + std::to_string(::getpid()) + "_" +
                                             ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
  }
  void TearDown() override {
    std::error_code ec;
    fs::permissions(dir_, fs::perms::owner_all, fs::perm_options::add, ec);
    fs::remove_all(dir_, ec);
  }
  std::string FileText(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  }
  void Write(const fs::path& p, const std::string& bytes) {
    fs::create_directories(p.parent_path());
    std::ofstream(p, std::ios::binary) << bytes;
  }
  fs::path dir_;
};

TEST_F(SettingsTest, ValuesSurviveARestartWhateverTheyHold) {
  fs::path file = dir_ / "nested" / "lotwright" / "settings.ini";
  const Text awkward[] = {
      u"",
      u"plain",
      u"line one\r\nline two\nthree\rfour",
      u"a=b=c",
      u"[Section/Name]",
      u"\"quoted\" and 'single'",
      u"  blanks at both ends  ",
      u"back\\slash \\n not a break",
      u"#not a comment",
      u"tab\there, nul\u0000, bell\u0007",
      u"\u20AC \u00E9 \U0001F600",
      Text(1, static_cast<char16_t>(0xD800)) + u"lone half",
  };
  {
    Settings s(file);
    EXPECT_EQ(s.GetSetting(u"Lotwright", u"Settings", u"DBPath", u"none"), u"none");
    int i = 0;
    for (const Text& v : awkward) s.SaveSetting(u"Lotwright", u"Values", u"k" + Text(1, u'a' + i++), v);
    s.SaveSetting(u"Lotwright", u"Odd/Section]", u"[key=with#", u"x");
    s.SaveSetting(u"Other app", u"Settings", u" spaced key ", u"y");
  }
  Settings again(file);
  int i = 0;
  for (const Text& v : awkward)
    EXPECT_EQ(again.GetSetting(u"Lotwright", u"Values", u"k" + Text(1, u'a' + i++), u"missing"), v) << i;
  EXPECT_EQ(again.GetSetting(u"Lotwright", u"Odd/Section]", u"[key=with#", u""), u"x");
  EXPECT_EQ(again.GetSetting(u"Other app", u"Settings", u" spaced key ", u""), u"y");
  EXPECT_EQ(again.GetSetting(u"Other app", u"Settings", u"spaced key", u"no"), u"no");
  // No temporary file is left beside the real one, and the file is its owner's alone.
  int files = 0;
  for ([[maybe_unused]] const auto& e : fs::directory_iterator(file.parent_path())) ++files;
  EXPECT_EQ(files, 1);
  EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(SettingsTest, NamesIgnoreCaseAndDeleteRemoves) {
  fs::path file = dir_ / "settings.ini";
  Settings s(file);
  s.SaveSetting(u"Lotwright", u"Settings", u"DBPath", u"/a");
  EXPECT_EQ(s.GetSetting(u"lotwright", u"SETTINGS", u"dbpath", u""), u"/a");
  s.SaveSetting(u"LOTWRIGHT", u"settings", u"DBPATH", u"/b");
  EXPECT_EQ(s.GetSetting(u"Lotwright", u"Settings", u"DBPath", u""), u"/b");
  s.SaveSetting(u"Lotwright", u"Settings", u"Other", u"1");
  s.DeleteSetting(u"Lotwright", u"Settings", u"dbPath");
  s.DeleteSetting(u"Lotwright", u"Settings", u"never saved");  // nothing to do, no error
  Settings again(file);
  EXPECT_EQ(again.GetSetting(u"Lotwright", u"Settings", u"DBPath", u"gone"), u"gone");
  EXPECT_EQ(again.GetSetting(u"Lotwright", u"Settings", u"Other", u""), u"1");
  EXPECT_THROW(s.SaveSetting(u"Lotwright", u"Settings", u"", u"x"), RuntimeError);
}

TEST_F(SettingsTest, ALinkedFileIsWrittenWhereItLives) {
  fs::path real = dir_ / "elsewhere" / "real.ini";
  Write(real, "");
  fs::path link = dir_ / "settings.ini";
  fs::create_symlink(real, link);
  Settings(link).SaveSetting(u"Lotwright", u"Settings", u"k", u"v");
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(Settings(real).GetSetting(u"Lotwright", u"Settings", u"k", u""), u"v");
}

TEST_F(SettingsTest, GarbledLinesAreSkippedAndHandEditsRead) {
  fs::path file = dir_ / "settings.ini";
  Write(file,
        "\xEF\xBB\xBF# a comment\n"
        "orphan=before any section\n"
        "[Lotwright/Settings]\r\n"
        "  Width = 800  \r\n"
        "bad escape=\\u12\n"
        "no equals sign\n"
        "bad bytes=\xFF\xFE\n"
        "[broken header\n"
        "lost=1\n"
        "[Lotwright/Settings]\n"
        "Height=600\n"
        "Width=1024\n");
  Settings s(file);
  EXPECT_EQ(s.GetSetting(u"Lotwright", u"Settings", u"Width", u""), u"1024");  // later line wins
  EXPECT_EQ(s.GetSetting(u"Lotwright", u"Settings", u"Height", u""), u"600");
  EXPECT_EQ(s.GetSetting(u"Lotwright", u"Settings", u"bad escape", u"d"), u"d");
  EXPECT_EQ(s.GetSetting(u"Lotwright", u"Settings", u"bad bytes", u"d"), u"d");
  EXPECT_EQ(s.GetSetting(u"Lotwright", u"Settings", u"lost", u"d"), u"d");
  // Binary rubbish loads as an empty store rather than failing.
  Write(file, std::string("\0\x01\x02[/]=\n\\", 9));
  Settings rubbish(file);
  EXPECT_EQ(rubbish.GetSetting(u"a", u"b", u"c", u"d"), u"d");
}

TEST_F(SettingsTest, UnwritableFolderRaisesAndKeepsTheOldValue) {
  // A file where the folder should be cannot be worked around, whoever runs the test.
  Write(dir_ / "blocker", "x");
  Settings s(dir_ / "blocker" / "settings.ini");
  try {
    s.SaveSetting(u"Lotwright", u"Settings", u"k", u"v");
    ADD_FAILURE() << "no error";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), 75);
  }
  EXPECT_EQ(s.GetSetting(u"Lotwright", u"Settings", u"k", u"unset"), u"unset");

  if (::geteuid() != 0) {
    fs::path file = dir_ / "ro" / "settings.ini";
    Settings w(file);
    w.SaveSetting(u"Lotwright", u"Settings", u"k", u"old");
    fs::permissions(dir_ / "ro", fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_THROW(w.SaveSetting(u"Lotwright", u"Settings", u"k", u"new"), RuntimeError);
    EXPECT_EQ(w.GetSetting(u"Lotwright", u"Settings", u"k", u""), u"old");
    EXPECT_THROW(w.DeleteSetting(u"Lotwright", u"Settings", u"k"), RuntimeError);
    EXPECT_EQ(w.GetSetting(u"Lotwright", u"Settings", u"k", u""), u"old");
    EXPECT_EQ(Settings(file).GetSetting(u"Lotwright", u"Settings", u"k", u""), u"old");
  }
}

TEST(SettingsPath, FollowsXdgThenHome) {
  const char* old_xdg = std::getenv("XDG_CONFIG_HOME");
  const char* old_home = std::getenv("HOME");
  std::string keep_xdg = old_xdg ? old_xdg : "", keep_home = old_home ? old_home : "";
  ::setenv("XDG_CONFIG_HOME", "/x/cfg", 1);
  ::setenv("HOME", "/h/me", 1);
  EXPECT_EQ(Settings::DefaultPath(), fs::path("/x/cfg/lotwright/settings.ini"));
  ::setenv("XDG_CONFIG_HOME", "relative", 1);
  EXPECT_EQ(Settings::DefaultPath(), fs::path("/h/me/.config/lotwright/settings.ini"));
  ::unsetenv("XDG_CONFIG_HOME");
  EXPECT_EQ(Settings::DefaultPath(), fs::path("/h/me/.config/lotwright/settings.ini"));
  if (old_xdg) ::setenv("XDG_CONFIG_HOME", keep_xdg.c_str(), 1);
  if (old_home) ::setenv("HOME", keep_home.c_str(), 1);
}

}  // namespace
}  // namespace lw
