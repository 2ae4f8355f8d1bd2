// The item request is the contract with the site: which element stands, in which order, with which
// blanks, for which choice on the Sell page.
#include "listing/item_request.h"

#include <gtest/gtest.h>

#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "listing/lister_tables.h"

namespace lw {
namespace {

SellForm Plain() {
  SellForm f;
  f.userid = u"alice";
  f.password = u"secret";
  f.site_id = u"0";
  f.clean_title = u"Oak Chair";
  f.category = u"12345";
  f.description = u"A chair.";
  f.quantity = u"1";
  f.country = u"United States";
  f.region_code = u"0";
  f.gift_code = u"0";
  f.counter_code = u"-1";
  f.gallery = 0;
  f.sell_format = 0;
  f.escrow = 2;
  f.ship_destination = 0;
  f.schedule = 0;
  f.shipping_cost = 0;
  f.uuid = u"0123456789ABCDEF0123456789ABCDEF";
  return f;
}

size_t Count(const Text& text, TextView what) {
  size_t n = 0;
  for (size_t at = text.find(what); at != Text::npos; at = text.find(what, at + 1)) ++n;
  return n;
}

bool Has(const Text& text, TextView what) {
  return text.find(what) != Text::npos;
}

TEST(ItemRequest, ThePlainRequestWhole) {
  SellForm f = Plain();
  f.description_footer = u"<p>Thanks</p>";
  Text expected =
      u"<?xml version='1.0' encoding='iso-8859-1'?>\r\n<request>\r\n<RequestUserId>alice</RequestUserId>\r\n"
      u"<RequestPassword>secret</RequestPassword>\r\n<ErrorLevel>1</ErrorLevel>\r\n<DetailLevel>0</"
      u"DetailLevel>\r\n"
      u"<Verb>VerifyAddItem</Verb>\r\n<Title><![CDATA[Oak Chair]]></Title>\r\n<Category>12345</Category>\r\n"
      u"<Category2></Category2>\r\n<Description><![CDATA[A chair.<p>Thanks</p>]]></Description>\r\n"
      u"<Location></Location>\r\n<Quantity>1</Quantity>\r\n<Country>us</Country>\r\n<MinimumBid></"
      u"MinimumBid>\r\n"
      u"<Duration></Duration>\r\n<SiteId>0</SiteId>\r\n<Currency>$</Currency>\r\n<ReservePrice></"
      u"ReservePrice>\r\n"
      u"<Gallery>0</Gallery>\r\n<Type>1</Type>\r\n<Counter>-1</Counter>\r\n<GiftIcon>0</GiftIcon>\r\n"
      u"<ShippingOption>SiteOnly</ShippingOption>\r\n<Region>0</Region>\r\n"
      u"<CheckoutDetailsSpecified>0</CheckoutDetailsSpecified>\r\n<UUID>0123456789ABCDEF0123456789ABCDEF</"
      u"UUID>\r\n"
      u"<Version>2</Version>\r\n</request>\r\n";
  EXPECT_EQ(BuildItemRequest(f), expected);
}

TEST(ItemRequest, TypeByFormatAndQuantity) {
  struct Case {
    int format;
    const char16_t* quantity;
    const char16_t* type;
  };
  for (const Case& c :
       {Case{0, u"2", u"<Type>2</Type>"}, Case{0, u"1", u"<Type>1</Type>"}, Case{0, u"", u"<Type>1</Type>"},
        Case{0, u"1.5", u"<Type>2</Type>"}, Case{0, u"3 boxes", u"<Type>2</Type>"},
        Case{1, u"5", u"<Type>9</Type>"}, Case{2, u"5", u"<Type>7</Type>"}, Case{-1, u"5", nullptr}}) {
    SellForm f = Plain();
    f.sell_format = c.format;
    f.quantity = c.quantity;
    Text r = BuildItemRequest(f);
    EXPECT_EQ(Count(r, u"<Type>"), c.type ? 1u : 0u) << ToUtf8(c.quantity);
    if (c.type) {
      EXPECT_TRUE(Has(r, c.type)) << ToUtf8(c.quantity);
    }
  }
}

TEST(ItemRequest, GalleryAndEscrowGiveOneElementEach) {
  for (int gallery : {-1, 0, 1, 2}) {
    SellForm f = Plain();
    f.gallery = gallery;
    f.picture_url = u"http://pics/x.jpg";
    Text r = BuildItemRequest(f);
    EXPECT_EQ(Count(r, u"<Gallery>") + Count(r, u"<GalleryFeatured >"), 1u);
    EXPECT_EQ(Has(r, u"<GalleryURL>http://pics/x.jpg</GalleryURL>\r\n"), gallery != 0);
    EXPECT_EQ(Has(r, u"<GalleryFeatured >1</GalleryFeatured >\r\n"), gallery == -1 || gallery == 2);
  }
  for (auto [escrow, element] :
       {std::pair{0, u"<Escrow>1</Escrow>"}, std::pair{1, u"<EscrowBySeller>1</EscrowBySeller>"},
        std::pair{-1, u"<EscrowBySeller>1</EscrowBySeller>"}, std::pair{2, u""}}) {
    SellForm f = Plain();
    f.escrow = escrow;
    Text r = BuildItemRequest(f);
    EXPECT_EQ(Count(r, u"<Escrow>") + Count(r, u"<EscrowBySeller>"), escrow == 2 ? 0u : 1u);
    EXPECT_TRUE(Has(r, element));
  }
}

TEST(ItemRequest, BoxesInTheirOrderAndTheBlanksInsideTags) {
  SellForm f = Plain();
  f.payby.fill(true);
  f.display.fill(true);
  f.payshipping.fill(true);
  f.paypal_address = u"a@b.c";
  Text r = BuildItemRequest(f);
  const char16_t* order[] = {u"<PayPalAccepted>1",
                             u"<PayPalEmailAddress>a@b.c",
                             u"<MOCashiers>",
                             u"<PersonalCheck>",
                             u"<VisaMaster>",
                             u"<COD>",
                             u"<Discover>",
                             u"<AmEx>",
                             u"<PaymentSeeDescription>",
                             u"<PaymentOther>",
                             u"<ReservePrice>",
                             u"<Private>",
                             u"<SuperFeatured >1</SuperFeatured >",
                             u"<Featured>",
                             u"<Highlight>",
                             u"<BoldTitle>",
                             u"<Gallery>",
                             u"<Type>",
                             u"<Counter>",
                             u"<GiftIcon>",
                             u"<ShippingOption>",
                             u"<Region>",
                             u"<BuyerPaysActual>",
                             u"<BuyerPayBySellerFixed>",
                             u"<SellerPays>",
                             u"<ShipTermsSeeDescription>",
                             u"<CheckoutDetailsSpecified>",
                             u"<UUID>"};
  size_t last = 0;
  for (const char16_t* e : order) {
    size_t at = r.find(e);
    ASSERT_NE(at, Text::npos) << ToUtf8(e);
    EXPECT_GT(at, last) << ToUtf8(e);
    last = at;
  }
  // The gift services never reach the request, whatever boxes are ticked: only the icon's element
  // names a gift.
  EXPECT_EQ(Count(r, u"Gift"), 2u);
  EXPECT_TRUE(Has(r, u"<GiftIcon>0</GiftIcon>"));
}

TEST(ItemRequest, ShipToRegionsOnlyWithSitePlus) {
  SellForm f = Plain();
  f.other_location.fill(true);
  for (int destination : {0, 1}) {
    f.ship_destination = destination;
    EXPECT_FALSE(Has(BuildItemRequest(f), u"<ShipTo")) << destination;
  }
  f.ship_destination = 2;
  f.other_location = {true, false, true, false, false, false, false, false, true};
  Text r = BuildItemRequest(f);
  EXPECT_TRUE(Has(
      r,
      u"<ShippingOption>SitePlusRegions</ShippingOption>\r\n<ShipToNorthAmerica>1</ShipToNorthAmerica>\r\n"
      u"<ShipToOceania>1</ShipToOceania>\r\n<ShipToLatinAmerica>1</ShipToLatinAmerica>\r\n<Region>"));
}

TEST(ItemRequest, CheckoutDetails) {
  SellForm f = Plain();
  f.shipping_cost = 1;
  f.shipping_handling = u"4.50";
  f.additional_shipping = u"1.00";
  f.insurance_fee = u"1.25";
  f.tax_state_code = TaxStateCode(u"No Sales Tax");
  f.sales_tax_percent = u"0";
  f.checkout_instructions = u"No returns";
  f.payby[6] = true;
  f.payby[7] = true;  // "Allow buyer to edit total" has no element
  const char16_t* insurance[] = {
      u"<InsuranceOption>0</InsuranceOption>\r\n",
      u"<InsuranceOption>1</InsuranceOption>\r\n<InsuranceFee>1.25</InsuranceFee>\r\n",
      u"<InsuranceOption>2</InsuranceOption>\r\n<InsuranceFee>1.25</InsuranceFee>\r\n",
      u"<InsuranceOption>3</InsuranceOption>\r\n"};
  for (int row = 0; row < 4; ++row) {
    f.insurance_row = row;
    Text r = BuildItemRequest(f);
    EXPECT_TRUE(Has(r,
                    u"<CheckoutDetailsSpecified>1</CheckoutDetailsSpecified>\r\n"
                    u"<ShippingHandlingCosts>4.50</ShippingHandlingCosts>\r\n"
                    u"<AdditionalShippingCosts>1.00</AdditionalShippingCosts>\r\n" +
                        Text(insurance[row]) +
                        u"<SalesTaxState></SalesTaxState>\r\n<SalesTaxPercent>0</SalesTaxPercent>\r\n"
                        u"<CheckoutInstructions><![CDATA[No returns]]></CheckoutInstructions>\r\n"
                        u"<ShippingInTax>1</ShippingInTax>\r\n<UUID>"))
        << row;
  }
  f.insurance_row = -1;
  EXPECT_FALSE(Has(BuildItemRequest(f), u"Insurance"));
  f.shipping_cost = -1;
  EXPECT_FALSE(Has(BuildItemRequest(f), u"CheckoutDetailsSpecified"));
}

TEST(ItemRequest, PictureAndScheduleConditions) {
  SellForm f = Plain();
  f.picture_url = u"http://pics/x.jpg";
  f.gallery = 1;
  Text r = BuildItemRequest(f);
  EXPECT_FALSE(Has(r, u"<PictureURL>"));
  EXPECT_TRUE(Has(r, u"<GalleryURL>http://pics/x.jpg</GalleryURL>"));
  f.has_pic_name = true;
  EXPECT_TRUE(Has(BuildItemRequest(f), u"<PictureURL>http://pics/x.jpg</PictureURL>\r\n<ReservePrice>"));
  f.schedule_time = u"2003-12-01 02:00:00";
  for (int schedule : {-1, 1}) {
    f.schedule = schedule;
    EXPECT_TRUE(Has(BuildItemRequest(f), u"<ScheduleTime>2003-12-01 02:00:00</ScheduleTime>\r\n"));
  }
  f.schedule = 0;
  EXPECT_FALSE(Has(BuildItemRequest(f), u"ScheduleTime"));
  f.buy_it_now = u"25.00";
  EXPECT_TRUE(Has(BuildItemRequest(f), u"<Counter>-1</Counter>\r\n<BuyItNowPrice>25.00</BuyItNowPrice>\r\n"));
}

TEST(ItemRequest, CountriesAndListCodes) {
  SellForm f = Plain();
  for (auto [country, code, currency] :
       {std::tuple{u"Germany", u"de", u"7"}, std::tuple{u"Belgium (Dutch)", u"be", u"7"},
        std::tuple{u"Canada", u"ca", u"C $"}, std::tuple{u"United Kingdom", u"uk", u"3"},
        std::tuple{u"Taiwan", u"tw", u"41"}, std::tuple{u"Japan", u"jp", u"6"}}) {
    f.country = country;
    Text r = BuildItemRequest(f);
    EXPECT_TRUE(Has(r, u"<Country>" + Text(code) + u"</Country>")) << ToUtf8(country);
    EXPECT_TRUE(Has(r, u"<Currency>" + Text(currency) + u"</Currency>")) << ToUtf8(country);
  }
  f.country = u"None";
  Text r = BuildItemRequest(f);
  EXPECT_TRUE(Has(r, u"<Country></Country>"));
  EXPECT_FALSE(Has(r, u"<Currency>"));

  EXPECT_EQ(RegionCode(u"AZ-Phonenix"), u"39");
  EXPECT_EQ(RegionCode(u"Do not list regionally"), u"0");
  EXPECT_EQ(RegionCode(u"az-phonenix"), u"0");
  EXPECT_EQ(CounterCode(u"Counter Style"), u"-1");
  EXPECT_EQ(CounterCode(u"None"), u"0");
  EXPECT_EQ(CounterCode(u"Hidden"), u"3");
  EXPECT_EQ(GiftCode(u"Gift Service"), u"1");
  EXPECT_EQ(GiftCode(kGiftStartText), u"0");
  EXPECT_EQ(TaxStateCode(u"Dist Columbia"), u"DC");
  EXPECT_EQ(TaxStateCode(u"Wyoming"), u"WY");
  EXPECT_EQ(TaxStateCode(u"No State Specified"), u"");
  EXPECT_EQ(Regions().size(), 61u);
  EXPECT_EQ(TaxStates().size(), 53u);
  EXPECT_EQ(Countries().size(), 15u);
}

TEST(ItemRequest, ScheduleTimeIsSiteTime) {
  Regional us = Regional::FromLocale("en_US");
  EXPECT_EQ(ScheduleTime(u"11/30/2003", false, u"18:00", us), u"2003-12-01 02:00:00");
  EXPECT_EQ(ScheduleTime(u"30/11/2003", true, u"18:00", us), u"2003-12-01 02:00:00");
  EXPECT_EQ(ScheduleTime(u"02/28/2004", false, u"20:30", us), u"2004-02-29 04:30:00");
  EXPECT_EQ(ScheduleTime(u"12/31/2003", false, u"4:05 PM", us), u"2004-01-01 00:05:00");
  for (auto [date, time] : {std::pair{u"", u"18:00"}, std::pair{u"13/45/2003", u"18:00"},
                            std::pair{u"11/30/2003", u"noon"}, std::pair{u"11/30", u"18:00"}}) {
    try {
      ScheduleTime(date, false, time, us);
      ADD_FAILURE() << ToUtf8(date) << " " << ToUtf8(time);
    } catch (const RuntimeError& e) {
      EXPECT_EQ(e.number(), err::kTypeMismatch);
    }
  }
}

TEST(ItemRequest, Uuids) {
  Guid g;
  g.data1 = 0xA;
  g.data2 = 0xB;
  g.data3 = 0x4C;
  g.data4 = {0, 1, 0x2F, 0xF0, 0xAB, 0, 0, 0xFF};
  EXPECT_EQ(UuidText(g), u"0000000A000B004C00012FF0AB0000FF");
  Text a = NewUuid(), b = NewUuid();
  EXPECT_EQ(a.size(), 32u);
  EXPECT_NE(a, b);
  for (char16_t c : a) EXPECT_TRUE((c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F'));
}

}  // namespace
}  // namespace lw
