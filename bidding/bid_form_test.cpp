// The bid address made from the site's form, and the watch-list entry read from an item page's title:
// the literal replacements keep the quirks the site's pages have always been met with.
#include "bidding/bid_form.h"

#include <gtest/gtest.h>

namespace lw {
namespace {

const Text kBase = u"http://offer.ebay.com";

TEST(BidUrl, FillsTheFormAndDecodesItsFirstEscapeOnly) {
  EXPECT_EQ(
      BuildBidUrl(u"MfcISAPICommand=AcceptBid&item=40&key=a%3Ab%3Ac&user=&pass=&quant=1&go=Bid%20Now", kBase,
                  u"alice", u"P1", u"2"),
      u"http://offer.ebay.com/aw-cgi/eBayISAPI.dll?AcceptBid&item=40&key=a:b:c&user=alice&pass=P1&quant=2&go="
      u"Bid%20Now");
  // A form that sells another quantity keeps it; one of ten and more meets the literal replacement.
  EXPECT_EQ(BuildBidUrl(u"MfcISAPICommand=A&quant=3", kBase, u"u", u"p", u"5"),
            u"http://offer.ebay.com/aw-cgi/eBayISAPI.dll?A&quant=3");
  EXPECT_EQ(BuildBidUrl(u"MfcISAPICommand=A&quant=12", kBase, u"u", u"p", u"5"),
            u"http://offer.ebay.com/aw-cgi/eBayISAPI.dll?A&quant=52");
  EXPECT_EQ(BuildBidUrl(u"MfcISAPICommand=A&signinTRUE", kBase, u"u", u"p", u"1"),
            u"http://offer.ebay.com/aw-cgi/eBayISAPI.dll?A&signin=y");
  // A field already filled in gets the user's value in front of its own.
  EXPECT_EQ(BuildBidUrl(u"MfcISAPICommand=A&user=bob", kBase, u"alice", u"p", u"1"),
            u"http://offer.ebay.com/aw-cgi/eBayISAPI.dll?A&user=alicebob");
  // The escape's code is read in the western code page; digits that are no hexadecimal count as none.
  EXPECT_EQ(BuildBidUrl(u"MfcISAPICommand=A&t=%80", kBase, u"u", u"p", u"1"),
            u"http://offer.ebay.com/aw-cgi/eBayISAPI.dll?A&t=\u20AC");
  EXPECT_EQ(BuildBidUrl(u"x=%4Gy", kBase, u"u", u"p", u"1"), u"x=\u0004y");
}

TEST(WatchTitle, ItemTitleAndEndOfAnItemPage) {
  const Regional r = Regional::FromLocale("en_US");
  WatchEntry e =
      ParseWatchTitle(u"eBay item 4012345678 (Ends Jun-15-03 18:00:00 PDT) - Brass Ship's Lantern", r);
  EXPECT_EQ(e.item, u"4012345678");
  EXPECT_EQ(e.title, u"Brass Ship~s Lantern");
  EXPECT_EQ(e.end, u"Jun-15-03 18:00:00");
  // A title with a dash of its own is cut at the last one.
  e = ParseWatchTitle(u"eBay item 77 (Ends Jan-02-04 09:05:00 PST) - Set of 4 - Blue", r);
  EXPECT_EQ(e.title, u"Blue");
  // Another kind of title gives texts of the wrong kind.
  e = ParseWatchTitle(u"eBay Search: lanterns", r);
  EXPECT_EQ(e.item, u"0");
  EXPECT_EQ(e.title, u"Bay Search: lanterns");
  EXPECT_EQ(e.end, u" Search: lanterns");
}

}  // namespace
}  // namespace lw
