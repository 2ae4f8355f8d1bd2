#include "apps/drive/driver.h"

#include <gtest/gtest.h>

#include <sstream>

#include "core/primitives/encoding.h"
#include "screen/grid.h"

namespace lw {
namespace {

// A small program of our own: a main form with a few controls and a dialog it opens modally.
struct Harness {
  std::istringstream script;
  std::ostringstream out;
  Driver driver{script, out};
  EventQueue queue;
  Screen screen{driver, queue};
  Clock clock;
  Form& main = screen.Adopt(std::make_unique<Form>(screen, u"main"));
  Form& dialog = screen.Adopt(std::make_unique<Form>(screen, u"dialog"));
  StatusBar& status = main.Add<StatusBar>(u"StatusBar1");
  std::vector<std::string> log;

  explicit Harness(const std::string& text) : script(text) {
    screen.main_form = &main;
    status.SetPanels(2);
    main.Add(ControlKind::TextBox, u"name_txt").SetText(u"on main");
    dialog.Add(ControlKind::TextBox, u"name_txt");
    dialog.Add(ControlKind::Button, u"ok_btn").OnClick = [this] { dialog.Hide(); };
    main.Add(ControlKind::Button, u"open_btn").OnClick = [this] {
      log.push_back("opening");
      dialog.Show(true);
      status.SetPanel(1, u"typed " + dialog.Get(u"name_txt").text());
    };
    Driver::Program p;
    p.screen = &screen;
    p.clock = &clock;
    p.database = [] { return nullptr; };
    p.exit_routine = [this] {
      log.push_back("exit routine");
      driver.EndProcess(0);
    };
    driver.Attach(p);
  }
  int Run() {
    return driver.Run([this] { main.Show(); });
  }
};

TEST(Driver, AModalFormTakesTheFollowingCommandsUntilItCloses) {
  Harness h(
      "click open_btn\n"
      "get name_txt\n"
      "set name_txt Bob\n"
      "click ok_btn\n"
      "status 1\n"
      "get name_txt\n"
      "get dialog.name_txt\n");
  EXPECT_EQ(h.Run(), Driver::kOk);
  EXPECT_EQ(h.out.str(),
            "name_txt = \"\"\n"
            "status 1 = \"typed Bob\"\n"
            "name_txt = \"on main\"\n"
            "dialog.name_txt = \"Bob\"\n");
}

TEST(Driver, MessageBoxesTakeQueuedAnswersElseTheirFirstButton) {
  Harness h(
      "answer no\n"
      "answer Retry\n"
      "click ask_btn\n"
      "messages\n"
      "messages\n");
  h.main.Add(ControlKind::Button, u"ask_btn").OnClick = [&] {
    auto& ui = h.main.ui();
    MsgAnswer a = ui.MsgBox(u"Backup Database", u"Do you want to\r\nbackup \"now\"?", MsgButtons::YesNo,
                            MsgIcon::Question);
    h.log.push_back(AnswerName(a));
    // Retry is no button of an OK box: the box takes its first button and the script is told.
    a = ui.MsgBox(u"Note", u"Saved.", MsgButtons::OK, MsgIcon::Information);
    h.log.push_back(AnswerName(a));
    a = ui.MsgBox(u"Again", u"x", MsgButtons::AbortRetryIgnore, MsgIcon::None);
    h.log.push_back(AnswerName(a));
  };
  EXPECT_EQ(h.Run(), Driver::kScriptErrors);
  EXPECT_EQ(h.log, (std::vector<std::string>{"No", "OK", "Abort"}));
  EXPECT_EQ(h.out.str(),
            "error: line 3: the queued answer Retry is not a button of the box \"Note\" (OK); took OK\n"
            "msgbox \"Backup Database\" \"Do you want to\\nbackup \\\"now\\\"?\" YesNo question -> No\n"
            "msgbox \"Note\" \"Saved.\" OK information -> OK\n"
            "msgbox \"Again\" \"x\" AbortRetryIgnore none -> Abort\n");
}

TEST(Driver, TheStageIsSetBeforeStartAndErrorsEndTheRunAsTheyShould) {
  // `now` before the program starts is seen by its start-up.
  {
    Harness h("now \"2024-03-05 14:30:00\"\nstatus 1\n");
    Date seen;
    int code = h.driver.Run([&] {
      seen = h.clock.Now();
      h.main.Show();
    });
    EXPECT_EQ(code, Driver::kOk);
    EXPECT_EQ(seen, MakeDate(2024, 3, 5, 14, 30, 0));
  }
  // An unhandled program error ends the run at once.
  {
    Harness h("click boom_btn\nstatus 1\n");
    h.main.Add(ControlKind::Button, u"boom_btn").OnClick = [] { throw RuntimeError(3075, "Syntax error"); };
    EXPECT_EQ(h.Run(), Driver::kFatal);
    EXPECT_EQ(h.out.str(), "fatal: run-time error 3075: Syntax error\n");
  }
  // So does one inside a modal form, through the program code that opened it.
  {
    Harness h("click open_btn\nclick boom_btn\nstatus 1\n");
    bool caught_by_program = false;
    h.dialog.Add(ControlKind::Button, u"boom_btn").OnClick = [] { throw RuntimeError(13, "Type mismatch"); };
    h.main.Get(u"open_btn").OnClick = [&] {
      try {
        h.dialog.Show(true);
      } catch (const RuntimeError&) {
        caught_by_program = true;
      }
    };
    EXPECT_EQ(h.Run(), Driver::kFatal);
    EXPECT_FALSE(caught_by_program);
  }
  // The program ending itself stops the script; refusals are reported without failing the run.
  {
    Harness h("leave name_txt\nclick open_btn\nexit\nstatus 1\n");
    h.main.Get(u"open_btn").SetEnabled(false);
    EXPECT_EQ(h.Run(), Driver::kOk);
    EXPECT_EQ(h.log, std::vector<std::string>{"exit routine"});
    EXPECT_EQ(h.out.str(), "refused: cannot click open_btn: it is disabled\n");
  }
  // The script running out while a modal form waits ends the run quietly.
  {
    Harness h("click open_btn\nset name_txt half\n");
    EXPECT_EQ(h.Run(), Driver::kOk);
    EXPECT_EQ(h.log, std::vector<std::string>{"opening"});
  }
}

TEST(Driver, DialogsKeysTicksAndProperties) {
  Harness h(
      "file /tmp/a.htm 2\n"
      "file cancel\n"
      "color 255\n"
      "click pick_btn\n"
      "outside\n"
      "key name_txt F3\n"
      "key name_txt x\n"
      "get name_txt\n"
      "tick Timer1\n"
      "tick MhClock_current_time 7\n"
      "get Userid_lst.list(1)\n"
      "get Userid_lst.listcount\n"
      "get Userid_lst.list(x)\n"
      "get main.caption\n"
      "get main.Userid_lst.visible\n"
      "set main.Height 9000\n"
      "get main.Height\n"
      "tab 1\n");
  std::vector<std::string> seen;
  h.main.Add(ControlKind::Button, u"pick_btn").OnClick = [&] {
    FileDialogRequest r;
    r.title = u"Open page";
    auto a = h.main.ui().ShowOpen(r);
    seen.push_back(a ? a->path.string() + " " + std::to_string(a->filter_index) : "cancel");
    a = h.main.ui().ShowSave(r);
    seen.push_back(a ? a->path.string() : "cancel");
    auto c = h.main.ui().ChooseColour(0);
    seen.push_back(c ? std::to_string(*c) : "cancel");
    h.main.ui().StartProgram("/bin/true", {u"--backup"});
  };
  h.main.key_preview = true;
  h.main.OnKeyDown = [&](int& code, int) { seen.push_back("key " + std::to_string(code)); };
  auto& timer = h.main.Add<Timer>(u"Timer1");
  timer.OnTimer = [&] { seen.push_back("timer"); };
  h.main.Add<ClockControl>(u"MhClock_current_time").OnTick = [&](int n) {
    seen.push_back("tick " + std::to_string(n));
  };
  auto& users = h.main.Add<ComboBox>(u"Userid_lst");
  users.AddItem(u"anna");
  users.AddItem(u"bob");
  h.main.caption = u"SELLER AUCTIONS";
  EXPECT_EQ(h.Run(), Driver::kScriptErrors);
  h.driver.WaitForStartedPrograms(std::chrono::seconds(10));
  EXPECT_EQ(seen, (std::vector<std::string>{"/tmp/a.htm 2", "cancel", "255", "key 114", "key 88", "timer",
                                            "tick 7"}));
  EXPECT_EQ(h.out.str(),
            "open dialog \"Open page\" -> \"/tmp/a.htm\"\n"
            "save dialog \"Open page\" name \"\" folder \"\" filter \"\" 1 -> cancel\n"
            "start \"/bin/true\" \"--backup\"\n"
            "name_txt = \"on mainx\"\n"
            "Userid_lst.list(1) = \"bob\"\n"
            "Userid_lst.listcount = \"2\"\n"
            "error: line 13: property list needs a whole number in brackets\n"
            "main.caption = \"SELLER AUCTIONS\"\n"
            "main.Userid_lst.visible = \"True\"\n"
            "main.Height = \"9000\"\n"
            "error: line 18: no tab strip on the screen\n");
}

TEST(Driver, GridsPrintWhatTheUserSees) {
  Harness h(
      "grid list_grid\n"
      "row list_grid 1\n"
      "click list_grid 2\n"
      "row list_grid 2\n"
      "get list_grid.row\n");
  auto& grid = h.main.Add<Grid>(u"list_grid");
  grid.AddColumn(u"Item");
  grid.AddColumn(u"Secret");
  grid.AddColumn(u"Title");
  grid.column(1).visible = false;
  grid.AddRow({u"1", u"x", u"Lamp \"big\""});
  grid.AddRow({u"2", u"y", u"Vase"});
  std::vector<int> seen;
  grid.OnRowColChange = [&](int last, int) { seen.push_back(last); };
  grid.OnHeadClick = [&](int col) { seen.push_back(100 + col); };
  EXPECT_EQ(h.Run(), Driver::kScriptErrors);
  EXPECT_EQ(seen, (std::vector<int>{-1, 102}));
  EXPECT_EQ(h.out.str(),
            "row: \"1\" \"Lamp \\\"big\\\"\"\n"
            "row: \"2\" \"Vase\"\n"
            "error: line 4: grid list_grid has no row 2\n"
            "list_grid.row = \"1\"\n");
}

}  // namespace
}  // namespace lw
