#include "platform/hosts.h"

#include <array>

#include "core/primitives/encoding.h"

namespace lw {

namespace {

struct HostDefault {
  std::string_view key;
  std::string_view host;
  std::string_view scheme;
};

constexpr std::array<HostDefault, 14> kHosts = {{
    {"signin", "signin.ebay.com", "http"},
    {"item", "cgi.ebay.com", "http"},
    {"bid", "offer.ebay.com", "http"},
    {"feedback", "feedback.ebay.com", "http"},
    {"search", "search.ebay.com", "http"},
    {"myebay", "my.ebay.com", "http"},
    {"announce", "www2.ebay.com", "http"},
    {"relist", "cgi5.ebay.com", "http"},
    {"forum", "www.lotwright.com", "http"},
    {"paypal", "www.paypal.com", "http"},
    {"yahoo", "auctions.yahoo.com", "http"},
    {"yahoo_sold", "au.auctions.yahoo.com", "http"},
    {"api", "api.ebay.com", "https"},
    {"update", "ftp.lotwright.com", "ftp"},
}};

const HostDefault& Find(std::string_view key) {
  for (const HostDefault& h : kHosts)
    if (h.key == key) return h;
  throw RuntimeError(err::kInvalidProcedureCall, "Unknown host key " + std::string(key));
}

}  // namespace

Text HostFor(const Settings& settings, std::string_view key) {
  const HostDefault& h = Find(key);
  Text value = settings.GetSetting(u"Lotwright", u"Hosts", FromUtf8(key), FromUtf8(h.host));
  return value.empty() ? FromUtf8(h.host) : value;
}

std::string BaseUrlFor(const Settings& settings, std::string_view key) {
  const HostDefault& h = Find(key);
  std::string value = ToUtf8(HostFor(settings, key));
  while (!value.empty() && value.back() == '/') value.pop_back();
  if (value.find("://") != std::string::npos) return value;
  return std::string(h.scheme) + "://" + value;
}

}  // namespace lw
