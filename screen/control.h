// Controls of the screen model: plain objects with the properties and events of desktop controls, free
// of any toolkit. A control belongs to one form and is found there by its name and, for members of a
// control array, its index (`emailletter_txt(3)`). Names compare without regard to case.
//
// Properties set from code behave as they do on the desktop: changing a text box's text fires Change,
// changing a check box's value or a list's selection fires Click. Handlers that must not react to their
// own code guard with flags. What a user does (typing, clicking, pressing keys, leaving a field) comes
// in through the User* methods, which the desktop front end and the driver call; they refuse what a user
// could not do (a disabled or hidden control, an item that is not there) with UserError.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/primitives/regional.h"
#include "core/primitives/types.h"
#include "screen/layout_hint.h"
#include "screen/screen_observer.h"

namespace lw {

class Form;
class DataControl;
class EventQueue;

enum class ControlKind {
  Label,
  TextBox,
  Button,
  CheckBox,
  OptionButton,
  ComboBox,
  ListBox,
  Frame,
  Picture,
  Meter,
  DateEdit,
  NumberEdit,
  Grid,
  Menu,
  Toolbar,
  ListBar,
  TabStrip,
  StatusBar,
  Timer,
  Clock,
  TreeView,
  WebBrowser,
  DataControl,
  ReportViewer,
};
const char* KindName(ControlKind kind);

// Key codes of KeyDown, as the desktop runtime numbers them.
namespace key {
inline constexpr int kBack = 8;
inline constexpr int kTab = 9;
inline constexpr int kEnter = 13;
inline constexpr int kEscape = 27;
inline constexpr int kDelete = 46;
inline constexpr int kF1 = 112;  // F2 is kF1 + 1 ... F12 is kF1 + 11
}  // namespace key
inline constexpr int kLeftButton = 1;
inline constexpr int kRightButton = 2;

// Something a user cannot do: a control that is disabled or hidden, an entry that is not in a list, a
// button number that does not exist. The driver reports it as an error; the program never sees it.
class UserError : public std::runtime_error {
 public:
  explicit UserError(const std::string& what) : std::runtime_error(what) {}
};
// The control exists but the user cannot reach it now (disabled, hidden, on a locked page): the action
// is refused and nothing happens. The driver reports it and goes on.
class UserRefused : public UserError {
 public:
  explicit UserRefused(const std::string& what) : UserError(what) {}
};

// The font a control shows its text in. An empty name and a size of 0 leave the front end's own.
struct FontSpec {
  Text name;
  double size = 0;  // points
  bool bold = false;
  bool italic = false;
  bool underline = false;
  friend bool operator==(const FontSpec&, const FontSpec&) = default;
};

class Control {
 public:
  Control(Form& form, ControlKind kind, Text name, int index = -1);
  virtual ~Control();
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  Form& form() const { return *form_; }
  ControlKind kind() const { return kind_; }
  const Text& name() const { return name_; }
  // Index in its control array, -1 for a control that is not in one.
  int index() const { return index_; }
  // "name" or "name(3)", as the driver writes a reference.
  Text Reference() const;

  // The text of a text-like control. Labels, buttons, frames, check boxes, option buttons and menus
  // keep their caption here too, so text() and caption() are the same for them. A change fires Change
  // (text-like controls) and marks a bound control's data as changed.
  const Text& text() const { return text_; }
  virtual void SetText(const Text& text);
  const Text& caption() const { return text_; }
  void SetCaption(const Text& caption) { SetText(caption); }

  // Check box: 0 unchecked, 1 checked, 2 greyed; a change fires Click. Option button: 0 or -1
  // (selected); selecting one clears the others of its container and fires Click. Meter: its level.
  int value() const { return value_; }
  virtual void SetValue(int value);

  bool visible() const { return visible_; }
  virtual void SetVisible(bool visible) { SetFlag(visible_, visible); }
  bool enabled() const { return enabled_; }
  virtual void SetEnabled(bool enabled) { SetFlag(enabled_, enabled); }
  // A locked text box shows its text but takes no typing.
  bool locked() const { return locked_; }
  void SetLocked(bool locked) { SetFlag(locked_, locked); }

  int32_t forecolor() const { return forecolor_; }
  void SetForecolor(int32_t colour) { SetLook(forecolor_, colour); }
  int32_t backcolor() const { return backcolor_; }
  void SetBackcolor(int32_t colour) { SetLook(backcolor_, colour); }
  const Text& tooltip() const { return tooltip_; }
  void SetTooltip(const Text& tip) { SetLook(tooltip_, tip); }
  const FontSpec& font() const { return font_; }
  void SetFont(const FontSpec& font) { SetLook(font_, font); }
  Text tag;
  // The typeface the control shows its text in; empty for the form's own.
  Text font_name;
  int help_context_id = 0;
  // Maximum length of typed text, 0 for none.
  int max_length = 0;

  // The frame or picture the control sits in; option buttons form a group per container. A control
  // whose container is disabled or hidden cannot be reached by the user.
  Control* container() const { return container_; }
  void SetContainer(Control* container);
  // Where a front end that lays the form out itself should put the control; see layout_hint.h.
  LayoutHint layout;
  // Visible and enabled, with every container up the chain, and (for menus) every parent menu.
  virtual bool Reachable() const;

  // Data binding: the control shows `field` of the current row of `source`, and its edits are written
  // back when the row is saved or left.
  void Bind(DataControl& source, Text field);
  void Unbind();
  DataControl* data_source() const { return data_source_; }
  const Text& data_field() const { return data_field_; }
  // True after an edit since the row was last read or saved.
  bool data_changed() const { return data_changed_; }
  // True while a data control is showing a row in the control: a Click fired then is no user's.
  bool loading() const { return loading_; }
  void SetDataChanged(bool changed) { data_changed_ = changed; }
  // Called by the data control: show a field value (the change is not an edit), and give the value to
  // write back. Text-like controls write Null for an empty text unless the field holds text.
  virtual void LoadBoundValue(const Variant& value, const Regional& regional);
  virtual Variant BoundValue(const Variant& current) const;

  // Events. Unset handlers do nothing.
  std::function<void()> OnClick;
  std::function<void()> OnDblClick;
  std::function<void()> OnChange;
  std::function<void()> OnGotFocus;
  std::function<void()> OnLostFocus;
  std::function<void(int& key_code, int shift)> OnKeyDown;
  std::function<void(int& key_ascii)> OnKeyPress;
  std::function<void(int button, int shift)> OnMouseDown;
  std::function<void(int button, int shift)> OnMouseUp;

  // What a user does. `argument` is the optional word after the reference (`click ctToolBar1 3`).
  // set: text boxes replace their text, lists select the item, check boxes take 1 or 0, an option
  // button is selected.
  virtual void UserSet(const Text& value);
  virtual void UserClick(const Text* argument);
  virtual void UserDblClick(const Text* argument);
  virtual void UserRightClick(const Text* argument);
  // A key: `key_code` for KeyDown (0 for none), `ascii` for KeyPress (0 for none). A character that
  // survives KeyPress is typed into a text-like control.
  virtual void UserKey(int key_code, int ascii);
  // The events of that key without its typing: KeyDown (the form's first when it previews keys), then
  // KeyPress. Handlers swallow a key by setting it to 0; what survives is left in the arguments. A front
  // end whose widgets type by themselves lets them type what survives.
  void UserKeyEvents(int& key_code, int& ascii);
  virtual void UserLeave();

  // A property by name (case ignored) as the driver's `get` prints it, with the arguments written in
  // brackets (`list(3)` gives "list" and {"3"}). Every control knows text, value, caption, visible,
  // enabled, locked, forecolor, backcolor, tooltip, tag and datafield; kinds add their own. Nothing for
  // a name the control does not have; UserError for a bad argument.
  virtual std::optional<Text> Property(TextView name, const std::vector<Text>& args) const;

  // Tells the screen's observer, if there is one, that these parts (change:: bits) of the control
  // changed. The setters do it themselves; code that changes a part it holds by reference need not.
  void Changed(unsigned changes);

 protected:
  // Raises UserError when the user cannot reach the control.
  void RequireReachable(const char* action) const;
  // Sets the text without firing anything or marking data as changed.
  void StoreText(const Text& text);
  bool TextLike() const;
  bool CaptionLike() const;
  static void Fire(const std::function<void()>& handler) {
    if (handler) handler();
  }
  // True while a data control is loading the control, so the load is not taken for an edit.
  bool loading_ = false;

 private:
  void SetFlag(bool& flag, bool on) {
    if (flag == on) return;
    flag = on;
    Changed(change::kState);
  }
  template <class T>
  void SetLook(T& part, const T& value) {
    if (part == value) return;
    part = value;
    Changed(change::kLook);
  }
  Form* form_;
  ControlKind kind_;
  Text name_;
  int index_;
  Text text_;
  int value_ = 0;
  bool visible_ = true;
  bool enabled_ = true;
  bool locked_ = false;
  int32_t forecolor_ = 0x000000;
  int32_t backcolor_ = 0xFFFFFF;
  Text tooltip_;
  FontSpec font_;
  Control* container_ = nullptr;
  DataControl* data_source_ = nullptr;
  Text data_field_;
  bool data_changed_ = false;
};

// Combo boxes and list boxes: items with item data, the selected index, and for list boxes the
// selection of each item.
class ListControl : public Control {
 public:
  // Combo styles: 0 drop-down combo (typed text allowed), 2 drop-down list (only items).
  ListControl(Form& form, ControlKind kind, Text name, int index = -1);

  int style = 0;
  // Items are kept in order of text (ignoring case) when set before they are added.
  bool sorted = false;

  // Adds an item at the end (or at `at`); returns its index, also kept as new_index().
  int AddItem(const Text& item, int at = -1);
  void RemoveItem(int at);
  void Clear();
  int ListCount() const { return static_cast<int>(items_.size()); }
  // The item at `at`; "" outside the list, as the desktop list gives it.
  Text List(int at) const;
  void SetList(int at, const Text& item);
  int32_t ItemData(int at) const;
  void SetItemData(int at, int32_t data);
  int new_index() const { return new_index_; }
  // Index of the item that equals `item` ignoring case, or -1.
  int Find(TextView item) const;

  // -1 when nothing is selected. Setting it selects the item, shows its text and fires Click.
  int list_index() const { return list_index_; }
  void SetListIndex(int at);
  // List boxes with several selections.
  bool Selected(int at) const;
  void SetSelected(int at, bool selected);

  // Lists and drop-down lists select the matching item or raise 383; a drop-down combo takes any text.
  void SetText(const Text& text) override;
  void LoadBoundValue(const Variant& value, const Regional& regional) override;
  void UserSet(const Text& value) override;
  void UserClick(const Text* argument) override;
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;

 private:
  bool Editable() const { return kind() == ControlKind::ComboBox && style == 0; }
  std::vector<Text> items_;
  std::vector<int32_t> item_data_;
  std::vector<bool> selected_;
  int list_index_ = -1;
  int new_index_ = -1;
};

class ComboBox : public ListControl {
 public:
  ComboBox(Form& form, Text name, int index = -1)
      : ListControl(form, ControlKind::ComboBox, std::move(name), index) {}
};
class ListBox : public ListControl {
 public:
  ListBox(Form& form, Text name, int index = -1)
      : ListControl(form, ControlKind::ListBox, std::move(name), index) {}
};

// A menu entry; top-level menus have no parent. The caption is its text.
class Menu : public Control {
 public:
  Menu(Form& form, Text name, int index = -1, Menu* parent = nullptr);
  Menu* parent() const { return parent_; }
  void SetParent(Menu* parent) { parent_ = parent; }
  bool checked = false;
  // Shown as a popup: its entries can be chosen although the menu itself is hidden on the menu bar.
  bool popped_up = false;
  // Visible (or popped up) and enabled together with every parent menu.
  bool Reachable() const override;
  void UserClick(const Text* argument) override;
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;

 private:
  Menu* parent_;
};

// A timer: while enabled with a positive interval (milliseconds) it ticks on the model thread.
class Timer : public Control {
 public:
  Timer(Form& form, Text name, int index = -1);
  ~Timer() override;
  int interval() const { return interval_; }
  void SetInterval(int milliseconds);
  void SetEnabled(bool enabled) override;
  std::function<void()> OnTimer;
  // Runs OnTimer now (the driver's `tick`, or the queue when the interval has passed).
  void Fire();
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;
  // For the event queue: when the timer last fired or was started.
  std::chrono::steady_clock::time_point started{};

 private:
  void Register();
  EventQueue* queue_ = nullptr;
  int interval_ = 0;
};

// A clock control: shows a time with hour and minute offsets and ticks with a number (the driver's
// `tick NAME N`).
class ClockControl : public Control {
 public:
  ClockControl(Form& form, Text name, int index = -1)
      : Control(form, ControlKind::Clock, std::move(name), index) {}
  int hour_offset = 0;
  int minute_offset = 0;
  std::function<void(int number)> OnTick;
  void Tick(int number) {
    if (OnTick) OnTick(number);
  }
};

// Buttons are numbered from 1. A click fires OnButtonClick with the number.
class Toolbar : public Control {
 public:
  struct Button {
    Text caption;
    Text tooltip;
    bool enabled = true;
    bool visible = true;
    bool checked = false;
  };
  Toolbar(Form& form, Text name, int index = -1)
      : Control(form, ControlKind::Toolbar, std::move(name), index) {}
  int AddButton(const Text& caption, const Text& tooltip = Text());
  int ButtonCount() const { return static_cast<int>(buttons_.size()); }
  // 1-based; raises 380 outside the toolbar.
  Button& button(int number);
  const Button& button(int number) const;
  void ClearButtons() {
    buttons_.clear();
    Changed(change::kItems);
  }
  std::function<void(int number)> OnButtonClick;
  // The argument is the button number or its caption.
  void UserClick(const Text* argument) override;
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;

 private:
  std::vector<Button> buttons_;
};

// The list bar down the side: groups of command items, each with a caption, a tip and the routine
// name it runs. The current group is the one open.
class ListBar : public Control {
 public:
  struct Item {
    Text caption;
    Text tip;
    Text key;  // routine name
    bool enabled = true;
  };
  struct Group {
    Text caption;
    std::vector<Item> items;
  };
  ListBar(Form& form, Text name, int index = -1)
      : Control(form, ControlKind::ListBar, std::move(name), index) {}
  int AddGroup(const Text& caption);
  int AddItem(int group, const Text& caption, const Text& tip, const Text& key);
  void Clear();
  int GroupCount() const { return static_cast<int>(groups_.size()); }
  Group& group(int at);
  const Group& group(int at) const;
  int current_group = 0;
  // Group and item of a caption: the current group first, then the others in order; nothing when no
  // group holds it.
  std::optional<std::pair<int, int>> FindItem(TextView caption) const;
  // Group and item from 0; button kLeftButton or kRightButton.
  std::function<void(int group, int item, int button)> OnItemClick;
  void UserClick(const Text* argument) override;
  void UserRightClick(const Text* argument) override;
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;

 private:
  void ClickItem(const Text* argument, int button);
  std::vector<Group> groups_;
};

// Tabbed pages. Setting the current page fires OnTabClick with the page left.
class TabStrip : public Control {
 public:
  struct Page {
    Text caption;
    bool enabled = true;
    bool visible = true;
  };
  TabStrip(Form& form, Text name, int index = -1)
      : Control(form, ControlKind::TabStrip, std::move(name), index) {}
  void SetTabs(int count);
  int Tabs() const { return static_cast<int>(pages_.size()); }
  // 0-based; raises 380 outside the strip.
  Page& page(int at);
  const Page& page(int at) const;
  int tab() const { return tab_; }
  // Switches page; fires OnTabClick when the page changes. Raises 380 outside the strip.
  void SetTab(int at);
  std::function<void(int previous_tab)> OnTabClick;
  // The value of a tab strip is its current page.
  void SetValue(int value) override { SetTab(value); }
  // The user picks a page: refused when the strip, or that page, is disabled or hidden.
  void UserTab(int at);
  void UserClick(const Text* argument) override;
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;

 private:
  std::vector<Page> pages_;
  int tab_ = 0;
};

// Status bar panels are numbered from 1.
class StatusBar : public Control {
 public:
  StatusBar(Form& form, Text name, int index = -1)
      : Control(form, ControlKind::StatusBar, std::move(name), index) {}
  void SetPanels(int count);
  int Panels() const { return static_cast<int>(panels_.size()); }
  // Raises 380 outside the bar.
  const Text& panel(int number) const;
  void SetPanel(int number, const Text& text);
  // A click fires OnClick and then OnPanelClick with the panel (1 when the driver gives none).
  std::function<void(int panel)> OnPanelClick;
  void UserClick(const Text* argument) override;
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;

 private:
  std::vector<Text> panels_;
};

// The place of the web view on a form. The web view itself is the front end's (the platform's headless
// one under the driver, the desktop's own in a window): the program hands it addresses through
// `navigator`, and the web view reports back through this control, which keeps the address, the title
// and the body of the page on show, so the program reads what the user sees whichever web view runs.
class BrowserControl : public Control {
 public:
  BrowserControl(Form& form, Text name, int index = -1)
      : Control(form, ControlKind::WebBrowser, std::move(name), index) {}
  Text location_url;
  Text document_title;  // the page's title
  Text document_text;   // the outer HTML of the page's body
  bool busy = false;
  std::function<void(BrowserControl& browser, const Text& url)> navigator;
  // Records the address and hands it to the navigator.
  void Navigate(const Text& url);

  // Reports of the web view. Progress: bytes so far (-1 once the page is in) and bytes expected (0 when
  // unknown). NavigateComplete: the address reached and the page's title. DocumentComplete: the page is
  // whole, with its title and its body's outer HTML.
  std::function<void(long long so_far, long long expected)> OnProgress;
  std::function<void(const Text& url)> OnNavigateComplete;
  std::function<void(const Text& url)> OnDocumentComplete;
  void Progress(long long so_far, long long expected);
  void NavigateComplete(const Text& url, const Text& title);
  void DocumentComplete(const Text& url, const Text& title, const Text& body_outer_html);
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;
};

}  // namespace lw
