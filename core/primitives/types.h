// The value types every part of the program speaks: text of 16-bit characters, exact money, dates as
// day numbers, yes/no as -1/0, a loosely typed value as a store field holds it, and run-time errors
// that carry the number the handlers decide on.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>

namespace lw {

// Positions in a Text count from 1; 0 means "not found".
using Text = std::u16string;
using TextView = std::u16string_view;

// Yes/no as the program stores and compares it.
inline constexpr int kTrue = -1;
inline constexpr int kFalse = 0;
inline constexpr int YesNo(bool b) {
  return b ? kTrue : kFalse;
}

// A run-time error with the number that handlers test (3024, 3265, 53, 62, 13, 380, 3421 ...).
class RuntimeError : public std::runtime_error {
 public:
  RuntimeError(int number, const std::string& description)
      : std::runtime_error(description), number_(number) {}
  int number() const { return number_; }
  std::string description() const { return what(); }

 private:
  int number_;
};

// Well-known run-time error numbers.
namespace err {
inline constexpr int kInvalidProcedureCall = 5;
inline constexpr int kOverflow = 6;
inline constexpr int kTypeMismatch = 13;
inline constexpr int kFileNotFound = 53;
inline constexpr int kInputPastEnd = 62;
inline constexpr int kObjectVariableNotSet = 91;
inline constexpr int kInvalidUseOfNull = 94;
inline constexpr int kInvalidPropertyValue = 380;
inline constexpr int kStoreFileNotFound = 3024;
inline constexpr int kSyntaxError = 3075;   // malformed statement or a value that breaks it
inline constexpr int kItemNotFound = 3265;  // a column the cursor lacks
inline constexpr int kNoCurrentRecord = 3021;
inline constexpr int kDataTypeConversion = 3421;
}  // namespace err

// Exact money: four decimal places kept, stored as an integer scaled by 10 000.
class Currency {
 public:
  static constexpr int64_t kScale = 10000;
  constexpr Currency() = default;
  static constexpr Currency FromScaled(int64_t scaled) {
    Currency c;
    c.scaled_ = scaled;
    return c;
  }
  // Rounds to four places, halves to even, as a conversion to money does. Raises 6 on overflow.
  static Currency FromDouble(double v);
  constexpr int64_t scaled() const { return scaled_; }
  double ToDouble() const { return static_cast<double>(scaled_) / kScale; }
  // Whole number, halves to the nearer even number (2.5 -> 2, 3.5 -> 4, -2.5 -> -2).
  int64_t ToWhole() const;

  friend constexpr Currency operator+(Currency a, Currency b) { return FromScaled(a.scaled_ + b.scaled_); }
  friend constexpr Currency operator-(Currency a, Currency b) { return FromScaled(a.scaled_ - b.scaled_); }
  constexpr Currency operator-() const { return FromScaled(-scaled_); }
  Currency& operator+=(Currency o) {
    scaled_ += o.scaled_;
    return *this;
  }
  Currency& operator-=(Currency o) {
    scaled_ -= o.scaled_;
    return *this;
  }
  friend constexpr auto operator<=>(Currency a, Currency b) = default;

 private:
  int64_t scaled_ = 0;
};

// Date and time: days since 1899-12-30, time of day as the fraction.
struct Date {
  double serial = 0;
  constexpr Date() = default;
  constexpr explicit Date(double s) : serial(s) {}
  friend constexpr auto operator<=>(Date a, Date b) = default;
};

// Civil calendar helpers on the serial day number.
struct CivilTime {
  int year = 1899, month = 12, day = 30;
  int hour = 0, minute = 0, second = 0;
};
Date MakeDate(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);
// Splits a date into its calendar parts; the time is rounded to the nearest second.
CivilTime SplitDate(Date d);
bool HasTimePart(Date d);
// 1 = Sunday ... 7 = Saturday.
int Weekday(Date d);

struct Null {
  friend constexpr bool operator==(Null, Null) { return true; }
};

// What a store field or a loosely typed value holds.
class Variant {
 public:
  enum class Kind { Null, Bool, Number, Currency, Date, Text };
  using Data = std::variant<Null, bool, double, Currency, lw::Date, Text>;

  Variant() = default;
  Variant(Null) {}
  Variant(bool b) : data_(b) {}
  Variant(int n) : data_(static_cast<double>(n)) {}
  Variant(int64_t n) : data_(static_cast<double>(n)) {}
  Variant(double d) : data_(d) {}
  Variant(lw::Currency c) : data_(c) {}
  Variant(lw::Date d) : data_(d) {}
  Variant(Text t) : data_(std::move(t)) {}
  Variant(const char16_t* t) : data_(Text(t)) {}

  Kind kind() const { return static_cast<Kind>(data_.index()); }
  bool IsNull() const { return kind() == Kind::Null; }
  const Data& data() const { return data_; }

  const Text* text() const { return std::get_if<Text>(&data_); }
  const double* number() const { return std::get_if<double>(&data_); }
  const lw::Currency* currency() const { return std::get_if<lw::Currency>(&data_); }
  const lw::Date* date() const { return std::get_if<lw::Date>(&data_); }
  const bool* boolean() const { return std::get_if<bool>(&data_); }

  friend bool operator==(const Variant& a, const Variant& b) { return a.data_ == b.data_; }

 private:
  Data data_;
};

// Null raises 94, as arithmetic or assignment of a null would.
void RequireNotNull(const Variant& v);

// The number a value holds without reading text: yes/no as -1/0, money, a date's serial day. Nothing for
// Null and text, whose reading differs between Val and the locale conversions.
std::optional<double> NumberOf(const Variant& v);

}  // namespace lw
