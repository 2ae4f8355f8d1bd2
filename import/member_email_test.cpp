#include "import/member_email.h"

#include <gtest/gtest.h>

#include "core/primitives/encoding.h"
#include "import/seller_list_testing.h"

namespace lw::testing {
namespace {

class MemberEmailTest : public ListImportTest {
 protected:
  std::string Locale() const override { return "en_US"; }
  void SetUp() override {
    ListImportTest::SetUp();
    screen_.servername_email = u"cgi.example";
    screen_.seller_id_txt = u"harbour_lights";
    screen_.id_pnl_1 = u"lotseller";
    screen_.select_tab = [this](int t) { tab_ = t; };
    screen_.navigate = [this](const Text& a) { navigated_.push_back(ToUtf8(a)); };
    screen_.clear_auctimp = [this] { ++cleared_; };
  }
  void ShowBidderRow(bool completed) {
    Exec(std::string("INSERT INTO bidder (Item, Title, username, site, Completed) VALUES "
                     "('4012345678', 'Lantern', 'lotseller', 'eBay', ") +
         (completed ? "true" : "false") + ")");
    bidder_->RecordSource = u"Select * From bidder where Item = '4012345678'";
    bidder_->Refresh();
  }
  std::string LastTitle() const { return ui_.shown.empty() ? "" : ToUtf8(ui_.shown.back().title); }

  MemberEmailScreen screen_;
  std::vector<std::string> navigated_;
  int tab_ = -1, cleared_ = 0;
};

TEST_F(MemberEmailTest, ChecksRefuseInTheirOrder) {
  ShowBidderRow(false);
  screen_.seller_id_txt.clear();
  EXPECT_FALSE(get_email_btn_2(*ctx_, screen_));
  EXPECT_EQ(LastTitle(), "User ID Not Found");
  EXPECT_TRUE(screen_.email_pending);
  EXPECT_EQ(ToUtf8(screen_.txtIP), "cgi.example");
  EXPECT_EQ(ToUtf8(LastStatus()), "Importing E-mail address for auction ....4012345678");

  screen_.seller_id_txt = u"harbour_lights";
  EXPECT_FALSE(get_email_btn_2(*ctx_, screen_));
  EXPECT_EQ(LastTitle(), "Auction not Finished");

  Exec("UPDATE bidder SET Completed = true");
  bidder_->Refresh();
  screen_.id_pnl_1 = u"someone_else";
  EXPECT_FALSE(get_email_btn_2(*ctx_, screen_));
  EXPECT_EQ(LastTitle(), "You're Not the High Bidder");
  EXPECT_EQ(ToUtf8(ui_.shown.back().text),
            "You can only retrieve the email address if you are the high bidder");
  EXPECT_TRUE(navigated_.empty());
  EXPECT_EQ(cleared_, 3);

  // A Dutch placeholder is not a rival bidder.
  screen_.id_pnl_1 = u"3 Dutch bids";
  EXPECT_EQ(ToUtf8(get_email_btn_2(*ctx_, screen_).value_or(u"")),
            "http://cgi.example/aw-cgi/"
            "eBayISAPI.dll?ReturnUserEmail&requested=harbour_lights&iid=4012345678&frm=284");
  EXPECT_EQ(tab_, 4);
  EXPECT_EQ(navigated_.size(), 1u);
}

TEST_F(MemberEmailTest, AddressAlreadyInTheFieldFetchesNothing) {
  ShowBidderRow(true);
  screen_.seller_email_txt = u"known@example.org";
  EXPECT_FALSE(get_email_btn_2(*ctx_, screen_));
  EXPECT_EQ(ToUtf8(LastStatus()), "Email address already found");
  EXPECT_TRUE(navigated_.empty());
  EXPECT_TRUE(ui_.shown.empty());
  EXPECT_EQ(tab_, -1);
}

TEST_F(MemberEmailTest, StoredAddressReusedOnlyForTheSameUser) {
  ShowBidderRow(true);
  screen_.email_page_url =
      u"http://signin.example/aw-cgi/eBayISAPI.dll?ReturnUserEmail&userid=lotseller&pass=x";
  EXPECT_EQ(get_email_btn_2(*ctx_, screen_), screen_.email_page_url);

  screen_.email_page_url =
      u"http://signin.example/aw-cgi/eBayISAPI.dll?ReturnUserEmail&userid=otheruser&pass=x";
  EXPECT_EQ(ToUtf8(get_email_btn_2(*ctx_, screen_).value_or(u"")),
            "http://cgi.example/aw-cgi/"
            "eBayISAPI.dll?ReturnUserEmail&requested=harbour_lights&iid=4012345678&frm=284");
}

TEST_F(MemberEmailTest, ParserReadsTheAddressAndLeavesTheFieldOnABadPage) {
  FileDisplay page = LoadPage("member_email.html");
  Text field = u"old";
  get_seller_email(*ctx_, page, field);
  // Line feeds go, nothing else: the carriage returns of the lines up to "User ID" stay.
  EXPECT_EQ(ToUtf8(field), "lanterns@harbour.example\r\r");
  EXPECT_EQ(ToUtf8(LastStatus()), "Email Address retrieved");
  // Without the marker the count starts where the caret stands, 38 characters on.
  FileDisplay unmarked;
  unmarked.set_text(u"0123456789012345678901234567890123456789abc@x.example User ID");
  get_seller_email(*ctx_, unmarked, field);
  EXPECT_EQ(ToUtf8(field), "89abc@x.example ");

  for (const char* bad : {"", "<p>User ID</p><p>The email address for this member is: x@y</p>",
                          "<p>The email address for this member is: x@y</p>", "\x01\xff<<"}) {
    FileDisplay junk;
    junk.set_text(FromCp1252(bad));
    Text kept = u"kept@example.org";
    get_seller_email(*ctx_, junk, kept);
    EXPECT_EQ(ToUtf8(kept), "kept@example.org") << bad;
  }
}

}  // namespace
}  // namespace lw::testing
