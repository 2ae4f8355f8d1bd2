// The mail control against real servers on the loopback: what arrives for each connection kind, the
// POP3 logon before the SMTP connection, and every way a server can fail ending in an error within the
// timeout, with no password in any error text.
#include "platform/smtp_client.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>

#include "core/primitives/types.h"
#include "platform/mail_test_server.h"
#include "platform/pop3_logon.h"

namespace lw {
namespace {

using testing::MailTestServer;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

fs::path Dir(const std::string& name) {
  return fs::temp_directory_path() / ("lw_smtp_" + std::to_string(::getpid()) + "_" + name);
}

// A letter as the senders load it: to a buyer, a copy to the sender, the one header line.
void Load(SmtpClient& mail, const std::string& body) {
  mail.Reset();
  mail.SetRecipient("b1@example.com");
  mail.SetSubject("Ebay Item # 7001 Oak Chair");
  mail.SetReturnAddress("me@shop.example");
  mail.SetCarbonCopy("me@shop.example");
  mail.SetBlindCopy("");
  mail.AddHeader("X-Mailer: Lotwright");
  mail.SetSender("Pat Seller<me@shop.example>");
  mail.AddBody(body);
}

void Send(SmtpClient& mail) {
  mail.Connect();
  mail.Send();
  mail.Disconnect();
}

// The message with its Date line taken out, which changes with the clock.
std::string WithoutDate(std::string message) {
  size_t at = message.find("Date: ");
  if (at == 0) message.erase(0, message.find("\r\n") + 2);
  return message;
}

TEST(SmtpClient, PlainSmtpDeliversTheLetterAsWritten) {
  MailTestServer smtp("smtp", Dir("plain"));
  SmtpClient mail;
  mail.SetHost(smtp.host());
  mail.SetConnectionKind(SmtpClient::kPlainSmtp);
  // A user name does not make a plain connection log on.
  mail.SetUser("mailer");
  mail.SetPassword("secret");
  Load(mail, "Line one\r\n.a line that starts with a dot\r\n\r\nPat\r\n\r\n");
  Send(mail);
  EXPECT_EQ(smtp.Read("log"), "001 from=<me@shop.example> to=<b1@example.com>,<me@shop.example> auth=none\n");
  EXPECT_EQ(WithoutDate(smtp.Read("001.eml")),
            "From: Pat Seller<me@shop.example>\r\nTo: b1@example.com\r\nCc: me@shop.example\r\n"
            "Subject: Ebay Item # 7001 Oak Chair\r\nX-Mailer: Lotwright\r\nMIME-Version: 1.0\r\n"
            "Content-Type: text/plain; charset=UTF-8\r\nContent-Transfer-Encoding: 7bit\r\n\r\n"
            "Line one\r\n.a line that starts with a dot\r\n\r\nPat\r\n\r\n");

  // The next mail starts afresh: no copy this time, and the server settings stay.
  Load(mail, "Second");
  mail.SetCarbonCopy("");
  Send(mail);
  EXPECT_NE(smtp.Read("log").find("002 from=<me@shop.example> to=<b1@example.com> auth=none"),
            std::string::npos);
  EXPECT_EQ(smtp.Read("002.eml").find("Cc:"), std::string::npos);
}

TEST(SmtpClient, EsmtpLogonAuthenticatesAndAWrongPasswordFailsWithoutShowingIt) {
  MailTestServer smtp("smtp", Dir("esmtp"), {"--auth", "mailer:s3cret", "--auth-required"});
  SmtpClient mail;
  mail.SetHost(smtp.host());
  mail.SetConnectionKind(SmtpClient::kEsmtpLogon);
  mail.SetAuthorizationKind(SmtpClient::kLogon);
  mail.SetUser("mailer");
  mail.SetPassword("s3cret");
  Load(mail, "Hello");
  Send(mail);
  EXPECT_EQ(smtp.Read("log"),
            "001 from=<me@shop.example> to=<b1@example.com>,<me@shop.example> auth=mailer\n");

  mail.SetPassword("wrong-pass-word");
  Load(mail, "Hello again");
  try {
    Send(mail);
    ADD_FAILURE() << "a refused logon sent the mail";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.description().find("wrong-pass-word"), std::string::npos) << e.description();
  }
  // Without a logon the server that requires one refuses the mail.
  mail.SetAuthorizationKind(SmtpClient::kNoAuthorization);
  Load(mail, "Hello once more");
  EXPECT_THROW(Send(mail), RuntimeError);
  EXPECT_EQ(smtp.Read("002.eml"), "");
}

TEST(SmtpClient, PopBeforeSmtpLogsOnToThePopServerBeforeTheMailConnectionOpens) {
  MailTestServer pop("pop3", Dir("pop"), {"--user", "mailer:s3cret"});
  MailTestServer smtp("smtp", Dir("popsmtp"));
  SmtpClient mail;
  mail.SetPopHost(pop.host());
  mail.SetHost(smtp.host());
  mail.SetConnectionKind(SmtpClient::kPopBeforeSmtp);
  mail.SetUser("mailer");
  mail.SetPassword("s3cret");
  Load(mail, "Hello");
  Send(mail);
  std::string pop_events = pop.Read("events");
  std::string smtp_events = smtp.Read("events");
  ASSERT_NE(pop_events.find(" pop3 logon mailer\n"), std::string::npos) << pop_events;
  ASSERT_NE(smtp_events.find(" smtp connect\n"), std::string::npos) << smtp_events;
  long long logon = std::stoll(pop_events.substr(pop_events.rfind('\n', pop_events.find(" pop3 logon")) + 1));
  long long connect = std::stoll(smtp_events);
  EXPECT_LT(logon, connect);

  // A refused POP3 logon stops the mail before any SMTP connection.
  mail.SetPassword("not-this-one");
  Load(mail, "Hello again");
  try {
    mail.Connect();
    ADD_FAILURE() << "a refused POP3 logon connected";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.description().find("not-this-one"), std::string::npos);
  }
  EXPECT_EQ(smtp.Read("events").find("connect", smtp_events.size()), std::string::npos);
}

TEST(SmtpClient, EveryFailingServerEndsInAnErrorWithinTheTimeout) {
  struct Case {
    std::vector<std::string> args;
    const char* what;
  };
  const Case cases[] = {{{"--refuse-rcpt", "b1@example.com"}, "refused recipient"},
                        {{"--stall", "greeting"}, "silent server"},
                        {{"--stall", "data"}, "server silent after the message"},
                        {{"--drop", "greeting"}, "connection closed at once"},
                        {{"--drop", "data"}, "connection closed after the message"}};
  int n = 0;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    MailTestServer smtp("smtp", Dir("fail" + std::to_string(n++)), c.args);
    SmtpClient mail;
    mail.SetHost(smtp.host());
    mail.SetTimeout(std::chrono::milliseconds(1500));
    Load(mail, "Hello");
    auto start = Clock::now();
    EXPECT_THROW(Send(mail), RuntimeError);
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(smtp.Read("log"), "");
  }
  // Nobody listening: refused at once.
  SmtpClient mail;
  mail.SetHost("127.0.0.1:9");
  Load(mail, "Hello");
  EXPECT_THROW(Send(mail), RuntimeError);
  // No host, no connection; no connection, no send.
  SmtpClient nowhere;
  Load(nowhere, "Hello");
  EXPECT_THROW(nowhere.Connect(), RuntimeError);
  EXPECT_THROW(nowhere.Send(), RuntimeError);
}

TEST(SmtpClient, HostFieldsMayCarryAPort) {
  EXPECT_EQ(MailServerUrl("smtp", "mail.example", 25), "smtp://mail.example:25/");
  EXPECT_EQ(MailServerUrl("smtp", " mail.example:2525 ", 25), "smtp://mail.example:2525/");
  EXPECT_EQ(MailServerUrl("pop3", "pop.example:notaport", 110), "pop3://pop.example:110/");
  EXPECT_EQ(MailServerUrl("smtp", "[::1]:2525", 25), "smtp://[::1]:2525/");
  EXPECT_EQ(MailServerUrl("smtp", "::1", 25), "smtp://[::1]:25/");
}

}  // namespace
}  // namespace lw
