// A logon to a POP3 server and nothing else: servers that want "POP before SMTP" let a client send mail
// for a while after it has logged on to read mail. Built on libcurl.
#pragma once

#include <chrono>
#include <string>

namespace lw {

struct Pop3Account {
  std::string host;  // "host" or "host:port"; the port is 110 when none is given
  std::string user;  // empty: connect without logging on
  std::string password;
  std::chrono::milliseconds timeout{60000};  // for the whole exchange
};

// Connects, logs on with USER and PASS (after STLS when the server offers it), and quits. Raises
// RuntimeError with libcurl's error number when the server cannot be reached, refuses the logon, stalls
// or drops the connection. The password never appears in the error text.
void Pop3Logon(const Pop3Account& account);

// Starts libcurl once for the mail transports.
void InitCurlForMail();

// Runs a mail transfer prepared on a libcurl handle (a CURL*): STARTTLS when the server offers it, the
// timeout on the whole exchange and on each answer. Raises RuntimeError with libcurl's error number and
// `failure` before its reason.
void RunMailTransfer(void* curl, std::chrono::milliseconds timeout, const std::string& failure);

// "scheme://host:port/" for a host field that may carry ":port" (or "[v6]:port").
std::string MailServerUrl(const std::string& scheme, const std::string& host, int default_port);

}  // namespace lw
