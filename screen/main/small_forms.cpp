#include "screen/main/small_forms.h"

#include <cstdio>

#include "core/primitives/encoding.h"
#include "screen/main/main_form.h"
#include "screen/main/userids_rules.h"

namespace lw {

SplashForm::SplashForm(Screen& screen, Program& program)
    : Form(screen, u"splash"),
      status_lbl(Add(ControlKind::Label, u"status_lbl")),
      version_lbl(Add(ControlKind::Label, u"version_lbl")),
      ok_btn(Add(ControlKind::Button, u"ok_btn")),
      program_(&program) {
  caption = u"Lotwright";
  width = 6000;
  height = 4000;
  ok_btn.SetCaption(u"OK");
  ok_btn.SetVisible(false);
  ok_btn.OnClick = [this] { Unload(); };
  OnActivate = [this] {
    status_lbl.SetCaption(u"initializing....");
    char version[32];
    std::snprintf(version, sizeof version, "Version %.2f", program_->startup.version);
    version_lbl.SetCaption(FromUtf8(version));
    if (ok_btn.visible()) return;
    // Start-up: the main form loads while the splash screen is up, then the splash goes.
    if (program_->main) program_->main->Load();
    status_lbl.SetCaption(Text());
    if (!ok_btn.visible()) Unload();
  };
}

void SplashForm::ShowAbout() {
  caption = u"About Lotwright";
  ok_btn.SetVisible(true);
  Show(true);
}

WizardForm::WizardForm(Screen& screen, Program& program)
    : Form(screen, u"wizard_frm"), savebtn(Add(ControlKind::Button, u"savebtn")), program_(&program) {
  caption = u"Simple Setup Wizard";
  static const char16_t* kFields[] = {u"Userid",  u"Password",  u"UserEmail", u"Name",
                                      u"address", u"Signiture", u"Location"};
  for (int i = 0; i < 7; ++i) {
    Control& label = Add(ControlKind::Label, u"wizard_lbl", i);
    label.SetCaption(kFields[i]);
    label.layout.field = &Add(ControlKind::TextBox, u"wizard_txt", i);
  }
  // The user id and password are kept lower-case and trimmed, as the site compares them.
  for (int i : {0, 1}) {
    Control& t = Get(u"wizard_txt", i);
    t.OnLostFocus = [&t] {
      Text clean = CleanCredential(t.text());
      if (clean != t.text()) t.SetText(clean);
    };
  }
  savebtn.SetCaption(u"Save and Exit");
  // What the wizard saves is its own routine; without it the button only closes the form.
  savebtn.OnClick = [this] {
    if (!program_->routines.Call("wizard_savebtn")) Unload();
  };
}

}  // namespace lw
