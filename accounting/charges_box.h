// The numeric boxes of the charges dialogs and of the fee totals: a money box whose value is a single-
// precision number and whose text is that number with two places under the locale. Money passes through
// binary floating point here and nowhere else, so the conversions between a box and exact money live
// beside it.
#pragma once

#include <optional>

#include "core/primitives/regional.h"
#include "core/primitives/types.h"
#include "screen/edits.h"

namespace lw {

class Form;

// The decimal a single-precision value stands for: its seven significant digits, as the value is shown
// and stored. 0.825f is 0.825, not 0.824999988.
double SingleDecimal(float value);
// A single-precision value as exact money (seven significant digits, then four places). Amounts above
// about 100,000 lose their cents on the way, which is accepted. Raises 6 beyond the range of money.
Currency SingleToCurrency(float value);
// A number as a single-precision value; 6 when it is beyond that range.
float ToSingle(double value);

class ChargeBox : public MoneyEdit {
 public:
  ChargeBox(Form& form, Text name, int index, const Regional& regional);

  // Adds a box to `form`; its background is grey until code makes it an input box.
  static ChargeBox& AddTo(Form& form, Text name, int index, const Regional& regional);

  // The single-precision value: what code put in, else the text read under the locale (empty is 0).
  // Raises 13 for a text that is no number.
  float Single() const;
  // Puts a number in (made single precision) and shows it with two places; fires Change.
  void SetSingle(double value);
  // A store value: Null empties the box, anything else is put in as a number.
  void SetAmount(const Variant& value);

  // Text put in directly, typed or by code, is read afresh.
  void SetText(const Text& text) override;
  // A box for numbers takes none of anything else: a text that is no number is refused, and a key that
  // would make one is dropped.
  void UserSet(const Text& value) override;
  void UserKey(int key_code, int ascii) override;
  // `value` is the single-precision value as a general number under the locale.
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;

 private:
  bool Readable(const Text& text) const;
  const Regional* regional_;
  std::optional<float> exact_;
};

}  // namespace lw
