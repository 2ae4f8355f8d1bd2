// A form of the screen model: its controls by name and index, its geometry, and the events of loading,
// showing and unloading. The program's forms derive from Form and build their controls in their
// constructors; handlers are set there or in Load.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <unordered_map>
#include <vector>

#include "screen/control.h"

namespace lw {

class Screen;
class Ui;
class EventQueue;

namespace err {
inline constexpr int kControlArrayElementMissing = 340;
}  // namespace err

class Form {
 public:
  Form(Screen& screen, Text name);
  virtual ~Form();
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  Screen& screen() const { return *screen_; }
  Ui& ui() const;
  EventQueue& queue() const;
  const Text& name() const { return name_; }

  Text caption;
  // Geometry in twips; window_state 0 normal, 1 minimised, 2 maximised. A form that sets no size of
  // its own keeps the default.
  static constexpr int kDefaultWidth = 11445;
  static constexpr int kDefaultHeight = 9000;
  int left = 0;
  int top = 0;
  int width = kDefaultWidth;
  int height = kDefaultHeight;
  int window_state = 0;
  bool enabled = true;

  // Adds a control of a class constructible from (Form&, Text name, int index).
  template <class T>
  T& Add(Text name, int index = -1) {
    static_assert(std::is_base_of_v<Control, T>);
    auto control = std::make_unique<T>(*this, std::move(name), index);
    T& ref = *control;
    Adopt(std::move(control));
    return ref;
  }
  // Adds a plain control of a kind that needs no class of its own (labels, text boxes, buttons, check
  // boxes, option buttons, frames, pictures, meters, date and number edits).
  Control& Add(ControlKind kind, Text name, int index = -1);
  // Adds a menu entry with its caption under `parent` (nullptr for a top-level menu).
  Menu& AddMenu(Text name, const Text& caption, Menu* parent = nullptr, int index = -1);
  // Takes a control made elsewhere; a second control with the same name and index raises 360.
  Control& Adopt(std::unique_ptr<Control> control);

  // The control of that name (case ignored) and index (-1 for none), or nullptr.
  Control* Find(TextView name, int index = -1) const;
  // As Find, but raises 340 when there is no such control and 13 when it is of another class.
  template <class T = Control>
  T& Get(TextView name, int index = -1) const {
    Control& c = GetControl(name, index);
    T* t = dynamic_cast<T*>(&c);
    if (!t) throw RuntimeError(err::kTypeMismatch, "Type mismatch");
    return *t;
  }
  // Members of a control array in order of index.
  std::vector<Control*> Array(TextView name) const;
  const std::vector<std::unique_ptr<Control>>& controls() const { return controls_; }

  bool loaded() const { return loaded_; }
  bool visible() const { return visible_; }
  bool modal() const { return modal_; }
  // Loads the form once: fires OnLoad.
  void Load();
  // Loads the form when needed, makes it visible and fires OnActivate. Modal: runs the Ui's modal loop
  // and returns when the form is hidden or unloaded.
  void Show(bool modal = false);
  void Hide();
  // Asks OnQueryUnload and OnUnload (either may cancel), then hides the form and marks it unloaded.
  // Returns false when cancelled.
  bool Unload();
  // Makes the form the active one again (fires OnActivate), as when a modal form over it closes.
  void Activate();
  // Tells the screen's observer that the form changed: shown, hidden, unloaded, or a new caption or
  // geometry set from code.
  void Notify();

  // The control that has the focus, or nullptr. Moving the focus fires LostFocus and GotFocus.
  Control* active_control() const { return active_; }
  void SetFocus(Control* control);
  // Forgets a control that is going away.
  void ControlGone(Control& control);

  // The form sees keys before the control that has the focus.
  bool key_preview = false;

  std::function<void()> OnLoad;
  std::function<void()> OnActivate;
  std::function<void()> OnResize;
  std::function<void(int& cancel)> OnQueryUnload;
  std::function<void(int& cancel)> OnUnload;
  std::function<void(int& key_code, int shift)> OnKeyDown;
  std::function<void(int& key_ascii)> OnKeyPress;

  // Shows a popup menu through the Ui.
  void PopupMenu(Menu& menu);

  // Form properties by name (case ignored) for the driver: Width, Height, Left, Top, WindowState,
  // Caption, Visible, Enabled. Property gives nothing for an unknown name; SetProperty returns false for
  // one and raises UserError for a value it cannot take. Setting geometry fires OnResize.
  virtual std::optional<Text> Property(TextView name) const;
  virtual bool SetProperty(TextView name, const Text& value);

 private:
  Control& GetControl(TextView name, int index) const;
  Screen* screen_;
  Text name_;
  std::vector<std::unique_ptr<Control>> controls_;
  // Controls by folded name, array members in the order they were added: lookups by name are frequent.
  std::unordered_map<Text, std::vector<Control*>> by_name_;
  Control* active_ = nullptr;
  bool loaded_ = false;
  bool visible_ = false;
  bool modal_ = false;
};

}  // namespace lw
