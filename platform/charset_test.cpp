// Charset detection, the page forms made from HTML, and the host table.
#include <gtest/gtest.h>

#include <filesystem>

#include "core/primitives/settings.h"
#include "platform/charset.h"
#include "platform/form_reader.h"
#include "platform/hosts.h"
#include "platform/html_document.h"

namespace lw {
namespace {

TEST(Charset, DeclarationsAndTheirOrder) {
  EXPECT_EQ(CharsetFromContentType("text/html; Charset=\"UTF-8\""), "utf-8");
  EXPECT_EQ(CharsetFromContentType("text/html"), "");
  EXPECT_EQ(CharsetFromMeta("<html><META CHARSET='iso-8859-1'>"), "iso-8859-1");
  EXPECT_EQ(CharsetFromMeta("<meta http-equiv=Content-Type content=\"text/html; charset=windows-1251\">"),
            "windows-1251");
  EXPECT_EQ(CharsetFromMeta("<meta name=x><p>charset=utf-8</p>"), "");
  // Nothing declared: windows-1252, not Latin-1.
  EXPECT_EQ(DecodePage("\x80\x9f"), u"\u20ac\u0178");
  EXPECT_EQ(DecodePage("\x80", "text/html; charset=iso-8859-1"), u"\u0080");
  // The header wins over the page's own declaration; a byte order mark over both.
  EXPECT_EQ(DecodePage("<meta charset=iso-8859-1>\xc3\xa9", "text/html; charset=utf-8").back(), u'\u00e9');
  EXPECT_EQ(DecodePage("\xEF\xBB\xBF\xc3\xa9", "text/html; charset=iso-8859-1"), u"\u00e9");
  // Other charsets through ICU; unknown names fall back.
  EXPECT_EQ(DecodePage("\xc0", "text/html; charset=windows-1251"), u"\u0410");
  EXPECT_EQ(DecodePage("\x80", "text/html; charset=no-such-set"), u"\u20ac");
}

TEST(HtmlDocument, BrowserFormOfThePage) {
  HtmlDocument d = HtmlDocument::Parse(
      u"<html><head><title>  A \n title </title></head><body><table><tr><td>a<br>b</td><td>c &lt; d</td>"
      u"</tr></table><!-- x > y --><script>if (a<b) {}</script>"
      u"<form action=/p method=POST><select name=s><option>one<option selected value=2>two</select>"
      u"<textarea name=t>hi</textarea><input type=radio name=r value=1><input type=radio name=r value=2 "
      u"checked>"
      u"<input type=submit name=a value=A><input type=submit name=b value=B></form></body></html>");
  EXPECT_EQ(d.title, u"A title");
  EXPECT_NE(d.body_outer_html.find(u"<TR>\r\n<TD>a<BR>b</TD>\r\n<TD>c &lt; d</TD></TR>"), Text::npos);
  EXPECT_NE(d.body_outer_html.find(u"<!-- x > y -->"), Text::npos);
  EXPECT_NE(d.body_outer_html.find(u"<SCRIPT>if (a<b) {}</SCRIPT>"), Text::npos);
  ASSERT_EQ(d.forms.size(), 1u);
  EXPECT_EQ(d.forms[0].method, "POST");
  EXPECT_EQ(d.forms[0].fields, (std::vector<std::pair<std::string, std::string>>{
                                   {"s", "2"}, {"t", "hi"}, {"r", "2"}, {"a", "A"}}));
  EXPECT_TRUE(HtmlDocument::Parse(u"").body_outer_html.empty());
}

TEST(FormReader, WalksTheFormsAndGivesTheQuery) {
  FormReader reader;
  EXPECT_FALSE(reader.FindForm(u"<p>no form</p>"));
  EXPECT_EQ(reader.FormQuery(), "");
  ASSERT_TRUE(reader.FindForm(
      u"<form name=search><input name=q value=x></form>"
      u"<form action=/aw-cgi/eBayISAPI.dll method=post><input type=hidden name=MfcISAPICommand value=MakeBid>"
      u"<input type=hidden name=item value=123><input name=user value=''><input name=pass value=''>"
      u"<input name=maxbid value=\"12.50 $\"><input name=quant value=1></form>"));
  EXPECT_EQ(reader.FormQuery(), "q=x");
  ASSERT_TRUE(reader.FindForm());
  EXPECT_EQ(reader.FormQuery(), "MfcISAPICommand=MakeBid&item=123&user=&pass=&maxbid=12.50%20%24&quant=1");
  EXPECT_FALSE(reader.FindForm());
  EXPECT_FALSE(reader.FindForm());
  EXPECT_EQ(reader.FormQuery(), "");
}

TEST(HtmlDocument, TextWithoutTags) {
  // Cells on one line of the source are broken apart; the source's own line ends and blanks stay.
  EXPECT_EQ(PageTextWithoutTags(u"<table><tr><td> a \n b </td><td>&amp;x</td></tr></table>"
                                u"<style>td{}</style><p>1 < 2</p><SCRIPT>x='<td>'</script>end"),
            u" a \r\n b\r\n&amp;x\r\n1 < 2\r\nend");
  EXPECT_EQ(PageTextWithoutTags(u"<tr>\r\n<th>Seller</th>\r\n</tr>\r\n<tr>\r\n<td>22</td>\r\n"),
            u"\r\nSeller\r\n\r\n\r\n22\r\n");
  EXPECT_EQ(PageTextWithoutTags(u"<!-- a > b --><td>x</td>"), u"x");
  EXPECT_EQ(PageTextWithoutTags(u""), u"");
  EXPECT_EQ(PageTextWithoutTags(u"<td>unclosed <b"), u"unclosed ");
}

TEST(Hosts, DefaultsOverridesAndSchemes) {
  auto file = std::filesystem::temp_directory_path() / ("lw_hosts_" + std::to_string(::getpid()) + ".ini");
  std::filesystem::remove(file);
  {
    Settings settings(file);
    EXPECT_EQ(BaseUrlFor(settings, "signin"), "http://signin.ebay.com");
    EXPECT_EQ(BaseUrlFor(settings, "api"), "https://api.ebay.com");
    settings.SaveSetting(u"Lotwright", u"Hosts", u"signin", u"127.0.0.1:8080");
    settings.SaveSetting(u"Lotwright", u"Hosts", u"api", u"http://127.0.0.1:9/");
    EXPECT_EQ(HostFor(settings, "signin"), u"127.0.0.1:8080");
    EXPECT_EQ(BaseUrlFor(settings, "signin"), "http://127.0.0.1:8080");
    EXPECT_EQ(BaseUrlFor(settings, "api"), "http://127.0.0.1:9");
    EXPECT_THROW(HostFor(settings, "nosuchhost"), RuntimeError);
  }
  std::filesystem::remove(file);
}

}  // namespace
}  // namespace lw
