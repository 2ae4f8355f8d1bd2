#include "screen/control.h"

#include <gtest/gtest.h>

#include "screen/testing.h"

namespace lw {
namespace {

using testing::TestScreen;

TEST(ControlEvents, ChangeFiresOnlyWhenTextChangesAndOnlyForTextLikeControls) {
  TestScreen t;
  Control& box = t.form.Add(ControlKind::TextBox, u"Title_txt");
  Control& label = t.form.Add(ControlKind::Label, u"Label1");
  Control& button = t.form.Add(ControlKind::Button, u"ok_btn");
  int box_changes = 0, label_changes = 0, button_changes = 0;
  box.OnChange = [&] { ++box_changes; };
  label.OnChange = [&] { ++label_changes; };
  button.OnChange = [&] { ++button_changes; };

  box.SetText(u"a");
  box.SetText(u"a");
  box.SetText(u"b");
  label.SetCaption(u"x");
  button.SetCaption(u"OK");
  EXPECT_EQ(box_changes, 2);
  EXPECT_EQ(label_changes, 1);
  EXPECT_EQ(button_changes, 0);
  EXPECT_EQ(button.text(), u"OK");
}

TEST(ControlEvents, CheckBoxValueFiresClickAndRejectsBadValues) {
  TestScreen t;
  Control& chk = t.form.Add(ControlKind::CheckBox, u"check1", 2);
  int clicks = 0;
  chk.OnClick = [&] { ++clicks; };
  chk.SetValue(1);
  chk.SetValue(1);
  EXPECT_EQ(clicks, 1);
  EXPECT_THROW(chk.SetValue(3), RuntimeError);
  chk.UserClick(nullptr);  // the user's click toggles
  EXPECT_EQ(chk.value(), 0);
  EXPECT_EQ(clicks, 2);
  EXPECT_THROW(chk.UserSet(u"yes"), UserError);
  chk.UserSet(u"1");
  EXPECT_EQ(chk.value(), 1);
}

TEST(ControlEvents, OptionButtonsAreExclusiveWithinTheirContainerOnly) {
  TestScreen t;
  Control& frame = t.form.Add(ControlKind::Frame, u"Frame1");
  Control& a = t.form.Add(ControlKind::OptionButton, u"opt", 0);
  Control& b = t.form.Add(ControlKind::OptionButton, u"opt", 1);
  Control& other = t.form.Add(ControlKind::OptionButton, u"other_opt");
  a.SetContainer(&frame);
  b.SetContainer(&frame);
  other.SetValue(kTrue);
  a.SetValue(kTrue);
  int b_clicks = 0;
  b.OnClick = [&] { ++b_clicks; };
  b.UserSet(u"1");
  EXPECT_EQ(a.value(), kFalse);
  EXPECT_EQ(b.value(), kTrue);
  EXPECT_EQ(other.value(), kTrue);
  EXPECT_EQ(b_clicks, 1);
  EXPECT_EQ(b.Property(u"value", {}), Text(u"True"));
}

TEST(ListControls, SortedItemsSelectionAndRemoval) {
  TestScreen t;
  auto& list = t.form.Add<ComboBox>(u"Userid_lst");
  list.style = 2;
  list.sorted = true;
  list.AddItem(u"mike");
  list.AddItem(u"Anna");
  list.AddItem(u"bob");
  EXPECT_EQ(list.List(0), u"Anna");
  EXPECT_EQ(list.List(1), u"bob");
  EXPECT_EQ(list.new_index(), 1);
  EXPECT_EQ(list.List(7), u"");

  int clicks = 0;
  list.OnClick = [&] { ++clicks; };
  list.SetText(u"MIKE");  // found without regard to case
  EXPECT_EQ(list.list_index(), 2);
  EXPECT_EQ(list.text(), u"mike");
  EXPECT_EQ(clicks, 1);
  // A drop-down list cannot show a text it does not hold.
  try {
    list.SetText(u"zed");
    FAIL() << "no error";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), 383);
  }
  EXPECT_EQ(list.list_index(), 2);

  list.RemoveItem(0);
  EXPECT_EQ(list.list_index(), 1);
  list.RemoveItem(1);
  EXPECT_EQ(list.list_index(), -1);
  EXPECT_EQ(list.text(), u"");
  EXPECT_THROW(list.RemoveItem(5), RuntimeError);
  EXPECT_THROW(list.SetListIndex(4), RuntimeError);
}

TEST(ListControls, UserChoosesItemsAndTypesIntoEditableCombos) {
  TestScreen t;
  auto& type = t.form.Add<ComboBox>(u"Auction_type_lst");
  type.style = 2;
  type.AddItem(u"Seller");
  type.AddItem(u"Bidder");
  int clicks = 0;
  type.OnClick = [&] { ++clicks; };
  type.UserSet(u"Bidder");
  type.UserSet(u"Bidder");  // choosing the item on show again is still a choice
  EXPECT_EQ(clicks, 2);
  EXPECT_THROW(type.UserSet(u"Neither"), UserError);

  auto& combo = t.form.Add<ComboBox>(u"duration_lst");
  combo.AddItem(u"3");
  combo.AddItem(u"5");
  int changes = 0;
  combo.OnChange = [&] { ++changes; };
  combo.UserSet(u"12");
  EXPECT_EQ(combo.text(), u"12");
  EXPECT_EQ(combo.list_index(), -1);
  combo.UserSet(u"5");
  EXPECT_EQ(combo.list_index(), 1);
  EXPECT_EQ(changes, 2);
  EXPECT_EQ(combo.Property(u"list", {u"1"}), Text(u"5"));
  EXPECT_EQ(combo.Property(u"listcount", {}), Text(u"2"));
  EXPECT_THROW(combo.Property(u"list", {u"x"}), UserError);
}

TEST(UserReach, DisabledHiddenLockedAndContainedControlsRefuseTheUser) {
  TestScreen t;
  Control& frame = t.form.Add(ControlKind::Frame, u"Frame2");
  Control& box = t.form.Add(ControlKind::TextBox, u"Price_txt");
  box.SetContainer(&frame);
  frame.SetEnabled(false);
  EXPECT_THROW(box.UserSet(u"1"), UserRefused);
  frame.SetEnabled(true);
  box.SetLocked(true);
  EXPECT_THROW(box.UserSet(u"1"), UserRefused);
  box.SetLocked(false);
  box.SetVisible(false);
  EXPECT_THROW(box.UserClick(nullptr), UserRefused);
  box.SetVisible(true);
  box.UserSet(u"12.50");
  EXPECT_EQ(box.text(), u"12.50");
  // Code may still change what the user cannot reach.
  frame.SetVisible(false);
  box.SetText(u"3");
  EXPECT_EQ(box.text(), u"3");

  Menu& file = t.form.AddMenu(u"file_mnu", u"File");
  Menu& exit = t.form.AddMenu(u"exit_mnu", u"Exit", &file);
  int chosen = 0;
  exit.OnClick = [&] { ++chosen; };
  file.SetEnabled(false);
  EXPECT_THROW(exit.UserClick(nullptr), UserRefused);
  file.SetEnabled(true);
  exit.UserClick(nullptr);
  EXPECT_EQ(chosen, 1);

  // A hidden menu offers its entries only while it is popped up; disabled, not even then.
  Menu& popup = t.form.AddMenu(u"duplicate_mnu", u"Duplicate");
  Menu& copy = t.form.AddMenu(u"copy_mnu", u"Copy", &popup);
  copy.OnClick = [&] { ++chosen; };
  popup.SetVisible(false);
  EXPECT_THROW(copy.UserClick(nullptr), UserRefused);
  t.form.PopupMenu(popup);
  copy.UserClick(nullptr);
  EXPECT_EQ(chosen, 2);
  popup.SetEnabled(false);
  EXPECT_THROW(copy.UserClick(nullptr), UserRefused);
  popup.popped_up = false;
  popup.SetEnabled(true);
  EXPECT_THROW(copy.UserClick(nullptr), UserRefused);
}

TEST(UserKeys, PreviewTypingCancellationAndEnterOnButtons) {
  TestScreen t;
  Control& box = t.form.Add(ControlKind::TextBox, u"Search_txt");
  box.max_length = 3;
  std::vector<int> seen;
  t.form.key_preview = true;
  t.form.OnKeyDown = [&](int& code, int) {
    seen.push_back(code);
    if (code == key::kF1 + 2) code = 0;  // the form keeps F3 to itself
  };
  int control_keydowns = 0;
  box.OnKeyDown = [&](int&, int) { ++control_keydowns; };
  box.OnKeyPress = [](int& ascii) {
    if (ascii == 'x') ascii = 0;  // refused character
  };
  box.UserKey(key::kF1 + 2, 0);
  EXPECT_EQ(control_keydowns, 0);
  box.UserKey('A', 'a');
  box.UserKey('X', 'x');
  box.UserKey('B', 'b');
  box.UserKey('C', 'c');
  box.UserKey('D', 'd');  // beyond the maximum length
  EXPECT_EQ(box.text(), u"abc");
  box.UserKey(key::kBack, key::kBack);
  EXPECT_EQ(box.text(), u"ab");
  EXPECT_EQ(seen.front(), key::kF1 + 2);

  Control& button = t.form.Add(ControlKind::Button, u"go_btn");
  int clicks = 0;
  button.OnClick = [&] { ++clicks; };
  button.UserKey(key::kEnter, key::kEnter);
  EXPECT_EQ(clicks, 1);
}

TEST(UserFocus, MovingToAnotherControlAndLeavingFireLostFocus) {
  TestScreen t;
  Control& a = t.form.Add(ControlKind::TextBox, u"a_txt");
  Control& b = t.form.Add(ControlKind::TextBox, u"b_txt");
  std::vector<std::string> events;
  a.OnLostFocus = [&] { events.push_back("a lost"); };
  b.OnGotFocus = [&] { events.push_back("b got"); };
  b.OnLostFocus = [&] { events.push_back("b lost"); };
  a.UserSet(u"1");
  b.UserSet(u"2");
  b.UserLeave();
  EXPECT_EQ(events, (std::vector<std::string>{"a lost", "b got", "b lost"}));
  EXPECT_EQ(t.form.active_control(), nullptr);
}

TEST(Bars, ToolbarListBarTabStripAndStatusBar) {
  TestScreen t;
  auto& bar = t.form.Add<Toolbar>(u"ctToolBar1");
  bar.AddButton(u"Back");
  bar.AddButton(u"Make Bid");
  int pressed = 0;
  bar.OnButtonClick = [&](int n) { pressed = n; };
  Text two = u"2", caption = u"back", nine = u"9";
  bar.UserClick(&caption);
  EXPECT_EQ(pressed, 1);
  bar.button(2).enabled = false;
  EXPECT_THROW(bar.UserClick(&two), UserRefused);
  EXPECT_THROW(bar.UserClick(&nine), UserError);
  EXPECT_THROW(bar.button(0), RuntimeError);

  auto& lb = t.form.Add<ListBar>(u"ctListBar1");
  int import = lb.AddGroup(u"Import");
  int db = lb.AddGroup(u"Database");
  lb.AddItem(import, u"Quit", u"Exit Program", u"exit");
  lb.AddItem(db, u"Quit", u"Exit Program", u"exit");
  lb.AddItem(db, u"Delete Auction", u"Delete Currently Displayed Auction", u"delete_auction");
  std::vector<int> got;
  lb.OnItemClick = [&](int g, int i, int button) { got = {g, i, button}; };
  Text del = u"Delete Auction", quit = u"Quit";
  lb.UserRightClick(&del);
  EXPECT_EQ(got, (std::vector<int>{1, 1, kRightButton}));
  lb.UserClick(&quit);  // the open group's own Quit
  EXPECT_EQ(got, (std::vector<int>{1, 0, kLeftButton}));
  EXPECT_EQ(lb.Property(u"tip", {u"1", u"1"}), Text(u"Delete Currently Displayed Auction"));

  auto& tabs = t.form.Add<TabStrip>(u"SSTab1");
  tabs.SetTabs(3);
  std::vector<int> left;
  tabs.OnTabClick = [&](int previous) { left.push_back(previous); };
  tabs.SetTab(2);
  tabs.SetTab(2);
  tabs.page(0).enabled = false;
  EXPECT_THROW(tabs.UserTab(0), UserRefused);
  EXPECT_THROW(tabs.UserTab(3), UserError);
  tabs.UserTab(1);
  EXPECT_EQ(left, (std::vector<int>{0, 2}));
  EXPECT_EQ(tabs.value(), 1);

  auto& status = t.form.Add<StatusBar>(u"StatusBar1");
  status.SetPanels(2);
  status.SetPanel(1, u"Records Returned: 3");
  int panel = 0;
  status.OnPanelClick = [&](int p) { panel = p; };
  status.UserClick(nullptr);
  EXPECT_EQ(panel, 1);
  EXPECT_THROW(status.SetPanel(3, u"x"), RuntimeError);
  EXPECT_EQ(status.Property(u"panel", {u"1"}), Text(u"Records Returned: 3"));
}

}  // namespace
}  // namespace lw
