// List controls, menus and timers.
#include <algorithm>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "screen/control.h"
#include "screen/event_queue.h"
#include "screen/form.h"
#include "screen/names.h"
#include "screen/property_args.h"

namespace lw {

namespace {

[[noreturn]] void BadIndex() {
  throw RuntimeError(381, "Invalid property array index");
}

}  // namespace

ListControl::ListControl(Form& form, ControlKind kind, Text name, int index)
    : Control(form, kind, std::move(name), index) {}

int ListControl::AddItem(const Text& item, int at) {
  int count = ListCount();
  if (at > count || at < -1)
    throw RuntimeError(err::kInvalidProcedureCall, "Invalid procedure call or argument");
  if (at < 0) {
    at = count;
    if (sorted) {
      const Text key = FoldName(item);
      at = static_cast<int>(std::upper_bound(items_.begin(), items_.end(), key,
                                             [](const Text& k, const Text& e) { return k < FoldName(e); }) -
                            items_.begin());
    }
  }
  items_.insert(items_.begin() + at, item);
  item_data_.insert(item_data_.begin() + at, 0);
  selected_.insert(selected_.begin() + at, false);
  if (list_index_ >= at) ++list_index_;
  new_index_ = at;
  Changed(change::kItems);
  return at;
}

void ListControl::RemoveItem(int at) {
  if (at < 0 || at >= ListCount())
    throw RuntimeError(err::kInvalidProcedureCall, "Invalid procedure call or argument");
  items_.erase(items_.begin() + at);
  item_data_.erase(item_data_.begin() + at);
  selected_.erase(selected_.begin() + at);
  if (list_index_ == at) {
    list_index_ = -1;
    if (!Editable()) StoreText(Text());
  } else if (list_index_ > at) {
    --list_index_;
  }
  Changed(change::kItems);
}

void ListControl::Clear() {
  items_.clear();
  item_data_.clear();
  selected_.clear();
  list_index_ = -1;
  new_index_ = -1;
  StoreText(Text());
  Changed(change::kItems);
}

Text ListControl::List(int at) const {
  if (at < -1) BadIndex();
  if (at == -1) return text();
  if (at >= ListCount()) return Text();
  return items_[at];
}

void ListControl::SetList(int at, const Text& item) {
  if (at < 0 || at >= ListCount()) BadIndex();
  items_[at] = item;
  if (at == list_index_) StoreText(item);
  Changed(change::kItems);
}

int32_t ListControl::ItemData(int at) const {
  if (at < 0 || at >= ListCount()) BadIndex();
  return item_data_[at];
}

void ListControl::SetItemData(int at, int32_t data) {
  if (at < 0 || at >= ListCount()) BadIndex();
  item_data_[at] = data;
}

int ListControl::Find(TextView item) const {
  for (int i = 0; i < ListCount(); ++i)
    if (SameName(items_[i], item)) return i;
  return -1;
}

void ListControl::SetListIndex(int at) {
  if (at < -1 || at >= ListCount()) throw RuntimeError(err::kInvalidPropertyValue, "Invalid property value");
  if (at == list_index_) return;
  list_index_ = at;
  Changed(change::kSelection);
  if (at >= 0) {
    StoreText(items_[at]);
  } else if (!Editable()) {
    StoreText(Text());
  }
  if (kind() == ControlKind::ListBox) {
    std::fill(selected_.begin(), selected_.end(), false);
    if (at >= 0) selected_[at] = true;
  }
  if (!loading_ && data_source()) SetDataChanged(true);
  // A drop-down combo shows the new text as a change as well.
  if (Editable()) Fire(OnChange);
  Fire(OnClick);
}

bool ListControl::Selected(int at) const {
  if (at < 0 || at >= ListCount()) BadIndex();
  return selected_[at];
}

void ListControl::SetSelected(int at, bool selected) {
  if (at < 0 || at >= ListCount()) BadIndex();
  if (selected_[at] == selected) return;
  selected_[at] = selected;
  Changed(change::kSelection);
}

void ListControl::SetText(const Text& text) {
  if (Editable()) {
    if (int at = Find(text); at != list_index_) {
      list_index_ = at;
      Changed(change::kSelection);
    }
    Control::SetText(text);
    return;
  }
  int at = Find(text);
  if (at < 0) {
    if (text.empty()) {
      SetListIndex(-1);
      return;
    }
    // A list shows only its items: a text it does not hold cannot be selected.
    if (kind() == ControlKind::ComboBox) throw RuntimeError(383, "'Text' property is read-only");
    return;
  }
  SetListIndex(at);
}

void ListControl::LoadBoundValue(const Variant& value, const Regional& regional) {
  const bool was = loading_;
  loading_ = true;
  try {
    Text t = value.IsNull() ? Text() : CStr(value, regional);
    if (Editable() || Find(t) >= 0) {
      SetText(t);
    } else {
      // A bound list whose field holds a text it lacks shows nothing selected.
      if (list_index_ != -1) {
        list_index_ = -1;
        Changed(change::kSelection);
      }
      StoreText(t);
    }
  } catch (...) {
    loading_ = was;
    throw;
  }
  loading_ = was;
  SetDataChanged(false);
}

void ListControl::UserSet(const Text& value) {
  RequireReachable("set");
  if (Editable()) {
    if (locked()) throw UserRefused("cannot type into " + ToUtf8(Reference()) + ": it is locked");
    form().SetFocus(this);
    SetText(value);
    return;
  }
  int at = Find(value);
  if (at < 0) throw UserError(ToUtf8(Reference()) + " has no item \"" + ToUtf8(value) + "\"");
  form().SetFocus(this);
  if (at == list_index_) {
    // Choosing the item already shown still tells the program it was chosen.
    Fire(OnClick);
  } else {
    SetListIndex(at);
  }
}

void ListControl::UserClick(const Text* argument) {
  if (argument) {
    // A click on an item of the list: chooses it.
    RequireReachable("click");
    int at = Find(*argument);
    if (at < 0) throw UserError(ToUtf8(Reference()) + " has no item \"" + ToUtf8(*argument) + "\"");
    form().SetFocus(this);
    if (at == list_index_)
      Fire(OnClick);
    else
      SetListIndex(at);
    return;
  }
  Control::UserClick(nullptr);
}

std::optional<Text> ListControl::Property(TextView name, const std::vector<Text>& args) const {
  const Text n = FoldName(name);
  if (n == u"listcount" && args.empty()) return IntText(ListCount());
  if (n == u"listindex" && args.empty()) return IntText(list_index_);
  if (n == u"newindex" && args.empty()) return IntText(new_index_);
  if (n == u"list") {
    int at = IntArgument(args, 0, name);
    if (at < -1) throw UserError("list index must be -1 or more");
    return List(at);
  }
  if (n == u"itemdata") {
    int at = IntArgument(args, 0, name);
    if (at < 0 || at >= ListCount())
      throw UserError("no item " + std::to_string(at) + " in " + ToUtf8(Reference()));
    return IntText(item_data_[at]);
  }
  if (n == u"selected") {
    int at = IntArgument(args, 0, name);
    if (at < 0 || at >= ListCount())
      throw UserError("no item " + std::to_string(at) + " in " + ToUtf8(Reference()));
    return BoolText(selected_[at]);
  }
  return Control::Property(name, args);
}

Menu::Menu(Form& form, Text name, int index, Menu* parent)
    : Control(form, ControlKind::Menu, std::move(name), index), parent_(parent) {}

bool Menu::Reachable() const {
  for (const Menu* m = this; m; m = m->parent_)
    if (!(m->visible() || m->popped_up) || !m->enabled()) return false;
  return form().enabled;
}

void Menu::UserClick(const Text* argument) {
  if (argument) throw UserError("a menu entry takes no argument");
  RequireReachable("choose");
  Fire(OnClick);
}

std::optional<Text> Menu::Property(TextView name, const std::vector<Text>& args) const {
  if (args.empty() && SameName(name, u"checked")) return BoolText(checked);
  return Control::Property(name, args);
}

Timer::Timer(Form& form, Text name, int index) : Control(form, ControlKind::Timer, std::move(name), index) {}

Timer::~Timer() {
  if (queue_) queue_->RemoveTimer(*this);
}

void Timer::SetInterval(int milliseconds) {
  if (milliseconds < 0 || milliseconds > 65535)
    throw RuntimeError(err::kInvalidPropertyValue, "Invalid property value");
  interval_ = milliseconds;
  Register();
  Changed(change::kState);
}

void Timer::SetEnabled(bool enabled) {
  Control::SetEnabled(enabled);
  Register();
}

void Timer::Register() {
  queue_ = &form().queue();
  if (enabled() && interval_ > 0) {
    queue_->AddTimer(*this);
  } else {
    queue_->RemoveTimer(*this);
  }
}

void Timer::Fire() {
  if (OnTimer) OnTimer();
}

std::optional<Text> Timer::Property(TextView name, const std::vector<Text>& args) const {
  if (args.empty() && SameName(name, u"interval")) return IntText(interval_);
  return Control::Property(name, args);
}

}  // namespace lw
