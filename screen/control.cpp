#include "screen/control.h"

#include <algorithm>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "screen/data_control.h"
#include "screen/form.h"
#include "screen/names.h"
#include "screen/screen.h"

namespace lw {

namespace {

Text Bool(bool b) {
  return b ? T("True") : T("False");
}
Text Number(long long n) {
  return T(std::to_string(n));
}

// Restores a flag on every way out, so a throwing Change handler cannot leave a control "loading".
class FlagScope {
 public:
  explicit FlagScope(bool& flag) : flag_(flag), old_(flag) { flag_ = true; }
  ~FlagScope() { flag_ = old_; }

 private:
  bool& flag_;
  bool old_;
};

}  // namespace

const char* KindName(ControlKind kind) {
  switch (kind) {
    case ControlKind::Label:
      return "label";
    case ControlKind::TextBox:
      return "text box";
    case ControlKind::Button:
      return "button";
    case ControlKind::CheckBox:
      return "check box";
    case ControlKind::OptionButton:
      return "option button";
    case ControlKind::ComboBox:
      return "combo box";
    case ControlKind::ListBox:
      return "list box";
    case ControlKind::Frame:
      return "frame";
    case ControlKind::Picture:
      return "picture";
    case ControlKind::Meter:
      return "meter";
    case ControlKind::DateEdit:
      return "date box";
    case ControlKind::NumberEdit:
      return "number box";
    case ControlKind::Grid:
      return "grid";
    case ControlKind::Menu:
      return "menu";
    case ControlKind::Toolbar:
      return "toolbar";
    case ControlKind::ListBar:
      return "list bar";
    case ControlKind::TabStrip:
      return "tab strip";
    case ControlKind::StatusBar:
      return "status bar";
    case ControlKind::Timer:
      return "timer";
    case ControlKind::Clock:
      return "clock";
    case ControlKind::TreeView:
      return "tree view";
    case ControlKind::WebBrowser:
      return "web browser";
    case ControlKind::DataControl:
      return "data control";
    case ControlKind::ReportViewer:
      return "report viewer";
  }
  return "control";
}

Control::Control(Form& form, ControlKind kind, Text name, int index)
    : form_(&form), kind_(kind), name_(std::move(name)), index_(index) {
  if (kind == ControlKind::OptionButton || kind == ControlKind::CheckBox) value_ = 0;
}

Control::~Control() {
  Unbind();
  form_->ControlGone(*this);
}

Text Control::Reference() const {
  if (index_ < 0) return name_;
  return name_ + u"(" + Number(index_) + u")";
}

bool Control::TextLike() const {
  switch (kind_) {
    case ControlKind::TextBox:
    case ControlKind::ComboBox:
    case ControlKind::DateEdit:
    case ControlKind::NumberEdit:
      return true;
    default:
      return false;
  }
}

bool Control::CaptionLike() const {
  switch (kind_) {
    case ControlKind::Label:
    case ControlKind::Button:
    case ControlKind::Frame:
    case ControlKind::CheckBox:
    case ControlKind::OptionButton:
    case ControlKind::Menu:
      return true;
    default:
      return false;
  }
}

void Control::Changed(unsigned changes) {
  if (ScreenObserver* observer = form_->screen().observer()) observer->ControlChanged(*this, changes);
}

void Control::StoreText(const Text& text) {
  if (text == text_) return;
  text_ = text;
  Changed(change::kText);
}

void Control::SetContainer(Control* container) {
  if (container == container_) return;
  container_ = container;
  Changed(change::kPlace);
}

void Control::SetText(const Text& text) {
  if (text == text_) return;
  text_ = text;
  Changed(change::kText);
  if (!loading_ && data_source_) data_changed_ = true;
  // Labels report a new caption too; buttons, frames and menus have no Change.
  if (TextLike() || kind_ == ControlKind::Label) Fire(OnChange);
}

void Control::SetValue(int value) {
  switch (kind_) {
    case ControlKind::CheckBox:
      if (value < 0 || value > 2) throw RuntimeError(err::kInvalidPropertyValue, "Invalid property value");
      if (value == value_) return;
      value_ = value;
      Changed(change::kValue);
      if (!loading_ && data_source_) data_changed_ = true;
      Fire(OnClick);
      return;
    case ControlKind::OptionButton: {
      int v = value != 0 ? kTrue : kFalse;
      if (v == value_) return;
      value_ = v;
      Changed(change::kValue);
      if (v == kTrue) {
        // One selected option per container: the others of the group are cleared without events.
        for (const auto& other : form_->controls()) {
          if (other.get() != this && other->kind_ == ControlKind::OptionButton &&
              other->container_ == container_ && other->value_ != kFalse) {
            other->value_ = kFalse;
            other->Changed(change::kValue);
          }
        }
        if (!loading_ && data_source_) data_changed_ = true;
        Fire(OnClick);
      }
      return;
    }
    default:
      if (value == value_) return;
      value_ = value;
      Changed(change::kValue);
  }
}

bool Control::Reachable() const {
  if (!visible_ || !enabled_ || !form_->enabled) return false;
  for (const Control* c = container_; c; c = c->container_)
    if (!c->visible_ || !c->enabled_) return false;
  return true;
}

void Control::RequireReachable(const char* action) const {
  if (Reachable()) return;
  const std::string what = "cannot " + std::string(action) + " " + ToUtf8(Reference()) + ": ";
  auto state = [](const Control& c) { return std::string(!c.visible_ ? "hidden" : "disabled"); };
  if (!visible_ || !enabled_) throw UserRefused(what + "it is " + state(*this));
  // Name what stands in the way: a parent menu, a container, or the form itself.
  if (const auto* menu = dynamic_cast<const Menu*>(this)) {
    for (const Menu* m = menu->parent(); m; m = m->parent())
      if (!m->visible_ || !m->enabled_)
        throw UserRefused(what + "its menu " + ToUtf8(m->Reference()) + " is " + state(*m));
  }
  for (const Control* c = container_; c; c = c->container_)
    if (!c->visible_ || !c->enabled_) throw UserRefused(what + ToUtf8(c->Reference()) + " is " + state(*c));
  throw UserRefused(what + "the form " + ToUtf8(form_->name()) + " is disabled");
}

void Control::Bind(DataControl& source, Text field) {
  Unbind();
  data_source_ = &source;
  data_field_ = std::move(field);
  data_changed_ = false;
  source.AddBound(*this);
}

void Control::Unbind() {
  if (data_source_) data_source_->RemoveBound(*this);
  data_source_ = nullptr;
  data_changed_ = false;
}

void Control::LoadBoundValue(const Variant& value, const Regional& regional) {
  {
    FlagScope scope(loading_);
    if (kind_ == ControlKind::CheckBox) {
      bool on = false;
      if (const bool* b = value.boolean())
        on = *b;
      else if (const double* n = value.number())
        on = *n != 0;
      SetValue(on ? 1 : 0);
    } else {
      SetText(value.IsNull() ? Text() : CStr(value, regional));
    }
  }
  data_changed_ = false;
}

Variant Control::BoundValue(const Variant& current) const {
  if (kind_ == ControlKind::CheckBox) return Variant(value_ == 1);
  if (kind_ == ControlKind::OptionButton) return Variant(value_ != 0);
  // An emptied box clears a number or date field; a text field keeps the empty text.
  if (text_.empty() && !current.text()) return Variant();
  return Variant(text_);
}

void Control::UserSet(const Text& value) {
  RequireReachable("set");
  switch (kind_) {
    case ControlKind::TextBox:
    case ControlKind::DateEdit:
    case ControlKind::NumberEdit: {
      if (locked_) throw UserRefused("cannot type into " + ToUtf8(Reference()) + ": it is locked");
      form_->SetFocus(this);
      Text typed = value;
      if (max_length > 0 && typed.size() > static_cast<size_t>(max_length)) typed.resize(max_length);
      SetText(typed);
      return;
    }
    case ControlKind::CheckBox: {
      int v = 0;
      if (!ParseInt(value, v) || v < 0 || v > 1)
        throw UserError("a check box takes 1 or 0, not \"" + ToUtf8(value) + "\"");
      form_->SetFocus(this);
      SetValue(v);
      return;
    }
    case ControlKind::OptionButton: {
      int v = 1;
      if (ParseInt(value, v) && v == 0)
        throw UserError("an option button is cleared by selecting another one");
      form_->SetFocus(this);
      SetValue(kTrue);
      return;
    }
    default:
      throw UserError("cannot set " + ToUtf8(Reference()) + ": a " + KindName(kind_) + " takes no value");
  }
}

void Control::UserClick(const Text* argument) {
  if (argument) throw UserError("a click on " + ToUtf8(Reference()) + " takes no argument");
  if (kind_ == ControlKind::Timer || kind_ == ControlKind::DataControl || kind_ == ControlKind::Clock)
    throw UserError("cannot click " + ToUtf8(Reference()) + ": a " + KindName(kind_) + " is not clickable");
  RequireReachable("click");
  if (kind_ != ControlKind::Label && kind_ != ControlKind::Frame) form_->SetFocus(this);
  if (OnMouseDown) OnMouseDown(kLeftButton, 0);
  if (OnMouseUp) OnMouseUp(kLeftButton, 0);
  switch (kind_) {
    case ControlKind::CheckBox:
      SetValue(value_ == 1 ? 0 : 1);  // the value change fires Click
      return;
    case ControlKind::OptionButton:
      SetValue(kTrue);
      return;
    default:
      Fire(OnClick);
  }
}

void Control::UserDblClick(const Text* argument) {
  if (argument) throw UserError("a double click on " + ToUtf8(Reference()) + " takes no argument");
  RequireReachable("double-click");
  Fire(OnDblClick);
}

void Control::UserRightClick(const Text* argument) {
  if (argument) throw UserError("a right click on " + ToUtf8(Reference()) + " takes no argument");
  RequireReachable("right-click");
  if (OnMouseDown) OnMouseDown(kRightButton, 0);
  if (OnMouseUp) OnMouseUp(kRightButton, 0);
}

void Control::UserKeyEvents(int& key_code, int& ascii) {
  RequireReachable("press a key in");
  form_->SetFocus(this);
  if (key_code) {
    if (form_->key_preview && form_->OnKeyDown) form_->OnKeyDown(key_code, 0);
    if (key_code && OnKeyDown) OnKeyDown(key_code, 0);
  }
  if (!ascii) return;
  if (form_->key_preview && form_->OnKeyPress) form_->OnKeyPress(ascii);
  if (ascii && OnKeyPress) OnKeyPress(ascii);
}

void Control::UserKey(int key_code, int ascii) {
  UserKeyEvents(key_code, ascii);
  if (!ascii) return;
  if (kind_ == ControlKind::Button && (ascii == key::kEnter || ascii == u' ')) {
    Fire(OnClick);
    return;
  }
  if (!TextLike() || locked_) return;
  if (auto* list = dynamic_cast<ListControl*>(this); list && list->style != 0) return;
  if (ascii == key::kBack) {
    if (!text_.empty()) SetText(text_.substr(0, text_.size() - 1));
  } else if (ascii >= 32) {
    if (max_length > 0 && text_.size() >= static_cast<size_t>(max_length)) return;
    SetText(text_ + static_cast<char16_t>(ascii));
  }
}

void Control::UserLeave() {
  if (form_->active_control() == this) {
    form_->SetFocus(nullptr);
  } else {
    Fire(OnLostFocus);
  }
}

std::optional<Text> Control::Property(TextView name, const std::vector<Text>& args) const {
  if (!args.empty()) return std::nullopt;
  const Text n = FoldName(name);
  if (n == u"text" || n == u"caption") return text_;
  if (n == u"value") {
    if (kind_ == ControlKind::OptionButton) return Bool(value_ != 0);
    return Number(value_);
  }
  if (n == u"visible") return Bool(visible_);
  if (n == u"enabled") return Bool(enabled_);
  if (n == u"locked") return Bool(locked_);
  if (n == u"forecolor") return Number(forecolor_);
  if (n == u"backcolor") return Number(backcolor_);
  if (n == u"tooltip" || n == u"tooltiptext") return tooltip_;
  if (n == u"tag") return tag;
  if (n == u"fontname") return font_name;
  if (n == u"datafield") return data_field_;
  if (n == u"datachanged") return Bool(data_changed_);
  if (n == u"helpcontextid") return Number(help_context_id);
  if (n == u"name") return name_;
  return std::nullopt;
}

}  // namespace lw
