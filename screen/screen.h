// The screen: every form of the program, the Ui that answers for the user and the event queue of the
// model thread. One Screen lives in the program context for the whole run.
#pragma once

#include <memory>
#include <vector>

#include "screen/event_queue.h"
#include "screen/form.h"
#include "screen/screen_observer.h"
#include "screen/ui.h"

namespace lw {

class Screen {
 public:
  Screen(Ui& ui, EventQueue& queue) : ui_(&ui), queue_(&queue) {}
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  Ui& ui() const { return *ui_; }
  EventQueue& queue() const { return *queue_; }

  // Makes a form of class F, constructed from (Screen&, args...), and keeps it for the run.
  template <class F, class... A>
  F& Create(A&&... args) {
    auto form = std::make_unique<F>(*this, std::forward<A>(args)...);
    F& ref = *form;
    Adopt(std::move(form));
    return ref;
  }
  Form& Adopt(std::unique_ptr<Form> form);
  // The form of that name (case ignored), or nullptr.
  Form* FindForm(TextView name) const;
  std::vector<Form*> forms() const;

  // The program's main form: where references without a form name end up.
  Form* main_form = nullptr;

  // Modal forms open now, the innermost last. Form::Show keeps this.
  const std::vector<Form*>& modal_stack() const { return modal_stack_; }
  Form* TopModal() const { return modal_stack_.empty() ? nullptr : modal_stack_.back(); }
  void PushModal(Form& form) { modal_stack_.push_back(&form); }
  void PopModal(Form& form);

  // A control by reference: with a form name on that form only; without one on the top-most modal form
  // first, then on the main form. Nullptr when none has it.
  Control* Resolve(TextView form, TextView name, int index) const;

  // The front end that draws the screen, told of every change; nullptr when none is drawn (the driver).
  ScreenObserver* observer() const { return observer_; }
  void SetObserver(ScreenObserver* observer) { observer_ = observer; }

  // Ends the process through the Ui.
  [[noreturn]] void End(int code = 0) { ui_->EndProcess(code); }

 private:
  Ui* ui_;
  EventQueue* queue_;
  std::vector<std::unique_ptr<Form>> forms_;
  std::vector<Form*> modal_stack_;
  ScreenObserver* observer_ = nullptr;
};

}  // namespace lw
