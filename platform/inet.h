// The blocking fetch: asks for an address and returns the body as text, decoded by the charset the
// page declares. The screen waits for it.
#pragma once

#include <string>

#include "core/primitives/types.h"
#include "platform/http_session.h"

namespace lw {

class Inet {
 public:
  virtual ~Inet() = default;
  // The body of whatever the server answered, an error page included. Raises RuntimeError with the
  // transfer's error number when nothing came (refused, timed out, bad address).
  virtual Text OpenURL(const std::string& address) = 0;
};

class CurlInet : public Inet {
 public:
  explicit CurlInet(const HttpSession& session) : session_(session) {}
  Text OpenURL(const std::string& address) override;

 private:
  const HttpSession& session_;
};

// Removes an address from the shared page cache. There is no cache shared with other programs here:
// every fetch goes to the server, so a repeated import is never served an old page.
void DeleteUrlCacheEntry(const std::string& address);

}  // namespace lw
