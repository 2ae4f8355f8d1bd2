#include "listing/item_request.h"

#include <cstdio>
#include <random>

#include "core/primitives/convert.h"
#include "core/primitives/datetime.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "listing/api_calls.h"
#include "listing/lister_tables.h"

namespace lw {

namespace {

// The elements that stand for a ticked box, in the request's order, with the box's index.
struct Flag {
  int box;
  const char16_t* element;
};

constexpr Flag kPayments[] = {
    {1, u"<MOCashiers>1</MOCashiers>"},
    {2, u"<PersonalCheck>1</PersonalCheck>"},
    {3, u"<VisaMaster>1</VisaMaster>"},
    {5, u"<COD>1</COD>"},
    {4, u"<Discover>1</Discover>"},
    {8, u"<AmEx>1</AmEx>"},
    {10, u"<PaymentSeeDescription>1</PaymentSeeDescription>"},
    {9, u"<PaymentOther>1</PaymentOther>"},
};

// The blank before the closing bracket of SuperFeatured is what the site has always been sent.
constexpr Flag kUpgrades[] = {
    {2, u"<Private>1</Private>"},     {3, u"<SuperFeatured >1</SuperFeatured >"},
    {1, u"<Featured>1</Featured>"},   {4, u"<Highlight>1</Highlight>"},
    {0, u"<BoldTitle>1</BoldTitle>"},
};

constexpr const char16_t* kShipRegions[] = {
    u"<ShipToNorthAmerica>1</ShipToNorthAmerica>",
    u"<ShipToEurope>1</ShipToEurope>",
    u"<ShipToOceania>1</ShipToOceania>",
    u"<ShipToAsia>1</ShipToAsia>",
    u"<ShipToSouthAmerica>1</ShipToSouthAmerica>",
    u"<ShipToCaribbean>1</ShipToCaribbean>",
    u"<ShipToAfrica>1</ShipToAfrica>",
    u"<ShipToMiddleEast>1</ShipToMiddleEast>",
    u"<ShipToLatinAmerica>1</ShipToLatinAmerica>",
};

constexpr const char16_t* kShipTerms[] = {
    u"<BuyerPaysActual>1</BuyerPaysActual>",
    u"<BuyerPayBySellerFixed>1</BuyerPayBySellerFixed>",
    u"<SellerPays>1</SellerPays>",
    u"<ShipTermsSeeDescription>1</ShipTermsSeeDescription>",
};

class Request {
 public:
  void Add(TextView element) {
    text_ += element;
    text_ += kLineEnd;
  }
  void Add(TextView name, TextView value) {
    Add(u"<" + Text(name) + u">" + Text(value) + u"</" + Text(name) + u">");
  }
  void AddCData(TextView name, TextView value) {
    Add(u"<" + Text(name) + u"><![CDATA[" + Text(value) + u"]]></" + Text(name) + u">");
  }
  Text& text() { return text_; }

 private:
  Text text_;
};

void AddCheckout(Request& r, const SellForm& f) {
  r.Add(u"ShippingHandlingCosts", f.shipping_handling);
  r.Add(u"AdditionalShippingCosts", f.additional_shipping);
  switch (f.insurance_row) {
    case 0:
      r.Add(u"<InsuranceOption>0</InsuranceOption>");
      break;
    case 1:
    case 2:
      r.Add(f.insurance_row == 1 ? u"<InsuranceOption>1</InsuranceOption>"
                                 : u"<InsuranceOption>2</InsuranceOption>");
      r.Add(u"InsuranceFee", f.insurance_fee);
      break;
    case 3:
      r.Add(u"<InsuranceOption>3</InsuranceOption>");
      break;
    default:
      break;
  }
  r.Add(u"SalesTaxState", f.tax_state_code);
  r.Add(u"SalesTaxPercent", f.sales_tax_percent);
  r.AddCData(u"CheckoutInstructions", f.checkout_instructions);
  if (f.payby[6]) r.Add(u"<ShippingInTax>1</ShippingInTax>");
}

}  // namespace

Text BuildItemRequest(const SellForm& f) {
  Request r;
  r.text() = RequestHead(f.userid, f.password, 0, u"VerifyAddItem", kLineEnd);
  r.AddCData(u"Title", f.clean_title);
  r.Add(u"Category", f.category);
  r.Add(u"Category2", f.category2);
  r.AddCData(u"Description", f.description + f.description_footer);
  r.Add(u"Location", f.clean_location);
  r.Add(u"Quantity", f.quantity);
  r.Add(u"Country", CountryRequestCode(f.country).value_or(Text()));
  r.Add(u"MinimumBid", f.minimum_bid);
  r.Add(u"Duration", f.duration);
  r.Add(u"SiteId", f.site_id);
  if (auto currency = CurrencyOf(f.country)) r.Add(u"Currency", *currency);
  if (f.payby[0]) {
    r.Add(u"<PayPalAccepted>1</PayPalAccepted>");
    r.Add(u"PayPalEmailAddress", f.paypal_address);
  }
  for (const Flag& p : kPayments)
    if (f.payby[p.box]) r.Add(p.element);
  if (f.has_pic_name) r.Add(u"PictureURL", f.picture_url);
  r.Add(u"ReservePrice", f.reserve);
  for (const Flag& u : kUpgrades)
    if (f.display[u.box]) r.Add(u.element);
  if (f.gallery == 0) {
    r.Add(u"<Gallery>0</Gallery>");
  } else {
    r.Add(f.gallery == 1 ? u"<Gallery>1</Gallery>" : u"<GalleryFeatured >1</GalleryFeatured >");
    r.Add(u"GalleryURL", f.picture_url);
  }
  if (f.sell_format == 0)
    r.Add(Val(f.quantity) > 1 ? u"<Type>2</Type>" : u"<Type>1</Type>");
  else if (f.sell_format == 1)
    r.Add(u"<Type>9</Type>");
  else if (f.sell_format == 2)
    r.Add(u"<Type>7</Type>");
  r.Add(u"Counter", f.counter_code);
  if (!f.buy_it_now.empty()) r.Add(u"BuyItNowPrice", f.buy_it_now);
  if (f.escrow != 2) r.Add(f.escrow == 0 ? u"<Escrow>1</Escrow>" : u"<EscrowBySeller>1</EscrowBySeller>");
  r.Add(u"GiftIcon", f.gift_code);
  if (f.ship_destination == 0) {
    r.Add(u"<ShippingOption>SiteOnly</ShippingOption>");
  } else if (f.ship_destination == 1) {
    r.Add(u"<ShippingOption>WorldWide</ShippingOption>");
  } else {
    r.Add(u"<ShippingOption>SitePlusRegions</ShippingOption>");
    for (size_t i = 0; i < std::size(kShipRegions); ++i)
      if (f.other_location[i]) r.Add(kShipRegions[i]);
  }
  r.Add(u"Region", f.region_code);
  for (size_t i = 0; i < std::size(kShipTerms); ++i)
    if (f.payshipping[i]) r.Add(kShipTerms[i]);
  if (f.schedule != 0) r.Add(u"ScheduleTime", f.schedule_time);
  if (f.shipping_cost == 0) r.Add(u"<CheckoutDetailsSpecified>0</CheckoutDetailsSpecified>");
  if (f.shipping_cost == 1) {
    r.Add(u"<CheckoutDetailsSpecified>1</CheckoutDetailsSpecified>");
    AddCheckout(r, f);
  }
  r.Add(u"UUID", f.uuid);
  r.Add(u"<Version>2</Version>");
  r.Add(u"</request>");
  return std::move(r.text());
}

Text RegionCode(TextView text) {
  return CodeOf(Regions(), text).value_or(u"0");
}

Text GiftCode(TextView text) {
  return CodeOf(GiftIcons(), text).value_or(u"0");
}

Text CounterCode(TextView text) {
  return CounterRequestCode(text).value_or(u"-1");
}

Text TaxStateCode(TextView text) {
  // The two rows without a state send an empty state.
  if (text == u"No Sales Tax" || text == u"No State Specified") return Text();
  return CodeOf(TaxStates(), text).value_or(Text());
}

Text ScheduleTime(TextView date, bool day_first, TextView time, const Regional& us) {
  // The date box's month, day and year, as numbers without padding.
  std::vector<long> parts;
  long n = -1;
  for (char16_t c : date) {
    if (c >= u'0' && c <= u'9') {
      n = (n < 0 ? 0 : n * 10) + (c - u'0');
      if (n > 99999) throw RuntimeError(err::kTypeMismatch, "Type mismatch");
    } else if (n >= 0) {
      parts.push_back(n);
      n = -1;
    }
  }
  if (n >= 0) parts.push_back(n);
  if (parts.size() != 3) throw RuntimeError(err::kTypeMismatch, "Type mismatch");
  long month = day_first ? parts[1] : parts[0];
  long day = day_first ? parts[0] : parts[1];
  Text moment = FromUtf8(std::to_string(month) + "/" + std::to_string(day) + "/" + std::to_string(parts[2])) +
                u" " + Text(time);
  // The site keeps its schedule 8 hours ahead of what the screen shows, whatever the season.
  Date moved = DateAdd(u"h", 8, CDate(Variant(moment), us));
  return Format(Variant(moved), u"YYYY-MM-DD HH:MM:SS", us);
}

std::optional<Guid> CreateGuid() {
  try {
    std::random_device random;
    std::uniform_int_distribution<uint32_t> word;
    Guid g;
    g.data1 = word(random);
    uint32_t w = word(random);
    g.data2 = static_cast<uint16_t>(w >> 16);
    g.data3 = static_cast<uint16_t>((w & 0x0FFF) | 0x4000);  // version 4
    for (size_t i = 0; i < g.data4.size(); i += 4) {
      uint32_t v = word(random);
      for (size_t k = 0; k < 4; ++k) g.data4[i + k] = static_cast<uint8_t>(v >> (8 * k));
    }
    g.data4[0] = static_cast<uint8_t>((g.data4[0] & 0x3F) | 0x80);  // variant 1
    return g;
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

Text UuidText(const Guid& g) {
  char buf[40];
  std::snprintf(buf, sizeof buf, "%08X%04X%04X", static_cast<unsigned>(g.data1),
                static_cast<unsigned>(g.data2), static_cast<unsigned>(g.data3));
  std::string out = buf;
  for (uint8_t b : g.data4) {
    std::snprintf(buf, sizeof buf, "%02X", static_cast<unsigned>(b));
    out += buf;
  }
  return FromUtf8(out);
}

Text NewUuid() {
  std::optional<Guid> g = CreateGuid();
  return g ? UuidText(*g) : Text();
}

}  // namespace lw
