#include "platform/smtp_client.h"

#include <curl/curl.h>

#include <array>
#include <cstring>
#include <memory>

#include "core/primitives/types.h"
#include "platform/curl_handle.h"
#include "platform/pop3_logon.h"

namespace lw {
namespace {

struct Upload {
  const std::string* data;
  size_t at = 0;
};

size_t OnRead(char* buffer, size_t size, size_t count, void* user) {
  auto* u = static_cast<Upload*>(user);
  size_t n = std::min(size * count, u->data->size() - u->at);
  std::memcpy(buffer, u->data->data() + u->at, n);
  u->at += n;
  return n;
}

std::string Bracketed(const std::string& address) {
  if (!address.empty() && address.front() == '<') return address;
  return "<" + address + ">";
}

}  // namespace

SmtpClient::SmtpClient() {
  InitCurlForMail();
}

void SmtpClient::Reset() {
  recipient_.clear();
  subject_.clear();
  return_address_.clear();
  cc_.clear();
  bcc_.clear();
  sender_.clear();
  body_.clear();
  headers_.clear();
}

MailMessage SmtpClient::Message() const {
  MailMessage m;
  m.from = sender_;
  m.to = recipient_;
  m.cc = cc_;
  m.subject = subject_;
  m.extra_headers = headers_;
  m.body = body_;
  return m;
}

void SmtpClient::Connect() {
  connected_ = false;
  if (host_.empty()) throw RuntimeError(CURLE_URL_MALFORMAT, "No mail server to connect to");
  if (connection_kind_ == kPopBeforeSmtp) Pop3Logon({pop_host_, user_, password_, timeout_});
  connected_ = true;
}

void SmtpClient::Send() {
  if (!connected_) throw RuntimeError(err::kObjectVariableNotSet, "The mail server is not connected");
  if (recipient_.empty()) throw RuntimeError(CURLE_SEND_ERROR, "The mail has no recipient");
  CurlEasy easy(curl_easy_init());
  if (!easy) throw RuntimeError(CURLE_FAILED_INIT, "Cannot start a mail transfer");
  CURL* c = easy.get();
  MailMessage message = Message();
  message.date = MailDateNow();
  const std::string wire = ComposeMailMessage(message);
  Upload upload{&wire};
  const std::string url = MailServerUrl("smtp", host_, 25);
  const std::string from = Bracketed(return_address_);
  CurlList rcpt;
  for (const std::string* to : {&recipient_, &cc_, &bcc_}) {
    if (to->empty()) continue;
    rcpt.reset(curl_slist_append(rcpt.release(), Bracketed(*to).c_str()));
  }
  curl_easy_setopt(c, CURLOPT_URL, url.c_str());
  curl_easy_setopt(c, CURLOPT_PROTOCOLS_STR, "smtp");
  curl_easy_setopt(c, CURLOPT_MAIL_FROM, from.c_str());
  curl_easy_setopt(c, CURLOPT_MAIL_RCPT, rcpt.get());
  curl_easy_setopt(c, CURLOPT_UPLOAD, 1L);
  curl_easy_setopt(c, CURLOPT_READFUNCTION, &OnRead);
  curl_easy_setopt(c, CURLOPT_READDATA, &upload);
  if (authorization_kind_ == kLogon) {
    curl_easy_setopt(c, CURLOPT_USERNAME, user_.c_str());
    curl_easy_setopt(c, CURLOPT_PASSWORD, password_.c_str());
    curl_easy_setopt(c, CURLOPT_LOGIN_OPTIONS, "AUTH=*");
  }
  RunMailTransfer(c, timeout_, "Mail not sent: ");
}

}  // namespace lw
