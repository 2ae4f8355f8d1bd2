#include "screen/form.h"

#include <algorithm>

#include "core/primitives/encoding.h"
#include "screen/data_control.h"
#include "screen/grid.h"
#include "screen/names.h"
#include "screen/property_args.h"
#include "screen/report_viewer.h"
#include "screen/screen.h"
#include "screen/tree_view.h"

namespace lw {

Form::Form(Screen& screen, Text name) : screen_(&screen), name_(std::move(name)) {
  caption = name_;
}

Form::~Form() {
  // Controls go while the form is still whole: their destructors report to it.
  by_name_.clear();
  while (!controls_.empty()) controls_.pop_back();
}

Ui& Form::ui() const {
  return screen_->ui();
}
EventQueue& Form::queue() const {
  return screen_->queue();
}

Control& Form::Add(ControlKind kind, Text name, int index) {
  std::unique_ptr<Control> c;
  switch (kind) {
    case ControlKind::ComboBox:
      c = std::make_unique<ComboBox>(*this, std::move(name), index);
      break;
    case ControlKind::ListBox:
      c = std::make_unique<ListBox>(*this, std::move(name), index);
      break;
    case ControlKind::Grid:
      c = std::make_unique<Grid>(*this, std::move(name), index);
      break;
    case ControlKind::Menu:
      c = std::make_unique<Menu>(*this, std::move(name), index);
      break;
    case ControlKind::Toolbar:
      c = std::make_unique<Toolbar>(*this, std::move(name), index);
      break;
    case ControlKind::ListBar:
      c = std::make_unique<ListBar>(*this, std::move(name), index);
      break;
    case ControlKind::TabStrip:
      c = std::make_unique<TabStrip>(*this, std::move(name), index);
      break;
    case ControlKind::StatusBar:
      c = std::make_unique<StatusBar>(*this, std::move(name), index);
      break;
    case ControlKind::Timer:
      c = std::make_unique<Timer>(*this, std::move(name), index);
      break;
    case ControlKind::Clock:
      c = std::make_unique<ClockControl>(*this, std::move(name), index);
      break;
    case ControlKind::TreeView:
      c = std::make_unique<TreeView>(*this, std::move(name), index);
      break;
    case ControlKind::WebBrowser:
      c = std::make_unique<BrowserControl>(*this, std::move(name), index);
      break;
    case ControlKind::DataControl:
      c = std::make_unique<DataControl>(*this, std::move(name), index);
      break;
    case ControlKind::ReportViewer:
      c = std::make_unique<ReportViewer>(*this, std::move(name), index);
      break;
    default:
      c = std::make_unique<Control>(*this, kind, std::move(name), index);
  }
  return Adopt(std::move(c));
}

Menu& Form::AddMenu(Text name, const Text& caption, Menu* parent, int index) {
  auto menu = std::make_unique<Menu>(*this, std::move(name), index, parent);
  menu->SetCaption(caption);
  Menu& ref = *menu;
  Adopt(std::move(menu));
  return ref;
}

Control& Form::Adopt(std::unique_ptr<Control> control) {
  if (&control->form() != this) throw std::logic_error("control adopted by a form it does not belong to");
  auto& same = by_name_[FoldName(control->name())];
  for (const Control* c : same) {
    // The same control twice is a load of a loaded control. A plain control and the members of an array
    // may share a name: the screens name a lone `Label1` beside the members `Label1(89)` and on.
    if (c->index() == control->index())
      throw RuntimeError(360, "Object already loaded: " + ToUtf8(control->Reference()));
  }
  same.push_back(control.get());
  controls_.push_back(std::move(control));
  if (ScreenObserver* observer = screen_->observer()) observer->ControlAdded(*controls_.back());
  return *controls_.back();
}

Control* Form::Find(TextView name, int index) const {
  auto it = by_name_.find(FoldName(name));
  if (it == by_name_.end()) return nullptr;
  for (Control* c : it->second)
    if (c->index() == index) return c;
  return nullptr;
}

Control& Form::GetControl(TextView name, int index) const {
  if (Control* c = Find(name, index)) return *c;
  std::string ref = ToUtf8(name);
  if (index >= 0) ref += "(" + std::to_string(index) + ")";
  throw RuntimeError(err::kControlArrayElementMissing, "Control array element '" + ref + "' doesn't exist");
}

std::vector<Control*> Form::Array(TextView name) const {
  std::vector<Control*> out;
  if (auto it = by_name_.find(FoldName(name)); it != by_name_.end())
    for (Control* c : it->second)
      if (c->index() >= 0) out.push_back(c);
  std::sort(out.begin(), out.end(), [](Control* a, Control* b) { return a->index() < b->index(); });
  return out;
}

void Form::Load() {
  if (loaded_) return;
  loaded_ = true;
  if (OnLoad) OnLoad();
}

void Form::Show(bool modal) {
  if (modal && modal_) throw RuntimeError(400, "Form already displayed; can't show modally");
  Load();
  if (!loaded_) return;  // Load unloaded it again
  visible_ = true;
  Notify();
  Activate();
  if (!modal || !visible_) return;
  modal_ = true;
  screen_->PushModal(*this);
  try {
    ui().ShowModal(*this);
  } catch (...) {
    screen_->PopModal(*this);
    modal_ = false;
    throw;
  }
  screen_->PopModal(*this);
  modal_ = false;
}

void Form::Hide() {
  if (!visible_) return;
  visible_ = false;
  Notify();
}

void Form::Notify() {
  if (ScreenObserver* observer = screen_->observer()) observer->FormChanged(*this);
}

bool Form::Unload() {
  if (!loaded_) return true;
  int cancel = 0;
  if (OnQueryUnload) OnQueryUnload(cancel);
  if (cancel) return false;
  if (OnUnload) OnUnload(cancel);
  if (cancel) return false;
  visible_ = false;
  loaded_ = false;
  SetFocus(nullptr);
  Notify();
  return true;
}

void Form::Activate() {
  if (OnActivate) OnActivate();
}

void Form::SetFocus(Control* control) {
  if (control == active_) return;
  Control* previous = active_;
  active_ = control;
  if (previous && previous->OnLostFocus) previous->OnLostFocus();
  if (control && active_ == control && control->OnGotFocus) control->OnGotFocus();
}

void Form::ControlGone(Control& control) {
  if (active_ == &control) active_ = nullptr;
  if (ScreenObserver* observer = screen_->observer()) observer->ControlRemoved(control);
}

void Form::PopupMenu(Menu& menu) {
  // A desktop popup is chosen from before this returns; the driver's is chosen by its next command,
  // so the menu stays popped up until the Ui closes it.
  menu.popped_up = true;
  ui().PopupMenu(*this, menu);
}

std::optional<Text> Form::Property(TextView name) const {
  const Text n = FoldName(name);
  if (n == u"width") return IntText(width);
  if (n == u"height") return IntText(height);
  if (n == u"left") return IntText(left);
  if (n == u"top") return IntText(top);
  if (n == u"windowstate") return IntText(window_state);
  if (n == u"caption" || n == u"text") return caption;
  if (n == u"visible") return BoolText(visible_);
  if (n == u"enabled") return BoolText(enabled);
  if (n == u"name") return name_;
  return std::nullopt;
}

bool Form::SetProperty(TextView name, const Text& value) {
  const Text n = FoldName(name);
  if (n == u"caption" || n == u"text") {
    caption = value;
    Notify();
    return true;
  }
  if (n == u"visible" || n == u"enabled") {
    bool on;
    if (value == u"1" || value == u"-1" || SameName(value, u"true"))
      on = true;
    else if (value == u"0" || SameName(value, u"false"))
      on = false;
    else
      throw UserError("form property " + ToUtf8(name) + " takes True or False");
    if (n == u"enabled")
      enabled = on;
    else if (on)
      Show(false);
    else
      Hide();
    return true;
  }
  int* target = n == u"width"         ? &width
                : n == u"height"      ? &height
                : n == u"left"        ? &left
                : n == u"top"         ? &top
                : n == u"windowstate" ? &window_state
                                      : nullptr;
  if (!target) return false;
  int v = 0;
  if (!ParseInt(value, v)) throw UserError("form property " + ToUtf8(name) + " takes a whole number");
  if (n == u"windowstate" && (v < 0 || v > 2)) throw UserError("WindowState is 0, 1 or 2");
  if ((n == u"width" || n == u"height") && v < 0) throw UserError(ToUtf8(name) + " cannot be negative");
  *target = v;
  Notify();
  if (OnResize) OnResize();
  return true;
}

}  // namespace lw
