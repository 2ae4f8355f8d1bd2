// The FTP client against the loopback FTP server: a whole upload session, the anonymous fetch, and each
// way a session goes wrong (refused logon, a server that stalls or garbles, a closed port, bad input).
#include "platform/ftp_client.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <fstream>

#include "core/primitives/types.h"
#include "platform/ftp_test_server.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

class FtpClientTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("lw_ftp_" + std::to_string(::getpid()) + "_" +
                                        ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_);
    client_.set_handlers(
        {[this](int n, const std::string& t) { log_.push_back("error " + std::to_string(n) + " " + t); },
         [this](const std::string& line) { log_.push_back(line); }, [this] { log_.push_back("done"); }});
    client_.set_timeout(std::chrono::seconds(2));
  }
  void TearDown() override { fs::remove_all(dir_); }

  // Delivers the events the client posted, as the model thread would after the action.
  std::vector<std::string> Events() {
    for (auto& e : posted_) e();
    posted_.clear();
    return std::exchange(log_, {});
  }
  // The action's error number, 0 when it succeeds.
  int Act(int action) {
    try {
      client_.Act(action);
    } catch (const RuntimeError& e) {
      EXPECT_EQ(e.number(), client_.last_error());
      return e.number();
    }
    EXPECT_EQ(client_.last_error(), 0);
    return 0;
  }
  void LogOn(const testing::LoopbackFtpServer& server, const char* user = "pics",
             const char* password = "secret") {
    client_.host = server.host();
    client_.user = user;
    client_.password = password;
  }
  fs::path Write(const char* name, const std::string& bytes) {
    fs::path p = dir_ / name;
    std::ofstream(p, std::ios::binary) << bytes;
    return p;
  }

  fs::path dir_;
  std::vector<std::function<void()>> posted_;
  std::vector<std::string> log_;
  FtpClient client_{EventPort{[this](std::function<void()> e) { posted_.push_back(std::move(e)); }, nullptr}};
};

bool Has(const std::vector<std::string>& lines, const std::string& line) {
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

TEST(FtpDirectory, JoinsRelativeAndRestartsFromTheTop) {
  EXPECT_EQ(JoinFtpDirectory("", "pics"), "pics");
  EXPECT_EQ(JoinFtpDirectory("pics", "2024"), "pics/2024");
  EXPECT_EQ(JoinFtpDirectory("pics/", "2024"), "pics/2024");
  EXPECT_EQ(JoinFtpDirectory("pics", "/www"), "/www");
  EXPECT_EQ(JoinFtpDirectory("pics", ""), "pics");
}

TEST_F(FtpClientTest, UploadSessionPutsTheFileInTheDirectoryTheSessionStandsIn) {
  testing::LoopbackFtpServer server(dir_ / "server", {"--user", "pics:secret"});
  LogOn(server);
  ASSERT_EQ(Act(ftp_action::kConnect), 0);
  EXPECT_TRUE(client_.connected());
  std::vector<std::string> events = Events();
  EXPECT_TRUE(Has(events, "220 Lotwright test FTP server ready."));
  EXPECT_TRUE(Has(events, "230 Login successful."));
  EXPECT_EQ(events.back(), "done");

  client_.remote_directory = "pics";
  ASSERT_EQ(Act(ftp_action::kChangeDirectory), 0);
  EXPECT_EQ(client_.current_directory(), "pics");
  ASSERT_EQ(Act(ftp_action::kPrintDirectory), 0);
  EXPECT_EQ(client_.last_reply(), "257 \"/pics\" is the current directory.");
  Events();

  std::string bytes = "\xFF\xD8 picture bytes\r\n\x00 and more";
  client_.local_file = Write("shot one.jpg", bytes);
  client_.remote_file = "Shot One.jpg";
  ASSERT_EQ(Act(ftp_action::kSendFile), 0);
  EXPECT_EQ(ReadFile(server.root() / "pics" / "pics" / "Shot One.jpg"), bytes);
  EXPECT_TRUE(Has(Events(), "226 Transfer complete."));

  ASSERT_EQ(Act(ftp_action::kNameList), 0);
  EXPECT_EQ(client_.listing().substr(0, client_.listing().find_first_of("\r\n")), "Shot One.jpg");
  Events();

  ASSERT_EQ(Act(ftp_action::kDisconnect), 0);
  EXPECT_FALSE(client_.connected());
  EXPECT_EQ(Events(), (std::vector<std::string>{"221 Goodbye.", "done"}));
  // One logon for the whole session; the password never reaches the log in clear.
  std::string commands = server.Commands();
  EXPECT_EQ(commands.find("USER pics"), commands.rfind("USER pics"));
  EXPECT_NE(commands.find("STOR Shot One.jpg"), std::string::npos);
  EXPECT_NE(commands.find("QUIT"), std::string::npos);
  EXPECT_EQ(commands.find("secret"), std::string::npos);
}

TEST_F(FtpClientTest, SessionRulesAndBadFilesGiveTheirNumbers) {
  testing::LoopbackFtpServer server(dir_ / "server", {"--user", "pics:secret"});
  LogOn(server);
  client_.local_file = Write("a.jpg", "x");
  client_.remote_file = "a.jpg";
  EXPECT_EQ(Act(ftp_action::kSendFile), ftp_error::kNotConnected);
  EXPECT_EQ(Act(3), ftp_error::kUnknownAction);
  ASSERT_EQ(Act(ftp_action::kConnect), 0);
  EXPECT_EQ(Act(ftp_action::kConnect), ftp_error::kAlreadyConnected);

  // A folder that is not there is the server's refusal; the session stays where it was.
  client_.remote_directory = "nowhere";
  EXPECT_EQ(Act(ftp_action::kChangeDirectory), 20550);
  EXPECT_EQ(client_.last_error_text(), "550 No such file or directory.");
  EXPECT_TRUE(client_.connected());
  EXPECT_EQ(client_.current_directory(), "");

  Events();
  client_.local_file.clear();
  EXPECT_EQ(Act(ftp_action::kSendFile), ftp_error::kCannotOpenFile);
  client_.local_file = dir_ / "missing.jpg";
  EXPECT_EQ(Act(ftp_action::kSendFile), ftp_error::kCannotOpenFile);
  client_.local_file = Write("b.jpg", "y");
  client_.remote_file.clear();
  EXPECT_EQ(Act(ftp_action::kSendFile), ftp_error::kCannotOpenFile);
  std::vector<std::string> events = Events();
  ASSERT_EQ(events.size(), 3u);
  EXPECT_EQ(events[0].rfind("error 20608 Could not open file", 0), 0u);

  client_.command = "SITE NONSENSE";
  EXPECT_GE(Act(ftp_action::kQuote), 20500);
  client_.command = "NOOP";
  EXPECT_EQ(Act(ftp_action::kQuote), 0);
  EXPECT_EQ(client_.last_reply().substr(0, 3), "200");
}

TEST_F(FtpClientTest, AnonymousFetchOfTheUpdateFile) {
  testing::LoopbackFtpServer server(dir_ / "server", {"--server-ini", "4.02,extra\\n"});
  LogOn(server, "anonymous", "update@lotwright.com");
  ASSERT_EQ(Act(ftp_action::kConnect), 0);
  client_.remote_directory = "incoming";
  ASSERT_EQ(Act(ftp_action::kChangeDirectory), 0);
  client_.local_file = dir_ / "server.ini";
  client_.remote_file = "server.ini";
  ASSERT_EQ(Act(ftp_action::kGetFile), 0);
  EXPECT_EQ(ReadFile(dir_ / "server.ini"), "4.02,extra\r\n");

  // A file that is not there leaves nothing behind, not even an empty file.
  client_.local_file = dir_ / "other.ini";
  client_.remote_file = "other.ini";
  EXPECT_EQ(Act(ftp_action::kGetFile), 20550);
  EXPECT_FALSE(fs::exists(dir_ / "other.ini"));
  // The anonymous user may not write.
  client_.local_file = dir_ / "server.ini";
  EXPECT_GE(Act(ftp_action::kSendFile), 20500);
}

TEST_F(FtpClientTest, RefusedLogonIsRememberedWithoutAskingAgain) {
  testing::LoopbackFtpServer server(dir_ / "server", {"--user", "pics:secret", "--mode", "refuse"});
  LogOn(server);
  EXPECT_EQ(Act(ftp_action::kConnect), ftp_error::kNotLoggedIn);
  EXPECT_FALSE(client_.connected());
  std::vector<std::string> events = Events();
  EXPECT_TRUE(Has(events, "error 20530 530 Login incorrect."));
  // The steps that follow a failed logon give its failure without a second try at the server.
  client_.remote_directory = "pics";
  EXPECT_EQ(Act(ftp_action::kChangeDirectory), ftp_error::kNotLoggedIn);
  EXPECT_EQ(Act(ftp_action::kPrintDirectory), ftp_error::kNotLoggedIn);
  std::string commands = server.Commands();
  EXPECT_EQ(commands.find("USER"), commands.rfind("USER"));
  EXPECT_EQ(Act(ftp_action::kDisconnect), 0);
  EXPECT_EQ(Act(ftp_action::kChangeDirectory), ftp_error::kNotConnected);
}

TEST_F(FtpClientTest, DeadServersEndWithinTheTimeout) {
  struct Case {
    const char* mode;
    int number;
  };
  for (const Case& c : {Case{"stall", ftp_error::kTimedOut}, Case{"garble", ftp_error::kConnectionReset}}) {
    SCOPED_TRACE(c.mode);
    testing::LoopbackFtpServer server(dir_ / c.mode, {"--mode", c.mode});
    FtpClient client(EventPort{});
    client.host = server.host();
    client.user = "anonymous";
    client.set_timeout(std::chrono::seconds(1));
    auto start = std::chrono::steady_clock::now();
    try {
      client.Act(ftp_action::kConnect);
      ADD_FAILURE() << "connected to a dead server";
    } catch (const RuntimeError& e) {
      EXPECT_EQ(e.number(), c.number) << e.description();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
  }
}

TEST_F(FtpClientTest, AddressesThatLeadNowhere) {
  // A port nobody listens on: take a free one and let it go again.
  int s = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ASSERT_EQ(bind(s, reinterpret_cast<sockaddr*>(&a), sizeof a), 0);
  socklen_t len = sizeof a;
  getsockname(s, reinterpret_cast<sockaddr*>(&a), &len);
  close(s);
  client_.host = "ftp://127.0.0.1:" + std::to_string(ntohs(a.sin_port)) + "/";
  EXPECT_EQ(Act(ftp_action::kConnect), ftp_error::kConnectionRefused);
  for (const char* host : {"", "two words", "user@host"}) {
    client_.host = host;
    EXPECT_EQ(Act(ftp_action::kConnect), ftp_error::kInvalidAddress) << host;
  }
}

}  // namespace
}  // namespace lw
