// The small forms of start-up: the splash screen, which doubles as the About box, and the first-start
// wizard that asks for the first user id.
#pragma once

#include "screen/form.h"

namespace lw {

struct Program;

class SplashForm : public Form {
 public:
  SplashForm(Screen& screen, Program& program);
  Control& status_lbl;
  Control& version_lbl;
  Control& ok_btn;
  // The About box: the same form with its own caption and the OK button on, shown until OK.
  void ShowAbout();

 private:
  Program* program_;
};

class WizardForm : public Form {
 public:
  WizardForm(Screen& screen, Program& program);
  Control& savebtn;

 private:
  Program* program_;
};

}  // namespace lw
