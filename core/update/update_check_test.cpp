// The update check against the loopback FTP server: when a tick checks, what a newer, an equal and an
// older version lead to, and servers that refuse, stall or serve a file that holds no version.
#include "core/update/update_check.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

#include "core/primitives/encoding.h"
#include "platform/ftp_test_server.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

const Regional& UsEnglish() {
  static const Regional r = Regional::FromLocale("en_US");
  return r;
}

TEST(UpdateCheckDue, OnlyTicksZeroAndThirtyAWeekAfterTheLastCheck) {
  Date today = MakeDate(2026, 11, 20, 0, 0, 0);
  EXPECT_TRUE(UpdateCheckDue(0, today, u"11/13/2026", UsEnglish()));
  EXPECT_TRUE(UpdateCheckDue(30, today, u"01/01/2000", UsEnglish()));
  EXPECT_FALSE(UpdateCheckDue(0, today, u"11/14/2026", UsEnglish()));
  EXPECT_FALSE(UpdateCheckDue(15, today, u"01/01/2000", UsEnglish()));
  EXPECT_FALSE(UpdateCheckDue(59, today, u"01/01/2000", UsEnglish()));
  // A stored text that is no date does not stop the check for good.
  EXPECT_TRUE(UpdateCheckDue(0, today, u"soon", UsEnglish()));
}

class UpdateCheckTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("lw_update_" + std::to_string(::getpid()) + "_" +
                                        ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_ / "data");
    settings_ = std::make_unique<Settings>(dir_ / "settings.ini");
    clock_.Fix(MakeDate(2026, 11, 20, 9, 30, 0));
  }
  void TearDown() override { fs::remove_all(dir_); }

  // The check of a program at version 4.01, against the server given. A server that answers gets time
  // enough for a loaded machine; the failure cases pass a short timeout so a stall ends quickly.
  UpdateCheck& Check(const testing::LoopbackFtpServer& server,
                     std::chrono::seconds timeout = std::chrono::seconds(15)) {
    settings_->SaveSetting(u"Lotwright", u"Hosts", u"update", FromUtf8(server.host()));
    UpdateCheckScreen screen;
    screen.status = [this](const Text& t) { statuses_.push_back(t); };
    screen.ask = [this](const Text& t) {
      questions_.push_back(t);
      return answer_yes_;
    };
    screen.show_announcements = [this] { ++announcements_; };
    screen.server_ini = [this] { return dir_ / "data" / "server.ini"; };
    check_ = std::make_unique<UpdateCheck>(*settings_, UsEnglish(), clock_, 4.01, std::move(screen));
    check_->set_timeout(timeout);
    return *check_;
  }
  Text LastCheck() { return settings_->GetSetting(u"Lotwright", u"Database", u"lastupdatecheck", u"never"); }
  static int Logons(const testing::LoopbackFtpServer& server) {
    std::string log = server.Commands();
    int n = 0;
    for (size_t at = log.find("USER anonymous"); at != std::string::npos;
         at = log.find("USER anonymous", at + 1))
      ++n;
    return n;
  }

  fs::path dir_;
  std::unique_ptr<Settings> settings_;
  Clock clock_;
  std::unique_ptr<UpdateCheck> check_;
  std::vector<Text> statuses_;
  std::vector<Text> questions_;
  bool answer_yes_ = false;
  int announcements_ = 0;
};

TEST_F(UpdateCheckTest, TicksCheckOnceARunAndTheMenuAsOftenAsAsked) {
  testing::LoopbackFtpServer server(dir_ / "ftp", {"--server-ini", "4.01\\n"});
  UpdateCheck& check = Check(server);
  check.Tick(15);
  EXPECT_EQ(Logons(server), 0);
  // No date stored yet: the first tick of 0 or 30 checks, the next one does not.
  check.Tick(30);
  EXPECT_EQ(Logons(server), 1);
  EXPECT_EQ(statuses_.back(),
            u"Checking for Updates ..... Completed. Your version is up to date. Current version is 4.01.");
  EXPECT_EQ(LastCheck(), u"11/20/2026");
  EXPECT_FALSE(fs::exists(dir_ / "data" / "server.ini"));
  settings_->DeleteSetting(u"Lotwright", u"Database", u"lastupdatecheck");
  check.Tick(0);
  EXPECT_EQ(Logons(server), 1);
  check.Menu();
  check.Menu();
  EXPECT_EQ(Logons(server), 3);
  EXPECT_TRUE(questions_.empty());
}

TEST_F(UpdateCheckTest, VersionsCompareAsNumbers) {
  struct Case {
    const char* served;
    bool asked;
  };
  for (const Case& c : {Case{"4.1\\n", true}, Case{"4.02,\"notes, more\"\\n", true}, Case{"4.009\\n", false},
                        Case{"4.010", false}}) {
    SCOPED_TRACE(c.served);
    testing::LoopbackFtpServer server(dir_ / c.served, {"--server-ini", c.served});
    questions_.clear();
    settings_->DeleteSetting(u"Lotwright", u"Database", u"lastupdatecheck");
    Check(server).Menu();
    EXPECT_EQ(questions_.size(), c.asked ? 1u : 0u);
    EXPECT_EQ(LastCheck(), c.asked ? u"never" : u"11/20/2026");
  }
}

TEST_F(UpdateCheckTest, NewerVersionIsOfferedAndAskedAgainUntilTaken) {
  testing::LoopbackFtpServer server(dir_ / "ftp", {"--server-ini", "4.02\\n"});
  UpdateCheck& check = Check(server);
  check.Tick(0);
  ASSERT_EQ(questions_.size(), 1u);
  EXPECT_EQ(questions_[0],
            u"A new version (4.02) is available for download.\r\n\r\nDo you want to go to the Announcements "
            u"page now?");
  EXPECT_EQ(announcements_, 0);
  EXPECT_EQ(statuses_.back(), u"Checking for Updates ..... Completed.");
  // Declined: no date is written, so the next run asks again.
  EXPECT_EQ(LastCheck(), u"never");
  answer_yes_ = true;
  Check(server).Tick(0);
  EXPECT_EQ(announcements_, 1);
}

TEST_F(UpdateCheckTest, FailedTransfersChangeNothingButTheStatus) {
  struct Case {
    std::vector<std::string> args;
  };
  for (const Case& c : {Case{{"--mode", "refuse"}}, Case{{"--mode", "stall"}},
                        Case{{"--server-ini", "abc\\n"}}, Case{{"--server-ini", ""}}}) {
    SCOPED_TRACE(c.args.back());
    testing::LoopbackFtpServer server(dir_ / ("ftp" + std::to_string(statuses_.size())), c.args);
    settings_->SaveSetting(u"Lotwright", u"Database", u"lastupdatecheck", u"01/01/2020");
    statuses_.clear();
    auto start = std::chrono::steady_clock::now();
    Check(server, std::chrono::seconds(1)).Tick(0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    ASSERT_FALSE(statuses_.empty());
    EXPECT_EQ(statuses_.back().rfind(u"Checking for Updates .....", 0), 0u);
    EXPECT_EQ(statuses_.back().find(u"up to date"), Text::npos);
    EXPECT_EQ(LastCheck(), u"01/01/2020");
    EXPECT_TRUE(questions_.empty());
  }
}

TEST(ServerVersion, FirstItemOfTheFile) {
  fs::path file = fs::temp_directory_path() / ("lw_server_" + std::to_string(::getpid()) + ".ini");
  auto read = [&](const std::string& content) {
    std::ofstream(file, std::ios::binary) << content;
    try {
      return std::to_string(ReadServerVersion(file));
    } catch (const RuntimeError& e) {
      return "error " + std::to_string(e.number());
    }
  };
  EXPECT_EQ(read("4.02,whatever\r\n"), std::to_string(4.02));
  EXPECT_EQ(read("  4.1\r\n4.2\r\n"), std::to_string(4.1));
  EXPECT_EQ(read(""), "error 62");
  EXPECT_EQ(read("four\r\n"), "error 13");
  fs::remove(file);
  try {
    ReadServerVersion(file);
    ADD_FAILURE() << "read a missing file";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), 53);
  }
}

}  // namespace
}  // namespace lw
