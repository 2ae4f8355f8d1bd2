#include "screen/main/browser_targets.h"

#include "core/primitives/encoding.h"
#include "platform/hosts.h"
#include "screen/main/database_location.h"

namespace lw {
namespace {

Text FilePlace(const Text& folder, const char16_t* name) {
  return FromUtf8(JoinDatabasePath(folder, name).string());
}

Text Root(const Settings& s, const char* key) {
  return FromUtf8(BaseUrlFor(s, key));
}

}  // namespace

// The account host is kept in the misc row as a bare host ("cgi3.ebay.com") or as a full address
// ending in a slash; the page's path follows it directly.
Text AccountPageAddress(Text host, const Text& userid, const Text& password, TextView tail) {
  if (host.find(u"://") == Text::npos) host = u"http://" + host;
  if (host.back() != u'/') host += u'/';
  return host + u"ebayISAPI.dll?ViewAccount&userid=" + userid + u"&pass=" + password + Text(tail);
}

BrowserPlace ResolveBrowserTarget(const std::array<bool, kBrowserTargetCount>& flags, const BrowserContext& c,
                                  const Settings& s) {
  BrowserPlace p;
  int first = -1;
  for (int i = 0; i < kBrowserTargetCount && first < 0; ++i)
    if (flags[i]) first = i;
  if (first >= 0) p.target = static_cast<BrowserTarget>(first);

  auto file = [&](const char16_t* name, const char16_t* status) {
    p.address = FilePlace(c.database_path, name);
    p.file = true;
    p.status = Text(status);
  };
  auto web = [&](const char* host_key, const Text& path, const char16_t* status) {
    p.address = Root(s, host_key) + path;
    if (status) p.status = Text(status);
  };
  const Text& u = c.userid;
  const Text& pw = c.password;

  if (!p.target) {
    p.status = Text(u"Displaying Current Auction .... Browser View");
    if (c.site == u"eBay")
      p.address = Root(s, "item") + u"/aw-cgi/eBayISAPI.dll?ViewItem&item=" + c.item;
    else if (c.site == u"Yahoo")
      p.address = Root(s, "yahoo") + u"/auction/" + c.item;
    else if (c.site == u"Sold")
      p.address = Root(s, "yahoo_sold") + u"/au/auction/" + c.item;
    return p;
  }
  switch (*p.target) {
    case BrowserTarget::kSellPage:
      file(u"\\sellitem.htm",
           u"Displaying Sell Item Page .... Press 'Validate/Post' to check fees and post this auction.");
      break;
    case BrowserTarget::kValidation:
      file(u"\\validateitem.xml",
           u"Displaying Auction Validation Page .... Press 'Validate/Post' to post this auction now or "
           u"'Bulklist' to post later.");
      break;
    case BrowserTarget::kVerification:
      file(u"\\verify_auction.xml",
           u"Displaying Auction Verification Page. The following fees have been added to your account.");
      break;
    case BrowserTarget::kCategoryNumbers:
      file(u"\\itemlist.htm", u"Displaying Category Numbers.");
      break;
    case BrowserTarget::kSearch:
      web("search", u"/search/items/basicsearch.html", u"Displaying ebay Search page");
      break;
    case BrowserTarget::kMyEbay:
      web("myebay",
          u"/aw-cgi/eBayISAPI.dll?MyEbay&first=Y&userid=" + u + u"&pass=" + pw +
              u"&dayssince=2&sellerSort=3&bidderSort=3&watchSort=3",
          u"Displaying MYeBay Page");
      break;
    case BrowserTarget::kAccount:
      p.address = AccountPageAddress(c.servername_fees, u, pw, kAccountSinceLastInvoice);
      p.status = Text(u"Displaying Account Page");
      break;
    case BrowserTarget::kSystemStatus:
      web("announce", u"/aw/announce.shtml", u"Displaying System Status Page");
      break;
    case BrowserTarget::kForum:
      web("forum", u"/cgi-bin/ultimatebb.cgi", u"Displaying Lotwright Forum Page");
      break;
    case BrowserTarget::kAnnouncements:
      web("forum", u"/cgi-bin/ultimatebb.cgi?ubb=forum&f=1", u"Displaying Lotwright Announcements Page");
      break;
    case BrowserTarget::kPayPal:
      web("paypal", u"/cgi-bin/webscr?cmd=_home", u"Displaying PayPal Home Page");
      break;
    case BrowserTarget::kRelist:
      web("relist",
          u"/aw-cgi/eBayISAPI.dll?MfcISAPICommand=ListItemForSaleShow&category=-1&item=" + c.item +
              u"&displayMode=0&oldStyle=0&userid=" + u + u"&pass=" + pw,
          u"Displaying Relist Page");
      break;
    case BrowserTarget::kFeedback:
      p.address = c.feedback_url;
      break;
    case BrowserTarget::kCount:
      break;
  }
  return p;
}

}  // namespace lw
