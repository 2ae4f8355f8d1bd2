// Test support for the screen model (included by tests only): a Ui that records what the program asks
// of the user and answers from queues, and a screen with a bare form to put controls on.
#pragma once

#include <stdlib.h>
#include <unistd.h>

#include <deque>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "screen/screen.h"

namespace lw::testing {

// A user who is never asked anything that matters: every question takes its first button, dialogs are
// cancelled, and the rest does nothing. Test users derive from it and play the parts they test.
class StubUi : public Ui {
 public:
  MsgAnswer MsgBox(const Text&, const Text&, MsgButtons buttons, MsgIcon) override {
    return ButtonsOf(buttons).front();
  }
  std::optional<FileDialogAnswer> ShowOpen(const FileDialogRequest&) override { return std::nullopt; }
  std::optional<FileDialogAnswer> ShowSave(const FileDialogRequest&) override { return std::nullopt; }
  std::optional<Colour> ChooseColour(Colour) override { return std::nullopt; }
  void PopupMenu(Form&, Menu&) override {}
  void SetClipboardText(const Text&) override {}
  void ClearClipboard() override {}
  Text ClipboardText() override { return {}; }
  void OpenHelp(const std::filesystem::path&, int) override {}
  void OpenAddress(const Text&) override {}
  void StartProgram(const std::filesystem::path&, const std::vector<Text>&) override {}
  [[noreturn]] void EndProcess(int code) override { throw ProcessEnd{code}; }
  void SetWaitCursor(bool) override {}
  void ShowModal(Form&) override {}
};

class RecordingUi : public StubUi {
 public:
  struct Box {
    Text title, text;
    MsgButtons buttons;
    MsgIcon icon;
  };
  std::vector<Box> boxes;
  std::deque<MsgAnswer> answers;
  // Plays the user while a form is shown modally; ShowModal returns when it does.
  std::function<void(Form&)> modal;
  std::vector<Text> started;
  Text clipboard;
  int wait = 0;

  MsgAnswer MsgBox(const Text& title, const Text& text, MsgButtons buttons, MsgIcon icon) override {
    boxes.push_back({title, text, buttons, icon});
    if (answers.empty()) return ButtonsOf(buttons).front();
    MsgAnswer a = answers.front();
    answers.pop_front();
    return a;
  }
  void SetWaitCursor(bool on) override { wait += on ? 1 : -1; }
  void ShowModal(Form& form) override {
    if (modal) modal(form);
  }
  void SetClipboardText(const Text& text) override { clipboard = text; }
  void ClearClipboard() override { clipboard.clear(); }
  Text ClipboardText() override { return clipboard; }
  void StartProgram(const std::filesystem::path& program, const std::vector<Text>&) override {
    started.push_back(Text(program.u16string()));
  }
};

// A fresh folder for the running test, named by `prefix`, the process and the test, with the default
// store folder and the settings folder pointed into it. The test removes it when done.
inline std::filesystem::path FreshTestHome(const std::string& prefix, const std::string& test_name) {
  namespace fs = std::filesystem;
  fs::path dir = fs::temp_directory_path() / (prefix + std::to_string(::getpid()) + "_" + test_name);
  fs::remove_all(dir);
  fs::create_directories(dir / "data");
  setenv("XDG_DATA_HOME", (dir / "data").c_str(), 1);
  setenv("XDG_CONFIG_HOME", (dir / "config").c_str(), 1);
  return dir;
}

// A screen with one plain form named "main".
struct TestScreen {
  RecordingUi ui;
  EventQueue queue;
  Screen screen{ui, queue};
  Form& form = Add(u"main");

  Form& Add(const Text& name) { return screen.Adopt(std::make_unique<Form>(screen, name)); }
  TestScreen() { screen.main_form = &form; }
};

}  // namespace lw::testing
