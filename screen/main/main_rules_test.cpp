// The pure rules of start-up and exit: the saved view file, the geometry kept, the backup interval,
// and the choice of the browser page's target.
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "screen/main/browser_targets.h"
#include "screen/main/database_location.h"
#include "screen/main/exit_rules.h"
#include "screen/main/program.h"
#include "screen/main/saved_view.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

fs::path TempDir(const char* name) {
  fs::path d = fs::temp_directory_path() / ("lw_rules_" + std::to_string(::getpid()) + "_" + name);
  fs::remove_all(d);
  fs::create_directories(d);
  return d;
}

std::string ReadAll(const fs::path& p) {
  std::ifstream in(p, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

TEST(SavedViewTest, FiveLinesRoundTripAndTheirQuirks) {
  fs::path dir = TempDir("ini");
  fs::path ini = dir / "lw.ini";
  EXPECT_FALSE(ImportIniFile(ini).has_value());  // no file: the default view

  SavedView v{u"Seller", u"jan.seller", u"All Auctions",
              u"Select * From seller where username = 'jan.seller' and site = 'eBay' order by end desc ",
              u"eBay"};
  WriteIniFile(ini, v);
  EXPECT_EQ(
      ReadAll(ini),
      "Seller\r\n\"jan.seller\"\r\nAll Auctions\r\nSelect * From seller where username = 'jan.seller' and "
      "site = 'eBay' order by end desc \r\neBay\r\n");
  auto back = ImportIniFile(ini);
  ASSERT_TRUE(back.has_value());
  EXPECT_EQ(back->userid, v.userid);
  EXPECT_EQ(back->site, u"eBay");
  EXPECT_EQ(Trim(back->query), Trim(v.query));

  // A comma in the query cuts it: the rest of the line is taken for the site.
  v.query = u"Select * From seller where Title like '*a,b*' order by end desc";
  WriteIniFile(ini, v);
  back = ImportIniFile(ini);
  ASSERT_TRUE(back.has_value());
  EXPECT_EQ(back->query, u"Select * From seller where Title like '*a");
  EXPECT_EQ(back->site, u"b*' order by end desc");

  // A file that ends early counts as missing.
  std::ofstream(ini, std::ios::binary) << "Seller\r\n\"jan\"\r\nAll Auctions\r\n";
  EXPECT_FALSE(ImportIniFile(ini).has_value());
  fs::remove_all(dir);
}

TEST(ExitRulesTest, GeometryMinimumsAndBackupInterval) {
  WindowGeometry small = GeometryToSave({10000, 8000, -15, -1});
  EXPECT_EQ(small.width, 11445);
  EXPECT_EQ(small.height, 9000);
  EXPECT_EQ(small.left, 0);
  EXPECT_EQ(small.top, 0);
  WindowGeometry edge = GeometryToSave({11400, 8800, 0, 0});  // at the limit still too small
  EXPECT_EQ(edge.width, 11445);
  EXPECT_EQ(edge.height, 9000);
  WindowGeometry big = GeometryToSave({11401, 8801, 300, 200});
  EXPECT_EQ(big.width, 11401);
  EXPECT_EQ(big.height, 8801);
  EXPECT_EQ(big.left, 300);
  EXPECT_EQ(big.top, 200);

  EXPECT_EQ(BackupIntervalDays(0), 0);
  EXPECT_EQ(BackupIntervalDays(1), 2);
  EXPECT_EQ(BackupIntervalDays(4), 7);
  EXPECT_EQ(BackupIntervalDays(9), 0);
  Date today = MakeDate(2026, 11, 22, 18, 5);
  EXPECT_TRUE(BackupDue(today, 0, today));                            // "Always"
  EXPECT_FALSE(BackupDue(today, 2, today));                           // default date is today
  EXPECT_FALSE(BackupDue(MakeDate(2026, 11, 21, 23, 59), 2, today));  // one day on
  EXPECT_TRUE(BackupDue(MakeDate(2026, 11, 20), 2, today));           // exactly due
  EXPECT_TRUE(BackupDue(MakeDate(2026, 10, 1), 7, today));
}

TEST(DatabaseLocationTest, JoinsTheBackslashNames) {
  EXPECT_EQ(JoinDatabasePath(u"/data/lw", u"\\lw.mdb"), fs::path("/data/lw/lw.mdb"));
  EXPECT_EQ(JoinDatabasePath(u"/data/lw", u"\\sub\\x.htm"), fs::path("/data/lw/sub/x.htm"));
  EXPECT_EQ(JoinDatabasePath(u"/data/lw", u"lw.ini"), fs::path("/data/lw/lw.ini"));
}

TEST(BrowserTargetsTest, FirstFlagWinsAndEachTargetHasItsPlace) {
  fs::path dir = TempDir("hosts");
  Settings settings(dir / "settings.ini");
  settings.SaveSetting(u"Lotwright", u"Hosts", u"search", u"127.0.0.1:8080");
  BrowserContext c;
  c.database_path = u"/data/lw";
  c.userid = u"jan";
  c.password = u"pw";
  c.servername_fees = u"http://cgi3.ebay.com/";
  c.item = u"12345";
  c.site = u"eBay";

  std::array<bool, kBrowserTargetCount> flags{};
  BrowserPlace none = ResolveBrowserTarget(flags, c, settings);
  EXPECT_FALSE(none.target.has_value());
  EXPECT_EQ(none.address, u"http://cgi.ebay.com/aw-cgi/eBayISAPI.dll?ViewItem&item=12345");
  EXPECT_EQ(none.status, Text(u"Displaying Current Auction .... Browser View"));

  flags[static_cast<int>(BrowserTarget::kPayPal)] = true;
  flags[static_cast<int>(BrowserTarget::kSearch)] = true;
  BrowserPlace search = ResolveBrowserTarget(flags, c, settings);
  EXPECT_EQ(search.target, BrowserTarget::kSearch);
  EXPECT_EQ(search.address, u"http://127.0.0.1:8080/search/items/basicsearch.html");
  EXPECT_EQ(search.status, Text(u"Displaying ebay Search page"));

  flags[static_cast<int>(BrowserTarget::kSellPage)] = true;
  BrowserPlace sell = ResolveBrowserTarget(flags, c, settings);
  EXPECT_TRUE(sell.file);
  EXPECT_EQ(sell.address, u"/data/lw/sellitem.htm");

  flags = {};
  flags[static_cast<int>(BrowserTarget::kAccount)] = true;
  EXPECT_EQ(ResolveBrowserTarget(flags, c, settings).address,
            u"http://cgi3.ebay.com/ebayISAPI.dll?ViewAccount&userid=jan&pass=pw&acctpagetype=0&daysback=-1&"
            u"startmonth=&startday=&startyear=&endmonth=&endday=&endyear=&pagination=0");
  flags = {};
  flags[static_cast<int>(BrowserTarget::kFeedback)] = true;
  c.feedback_url = u"http://feedback.example/leave";
  BrowserPlace fb = ResolveBrowserTarget(flags, c, settings);
  EXPECT_EQ(fb.address, c.feedback_url);
  EXPECT_FALSE(fb.status.has_value());  // the feedback page leaves the status bar alone

  flags = {};
  c.site = u"Sold";
  EXPECT_EQ(ResolveBrowserTarget(flags, c, settings).address,
            u"http://au.auctions.yahoo.com/au/auction/12345");
  c.site = u"Amazon";  // a site without an item page goes nowhere
  EXPECT_TRUE(ResolveBrowserTarget(flags, c, settings).address.empty());
  fs::remove_all(dir);
}

TEST(MainRules, FlagRaisedForAScopeComesDownAgainAfterAnError) {
  bool settling = false;
  try {
    FlagRaised settle(settling);
    EXPECT_TRUE(settling);
    { FlagRaised nested(settling); }
    EXPECT_TRUE(settling);  // the inner scope puts back what it found
    throw RuntimeError(3075, "bad statement");
  } catch (const RuntimeError&) {
  }
  EXPECT_FALSE(settling);
}

}  // namespace
}  // namespace lw
