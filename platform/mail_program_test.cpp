// The hand-over to the user's mail program: the arguments xdg-email takes, in order; a program that
// says it failed, or cannot be started, is an error; one that keeps the letter open is not waited for.
#include "platform/mail_program.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/primitives/types.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

class MailProgramTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("lw_mail_program_" + std::to_string(::getpid()));
    fs::remove_all(dir_);
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }

  // A stand-in that writes its arguments one a line to "args", then does `tail`.
  fs::path StandIn(const std::string& tail) {
    fs::path p = dir_ / "xdg-email";
    std::ofstream(p) << "#!/bin/sh\nfor a in \"$@\"; do printf '%s|\\n' \"$a\"; done > '"
                     << (dir_ / "args").string() << "'\n"
                     << tail << "\n";
    fs::permissions(p, fs::perms::owner_all);
    return p;
  }
  std::string Args() {
    std::ifstream in(dir_ / "args");
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
  }
  fs::path dir_;
};

TEST_F(MailProgramTest, TheLetterGoesToTheProgramAsItsArguments) {
  MailProgram program(StandIn("exit 0").string());
  program.Hand({"b1@example.com", "me@shop.example", "Ebay Item # 7001", "Line one\r\nLine two"},
               std::chrono::seconds(10));
  EXPECT_EQ(Args(),
            "--cc|\nme@shop.example|\n--subject|\nEbay Item # 7001|\n--body|\nLine one\r\nLine "
            "two|\nb1@example.com|\n");
  program.Hand({"-odd@example.com", "", "s", "b"}, std::chrono::seconds(10));
  EXPECT_EQ(Args(), "--subject|\ns|\n--body|\nb|\nmailto:-odd@example.com|\n");
}

TEST_F(MailProgramTest, AFailureOfTheProgramIsAnErrorAndAProgramStillOpenIsNotWaitedFor) {
  MailProgram failing(StandIn("exit 4").string());
  try {
    failing.Hand({"b1@example.com", "", "s", "b"}, std::chrono::seconds(10));
    ADD_FAILURE() << "a failing mail program took the letter";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), 3 + 4);
  }
  MailProgram missing((dir_ / "no-such-program").string());
  try {
    missing.Hand({"b1@example.com", "", "s", "b"}, std::chrono::seconds(1));
    ADD_FAILURE() << "a missing mail program took the letter";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), err::kFileNotFound);
  }
  MailProgram open(StandIn("sleep 30").string());
  auto start = std::chrono::steady_clock::now();
  open.Hand({"b1@example.com", "", "s", "b"}, std::chrono::milliseconds(300));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
}  // namespace lw
