#include "listing/lister_tables.h"

namespace lw {

namespace {

constexpr CodedText kRegions[] = {
    {u"Do not list regionally", u"0"},
    {u"AZ-Phonenix", u"39"},
    {u"CA-Los Angeles", u"1"},
    {u"CA-Oakland", u"57"},
    {u"CA-Orange County", u"58"},
    {u"CA-Sacramento", u"45"},
    {u"CA-San Diego", u"48"},
    {u"CA-San Francisco", u"49"},
    {u"CA-San Jose", u"60"},
    {u"CO-Denver", u"16"},
    {u"CT-Hartford", u"20"},
    {u"DC-Washington", u"4"},
    {u"FL-Jacksonville", u"24"},
    {u"FL-Miami", u"29"},
    {u"FL-Orlando", u"37"},
    {u"FL-Tampa-St.Petersburg", u"52"},
    {u"FL-West Palm Beach", u"53"},
    {u"GA-Atlanta", u"2"},
    {u"HI-Honolulu", u"21"},
    {u"ID-Billings-Boise", u"5"},
    {u"IL-Chicago", u"10"},
    {u"IN-Indianapolis", u"23"},
    {u"KS-Kansas City", u"25"},
    {u"KY-Louisville", u"27"},
    {u"LA-New Orleans", u"33"},
    {u"MA-Boston", u"7"},
    {u"MD-Baltimore", u"56"},
    {u"MI-Detroit", u"17"},
    {u"MI-Grand Rapids", u"18"},
    {u"MN-Minneapolis-St.Paul", u"31"},
    {u"MO-St.Louis", u"51"},
    {u"NC-Charlotte", u"9"},
    {u"NC-Greensboro", u"19"},
    {u"NC-Raleigh-Durham", u"43"},
    {u"NM-Albuquerque-Santa Fe", u"55"},
    {u"NV-Las Vegas", u"26"},
    {u"NY-Albany", u"54"},
    {u"NY-Buffalo", u"8"},
    {u"NY-New York", u"34"},
    {u"NY-Rochester", u"44"},
    {u"OH-Cincinnati", u"11"},
    {u"OH-Cleveland", u"12"},
    {u"OH-Columbus", u"13"},
    {u"OH-Dayton- Springfield", u"15"},
    {u"OK-Oklahoma City", u"36"},
    {u"OR-Portland", u"41"},
    {u"PA-Philadelphia", u"38"},
    {u"PA-Pittsburgh", u"40"},
    {u"RI-Providence", u"42"},
    {u"SD-Bismarck- Pierre", u"6"},
    {u"TN-Memphis", u"28"},
    {u"TN-Nashville", u"32"},
    {u"TX-Austin", u"3"},
    {u"TX-Dallas-Fort Worth", u"14"},
    {u"TX-Houston", u"22"},
    {u"TX-San Antonio", u"47"},
    {u"UT-Salt Lake City", u"46"},
    {u"VA-Norfolk-Virginia Beach", u"35"},
    {u"VA-Richmond", u"59"},
    {u"WA-Seattle-Tacoma", u"50"},
    {u"WI-Milwaukee", u"30"},
};

constexpr CodedText kCountries[] = {
    {u"United States", u"0"},     {u"Canada", u"2"},        {u"United Kingdom", u"3"},
    {u"Australia", u"15"},        {u"Austria", u"16"},      {u"Belgium (Dutch)", u"123"},
    {u"Belgium (French)", u"23"}, {u"France", u"71"},       {u"Germany", u"77"},
    {u"Italy", u"101"},           {u"Japan", u"104"},       {u"Netherlands", u"146"},
    {u"Spain", u"186"},           {u"Switzerland", u"193"}, {u"Taiwan", u"196"},
};

constexpr CodedText kTaxStates[] = {
    {u"No Sales Tax", u"no"},
    {u"Alabama", u"AL"},
    {u"Alaska", u"AK"},
    {u"Arizona", u"AZ"},
    {u"Arkansas", u"AR"},
    {u"California", u"CA"},
    {u"Colorado", u"CO"},
    {u"Connecticut", u"CT"},
    {u"Delaware", u"DE"},
    {u"Dist Columbia", u"DC"},
    {u"Florida", u"FL"},
    {u"Georgia", u"GA"},
    {u"Hawaii", u"HI"},
    {u"Idaho", u"ID"},
    {u"Illinois", u"IL"},
    {u"Indiana", u"IN"},
    {u"Iowa", u"IA"},
    {u"Kansas", u"KS"},
    {u"Kentucky", u"KY"},
    {u"Louisiana", u"LA"},
    {u"Maine", u"ME"},
    {u"Maryland", u"MD"},
    {u"Massachusetts", u"MA"},
    {u"Michigan", u"MI"},
    {u"Minnesota", u"MN"},
    {u"Mississippi", u"MS"},
    {u"Missouri", u"MO"},
    {u"Montana", u"MT"},
    {u"Nebraska", u"NE"},
    {u"Nevada", u"NV"},
    {u"New Hampshire", u"NH"},
    {u"New Jersey", u"NJ"},
    {u"New Mexico", u"NM"},
    {u"New York", u"NY"},
    {u"North Carolina", u"NC"},
    {u"North Dakota", u"ND"},
    {u"Ohio", u"OH"},
    {u"Oklahoma", u"OK"},
    {u"Oregon", u"OR"},
    {u"Pennsylvania", u"PA"},
    {u"Rhode Island", u"RI"},
    {u"South Carolina", u"SC"},
    {u"South Dakota", u"SD"},
    {u"Tennessee", u"TN"},
    {u"Texas", u"TX"},
    {u"Utah", u"UT"},
    {u"Vermont", u"VT"},
    {u"Virginia", u"VA"},
    {u"Washington", u"WA"},
    {u"West Virginia", u"WV"},
    {u"Wisconsin", u"WI"},
    {u"Wyoming", u"WY"},
    {u"No State Specified", u" "},
};

constexpr CodedText kCounters[] = {
    {u"Counter Style", u" "}, {u"None", u" "},   {u"Honesty Style", u"1"},
    {u"Green Led", u"2"},     {u"Hidden", u"3"},
};

constexpr CodedText kGiftIcons[] = {{u"No Gift Service", u"0"}, {u"Gift Service", u"1"}};

constexpr CodedText kInsurance[] = {
    {u"Not Offered", u"0"}, {u"Optional", u"1"}, {u"Required", u"2"}, {u"Included in S/H", u"3"}};

// Codes the request uses where the stored ones differ.
constexpr CodedText kCountryRequest[] = {
    {u"United States", u"us"},    {u"Canada", u"ca"},
    {u"United Kingdom", u"uk"},   {u"Australia", u"au"},
    {u"Austria", u"at"},          {u"France", u"fr"},
    {u"Germany", u"de"},          {u"Japan", u"jp"},
    {u"Switzerland", u"ch"},      {u"Belgium (Dutch)", u"be"},
    {u"Belgium (French)", u"be"}, {u"Italy", u"it"},
    {u"Netherlands", u"nl"},      {u"Spain", u"es"},
    {u"Taiwan", u"tw"},
};

constexpr CodedText kCounterRequest[] = {
    {u"Counter Style", u"-1"}, {u"None", u"0"},   {u"Honesty Style", u"1"},
    {u"Green Led", u"2"},      {u"Hidden", u"3"},
};

// A mix of symbols and the site's currency numbers, sent as they stand.
constexpr CodedText kCurrencies[] = {
    {u"United States", u"$"},   {u"Canada", u"C $"},
    {u"United Kingdom", u"3"},  {u"Australia", u"AU $"},
    {u"Austria", u"7"},         {u"France", u"7"},
    {u"Germany", u"7"},         {u"Belgium (French)", u"7"},
    {u"Belgium (Dutch)", u"7"}, {u"Netherlands", u"7"},
    {u"Italy", u"7"},           {u"Spain", u"7"},
    {u"Switzerland", u"13"},    {u"Japan", u"6"},
    {u"Taiwan", u"41"},
};

}  // namespace

std::span<const CodedText> Regions() {
  return kRegions;
}
std::span<const CodedText> Countries() {
  return kCountries;
}
std::span<const CodedText> TaxStates() {
  return kTaxStates;
}
std::span<const CodedText> Counters() {
  return kCounters;
}
std::span<const CodedText> GiftIcons() {
  return kGiftIcons;
}
std::span<const CodedText> InsuranceOptions() {
  return kInsurance;
}

std::optional<Text> CodeOf(std::span<const CodedText> table, TextView text) {
  for (const CodedText& row : table)
    if (text == row.text) return Text(row.code);
  return std::nullopt;
}

std::optional<Text> TextOf(std::span<const CodedText> table, TextView code) {
  for (const CodedText& row : table)
    if (code == row.code) return Text(row.text);
  return std::nullopt;
}

std::optional<Text> CountryRequestCode(TextView country) {
  return CodeOf(kCountryRequest, country);
}
std::optional<Text> CounterRequestCode(TextView counter) {
  return CodeOf(kCounterRequest, counter);
}
std::optional<Text> CurrencyOf(TextView country) {
  return CodeOf(kCurrencies, country);
}

}  // namespace lw
