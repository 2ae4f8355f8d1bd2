// The money and date edit boxes of the details and lister pages. They hold text as a text box does;
// besides, a money box shows a currency symbol and a decimal mark of its own, and a date box reads its
// dates day first or month first and has spin buttons.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "screen/control.h"

namespace lw {

class MoneyEdit : public Control {
 public:
  MoneyEdit(Form& form, Text name, int index = -1)
      : Control(form, ControlKind::NumberEdit, std::move(name), index) {}
  Text symbol;
  Text decimal_mark;
  // Also `symbol` and `decimalmark`.
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;
};

// `day_first` 1 shows dates day before month; a click on its spin buttons fires OnSpin with the
// direction (not 0 down, 0 up).
class DateEditBox : public Control {
 public:
  DateEditBox(Form& form, Text name, int index = -1)
      : Control(form, ControlKind::DateEdit, std::move(name), index) {}
  int day_first = 0;
  std::function<void(int direction)> OnSpin;
  void Spin(int direction) {
    if (OnSpin) OnSpin(direction);
  }
  // Also `dayfirst`.
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;
};

}  // namespace lw
