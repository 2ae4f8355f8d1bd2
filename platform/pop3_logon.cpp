#include "platform/pop3_logon.h"

#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <mutex>

#include "core/primitives/types.h"
#include "platform/curl_handle.h"

namespace lw {
namespace {

std::once_flag g_curl_mail_init;

// The parts of a host field: "name", "name:port", "[v6]" or "[v6]:port". A name with several colons
// and no brackets is an IPv6 address without a port.
void SplitHost(const std::string& field, std::string& name, int& port) {
  name = field;
  if (!field.empty() && field.front() == '[') {
    size_t close = field.find(']');
    if (close != std::string::npos) {
      name = field.substr(0, close + 1);
      if (close + 1 < field.size() && field[close + 1] == ':') port = std::atoi(field.c_str() + close + 2);
    }
    return;
  }
  size_t colon = field.find(':');
  if (colon != std::string::npos && field.find(':', colon + 1) == std::string::npos) {
    name = field.substr(0, colon);
    port = std::atoi(field.c_str() + colon + 1);
  } else if (colon != std::string::npos) {
    name = "[" + field + "]";
  }
}

// The whole seconds of a timeout, at least one, for libcurl's wait for a server's answer.
long ResponseSeconds(std::chrono::milliseconds timeout) {
  return std::max<long>(1, static_cast<long>((timeout.count() + 999) / 1000));
}

}  // namespace

void InitCurlForMail() {
  std::call_once(g_curl_mail_init, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

std::string MailServerUrl(const std::string& scheme, const std::string& host, int default_port) {
  std::string field = host;
  while (!field.empty() && field.back() == ' ') field.pop_back();
  while (!field.empty() && field.front() == ' ') field.erase(0, 1);
  std::string name;
  int port = default_port;
  SplitHost(field, name, port);
  if (port <= 0 || port > 65535) port = default_port;
  return scheme + "://" + name + ":" + std::to_string(port) + "/";
}

void Pop3Logon(const Pop3Account& account) {
  InitCurlForMail();
  if (account.host.empty()) throw RuntimeError(CURLE_URL_MALFORMAT, "No POP3 server to log on to");
  CurlEasy easy(curl_easy_init());
  if (!easy) throw RuntimeError(CURLE_FAILED_INIT, "Cannot start a POP3 logon");
  CURL* c = easy.get();
  const std::string url = MailServerUrl("pop3", account.host, 110);
  curl_easy_setopt(c, CURLOPT_URL, url.c_str());
  curl_easy_setopt(c, CURLOPT_PROTOCOLS_STR, "pop3");
  if (!account.user.empty()) {
    curl_easy_setopt(c, CURLOPT_USERNAME, account.user.c_str());
    curl_easy_setopt(c, CURLOPT_PASSWORD, account.password.c_str());
  }
  // After the logon one harmless command with a one-line answer, then QUIT: no mail is read.
  curl_easy_setopt(c, CURLOPT_CUSTOMREQUEST, "NOOP");
  curl_easy_setopt(c, CURLOPT_NOBODY, 1L);
  RunMailTransfer(c, account.timeout, "POP3 logon failed: ");
}

void RunMailTransfer(void* c, std::chrono::milliseconds timeout, const std::string& failure) {
  std::array<char, CURL_ERROR_SIZE> error{};
  // STARTTLS (STLS) whenever the server offers it; a server without it is still served.
  curl_easy_setopt(c, CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_TRY));
  curl_easy_setopt(c, CURLOPT_TIMEOUT_MS, static_cast<long>(timeout.count()));
  curl_easy_setopt(c, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(timeout.count()));
  curl_easy_setopt(c, CURLOPT_NOSIGNAL, 1L);
  // The wait for each answer of the server has a limit of its own, two minutes unless it is set: a
  // server that goes quiet after the message would otherwise outlast the timeout.
  curl_easy_setopt(c, CURLOPT_SERVER_RESPONSE_TIMEOUT, ResponseSeconds(timeout));
  curl_easy_setopt(c, CURLOPT_ERRORBUFFER, error.data());
  CURLcode rc = curl_easy_perform(c);
  if (rc != CURLE_OK) {
    std::string why = error[0] ? error.data() : curl_easy_strerror(rc);
    throw RuntimeError(static_cast<int>(rc), failure + why);
  }
}

}  // namespace lw
