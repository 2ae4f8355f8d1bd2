#include "screen/form.h"

#include <gtest/gtest.h>

#include "screen/grid.h"
#include "screen/testing.h"

namespace lw {
namespace {

using testing::TestScreen;

TEST(FormControls, NamesIgnoreCaseArraysKeepOrderAndDuplicatesAreRefused) {
  TestScreen t;
  t.form.Add(ControlKind::TextBox, u"emailletter_txt", 3);
  t.form.Add(ControlKind::TextBox, u"emailletter_txt", 1);
  t.form.Add(ControlKind::Label, u"Label1");
  EXPECT_NE(t.form.Find(u"EMAILLETTER_TXT", 3), nullptr);
  EXPECT_EQ(t.form.Find(u"emailletter_txt"), nullptr);
  auto arr = t.form.Array(u"emailletter_txt");
  ASSERT_EQ(arr.size(), 2u);
  EXPECT_EQ(arr[0]->index(), 1);
  EXPECT_EQ(arr[1]->Reference(), u"emailletter_txt(3)");

  auto number = [](auto&& f) {
    try {
      f();
    } catch (const RuntimeError& e) {
      return e.number();
    }
    return 0;
  };
  EXPECT_EQ(number([&] { t.form.Add(ControlKind::TextBox, u"EmailLetter_txt", 1); }), 360);
  EXPECT_EQ(number([&] { t.form.Add(ControlKind::TextBox, u"label1"); }), 360);
  // A lone control and an array may share a name; each reference finds its own.
  Control& member = t.form.Add(ControlKind::Label, u"Label1", 89);
  EXPECT_EQ(t.form.Find(u"label1", 89), &member);
  EXPECT_NE(t.form.Find(u"label1"), &member);
  EXPECT_EQ(t.form.Array(u"Label1").size(), 1u);
  EXPECT_EQ(number([&] { t.form.Get(u"emailletter_txt", 2); }), 340);
  EXPECT_EQ(number([&] { t.form.Get<Grid>(u"Label1"); }), 13);
  // A kind with a class of its own is made as that class.
  EXPECT_NE(dynamic_cast<ComboBox*>(&t.form.Add(ControlKind::ComboBox, u"site_lst")), nullptr);
}

TEST(FormLifecycle, ModalFormsTakeReferencesUntilTheyClose) {
  TestScreen t;
  Form& wizard = t.Add(u"wizard");
  t.form.Add(ControlKind::TextBox, u"Userid_txt").SetText(u"main's");
  wizard.Add(ControlKind::TextBox, u"Userid_txt").SetText(u"wizard's");
  int loads = 0, activations = 0;
  wizard.OnLoad = [&] { ++loads; };
  wizard.OnActivate = [&] { ++activations; };
  Text seen_inside;
  t.ui.modal = [&](Form& f) {
    EXPECT_EQ(&f, &wizard);
    seen_inside = t.screen.Resolve(Text(), u"userid_txt", -1)->text();
    f.Hide();
  };
  wizard.Show(true);
  EXPECT_EQ(seen_inside, u"wizard's");
  EXPECT_EQ(t.screen.TopModal(), nullptr);
  EXPECT_EQ(t.screen.Resolve(Text(), u"Userid_txt", -1)->text(), u"main's");
  EXPECT_EQ(t.screen.Resolve(u"WIZARD", u"Userid_txt", -1)->text(), u"wizard's");
  wizard.Show(false);
  EXPECT_EQ(loads, 1);
  EXPECT_EQ(activations, 2);

  // A modal loop left by an error still takes the form off the stack.
  t.ui.modal = [](Form&) { throw RuntimeError(5, "boom"); };
  wizard.Hide();
  EXPECT_THROW(wizard.Show(true), RuntimeError);
  EXPECT_TRUE(t.screen.modal_stack().empty());
}

TEST(FormLifecycle, UnloadCanBeCancelledAndStopsTimers) {
  auto now = std::chrono::steady_clock::time_point{};
  EventQueue queue([&] { return now; });
  testing::RecordingUi ui;
  Screen screen(ui, queue);
  Form& form = screen.Adopt(std::make_unique<Form>(screen, u"splash"));
  auto& timer = form.Add<Timer>(u"Timer1");
  int ticks = 0;
  timer.OnTimer = [&] { ++ticks; };
  timer.SetInterval(1000);
  form.Show();
  now += std::chrono::milliseconds(999);
  EXPECT_EQ(queue.TickDueTimers(), 0);
  now += std::chrono::milliseconds(1);
  EXPECT_EQ(queue.TickDueTimers(), 1);
  EXPECT_EQ(queue.TickDueTimers(), 0);  // counts again from the tick

  int asked = 0;
  form.OnQueryUnload = [&](int& cancel) { cancel = ++asked == 1; };
  EXPECT_FALSE(form.Unload());
  EXPECT_TRUE(form.loaded());
  EXPECT_TRUE(form.Unload());
  now += std::chrono::seconds(5);
  EXPECT_EQ(queue.TickDueTimers(), 0);
  EXPECT_EQ(ticks, 1);
  timer.SetEnabled(false);
  form.Show();
  now += std::chrono::seconds(5);
  EXPECT_EQ(queue.TickDueTimers(), 0);
}

TEST(FormProperties, GeometryIsReadAndSetByName) {
  TestScreen t;
  int resized = 0;
  t.form.OnResize = [&] { ++resized; };
  EXPECT_TRUE(t.form.SetProperty(u"width", u"10000"));
  EXPECT_TRUE(t.form.SetProperty(u"Left", u"-120"));
  EXPECT_TRUE(t.form.SetProperty(u"WindowState", u"1"));
  EXPECT_EQ(t.form.Property(u"WIDTH"), Text(u"10000"));
  EXPECT_EQ(t.form.left, -120);
  EXPECT_EQ(t.form.window_state, 1);
  EXPECT_EQ(resized, 3);
  EXPECT_THROW(t.form.SetProperty(u"Height", u"big"), UserError);
  EXPECT_THROW(t.form.SetProperty(u"WindowState", u"3"), UserError);
  EXPECT_FALSE(t.form.SetProperty(u"Colour", u"1"));
  EXPECT_FALSE(t.form.Property(u"Colour").has_value());
}

}  // namespace
}  // namespace lw
