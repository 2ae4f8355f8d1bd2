#include "screen/screen.h"

#include <algorithm>

#include "core/primitives/encoding.h"
#include "screen/names.h"

namespace lw {

Form& Screen::Adopt(std::unique_ptr<Form> form) {
  if (FindForm(form->name())) throw RuntimeError(360, "Object already loaded: " + ToUtf8(form->name()));
  forms_.push_back(std::move(form));
  return *forms_.back();
}

Form* Screen::FindForm(TextView name) const {
  for (const auto& f : forms_)
    if (SameName(f->name(), name)) return f.get();
  return nullptr;
}

std::vector<Form*> Screen::forms() const {
  std::vector<Form*> out;
  for (const auto& f : forms_) out.push_back(f.get());
  return out;
}

void Screen::PopModal(Form& form) {
  auto it = std::find(modal_stack_.rbegin(), modal_stack_.rend(), &form);
  if (it != modal_stack_.rend()) modal_stack_.erase(std::next(it).base());
}

Control* Screen::Resolve(TextView form, TextView name, int index) const {
  if (!form.empty()) {
    Form* f = FindForm(form);
    return f ? f->Find(name, index) : nullptr;
  }
  if (Form* top = TopModal())
    if (Control* c = top->Find(name, index)) return c;
  return main_form ? main_form->Find(name, index) : nullptr;
}

}  // namespace lw
