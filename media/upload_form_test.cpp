// The upload form with the main form's FTP client, against the loopback FTP server: a session from the
// account's fields to the file on the server's disk, the log and the status bar when it goes wrong, and
// the log's own rules.
#include "media/upload_form.h"

#include <gtest/gtest.h>

#include "media/media_testing.h"
#include "platform/ftp_test_server.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

std::vector<Text> Lines(const ListBox& list) {
  std::vector<Text> out;
  for (int i = 0; i < list.ListCount(); ++i) out.push_back(list.List(i));
  return out;
}

bool Has(const std::vector<Text>& lines, const Text& line) {
  return std::find(lines.begin(), lines.end(), line) != lines.end();
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

TEST(FtpErrorWords, TheStatusBarsTable) {
  EXPECT_EQ(FtpErrorWords(0), u"No Errors");
  EXPECT_EQ(FtpErrorWords(10025), u"The IP address provided is not valid or doesn't exist");
  EXPECT_EQ(FtpErrorWords(11001), u"Remote host could not be found.");
  EXPECT_EQ(FtpErrorWords(20530), u"Not logged in. ");
  EXPECT_EQ(FtpErrorWords(20602), u"Already connected to server.");
  EXPECT_EQ(FtpErrorWords(20608), u"Could not open file");
  EXPECT_EQ(FtpErrorWords(10061), u"Unspecified Error Number: 10061");
}

class UploadTest : public testing::MediaTest {
 protected:
  UploadForm& form() { return *media().upload; }
  // The user's part while the form is open: `steps` run, pumping after each as the form waits.
  void Open(std::function<void(UploadForm&)> steps) {
    ui_.modal = [this, steps](Form& f) {
      ASSERT_EQ(&f, media().upload);
      steps(form());
    };
    program_->routines.Call("ctToolBar8(4)");
  }
  void Button(int button) {
    Text n = FromUtf8(std::to_string(button));
    form().ctToolBar1.UserClick(&n);
    Pump();
  }
  void Fill(const std::string& host, const char* user, const char* password, const char* directory) {
    form().ftpvalues(0).UserSet(FromUtf8(host));
    form().ftpvalues(1).UserSet(FromUtf8(user));
    form().ftpvalues(2).UserSet(FromUtf8(password));
    form().ftpvalues(4).UserSet(FromUtf8(directory));
  }
  bool Enabled(int button) { return form().ctToolBar1.button(button).enabled; }
  Text Status() { return form().StatusBar1.panel(1); }
};

TEST_F(UploadTest, SessionSendsThePictureAndKeepsTheAccount) {
  testing::LoopbackFtpServer server(dir_ / "ftp", {"--user", "pics:se cret;1"});
  fs::path picture = Copy("teapot.jpg", dir_ / "Shots" / "teapot.jpg");
  Exec(
      "INSERT INTO seller (Item, Title, username, Pic_location, Pic_name) VALUES ('1', 'Teapot', 'alice', '" +
      ToUtf8(LCase(U(picture))) + "', 'Teapot.jpg')");
  ShowSellers();
  Open([&](UploadForm& f) {
    EXPECT_EQ(f.caption, u"Upload Image");
    EXPECT_EQ(Status(), u"No Errors");
    EXPECT_TRUE(Enabled(1));
    EXPECT_FALSE(Enabled(2));
    EXPECT_FALSE(Enabled(3));
    EXPECT_TRUE(Enabled(4));
    Fill(server.host(), "pics", "se cret;1", "pics");
    Button(1);
    EXPECT_FALSE(Enabled(1));
    EXPECT_TRUE(Enabled(2));
    EXPECT_TRUE(Enabled(3));
    // A session that went well leaves the wait text standing.
    EXPECT_EQ(Status(), u"Please wait .....");
    std::vector<Text> log = Lines(f.listTrace);
    EXPECT_TRUE(Has(log, u"230 Login successful."));
    EXPECT_TRUE(Has(log, u"250 \"/pics\" is the current directory."));
    EXPECT_TRUE(Has(log, u"257 \"/pics\" is the current directory."));
    EXPECT_TRUE(Has(log, u"done event fired"));
    Button(3);
    EXPECT_TRUE(Has(Lines(f.listTrace), u"226 Transfer complete."));
    Button(2);
    EXPECT_TRUE(Enabled(1));
    EXPECT_FALSE(Enabled(3));
    EXPECT_EQ(f.listTrace.List(f.listTrace.ListCount() - 2), u"221 Goodbye.");
    Button(4);
  });
  EXPECT_FALSE(form().visible());
  // The lower-cased location still names the file in its capitalised folder; the server keeps the name.
  EXPECT_EQ(ReadFile(server.root() / "pics" / "pics" / "Teapot.jpg"), ReadFile(picture));
  EXPECT_EQ(Query("Select ftphost From setup"), FromUtf8(server.host()));
  EXPECT_EQ(Query("Select ftplogonpass From setup"), u"se cret;1");
  EXPECT_EQ(Query("Select ftpaccount From setup"), u"<null>");
  EXPECT_EQ(Query("Select ftpdirectory From setup"), u"pics");

  // Opened again, the form is fresh and holds the account as saved.
  Open([&](UploadForm& f) {
    EXPECT_EQ(f.listTrace.ListCount(), 0);
    EXPECT_EQ(f.ftpvalues(1).text(), u"pics");
    EXPECT_EQ(f.ftpvalues(2).text(), u"se cret;1");
    f.Unload();
  });
}

TEST_F(UploadTest, FailuresEndInTheLogAndTheStatusBar) {
  testing::LoopbackFtpServer refusing(dir_ / "refusing", {"--user", "pics:secret", "--mode", "refuse"});
  Open([&](UploadForm& f) {
    Fill(refusing.host(), "pics", "secret", "pics");
    Button(1);
    EXPECT_EQ(Status(), u"Not logged in. ");
    EXPECT_TRUE(Enabled(1));
    EXPECT_FALSE(Enabled(3));
    EXPECT_TRUE(Has(Lines(f.listTrace), u"Async Error:20530 530 Login incorrect."));
    // Exit saves the fields as typed, whatever became of the session.
    Button(4);
  });
  EXPECT_EQ(Query("Select ftplogonname From setup"), u"pics");

  testing::LoopbackFtpServer server(dir_ / "ftp", {"--user", "pics:secret"});
  Exec("INSERT INTO seller (Item, Title, username) VALUES ('1', 'No picture', 'alice')");
  ShowSellers();
  Open([&](UploadForm& f) {
    Fill(server.host(), "pics", "secret", "");
    Button(1);
    ASSERT_TRUE(Enabled(3));
    Button(3);
    EXPECT_EQ(Status(), u"Could not open file");
    std::vector<Text> log = Lines(f.listTrace);
    EXPECT_TRUE(Has(log, u"Async Error:20608 Could not open file: no local file name"));
    Button(4);
  });
  // No directory typed: the session never changed directory.
  EXPECT_EQ(server.Commands().find("CWD"), std::string::npos);

  Open([&](UploadForm&) {
    Fill("ftp host.example", "pics", "secret", "");
    Button(1);
    EXPECT_EQ(Status(), u"The IP address provided is not valid or doesn't exist");
    Button(4);
  });
}

}  // namespace
}  // namespace lw
