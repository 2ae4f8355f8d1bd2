#include "bidding/bid_form.h"

#include "core/primitives/convert.h"
#include "core/primitives/text.h"

namespace lw {

namespace {

// The hexadecimal digits at the start of the text, as a number; 0 when there are none.
int HexValue(TextView digits) {
  int value = 0;
  for (char16_t c : digits) {
    int d = c >= u'0' && c <= u'9'   ? c - u'0'
            : c >= u'a' && c <= u'f' ? c - u'a' + 10
            : c >= u'A' && c <= u'F' ? c - u'A' + 10
                                     : -1;
    if (d < 0) break;
    value = value * 16 + d;
  }
  return value;
}

}  // namespace

Text BuildBidUrl(const Text& form_query, const Text& bid_base, const Text& userid, const Text& pass,
                 const Text& quantity) {
  Text url = form_query;
  if (size_t at = InStr(url, u"%")) {
    Text escape = Mid(url, at, 3);
    url = Replace(url, escape, Chr(HexValue(Mid(escape, 2))));
  }
  url = Replace(url, u"MfcISAPICommand=", bid_base + u"/aw-cgi/eBayISAPI.dll?");
  url = Replace(url, u"&user=", u"&user=" + userid);
  url = Replace(url, u"&pass=", u"&pass=" + pass);
  url = Replace(url, u"&quant=1", u"&quant=" + quantity);
  url = Replace(url, u"signinTRUE", u"signin=y");
  return url;
}

WatchEntry ParseWatchTitle(const Text& document_title, const Regional& regional) {
  Text t = Replace(document_title, u"eBay item ", u"");
  t = Replace(t, u"'", u"~");
  WatchEntry e;
  e.item = CStr(Variant(Val(t)), regional);
  e.title = Mid(t, InStrRev(t, u"-") + 2);
  e.end = Mid(t, InStr(t, u"Ends") + 5, 18);
  return e;
}

}  // namespace lw
