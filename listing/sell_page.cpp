#include "listing/sell_page.h"

#include "core/primitives/text.h"
#include "listing/api_calls.h"

namespace lw {

Text CleanField(TextView field) {
  Text clean = Replace(field, u"<", u"&lt;");
  clean = Replace(field, u">", u"&gt;");
  clean = Replace(field, u"\"", u"&quot;");
  return clean;
}

Text SellPageHtml(TextView description, TextView footer) {
  Text page;
  for (const char16_t* line :
       {u"<html>", u"<head>", u"<title>ListItemForSale</title>", u"</head>", u"<blockquote>"}) {
    page += line;
    page += kLineEnd;
  }
  page += description;
  page += footer;
  page += kLineEnd;
  page += u"</blockquote>";
  page += u"</form></body></html>";
  return page;
}

}  // namespace lw
