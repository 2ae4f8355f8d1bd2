// The small requests, the headers and the wrapping of replies, byte for byte as the site and the web
// view read them.
#include "listing/api_calls.h"

#include <gtest/gtest.h>

#include "listing/sell_page.h"

namespace lw {
namespace {

TEST(ApiCalls, SmallRequestsAndHeaders) {
  EXPECT_EQ(CategoriesRequest(u"alice", u"pw", 1, u"77"),
            u"<?xml version='1.0' encoding='iso-8859-1'?><request><RequestUserId>alice</RequestUserId>"
            u"<RequestPassword>pw</RequestPassword><ErrorLevel>1</ErrorLevel><DetailLevel>1</DetailLevel>"
            u"<Verb>GetCategories</Verb><SiteId>77</SiteId></request>");
  EXPECT_EQ(LogoRequest(u"alice", u"pw", u"77"),
            u"<?xml version='1.0' encoding='iso-8859-1'?><request><RequestUserId>alice</RequestUserId>"
            u"<RequestPassword>pw</RequestPassword><ErrorLevel>1</ErrorLevel><DetailLevel>0</DetailLevel>"
            u"<Verb>GetLogoURL</Verb><Size>Small</Size><SiteId>77</SiteId></request>");
  EXPECT_EQ(TestRequest(u"alice", u"pw"),
            u"<?xml version='1.0' encoding='iso-8859-1'?><request><RequestUserId>alice</RequestUserId>"
            u"<RequestPassword>pw</RequestPassword><ErrorLevel>1</ErrorLevel><DetailLevel>0</DetailLevel>"
            u"<Verb>ValidateTestUserRegistration</Verb></request>");
  auto headers = ApiHeaders("GetCategories", u"77", 1);
  ASSERT_EQ(headers.size(), 8u);
  EXPECT_EQ(headers[0], (std::pair<std::string, std::string>{"X-EBAY-API-COMPATIBILITY-LEVEL", "245"}));
  EXPECT_EQ(headers[1].second, "qzt7k52vbnd93w;hx4tuowKRe31;7fjwn3p9xg21778");
  EXPECT_EQ(headers[5], (std::pair<std::string, std::string>{"X-EBAY-API-CALL-NAME", "GetCategories"}));
  EXPECT_EQ(headers[6], (std::pair<std::string, std::string>{"X-EBAY-API-SITEID", "77"}));
  EXPECT_EQ(headers[7], (std::pair<std::string, std::string>{"X-EBAY-API-DETAIL-LEVEL", "1"}));

  Text verify =
      u"<request>\r\n<Verb>VerifyAddItem</Verb>\r\n<Title><![CDATA[<Verb>VerifyAddItem</Verb>]]></Title>\r\n";
  EXPECT_EQ(
      WithAddVerb(verify),
      u"<request>\r\n<Verb>AddItem</Verb>\r\n<Title><![CDATA[<Verb>VerifyAddItem</Verb>]]></Title>\r\n");
  EXPECT_EQ(RequestBytes(u"caf\u00e9 \u20ac \u4e00"), "caf\xE9 \x80 ?");
}

TEST(ApiCalls, WrappedReplies) {
  std::string reply = "<?xml version=\"1.0\"?><eBay><Item><EndTime>t</EndTime></Item></eBay>";
  EXPECT_EQ(WrapReply(reply, ReplyPage::kValidation, u"http://x/l.gif?a=1&b=\u00e9"),
            "<?xml version=\"1.0\"?><?xml-stylesheet href='validateitem.xsl' type='text/xsl'?><eBay><Item>"
            "<EndTime>t</EndTime><url>http://x/l.gif?a=1&amp;b=&#233;</url></Item></eBay>");
  EXPECT_EQ(WrapReply(reply, ReplyPage::kConfirmation, u"http://x/l.gif"),
            "<?xml version=\"1.0\"?><?xml-stylesheet href='confirmitem.xsl' type='text/xsl'?><eBay><Item>"
            "<EndTime>t</EndTime></Item></eBay>");
  // Without the marker right behind the declaration nothing is added at all.
  std::string bare = "<?xml version=\"1.0\"?>\n<eBay><Item><EndTime>t</EndTime></Item></eBay>";
  EXPECT_EQ(WrapReply(bare, ReplyPage::kValidation, u"x"), bare);
  EXPECT_EQ(WrapReply("", ReplyPage::kValidation, u"x"), "");
  EXPECT_EQ(WrapReply("?><eBay>?><eBay>", ReplyPage::kConfirmation, u""),
            "?><?xml-stylesheet href='confirmitem.xsl' type='text/xsl'?><eBay>"
            "?><?xml-stylesheet href='confirmitem.xsl' type='text/xsl'?><eBay>");
  EXPECT_TRUE(ReplyHasErrors("<eBay><Errors><Error/></Errors></eBay>"));
  EXPECT_FALSE(ReplyHasErrors("<eBay><errors/></eBay>"));
  EXPECT_TRUE(ReplyIsSeverityOne("<SeverityCode>1</SeverityCode>"));
  EXPECT_FALSE(ReplyIsSeverityOne("<SeverityCode>2</SeverityCode><Errors>"));
}

TEST(SellPage, CleaningAndThePage) {
  EXPECT_EQ(CleanField(u"Oak Chair 30\" <b>high</b> & \"wide\""),
            u"Oak Chair 30&quot; <b>high</b> & &quot;wide&quot;");
  EXPECT_EQ(CleanField(u""), u"");
  EXPECT_EQ(SellPageHtml(u"A <b>chair", u""),
            u"<html>\r\n<head>\r\n<title>ListItemForSale</title>\r\n</head>\r\n<blockquote>\r\nA <b>chair\r\n"
            u"</blockquote></form></body></html>");
  EXPECT_EQ(SellPageHtml(u"x", u"<p>f</p>"),
            u"<html>\r\n<head>\r\n<title>ListItemForSale</title>\r\n</head>\r\n<blockquote>\r\nx<p>f</p>\r\n"
            u"</blockquote></form></body></html>");
}

}  // namespace
}  // namespace lw
