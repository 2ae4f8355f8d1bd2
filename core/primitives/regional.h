// The user's regional settings, read once at start from the locale (LC_ALL, then LANG) through ICU.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "core/primitives/types.h"

namespace lw {

struct Regional {
  std::string locale_id = "en_US";  // ICU locale id the values were read from
  Text currency_symbol;             // "$", "£", "€"
  Text language_name;               // desktop naming: "English (United States)", "Dutch (Standard)"
  Text short_date_format;           // desktop form: "M/d/yyyy", "dd/MM/yyyy", "d-M-yyyy"
  Text long_date_format;            // desktop form: "dddd, MMMM d, yyyy"
  Text money_decimal_mark;          // "." or ","
  Text money_thousands_mark;
  Text decimal_mark;
  Text thousands_mark;
  Text am_symbol, pm_symbol;  // empty where the locale writes 24-hour times
  Text long_time_format;      // desktop form: "h:mm:ss tt", "HH:mm:ss"
  bool currency_symbol_first = true;
  bool currency_symbol_space = false;
  bool negative_currency_in_parens = true;  // en_US "($1.00)"; others "-$1.00" style
  bool negative_sign_after_symbol = false;  // nl_NL "€ -1,00" rather than "-€ 1,00"
  std::array<Text, 12> month_names;         // "January"
  std::array<Text, 12> month_abbrevs;       // "Jan"
  std::array<Text, 7> day_names;            // Sunday first
  std::array<Text, 7> day_abbrevs;

  // Values for an ICU locale id ("en_US", "nl_NL", "es_ES@collation=traditional"). "C" and "POSIX"
  // count as en_US.
  static Regional FromLocale(std::string_view locale_id);
  // Values for the process locale: LC_ALL, then LANG, else en_US.
  static Regional FromEnvironment();
};

}  // namespace lw
