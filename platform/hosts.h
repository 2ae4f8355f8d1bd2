// The hosts the program itself knows. Each has a default here and can be overridden in the settings
// section "Hosts" under "Lotwright", so that a test can point it at a server on the loopback. A value
// is a host with an optional ":port"; a value holding "://" brings its own scheme.
#pragma once

#include <string>
#include <string_view>

#include "core/primitives/settings.h"
#include "core/primitives/types.h"

namespace lw {

// The host (or full base address) for a key: signin, item, bid, feedback, search, myebay, announce,
// relist, forum, paypal, yahoo, yahoo_sold, api, update. An unknown key raises 5.
Text HostFor(const Settings& settings, std::string_view key);
// Scheme and host without a trailing slash, ready for a path: "http://signin.ebay.com",
// "https://api.ebay.com", "ftp://...", or the overriding value as it stands when it has a scheme.
std::string BaseUrlFor(const Settings& settings, std::string_view key);

}  // namespace lw
