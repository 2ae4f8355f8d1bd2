#include "core/primitives/regional.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

namespace lw {
namespace {

TEST(Regional, UnitedStates) {
  Regional r = Regional::FromLocale("en_US");
  EXPECT_EQ(r.language_name, u"English (United States)");
  EXPECT_EQ(r.short_date_format, u"M/d/yyyy");
  EXPECT_EQ(r.long_date_format, u"dddd, MMMM d, yyyy");
  EXPECT_EQ(r.currency_symbol, u"$");
  EXPECT_TRUE(r.currency_symbol_first);
  EXPECT_FALSE(r.currency_symbol_space);
  EXPECT_TRUE(r.negative_currency_in_parens);
  EXPECT_EQ(r.decimal_mark, u".");
  EXPECT_EQ(r.thousands_mark, u",");
  EXPECT_EQ(r.money_decimal_mark, u".");
  EXPECT_EQ(r.am_symbol, u"AM");
  EXPECT_EQ(r.pm_symbol, u"PM");
  EXPECT_EQ(r.month_names[0], u"January");
  EXPECT_EQ(r.month_abbrevs[10], u"Nov");
  EXPECT_EQ(r.day_names[0], u"Sunday");
  EXPECT_EQ(r.day_abbrevs[6], u"Sat");
}

TEST(Regional, UnitedKingdomWritesTwentyFourHourTimes) {
  Regional r = Regional::FromLocale("en_GB");
  EXPECT_EQ(r.language_name, u"English (United Kingdom)");
  EXPECT_EQ(r.short_date_format, u"dd/MM/yyyy");
  EXPECT_EQ(r.long_date_format, u"dd MMMM yyyy");
  EXPECT_EQ(r.currency_symbol, u"\u00A3");
  EXPECT_FALSE(r.negative_currency_in_parens);
  EXPECT_TRUE(r.am_symbol.empty());
  EXPECT_TRUE(r.pm_symbol.empty());
}

TEST(Regional, DutchUsesCommaAndBareMonthAbbreviations) {
  Regional r = Regional::FromLocale("nl_NL");
  EXPECT_EQ(r.language_name, u"Dutch (Standard)");
  EXPECT_EQ(r.short_date_format, u"d-M-yyyy");
  EXPECT_EQ(r.long_date_format, u"dddd d MMMM yyyy");
  EXPECT_EQ(r.currency_symbol, u"\u20AC");
  EXPECT_EQ(r.money_decimal_mark, u",");
  EXPECT_EQ(r.decimal_mark, u",");
  EXPECT_EQ(r.thousands_mark, u".");
  EXPECT_TRUE(r.am_symbol.empty());
  const char16_t* expected[] = {u"jan", u"feb", u"mrt", u"apr", u"mei", u"jun",
                                u"jul", u"aug", u"sep", u"okt", u"nov", u"dec"};
  for (int i = 0; i < 12; ++i) EXPECT_EQ(r.month_abbrevs[i], expected[i]) << i;
  EXPECT_EQ(r.month_names[2], u"maart");
  EXPECT_EQ(r.day_names[0], u"zondag");
  EXPECT_EQ(Regional::FromLocale("nl_BE").language_name, u"Dutch (Belgium)");
}

TEST(Regional, SpanishSortOrderDecidesTheName) {
  EXPECT_EQ(Regional::FromLocale("es_ES@collation=traditional").language_name, u"Spanish (Traditional Sort)");
  EXPECT_EQ(Regional::FromLocale("es_ES").language_name, u"Spanish (International Sort)");
  EXPECT_EQ(Regional::FromLocale("es_ES.UTF-8@collation=traditional").language_name,
            u"Spanish (Traditional Sort)");
  EXPECT_EQ(Regional::FromLocale("es_ES@collation=traditional").month_abbrevs[0], u"ene");
}

TEST(Regional, OtherLocalesComeFromIcu) {
  Regional de = Regional::FromLocale("de_DE@euro");
  EXPECT_EQ(de.locale_id, "de_DE");
  EXPECT_EQ(de.language_name, u"German (Standard)");
  EXPECT_EQ(de.short_date_format, u"dd.MM.yyyy");
  EXPECT_FALSE(de.currency_symbol_first);

  Regional sv = Regional::FromLocale("sv_SE");
  EXPECT_EQ(sv.language_name, u"Swedish (Sweden)");
  // Whatever ICU's short pattern is, the year is widened to four digits.
  EXPECT_NE(sv.short_date_format.find(u"yyyy"), Text::npos);
  EXPECT_EQ(sv.short_date_format.find(u"yyyyy"), Text::npos);
  EXPECT_TRUE(sv.am_symbol.empty());
}

TEST(Regional, PlainLocalesCountAsUnitedStates) {
  for (const char* id : {"C", "POSIX", "", "C.UTF-8"}) {
    Regional r = Regional::FromLocale(id);
    EXPECT_EQ(r.locale_id, "en_US") << id;
    EXPECT_EQ(r.language_name, u"English (United States)") << id;
  }
}

// Sets an environment variable for the life of the object and puts the old value back.
class EnvVar {
 public:
  EnvVar(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    if (value)
      setenv(name, value, 1);
    else
      unsetenv(name);
  }
  ~EnvVar() {
    if (old_)
      setenv(name_, old_->c_str(), 1);
    else
      unsetenv(name_);
  }

 private:
  const char* name_;
  std::optional<std::string> old_;
};

TEST(Regional, EnvironmentTakesLcAllThenLang) {
  {
    EnvVar all("LC_ALL", "en_GB.UTF-8");
    EnvVar lang("LANG", "nl_NL.UTF-8");
    EXPECT_EQ(Regional::FromEnvironment().locale_id, "en_GB");
  }
  {
    EnvVar all("LC_ALL", nullptr);
    EnvVar lang("LANG", "nl_NL.UTF-8@euro");
    EXPECT_EQ(Regional::FromEnvironment().language_name, u"Dutch (Standard)");
  }
  {
    EnvVar all("LC_ALL", "");
    EnvVar lang("LANG", "es_ES.UTF-8@collation=traditional");
    EXPECT_EQ(Regional::FromEnvironment().language_name, u"Spanish (Traditional Sort)");
  }
  {
    EnvVar all("LC_ALL", nullptr);
    EnvVar lang("LANG", nullptr);
    EXPECT_EQ(Regional::FromEnvironment().locale_id, "en_US");
  }
}

}  // namespace
}  // namespace lw
