#include "core/primitives/regional.h"

#include "core/primitives/encoding.h"

#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/locid.h>
#include <unicode/numfmt.h>
#include <unicode/smpdtfmt.h>
#include <unicode/unistr.h>

#include <cstdlib>
#include <memory>

namespace lw {

namespace {

Text ToText(const icu::UnicodeString& s) {
  return Text(reinterpret_cast<const char16_t*>(s.getBuffer()), static_cast<size_t>(s.length()));
}

// Import rules compare the language name against the names the desktop gives its locales; ICU's own
// display names differ for the ones that matter, so those come from this table.
struct LanguageEntry {
  const char* language;
  const char* country;
  const char* name;
};
constexpr LanguageEntry kLanguageNames[] = {
    {"nl", "NL", "Dutch (Standard)"},        {"nl", "BE", "Dutch (Belgium)"},
    {"en", "US", "English (United States)"}, {"en", "GB", "English (United Kingdom)"},
    {"de", "DE", "German (Standard)"},       {"fr", "FR", "French (Standard)"},
    {"it", "IT", "Italian (Standard)"},      {"en", "AU", "English (Australia)"},
    {"en", "CA", "English (Canada)"},
};

// Short and long date patterns as the desktop settings hold them for the locales our users have; ICU's
// patterns differ in small ways (two-digit years, dots after day numbers) that letters and imports see.
struct DatePatternEntry {
  const char* id;  // language_COUNTRY
  const char* short_pattern;
  const char* long_pattern;  // nullptr: from ICU
};
constexpr DatePatternEntry kDatePatterns[] = {
    {"en_US", "M/d/yyyy", "dddd, MMMM d, yyyy"},
    {"en_GB", "dd/MM/yyyy", "dd MMMM yyyy"},
    {"nl_NL", "d-M-yyyy", "dddd d MMMM yyyy"},
    {"nl_BE", "d/MM/yyyy", "dddd d MMMM yyyy"},
    {"de_DE", "dd.MM.yyyy", "dddd, d. MMMM yyyy"},
    {"fr_FR", "dd/MM/yyyy", "dddd d MMMM yyyy"},
    {"es_ES", "dd/MM/yyyy", "dddd, d' de 'MMMM' de 'yyyy"},
    {"it_IT", "dd/MM/yyyy", "dddd d MMMM yyyy"},
    {"en_AU", "d/MM/yyyy", "dddd, d MMMM yyyy"},
    {"en_CA", "dd/MM/yyyy", "MMMM d, yyyy"},
};

// ICU pattern letters to the desktop convention: d/dd day, ddd/dddd weekday, M..MMMM month, yyyy year,
// h/hh/H/HH hour, mm minutes, ss seconds, tt the AM/PM mark; quoted literals stay quoted.
Text DesktopPattern(const icu::UnicodeString& icu, bool widen_year) {
  Text in = ToText(icu);
  Text out;
  size_t i = 0;
  while (i < in.size()) {
    char16_t c = in[i];
    if (c == u'\'') {
      // A quoted run, or '' for one apostrophe.
      size_t j = i + 1;
      Text lit;
      while (j < in.size()) {
        if (in[j] == u'\'') {
          if (j + 1 < in.size() && in[j + 1] == u'\'') {
            lit += u'\'';
            j += 2;
            continue;
          }
          break;
        }
        lit += in[j++];
      }
      if (lit.empty() && j == i + 1) lit = u"'";
      out += u'\'';
      out += lit;
      out += u'\'';
      i = j + 1;
      continue;
    }
    if (!((c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'))) {
      // Newer ICU data puts a narrow no-break space before AM/PM; the desktop form has a blank.
      out += (c == u'\u202F' || c == u'\u00A0') ? u' ' : c;
      ++i;
      continue;
    }
    size_t n = 1;
    while (i + n < in.size() && in[i + n] == c) ++n;
    i += n;
    switch (c) {
      case u'y':
      case u'u':
      case u'Y':
        out += (n == 2 && !widen_year) ? u"yy" : u"yyyy";
        break;
      case u'M':
      case u'L':
        out += Text(n > 4 ? 4 : n, u'M');
        break;
      case u'd':
        out += n >= 2 ? u"dd" : u"d";
        break;
      case u'E':
      case u'c':
      case u'e':
        out += n >= 4 ? u"dddd" : u"ddd";
        break;
      case u'h':
      case u'K':
        out += n >= 2 ? u"hh" : u"h";
        break;
      case u'H':
      case u'k':
        out += n >= 2 ? u"HH" : u"H";
        break;
      case u'm':
        out += n >= 2 ? u"mm" : u"m";
        break;
      case u's':
        out += n >= 2 ? u"ss" : u"s";
        break;
      case u'a':
      case u'b':
      case u'B':
        out += u"tt";
        break;
      default:
        // Eras, time zones, quarters: not part of the desktop forms; drop them.
        break;
    }
  }
  // Dropped fields may leave separators at either end ("d MMMM y G" -> "d MMMM yyyy ").
  while (!out.empty() && (out.back() == u' ' || out.back() == u',')) out.pop_back();
  while (!out.empty() && (out.front() == u' ' || out.front() == u',')) out.erase(0, 1);
  return out;
}

icu::UnicodeString IcuPattern(icu::DateFormat::EStyle date_style, icu::DateFormat::EStyle time_style,
                              const icu::Locale& loc) {
  std::unique_ptr<icu::DateFormat> f(icu::DateFormat::createDateTimeInstance(date_style, time_style, loc));
  icu::UnicodeString p;
  if (auto* s = dynamic_cast<icu::SimpleDateFormat*>(f.get())) s->toPattern(p);
  return p;
}

// The locale id without codeset and '@euro'-style modifiers; '@collation=...' keywords stay.
std::string CleanLocaleId(std::string_view raw) {
  std::string id(raw);
  std::string keywords;
  if (auto at = id.find('@'); at != std::string::npos) {
    std::string mod = id.substr(at + 1);
    id.erase(at);
    if (mod.find('=') != std::string::npos) keywords = "@" + mod;
  }
  if (auto dot = id.find('.'); dot != std::string::npos) id.erase(dot);
  if (id.empty() || id == "C" || id == "POSIX") return "en_US";
  return id + keywords;
}

}  // namespace

Regional Regional::FromLocale(std::string_view locale_id) {
  Regional r;
  r.locale_id = CleanLocaleId(locale_id);
  icu::Locale loc = icu::Locale::createCanonical(r.locale_id.c_str());
  if (loc.isBogus() || loc.getLanguage()[0] == '\0') {
    r.locale_id = "en_US";
    loc = icu::Locale("en_US");
  }
  const std::string language = loc.getLanguage();
  const std::string country = loc.getCountry();
  const std::string lang_country = country.empty() ? language : language + "_" + country;
  UErrorCode status = U_ZERO_ERROR;

  // Language name.
  if (language == "es" && country == "ES") {
    char collation[64] = {};
    UErrorCode st = U_ZERO_ERROR;
    loc.getKeywordValue("collation", collation, sizeof collation, st);
    r.language_name = std::string_view(collation) == "traditional" ? u"Spanish (Traditional Sort)"
                                                                   : u"Spanish (International Sort)";
  } else {
    for (const auto& e : kLanguageNames)
      if (language == e.language && country == e.country) r.language_name = T(e.name);
    if (r.language_name.empty()) {
      icu::UnicodeString lang, ctry;
      loc.getDisplayLanguage(icu::Locale::getEnglish(), lang);
      r.language_name = ToText(lang);
      if (!country.empty()) {
        loc.getDisplayCountry(icu::Locale::getEnglish(), ctry);
        r.language_name += u" (" + ToText(ctry) + u")";
      }
    }
  }

  // Date and time patterns.
  const DatePatternEntry* dates = nullptr;
  for (const auto& e : kDatePatterns)
    if (lang_country == e.id) dates = &e;
  icu::UnicodeString short_time = IcuPattern(icu::DateFormat::kNone, icu::DateFormat::kShort, loc);
  icu::UnicodeString medium_time = IcuPattern(icu::DateFormat::kNone, icu::DateFormat::kMedium, loc);
  if (dates) {
    r.short_date_format = T(dates->short_pattern);
    r.long_date_format = T(dates->long_pattern);
  } else {
    r.short_date_format =
        DesktopPattern(IcuPattern(icu::DateFormat::kShort, icu::DateFormat::kNone, loc), true);
    r.long_date_format =
        DesktopPattern(IcuPattern(icu::DateFormat::kFull, icu::DateFormat::kNone, loc), false);
  }
  bool twelve_hour = short_time.indexOf(u'h') >= 0 || short_time.indexOf(u'K') >= 0;
  r.long_time_format = DesktopPattern(medium_time, false);
  if (r.long_time_format.empty()) r.long_time_format = twelve_hour ? u"h:mm:ss tt" : u"HH:mm:ss";

  // Names of months and days, and the AM/PM marks.
  icu::DateFormatSymbols dfs(loc, status);
  if (U_SUCCESS(status)) {
    int32_t n = 0;
    const icu::UnicodeString* months =
        dfs.getMonths(n, icu::DateFormatSymbols::FORMAT, icu::DateFormatSymbols::WIDE);
    for (int i = 0; i < 12 && i < n; ++i) r.month_names[i] = ToText(months[i]);
    const icu::UnicodeString* shorts =
        dfs.getMonths(n, icu::DateFormatSymbols::FORMAT, icu::DateFormatSymbols::ABBREVIATED);
    for (int i = 0; i < 12 && i < n; ++i) {
      r.month_abbrevs[i] = ToText(shorts[i]);
      // The desktop writes Dutch and German abbreviations bare ("mrt", "Okt"), where ICU adds a dot.
      if ((language == "nl" || language == "de") && !r.month_abbrevs[i].empty() &&
          r.month_abbrevs[i].back() == u'.')
        r.month_abbrevs[i].pop_back();
    }
    const icu::UnicodeString* days =
        dfs.getWeekdays(n, icu::DateFormatSymbols::FORMAT, icu::DateFormatSymbols::WIDE);
    // ICU's weekday arrays start at index 1 = Sunday.
    for (int i = 0; i < 7 && i + 1 < n; ++i) r.day_names[i] = ToText(days[i + 1]);
    const icu::UnicodeString* sdays =
        dfs.getWeekdays(n, icu::DateFormatSymbols::FORMAT, icu::DateFormatSymbols::ABBREVIATED);
    for (int i = 0; i < 7 && i + 1 < n; ++i) {
      r.day_abbrevs[i] = ToText(sdays[i + 1]);
      if ((language == "nl" || language == "de") && !r.day_abbrevs[i].empty() &&
          r.day_abbrevs[i].back() == u'.')
        r.day_abbrevs[i].pop_back();
    }
    if (twelve_hour) {
      const icu::UnicodeString* ampm = dfs.getAmPmStrings(n);
      if (n >= 2) {
        r.am_symbol = ToText(ampm[0]);
        r.pm_symbol = ToText(ampm[1]);
      }
    }
  }
  if (r.month_names[0].empty()) {
    // No calendar data at all: fall back on English so that dates still print.
    static const char* const kMonths[] = {"January",   "February", "March",    "April",
                                          "May",       "June",     "July",     "August",
                                          "September", "October",  "November", "December"};
    static const char* const kDays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                        "Thursday", "Friday", "Saturday"};
    for (int i = 0; i < 12; ++i) {
      r.month_names[i] = T(kMonths[i]);
      r.month_abbrevs[i] = r.month_names[i].substr(0, 3);
    }
    for (int i = 0; i < 7; ++i) {
      r.day_names[i] = T(kDays[i]);
      r.day_abbrevs[i] = r.day_names[i].substr(0, 3);
    }
  }
  if (language == "nl") {
    static const char16_t* const kDutch[] = {u"jan", u"feb", u"mrt", u"apr", u"mei", u"jun",
                                             u"jul", u"aug", u"sep", u"okt", u"nov", u"dec"};
    for (int i = 0; i < 12; ++i) r.month_abbrevs[i] = kDutch[i];
  }

  // Number and money marks, currency symbol and its placement.
  status = U_ZERO_ERROR;
  icu::DecimalFormatSymbols sym(loc, status);
  if (U_SUCCESS(status)) {
    auto get = [&](icu::DecimalFormatSymbols::ENumberFormatSymbol s) {
      Text t = ToText(sym.getSymbol(s));
      // ICU writes the narrow no-break space where the desktop uses the ordinary no-break space.
      for (auto& c : t)
        if (c == u'\u202F') c = u'\u00A0';
      return t;
    };
    r.decimal_mark = get(icu::DecimalFormatSymbols::kDecimalSeparatorSymbol);
    r.thousands_mark = get(icu::DecimalFormatSymbols::kGroupingSeparatorSymbol);
    r.money_decimal_mark = get(icu::DecimalFormatSymbols::kMonetarySeparatorSymbol);
    r.money_thousands_mark = get(icu::DecimalFormatSymbols::kMonetaryGroupingSeparatorSymbol);
    r.currency_symbol = get(icu::DecimalFormatSymbols::kCurrencySymbol);
  }
  if (r.decimal_mark.empty()) r.decimal_mark = u".";
  if (r.money_decimal_mark.empty()) r.money_decimal_mark = r.decimal_mark;
  if (r.money_thousands_mark.empty()) r.money_thousands_mark = r.thousands_mark;

  status = U_ZERO_ERROR;
  std::unique_ptr<icu::NumberFormat> cf(icu::NumberFormat::createCurrencyInstance(loc, status));
  if (U_SUCCESS(status)) {
    if (auto* df = dynamic_cast<icu::DecimalFormat*>(cf.get())) {
      icu::UnicodeString pat;
      df->toPattern(pat);
      Text p = ToText(pat);
      size_t semi = p.find(u';');
      Text pos = p.substr(0, semi);
      size_t cur = pos.find(u'\u00A4');
      size_t digit = pos.find_first_of(u"#0");
      if (cur != Text::npos && digit != Text::npos) {
        r.currency_symbol_first = cur < digit;
        if (r.currency_symbol_first) {
          r.currency_symbol_space = cur + 1 < pos.size() && pos[cur + 1] != u'#' && pos[cur + 1] != u'0';
        } else {
          r.currency_symbol_space = cur > 0 && pos[cur - 1] != u'0' && pos[cur - 1] != u'#';
        }
      }
      if (semi != Text::npos) {
        Text neg = p.substr(semi + 1);
        size_t c = neg.find(u'\u00A4'), m = neg.find(u'-');
        r.negative_sign_after_symbol = c != Text::npos && m != Text::npos && c < m && r.currency_symbol_first;
      }
    }
  }
  // Only the United States desktop writes negative money in parentheses.
  r.negative_currency_in_parens = lang_country == "en_US";
  if (lang_country == "nl_NL" || lang_country == "nl_BE") r.negative_sign_after_symbol = true;
  return r;
}

Regional Regional::FromEnvironment() {
  for (const char* name : {"LC_ALL", "LANG"}) {
    const char* v = std::getenv(name);
    if (v && *v) return FromLocale(v);
  }
  return FromLocale("en_US");
}

}  // namespace lw
