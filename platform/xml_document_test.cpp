// The replies' document object reads children by position, so what counts as a child decides which
// value lands in which column; and the web view's stylesheet step must turn the program's own pages and
// nothing else.
#include "platform/xml_document.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "core/primitives/encoding.h"
#include "platform/xml_stylesheet.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

TEST(XmlDocument, ChildrenByPositionLayoutAside) {
  const char* compact =
      "<?xml version='1.0'?><eBay><Category><CategoryId>160</CategoryId><CategoryLevel>1</CategoryLevel>"
      "<CategoryName><![CDATA[Tables & Desks]]></CategoryName></Category></eBay>";
  const char* laid_out =
      "<?xml version='1.0'?>\n<eBay>\n  <Category>\n    <CategoryId> 160 </CategoryId>\n"
      "    <!-- level -->\n    <CategoryLevel>1</CategoryLevel>\n"
      "    <CategoryName>Tables &amp; Desks</CategoryName>\n  </Category>\n</eBay>\n";
  for (const char* text : {compact, laid_out}) {
    XmlDocument doc;
    ASSERT_TRUE(doc.LoadXml(text)) << doc.parse_error();
    auto categories = doc.GetElementsByTagName("Category");
    ASSERT_EQ(categories.size(), 1u);
    XmlNode c = categories[0];
    EXPECT_EQ(c.Item(0).text(), u"160");
    bool with_comment = text == laid_out;
    EXPECT_EQ(c.Item(with_comment ? 2 : 1).text(), u"1");
    EXPECT_EQ(c.Item(with_comment ? 3 : 2).text(), u"Tables & Desks");
    EXPECT_EQ(c.ChildNodes().size(), with_comment ? 4u : 3u);
    EXPECT_TRUE(c.Item(9).IsNull());
    EXPECT_EQ(c.Item(9).text(), u"");
  }
}

TEST(XmlDocument, ElementsOfANameInDocumentOrder) {
  XmlDocument doc;
  ASSERT_TRUE(
      doc.LoadXml("<a><Logo>1</Logo><b><Logo>2<Logo>3</Logo></Logo></b><logo>x</logo><Logo>4</Logo></a>"));
  std::vector<Text> seen;
  for (const XmlNode& n : doc.GetElementsByTagName("Logo")) seen.push_back(n.Item(0).text());
  EXPECT_EQ(seen, (std::vector<Text>{u"1", u"2", u"3", u"4"}));
  EXPECT_EQ(doc.GetElementsByTagName("Logo")[1].text(), u"23");
}

TEST(XmlDocument, ABrokenDocumentLoadsNothing) {
  XmlDocument doc;
  ASSERT_TRUE(doc.LoadXml("<eBay><Category>1</Category></eBay>"));
  for (const char* bad : {"<eBay><Category>1</Category>", "", "not xml at all", "<a><b></a>"}) {
    EXPECT_FALSE(doc.LoadXml(bad)) << bad;
    EXPECT_TRUE(doc.empty());
    EXPECT_FALSE(doc.parse_error().empty());
    EXPECT_TRUE(doc.GetElementsByTagName("Category").empty());
  }
  EXPECT_FALSE(doc.Load("/no/such/file.xml"));
  // An entity that would reach outside the document is not fetched.
  EXPECT_TRUE(doc.LoadXml("<!DOCTYPE a [<!ENTITY x SYSTEM 'http://127.0.0.1:9/x'>]><a>&x;</a>"));
  EXPECT_EQ(doc.GetElementsByTagName("a").at(0).text(), u"");
}

class StyledPages : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("lw_xml_styled_" + std::to_string(::getpid()));
    fs::create_directories(dir_);
    std::ofstream(dir_ / "page.xsl")
        << "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
           "<xsl:output method='html' encoding='UTF-8'/><xsl:template match='/'>"
           "<html><body><p><xsl:value-of select='eBay/Item/Id'/></p></body></html>"
           "</xsl:template></xsl:stylesheet>";
  }
  void TearDown() override { fs::remove_all(dir_); }
  std::string Url() const { return "file://" + (dir_ / "reply.xml").string(); }
  fs::path dir_;
};

TEST_F(StyledPages, TheNamedStylesheetMakesThePage) {
  std::string reply =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?><?xml-stylesheet href='page.xsl' type='text/xsl'?>"
      "<eBay><Item><Id>31\xC3\xA9</Id></Item></eBay>";
  auto page = ApplyXmlStylesheet(reply, Url());
  ASSERT_TRUE(page);
  EXPECT_NE(page->bytes.find("<p>31\xC3\xA9</p>"), std::string::npos) << page->bytes;
  EXPECT_EQ(page->content_type, "text/html; charset=UTF-8");

  // Pages off the network, pages without the instruction, and a stylesheet that isn't there are shown
  // as they came.
  EXPECT_FALSE(ApplyXmlStylesheet(reply, "http://127.0.0.1/reply.xml"));
  EXPECT_FALSE(ApplyXmlStylesheet("<?xml version='1.0'?><eBay/>", Url()));
  EXPECT_FALSE(ApplyXmlStylesheet("<html><?xml-stylesheet href='page.xsl'?></html>", Url()));
  std::string missing = reply;
  missing.replace(missing.find("page.xsl"), 8, "none.xsl");
  EXPECT_FALSE(ApplyXmlStylesheet(missing, Url()));
  std::string remote = reply;
  remote.replace(remote.find("page.xsl"), 8, "http://127.0.0.1:9/page.xsl");
  EXPECT_FALSE(ApplyXmlStylesheet(remote, Url()));
  EXPECT_FALSE(ApplyXmlStylesheet(reply.substr(0, reply.size() - 10), Url()));
}

}  // namespace
}  // namespace lw
