#include "platform/inet.h"

#include "platform/charset.h"

namespace lw {

Text CurlInet::OpenURL(const std::string& address) {
  HttpRequest request;
  request.url = address;
  HttpResponse response = session_.Perform(request);
  return DecodePage(response.body, response.content_type);
}

void DeleteUrlCacheEntry(const std::string& /*address*/) {}

}  // namespace lw
