// The site clock on the main screen: the time left of the auction on show with its colour and heading,
// the timer that counts it down, the site clock control and its date labels, the regional symbols of
// the money fields and the date edits of the details page.
#pragma once

#include <array>
#include <functional>

#include "core/primitives/types.h"
#include "screen/control.h"

namespace lw {

class ImportScreen;
class MainForm;

// A money or number edit box: the value as text, with the currency symbol and decimal mark it shows.
class MoneyEdit : public Control {
 public:
  MoneyEdit(Form& form, Text name, int index = -1)
      : Control(form, ControlKind::NumberEdit, std::move(name), index) {}
  Text symbol;
  Text decimal_mark;
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;
};

// A date or time edit box of the details page. `day_first` 1 shows dates day before month; a click on
// its spin buttons fires OnSpin with the direction (not 0 down, 0 up).
class DateEditBox : public Control {
 public:
  DateEditBox(Form& form, Text name, int index = -1)
      : Control(form, ControlKind::DateEdit, std::move(name), index) {}
  int day_first = 0;
  std::function<void(int direction)> OnSpin;
  void Spin(int direction) {
    if (OnSpin) OnSpin(direction);
  }
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;
};

// The controls of the details page that show the time left or take its colour, created on the main
// form where nothing else has made them yet.
void AddSiteClockControls(MainForm& form);

// RegisterSiteClock (auction_imports.h) registers the routines `calculate_time`, `locale_formatting`,
// `auction_end_time` and `auction_end_time_2` on the main form's data, runs `Timer1` every second and
// hooks the date edits.

}  // namespace lw
