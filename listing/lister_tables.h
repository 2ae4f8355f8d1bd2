// The fixed lists of the Sell page and what each of their texts stands for: in the setup row, where the
// listing settings are kept, and in the item request the site checks. The site reads these codes, so a
// text or a code is changed here and nowhere else.
#pragma once

#include <optional>
#include <span>

#include "core/primitives/types.h"

namespace lw {

struct CodedText {
  const char16_t* text;
  const char16_t* code;
};

// In the order the lists offer them; the first row is the default unless said otherwise.
std::span<const CodedText> Regions();           // list_region_combo -> listregionally (61 rows)
std::span<const CodedText> Countries();         // country_loc_combo -> countrylocation, the site id (15 rows)
std::span<const CodedText> TaxStates();         // Ipurhase_Sale_tax_loc_combo -> taxstate (53 rows)
std::span<const CodedText> Counters();          // counter_combo -> counter_type
std::span<const CodedText> GiftIcons();         // gift_icon_combo -> gifticon
std::span<const CodedText> InsuranceOptions();  // insurance_option_combo -> insurance_option

// The country shown at start, the gift combo's start text (no row of its list), and the country a
// stored site id 1 brings back, which no user can pick.
inline constexpr char16_t kDefaultCountry[] = u"United States";
inline constexpr char16_t kGiftStartText[] = u"No gift icon";
inline constexpr char16_t kNoCountry[] = u"None";

// The code of a text, by exact comparison; nothing for a text outside the table.
std::optional<Text> CodeOf(std::span<const CodedText> table, TextView text);
// The first text whose code equals `code` exactly; nothing for a code outside the table.
std::optional<Text> TextOf(std::span<const CodedText> table, TextView code);

// What the item request says for a country and a counter, and the currency of a country; nothing for a
// text outside the tables.
std::optional<Text> CountryRequestCode(TextView country);
std::optional<Text> CounterRequestCode(TextView counter);
std::optional<Text> CurrencyOf(TextView country);

}  // namespace lw
