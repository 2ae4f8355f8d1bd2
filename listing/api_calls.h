// What every exchange with the site's XML interface shares: the application's credentials, the headers
// of a call, the envelope of a request, the small requests, and what is done to a reply before the web
// view shows it. The site reads these texts as they stand, so they are kept byte for byte.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/primitives/types.h"

namespace lw {

inline constexpr char kApiDevName[] = "qzt7k52vbnd93w";
inline constexpr char kApiAppName[] = "hx4tuowKRe31";
inline constexpr char kApiCertName[] = "7fjwn3p9xg21778";
inline constexpr char kApiSessionCertificate[] = "qzt7k52vbnd93w;hx4tuowKRe31;7fjwn3p9xg21778";
inline constexpr char kApiCompatibilityLevel[] = "245";
inline constexpr char kApiPath[] = "/ws/api.dll";

inline constexpr char16_t kLineEnd[] = u"\r\n";

// The headers of a call in the order they are set.
std::vector<std::pair<std::string, std::string>> ApiHeaders(std::string_view call_name, TextView site_id,
                                                            int detail_level);

// The head of every request up to and including its verb element, each element followed by `between`
// (the item request puts a line end there, the other requests nothing).
Text RequestHead(TextView userid, TextView password, int detail_level, TextView verb, TextView between);
// The whole request of a call without elements of its own besides the site: GetCategories,
// GetLogoURL, ValidateTestUserRegistration.
Text CategoriesRequest(TextView userid, TextView password, int detail_level, TextView site_id);
Text LogoRequest(TextView userid, TextView password, TextView site_id);
Text TestRequest(TextView userid, TextView password);

// The item request is validated with one verb and posted with the other: only the verb element changes.
inline constexpr char16_t kVerifyVerb[] = u"<Verb>VerifyAddItem</Verb>";
inline constexpr char16_t kAddVerb[] = u"<Verb>AddItem</Verb>";
Text WithAddVerb(TextView request);

// Replies are given a line naming the stylesheet that makes a page of them. Each "?><eBay>" becomes
// "?>", the stylesheet line and "<eBay>", and the validation's page also shows the site's logo: each
// "</EndTime>" is followed by a url element holding `logo_url`. A reply without "?><eBay>" is left
// exactly as it came.
enum class ReplyPage { kValidation, kConfirmation };
std::string WrapReply(const std::string& reply, ReplyPage page, const Text& logo_url);

// How a caller reads a reply: plain substring searches, case and all.
inline bool ReplyHasErrors(std::string_view reply) {
  return reply.find("<Errors>") != std::string_view::npos;
}
inline bool ReplyIsSeverityOne(std::string_view reply) {
  return reply.find("<SeverityCode>1") != std::string_view::npos;
}

// Text as the interface's requests carry it (the declaration says iso-8859-1), and a reply as text.
std::string RequestBytes(TextView request);
Text ReplyText(const std::string& reply, const std::string& content_type);

}  // namespace lw
