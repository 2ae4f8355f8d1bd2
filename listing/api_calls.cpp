#include "listing/api_calls.h"

#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "platform/api_http.h"
#include "platform/charset.h"

namespace lw {

namespace {

constexpr char16_t kDeclaration[] = u"<?xml version='1.0' encoding='iso-8859-1'?>";

Text Element(TextView name, TextView value) {
  return u"<" + Text(name) + u">" + Text(value) + u"</" + Text(name) + u">";
}

Text Number(int n) {
  return FromUtf8(std::to_string(n));
}

// Element content that stays well-formed in a reply of any ASCII-based encoding.
std::string XmlContent(const Text& text) {
  std::string out;
  for (char16_t c : text) {
    if (c == u'&')
      out += "&amp;";
    else if (c == u'<')
      out += "&lt;";
    else if (c == u'>')
      out += "&gt;";
    else if (c < 0x80)
      out += static_cast<char>(c);
    else
      out += "&#" + std::to_string(static_cast<unsigned>(c)) + ";";
  }
  return out;
}

void ReplaceAll(std::string& s, std::string_view find, std::string_view with) {
  size_t at = 0;
  while ((at = s.find(find, at)) != std::string::npos) {
    s.replace(at, find.size(), with);
    at += with.size();
  }
}

}  // namespace

std::vector<std::pair<std::string, std::string>> ApiHeaders(std::string_view call_name, TextView site_id,
                                                            int detail_level) {
  return {
      {"X-EBAY-API-COMPATIBILITY-LEVEL", kApiCompatibilityLevel},
      {"X-EBAY-API-SESSION-CERTIFICATE", kApiSessionCertificate},
      {"X-EBAY-API-DEV-NAME", kApiDevName},
      {"X-EBAY-API-APP-NAME", kApiAppName},
      {"X-EBAY-API-CERT-NAME", kApiCertName},
      {"X-EBAY-API-CALL-NAME", std::string(call_name)},
      {"X-EBAY-API-SITEID", ToUtf8(site_id)},
      {"X-EBAY-API-DETAIL-LEVEL", std::to_string(detail_level)},
  };
}

Text RequestHead(TextView userid, TextView password, int detail_level, TextView verb, TextView between) {
  Text r;
  for (const Text& part : {Text(kDeclaration), Text(u"<request>"), Element(u"RequestUserId", userid),
                           Element(u"RequestPassword", password), Text(u"<ErrorLevel>1</ErrorLevel>"),
                           Element(u"DetailLevel", Number(detail_level)), Element(u"Verb", verb)}) {
    r += part;
    r += between;
  }
  return r;
}

Text CategoriesRequest(TextView userid, TextView password, int detail_level, TextView site_id) {
  return RequestHead(userid, password, detail_level, u"GetCategories", u"") + Element(u"SiteId", site_id) +
         u"</request>";
}

Text LogoRequest(TextView userid, TextView password, TextView site_id) {
  return RequestHead(userid, password, 0, u"GetLogoURL", u"") + u"<Size>Small</Size>" +
         Element(u"SiteId", site_id) + u"</request>";
}

Text TestRequest(TextView userid, TextView password) {
  return RequestHead(userid, password, 0, u"ValidateTestUserRegistration", u"") + u"</request>";
}

Text WithAddVerb(TextView request) {
  // The verb element comes before anything the seller typed, so the first one is the request's own;
  // the same text inside a description stays as it was checked.
  Text out(request);
  size_t at = out.find(kVerifyVerb);
  if (at != Text::npos) out.replace(at, std::char_traits<char16_t>::length(kVerifyVerb), kAddVerb);
  return out;
}

std::string WrapReply(const std::string& reply, ReplyPage page, const Text& logo_url) {
  // A reply without the marker isn't one the stylesheets can read: it is shown as it came.
  if (reply.find("?><eBay>") == std::string::npos) return reply;
  std::string out = reply;
  const char* sheet = page == ReplyPage::kValidation ? "validateitem.xsl" : "confirmitem.xsl";
  ReplaceAll(out, "?><eBay>", std::string("?><?xml-stylesheet href='") + sheet + "' type='text/xsl'?><eBay>");
  if (page == ReplyPage::kValidation)
    ReplaceAll(out, "</EndTime>", "</EndTime><url>" + XmlContent(logo_url) + "</url>");
  return out;
}

std::string RequestBytes(TextView request) {
  return ToCp1252(request);
}

Text ReplyText(const std::string& reply, const std::string& content_type) {
  return DecodeCharset(reply, XmlCharset(reply, content_type));
}

}  // namespace lw
