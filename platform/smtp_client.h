// The mail control of the letter page: an SMTP client on libcurl with the operations the senders need of
// it (reset, recipient, subject, return address, copies, header lines, sender, body, host, logon,
// connection and authorization kinds, connect, send, disconnect). One mail at a time; everything is
// synchronous and bounded by the timeout.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "platform/mail_message.h"

namespace lw {

class SmtpClient {
 public:
  // Connection kinds: plain SMTP, a POP3 logon before SMTP, SMTP with an ESMTP AUTH logon.
  static constexpr int kPlainSmtp = 0;
  static constexpr int kPopBeforeSmtp = 1;
  static constexpr int kEsmtpLogon = 2;
  // Authorization kinds: none, or the user name and password with whatever AUTH mechanism the server
  // offers (PLAIN, LOGIN, ...).
  static constexpr int kNoAuthorization = 0;
  static constexpr int kLogon = 1;

  SmtpClient();

  // Clears the mail in hand. The server settings (hosts, logon, kinds, timeout) stay for the next mail.
  void Reset();
  void SetRecipient(std::string address) { recipient_ = std::move(address); }
  void SetSubject(std::string subject) { subject_ = std::move(subject); }
  // The envelope's sender, where refusals are returned.
  void SetReturnAddress(std::string address) { return_address_ = std::move(address); }
  void SetCarbonCopy(std::string address) { cc_ = std::move(address); }
  void SetBlindCopy(std::string address) { bcc_ = std::move(address); }
  void AddHeader(std::string line) { headers_.push_back(std::move(line)); }
  // The sender as the From line shows it: "Name<address>".
  void SetSender(std::string sender) { sender_ = std::move(sender); }
  void AddBody(const std::string& text) { body_ += text; }

  // The SMTP server, "host" or "host:port" (25 when none is given).
  void SetHost(std::string host) { host_ = std::move(host); }
  // The POP3 server of a POP-before-SMTP connection, "host" or "host:port" (110).
  void SetPopHost(std::string host) { pop_host_ = std::move(host); }
  void SetUser(std::string user) { user_ = std::move(user); }
  void SetPassword(std::string password) { password_ = std::move(password); }
  void SetConnectionKind(int kind) { connection_kind_ = kind; }
  void SetAuthorizationKind(int kind) { authorization_kind_ = kind; }
  int connection_kind() const { return connection_kind_; }
  int authorization_kind() const { return authorization_kind_; }
  // Longest time for each exchange with a server, from connecting to the last answer.
  void SetTimeout(std::chrono::milliseconds timeout) { timeout_ = timeout; }

  // Checks that there is a server to send to and, for POP-before-SMTP, logs on to the POP3 server.
  void Connect();
  // The whole SMTP exchange for the mail in hand: EHLO, STARTTLS when offered, AUTH for a logon,
  // MAIL, RCPT for the recipient and the copies, DATA, QUIT.
  void Send();
  void Disconnect() { connected_ = false; }

  // The message as Send puts it on the wire (Date line aside), for a look before sending.
  MailMessage Message() const;

  // Failures raise RuntimeError with libcurl's error number (refused, timed out, dropped, a reply
  // refusing the sender or a recipient), or 91 for a send without a connection. The password is never
  // part of an error text.

 private:
  std::string recipient_, subject_, return_address_, cc_, bcc_, sender_, body_;
  std::vector<std::string> headers_;
  std::string host_, pop_host_, user_, password_;
  int connection_kind_ = kPlainSmtp;
  int authorization_kind_ = kNoAuthorization;
  std::chrono::milliseconds timeout_{60000};
  bool connected_ = false;
};

}  // namespace lw
