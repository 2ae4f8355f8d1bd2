// Toolbars, the list bar, the tab strip, the status bar and the web view's place.
#include "core/primitives/encoding.h"
#include "screen/control.h"
#include "screen/form.h"
#include "screen/names.h"
#include "screen/property_args.h"

namespace lw {

namespace {

[[noreturn]] void BadValue() {
  throw RuntimeError(err::kInvalidPropertyValue, "Invalid property value");
}

}  // namespace

// ---- Toolbar

int Toolbar::AddButton(const Text& caption, const Text& tooltip) {
  Button b;
  b.caption = caption;
  b.tooltip = tooltip;
  buttons_.push_back(std::move(b));
  Changed(change::kItems);
  return ButtonCount();
}

Toolbar::Button& Toolbar::button(int number) {
  if (number < 1 || number > ButtonCount()) BadValue();
  // The caller may change the button through the reference.
  Changed(change::kItems);
  return buttons_[number - 1];
}

const Toolbar::Button& Toolbar::button(int number) const {
  if (number < 1 || number > ButtonCount()) BadValue();
  return buttons_[number - 1];
}

void Toolbar::UserClick(const Text* argument) {
  if (!argument)
    throw UserError("a click on toolbar " + ToUtf8(Reference()) + " needs a button number or caption");
  RequireReachable("click");
  int number = 0;
  if (!ParseInt(*argument, number)) {
    number = 0;
    for (int i = 0; i < ButtonCount(); ++i)
      if (SameName(buttons_[i].caption, *argument)) {
        number = i + 1;
        break;
      }
  }
  if (number < 1 || number > ButtonCount())
    throw UserError("toolbar " + ToUtf8(Reference()) + " has no button " + ToUtf8(*argument));
  const Button& b = buttons_[number - 1];
  if (!b.visible || !b.enabled)
    throw UserRefused("cannot click button " + std::to_string(number) + " of " + ToUtf8(Reference()) +
                      ": it is " + (b.visible ? "disabled" : "hidden"));
  if (OnButtonClick) OnButtonClick(number);
}

std::optional<Text> Toolbar::Property(TextView name, const std::vector<Text>& args) const {
  const Text n = FoldName(name);
  if (n == u"buttons" && args.empty()) return IntText(ButtonCount());
  if (n == u"button" || n == u"buttonenabled" || n == u"buttonvisible" || n == u"buttontooltip" ||
      n == u"buttonchecked") {
    int number = IntArgument(args, 0, name);
    if (number < 1 || number > ButtonCount())
      throw UserError("toolbar " + ToUtf8(Reference()) + " has no button " + std::to_string(number));
    const Button& b = buttons_[number - 1];
    if (n == u"button") return b.caption;
    if (n == u"buttonenabled") return BoolText(b.enabled);
    if (n == u"buttonvisible") return BoolText(b.visible);
    if (n == u"buttonchecked") return BoolText(b.checked);
    return b.tooltip;
  }
  return Control::Property(name, args);
}

// ---- List bar

int ListBar::AddGroup(const Text& caption) {
  groups_.push_back(Group{caption, {}});
  Changed(change::kItems);
  return GroupCount() - 1;
}

int ListBar::AddItem(int group, const Text& caption, const Text& tip, const Text& key) {
  auto& items = this->group(group).items;
  Item item;
  item.caption = caption;
  item.tip = tip;
  item.key = key;
  items.push_back(std::move(item));
  Changed(change::kItems);
  return static_cast<int>(items.size()) - 1;
}

void ListBar::Clear() {
  groups_.clear();
  current_group = 0;
  Changed(change::kItems | change::kSelection);
}

ListBar::Group& ListBar::group(int at) {
  if (at < 0 || at >= GroupCount()) BadValue();
  Changed(change::kItems);
  return groups_[at];
}

const ListBar::Group& ListBar::group(int at) const {
  if (at < 0 || at >= GroupCount()) BadValue();
  return groups_[at];
}

std::optional<std::pair<int, int>> ListBar::FindItem(TextView caption) const {
  auto in_group = [&](int g) -> int {
    const auto& items = groups_[g].items;
    for (size_t i = 0; i < items.size(); ++i)
      if (SameName(items[i].caption, caption)) return static_cast<int>(i);
    return -1;
  };
  if (current_group >= 0 && current_group < GroupCount()) {
    if (int i = in_group(current_group); i >= 0) return std::pair{current_group, i};
  }
  for (int g = 0; g < GroupCount(); ++g)
    if (int i = in_group(g); i >= 0) return std::pair{g, i};
  return std::nullopt;
}

void ListBar::ClickItem(const Text* argument, int button) {
  if (!argument) throw UserError("a click on list bar " + ToUtf8(Reference()) + " needs an item caption");
  RequireReachable("click");
  auto found = FindItem(*argument);
  if (!found)
    throw UserError("list bar " + ToUtf8(Reference()) + " has no item \"" + ToUtf8(*argument) + "\"");
  const auto [g, i] = *found;
  if (!groups_[g].items[i].enabled)
    throw UserRefused("cannot click \"" + ToUtf8(*argument) + "\" of " + ToUtf8(Reference()) +
                      ": it is disabled");
  if (current_group != g) {
    current_group = g;
    Changed(change::kSelection);
  }
  if (OnItemClick) OnItemClick(g, i, button);
}

void ListBar::UserClick(const Text* argument) {
  ClickItem(argument, kLeftButton);
}
void ListBar::UserRightClick(const Text* argument) {
  ClickItem(argument, kRightButton);
}

std::optional<Text> ListBar::Property(TextView name, const std::vector<Text>& args) const {
  const Text n = FoldName(name);
  if (n == u"groups" && args.empty()) return IntText(GroupCount());
  if (n == u"currentgroup" && args.empty()) return IntText(current_group);
  auto group_at = [&](size_t at) -> const Group& {
    int g = IntArgument(args, at, name);
    if (g < 0 || g >= GroupCount()) throw UserError("list bar has no group " + std::to_string(g));
    return groups_[g];
  };
  if (n == u"group" && args.size() == 1) return group_at(0).caption;
  if (n == u"items" && args.size() == 1) return IntText(static_cast<long long>(group_at(0).items.size()));
  if ((n == u"item" || n == u"tip" || n == u"key") && args.size() == 2) {
    const Group& g = group_at(0);
    int i = IntArgument(args, 1, name);
    if (i < 0 || i >= static_cast<int>(g.items.size()))
      throw UserError("list bar group has no item " + std::to_string(i));
    const Item& item = g.items[i];
    return n == u"item" ? item.caption : n == u"tip" ? item.tip : item.key;
  }
  return Control::Property(name, args);
}

// ---- Tab strip

void TabStrip::SetTabs(int count) {
  if (count < 1) BadValue();
  pages_.resize(count);
  Changed(change::kItems);
  if (tab_ >= count) SetTab(count - 1);
}

TabStrip::Page& TabStrip::page(int at) {
  if (at < 0 || at >= Tabs()) BadValue();
  Changed(change::kItems);
  return pages_[at];
}

const TabStrip::Page& TabStrip::page(int at) const {
  if (at < 0 || at >= Tabs()) BadValue();
  return pages_[at];
}

void TabStrip::SetTab(int at) {
  if (at < 0 || at >= Tabs()) BadValue();
  if (at == tab_) return;
  int previous = tab_;
  tab_ = at;
  Changed(change::kSelection);
  Control::SetValue(at);
  if (OnTabClick) OnTabClick(previous);
}

void TabStrip::UserTab(int at) {
  if (at < 0 || at >= Tabs()) throw UserError(ToUtf8(Reference()) + " has no page " + std::to_string(at));
  RequireReachable("switch the page of");
  const Page& p = pages_[at];
  if (!p.visible || !p.enabled)
    throw UserRefused("cannot switch to page " + std::to_string(at) + ": it is " +
                      (p.visible ? "disabled" : "hidden"));
  SetTab(at);
}

void TabStrip::UserClick(const Text* argument) {
  if (!argument) throw UserError("a click on " + ToUtf8(Reference()) + " needs a page number or caption");
  int at = -1;
  if (!ParseInt(*argument, at)) {
    at = -1;
    for (int i = 0; i < Tabs(); ++i)
      if (SameName(pages_[i].caption, *argument)) at = i;
    if (at < 0) throw UserError(ToUtf8(Reference()) + " has no page \"" + ToUtf8(*argument) + "\"");
  }
  UserTab(at);
}

std::optional<Text> TabStrip::Property(TextView name, const std::vector<Text>& args) const {
  const Text n = FoldName(name);
  if (args.empty()) {
    if (n == u"tab" || n == u"value") return IntText(tab_);
    if (n == u"tabs") return IntText(Tabs());
    if (n == u"caption" || n == u"text") return tab_ < Tabs() ? pages_[tab_].caption : Text();
  }
  if (n == u"tabcaption" || n == u"tabenabled" || n == u"tabvisible") {
    int at = IntArgument(args, 0, name);
    if (at < 0 || at >= Tabs()) throw UserError(ToUtf8(Reference()) + " has no page " + std::to_string(at));
    const Page& p = pages_[at];
    if (n == u"tabcaption") return p.caption;
    if (n == u"tabenabled") return BoolText(p.enabled);
    return BoolText(p.visible);
  }
  return Control::Property(name, args);
}

// ---- Status bar

void StatusBar::SetPanels(int count) {
  if (count < 1) BadValue();
  panels_.resize(count);
  Changed(change::kItems);
}

const Text& StatusBar::panel(int number) const {
  if (number < 1 || number > Panels()) BadValue();
  return panels_[number - 1];
}

void StatusBar::SetPanel(int number, const Text& text) {
  if (number < 1 || number > Panels()) BadValue();
  if (panels_[number - 1] == text) return;
  panels_[number - 1] = text;
  Changed(change::kText);
}

void StatusBar::UserClick(const Text* argument) {
  int number = 1;
  if (argument && (!ParseInt(*argument, number) || number < 1 || number > Panels()))
    throw UserError(ToUtf8(Reference()) + " has no panel " + ToUtf8(*argument));
  RequireReachable("click");
  Fire(OnClick);
  if (OnPanelClick) OnPanelClick(number);
}

std::optional<Text> StatusBar::Property(TextView name, const std::vector<Text>& args) const {
  const Text n = FoldName(name);
  if (n == u"panels" && args.empty()) return IntText(Panels());
  if (n == u"panel") {
    int number = IntArgument(args, 0, name);
    if (number < 1 || number > Panels())
      throw UserError(ToUtf8(Reference()) + " has no panel " + std::to_string(number));
    return panels_[number - 1];
  }
  if ((n == u"text" || n == u"caption") && args.empty()) return Panels() > 0 ? panels_[0] : Text();
  return Control::Property(name, args);
}

// ---- Web view

void BrowserControl::Navigate(const Text& url) {
  location_url = url;
  busy = true;
  if (navigator) navigator(*this, url);
}

void BrowserControl::Progress(long long so_far, long long expected) {
  if (OnProgress) OnProgress(so_far, expected);
}

void BrowserControl::NavigateComplete(const Text& url, const Text& title) {
  location_url = url;
  document_title = title;
  if (OnNavigateComplete) OnNavigateComplete(url);
}

void BrowserControl::DocumentComplete(const Text& url, const Text& title, const Text& body_outer_html) {
  busy = false;
  location_url = url;
  document_title = title;
  document_text = body_outer_html;
  if (OnDocumentComplete) OnDocumentComplete(url);
}

std::optional<Text> BrowserControl::Property(TextView name, const std::vector<Text>& args) const {
  const Text n = FoldName(name);
  if (args.empty()) {
    if (n == u"locationurl" || n == u"text") return location_url;
    if (n == u"locationname" || n == u"title") return document_title;
    if (n == u"document") return document_text;
    if (n == u"busy") return BoolText(busy);
  }
  return Control::Property(name, args);
}

}  // namespace lw
