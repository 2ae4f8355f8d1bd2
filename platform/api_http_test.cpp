// The XML interface's client against the loopback stand-in of the interface: a call goes out with its
// headers in order and its body as given, and every way a reply can fail to come ends in a run-time error
// within the wait, never in a hang or a reply that isn't one.
#include "platform/api_http.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/primitives/types.h"
#include "platform/loopback_http_server.h"

namespace lw {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

std::string ReadFile(const fs::path& p) {
  std::ifstream in(p, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

class ApiServer {
 public:
  explicit ApiServer(std::vector<std::string> args = {})
      : dir_(fs::temp_directory_path() / ("lw_api_http_" + std::to_string(::getpid()) + "_" +
                                          ::testing::UnitTest::GetInstance()->current_test_info()->name())),
        server_((fs::remove_all(dir_), testing::LoopbackHttpServer::Script{"api_server.py"}),
                Concat({"--dir", dir_.string()}, std::move(args))) {}
  ~ApiServer() {
    server_.Stop();
    fs::remove_all(dir_);
  }
  std::string url() const { return server_.base() + "/ws/api.dll"; }
  std::string Log() const { return ReadFile(dir_ / "log"); }
  std::string Recorded(const std::string& file) const { return ReadFile(dir_ / file); }

 private:
  static std::vector<std::string> Concat(std::vector<std::string> a, std::vector<std::string> b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
  }
  fs::path dir_;
  testing::LoopbackHttpServer server_;
};

const std::vector<std::pair<std::string, std::string>> kLogoHeaders = {
    {"X-EBAY-API-COMPATIBILITY-LEVEL", "245"},
    {"X-EBAY-API-SESSION-CERTIFICATE", "qzt7k52vbnd93w;hx4tuowKRe31;7fjwn3p9xg21778"},
    {"X-EBAY-API-DEV-NAME", "qzt7k52vbnd93w"},
    {"X-EBAY-API-APP-NAME", "hx4tuowKRe31"},
    {"X-EBAY-API-CERT-NAME", "7fjwn3p9xg21778"},
    {"X-EBAY-API-CALL-NAME", "GetLogoURL"},
    {"X-EBAY-API-SITEID", "77"},
    {"X-EBAY-API-DETAIL-LEVEL", "0"},
};
const std::string kLogoBody =
    "<?xml version='1.0' encoding='iso-8859-1'?><request><RequestUserId>al\xE9</RequestUserId>"
    "<RequestPassword>pw</RequestPassword><ErrorLevel>1</ErrorLevel><DetailLevel>0</DetailLevel>"
    "<Verb>GetLogoURL</Verb><Size>Small</Size><SiteId>77</SiteId></request>";

void Call(CurlApiHttp& http, const std::string& url) {
  http.Open("POST", url);
  for (const auto& [name, value] : kLogoHeaders) http.SetRequestHeader(name, value);
  http.Send(kLogoBody);
}

int ErrorOf(CurlApiHttp& http, const std::string& url) {
  try {
    Call(http, url);
  } catch (const RuntimeError& e) {
    EXPECT_TRUE(http.ResponseText().empty());
    return e.number();
  }
  return 0;
}

TEST(ApiHttp, ACallGoesOutWhole) {
  ApiServer server;
  CurlApiHttp http(milliseconds(5000));
  Call(http, server.url());
  EXPECT_EQ(server.Log(), "1 GetLogoURL site=77 level=0 ok\n");
  EXPECT_EQ(server.Recorded("001-GetLogoURL.xml"), kLogoBody);  // bytes as given, Latin-1 and all
  std::string headers;
  for (const auto& [name, value] : kLogoHeaders) headers += name + ": " + value + "\n";
  EXPECT_EQ(server.Recorded("001-GetLogoURL.headers"), headers);
  EXPECT_EQ(http.ResponseText(), ReadFile(LW_SOURCE_DIR "/tests/e2e/api/GetLogoURL.xml"));
  EXPECT_EQ(http.ResponseContentType(), "text/xml; charset=utf-8");

  // A second call on the same object starts afresh.
  http.Open("POST", server.url());
  for (const auto& [name, value] : kLogoHeaders) http.SetRequestHeader(name, value);
  http.Send("<request/>");
  EXPECT_NE(server.Log().find("2 GetLogoURL site=77 level=0 bad"), std::string::npos);
  EXPECT_NE(http.ResponseText().find("<Errors>"), std::string::npos);
}

TEST(ApiHttp, NoReplyIsAnErrorWithinTheWait) {
  CurlApiHttp http(milliseconds(800));
  EXPECT_EQ(ErrorOf(http, "http://127.0.0.1:9/ws/api.dll"), 7);  // refused

  ApiServer stalling({"--mode", "stall"});
  auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(ErrorOf(http, stalling.url()), 28);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST(ApiHttp, AReplyThatIsNoReplyIsAnError) {
  CurlApiHttp http(milliseconds(3000));
  ApiServer garbage({"--mode", "garbage"});
  EXPECT_EQ(ErrorOf(http, garbage.url()), err::kReplyNotText);
  ApiServer closing({"--mode", "close"});
  EXPECT_EQ(ErrorOf(http, closing.url()), 52);  // the connection closed with nothing said
  // An empty reply is a reply: the callers decide what it means.
  ApiServer empty({"--mode", "empty"});
  Call(http, empty.url());
  EXPECT_EQ(http.ResponseText(), "");
}

TEST(ApiHttp, ReplyCharsets) {
  EXPECT_EQ(XmlCharset("<?xml version='1.0' encoding='ISO-8859-1'?><eBay/>", ""), "iso-8859-1");
  EXPECT_EQ(XmlCharset("<?xml version=\"1.0\" encoding=\"UTF-8\"?><eBay/>", "text/xml; charset=windows-1252"),
            "windows-1252");
  EXPECT_EQ(XmlCharset("<eBay/>", ""), "utf-8");
  EXPECT_TRUE(IsTextIn("caf\xC3\xA9", "utf-8"));
  EXPECT_FALSE(IsTextIn("caf\xE9", "utf-8"));
  EXPECT_FALSE(IsTextIn("\xED\xA0\x80", "utf-8"));  // a surrogate
  EXPECT_FALSE(IsTextIn("\xC0\xAF", "utf-8"));      // overlong
  EXPECT_TRUE(IsTextIn("caf\xE9", "iso-8859-1"));
  EXPECT_FALSE(IsTextIn("\x82\xA0\xFF", "shift_jis"));
  EXPECT_TRUE(IsTextIn("anything \xFF", "no-such-charset"));  // read as windows-1252
}

}  // namespace
}  // namespace lw
