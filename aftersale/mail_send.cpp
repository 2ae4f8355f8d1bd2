// "Send Now" on the Email page: the letter in the boxes leaves by SMTP, or through the user's own mail
// program, and once it has gone the combined auctions get their log lines and their group moves on.
// A failure ends the send at once: nothing moves and nothing is logged.
#include <chrono>

#include "aftersale/aftersale_screen.h"
#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "platform/mail_program.h"
#include "platform/smtp_client.h"
#include "screen/main/main_form.h"

namespace lw {

SmtpClient& AfterSale::Mail1() {
  if (!mail1_) mail1_ = std::make_unique<SmtpClient>();
  mail1_->SetTimeout(NetworkTimeout());
  return *mail1_;
}

std::chrono::milliseconds AfterSale::NetworkTimeout() const {
  // The same wait as every other network call of the program.
  double seconds = Val(program_->settings.GetSetting(u"Lotwright", u"Network", u"timeout", u"60"));
  if (!(seconds > 0)) seconds = 60;
  return std::chrono::milliseconds(static_cast<long long>(seconds * 1000));
}

bool AfterSale::MapiCompliant() {
  LoadSetupRow();
  return SetupYes(u"mapi_compliant");
}

void AfterSale::send_now() {
  try {
    MapiCompliant() ? send_mapi_mail() : send_pop_mail();
  } catch (const RuntimeError&) {
  }
}

void AfterSale::CommonStart() {
  DataControl& data = Side();
  letter.saved_record_source = data.RecordSource;
  // The whole table, so that the finds of the log lines reach every combined auction.
  data.RecordSource = Seller() ? u"Select * from seller" : u"Select * from bidder";
  data.Refresh();
}

void AfterSale::CommonEnd() {
  MainForm& f = main();
  const Text note =
      letter.letter_status_note.empty() ? Text(u"Undefined Status Letter sent ") : letter.letter_status_note;
  letter.letter_status_note = note + NowText();
  for (int i = 0; i < letter.letter_item_count; ++i) update_status_log(i);
  DataControl& data = Side();
  data.RecordSource = letter.saved_record_source;
  data.Refresh();
  data.FindFirst(u"Item = " + Quoted(letter.letter_items.empty() ? Text() : letter.letter_items.front()));
  f.SSTab1.SetTab(0);
}

void AfterSale::ConnectByMailType(SmtpClient& mail) {
  auto text = [&](const char16_t* field) { return ToUtf8(SetupText(field)); };
  const std::string user = text(u"emailusername");
  const std::string password = text(u"emailpassword");
  std::optional<double> kind = NumberOf(SetupRow()->Fields(u"mailconnecttype"));
  switch (kind ? static_cast<int>(*kind) : -1) {
    case SmtpClient::kPlainSmtp:
      mail.SetHost(text(u"smtphost"));
      mail.SetConnectionKind(SmtpClient::kPlainSmtp);
      mail.SetAuthorizationKind(SmtpClient::kNoAuthorization);
      if (!user.empty()) {
        mail.SetUser(user);
        mail.SetPassword(password);
      }
      break;
    case SmtpClient::kPopBeforeSmtp: {
      // The logon goes to the POP server; the mail to the mail server, or to the POP server's host
      // when no mail server is set.
      const std::string pop = text(u"pophost");
      std::string smtp = text(u"smtphost");
      if (smtp.empty())
        smtp = pop.substr(0, pop.rfind(':') == std::string::npos ? pop.size() : pop.rfind(':'));
      mail.SetPopHost(pop);
      mail.SetHost(smtp);
      mail.SetConnectionKind(SmtpClient::kPopBeforeSmtp);
      if (!user.empty()) {
        mail.SetUser(user);
        mail.SetPassword(password);
      }
      break;
    }
    case SmtpClient::kEsmtpLogon:
      mail.SetHost(text(u"smtphost"));
      mail.SetConnectionKind(SmtpClient::kEsmtpLogon);
      mail.SetAuthorizationKind(SmtpClient::kLogon);
      mail.SetUser(user);
      mail.SetPassword(password);
      break;
    default:
      break;
  }
}

void AfterSale::MailBySmtp(const Text& to, const Text& subject, bool copy_to_self, const Text& body) {
  MainForm& f = main();
  const std::string user_email = ToUtf8(SetupText(u"UserEmail"));
  SmtpClient& mail = Mail1();
  mail.Reset();
  mail.SetRecipient(ToUtf8(to));
  mail.SetSubject(ToUtf8(subject));
  mail.SetReturnAddress(user_email);
  mail.SetCarbonCopy(copy_to_self ? user_email : std::string());
  mail.SetBlindCopy(std::string());
  mail.AddHeader("X-Mailer: Lotwright");
  mail.SetSender(ToUtf8(SetupText(u"emailusername")) + "<" + user_email + ">");
  mail.AddBody(ToUtf8(body));
  f.SetStatus(u"Sending mail " + to + u" .... please wait");
  ConnectByMailType(mail);
  mail.Connect();
  mail.Send();
  mail.Disconnect();
  f.SetStatus(u"Mail sent successfully to " + to);
}

void AfterSale::MailByProgram(const Text& to, const Text& subject, bool copy_to_self, const Text& body) {
  if (!mail_program_) mail_program_ = std::make_unique<MailProgram>();
  const Text cc = copy_to_self ? SetupText(u"UserEmail") : Text();
  mail_program_->Hand({ToUtf8(to), ToUtf8(cc), ToUtf8(subject), ToUtf8(body)}, NetworkTimeout());
  main().SetStatus(u"Mail sent successfully via MAPI to " + to);
}

void AfterSale::send_pop_mail() {
  try {
    CommonStart();
    WaitCursor wait(main().ui());
    MailBySmtp(Box(u"emailletter_txt", 1).text(), Box(u"emailletter_txt", 3).text(), Ticked(u"check1", 0),
               Box(u"emailletter_txt", 0).text());
    CommonEnd();
  } catch (const RuntimeError&) {
    // The send's own error branch: no message, no log line, the status stays where it was.
  }
}

void AfterSale::send_mapi_mail() {
  try {
    CommonStart();
    // The user's mail program needs no session of its own; the mark stays for the run all the same.
    mapi_session_open = true;
    MailByProgram(Box(u"emailletter_txt", 1).text(), Box(u"emailletter_txt", 3).text(), Ticked(u"check1", 0),
                  Box(u"emailletter_txt", 0).text());
    CommonEnd();
  } catch (const RuntimeError&) {
  }
}

}  // namespace lw
