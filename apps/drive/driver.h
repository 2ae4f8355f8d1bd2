// The headless driver: runs the program without a window and takes the user's part from a script.
// It is the program's Ui: message boxes, dialogs and modal forms are answered from what the script
// queued (`answer`, `file`, `color`) or by the commands that follow (a modal form takes the following
// commands until it closes). Output goes to one stream, one line per fact, in the formats the
// commands document.
#pragma once

#include <deque>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "core/primitives/datetime.h"
#include "core/store/store.h"
#include "screen/screen.h"
#include "screen/script_line.h"
#include "screen/ui.h"

namespace lw {

class Driver : public Ui {
 public:
  // Exit statuses of the driver.
  static constexpr int kOk = 0;
  static constexpr int kScriptErrors = 2;
  static constexpr int kFatal = 3;

  Driver(std::istream& script, std::ostream& out);
  ~Driver() override;

  // What the driver needs of the program once it is built.
  struct Program {
    Screen* screen = nullptr;
    Clock* clock = nullptr;
    std::function<Database*()> database;  // the open store, nullptr while none is open
    std::function<void()> exit_routine;   // what `exit` runs
  };
  void Attach(Program program);

  // Runs the leading commands that set the stage (now, answer, file, color), then `start` (the
  // program's start-up), then the rest of the script. Returns the exit status: 0, 2 when any command
  // failed, 3 on an unhandled program error; a program that ends itself gives its own code unless a
  // command failed before.
  int Run(const std::function<void()>& start);

  // Waits (up to `limit`) for the programs started through StartProgram, so that what they do is done
  // when the driver exits.
  void WaitForStartedPrograms(std::chrono::seconds limit);

  // Ui.
  MsgAnswer MsgBox(const Text& title, const Text& text, MsgButtons buttons, MsgIcon icon) override;
  std::optional<FileDialogAnswer> ShowOpen(const FileDialogRequest& request) override;
  std::optional<FileDialogAnswer> ShowSave(const FileDialogRequest& request) override;
  std::optional<Colour> ChooseColour(Colour initial) override;
  void SetWaitCursor(bool on) override;
  void ShowModal(Form& form) override;
  void PopupMenu(Form& form, Menu& menu) override;
  void SetClipboardText(const Text& text) override;
  void ClearClipboard() override;
  Text ClipboardText() override;
  void OpenHelp(const std::filesystem::path& file, int topic) override;
  void OpenAddress(const Text& address) override;
  void StartProgram(const std::filesystem::path& program, const std::vector<Text>& arguments) override;
  [[noreturn]] void EndProcess(int code) override;
  void Beep() override;

  bool wait_cursor() const { return wait_cursor_ > 0; }

 private:
  struct ScriptEnd {};  // the script ran out while the program waited for the user
  struct FatalEnd {};   // an unhandled program error was reported; unwind to Run
  struct FileAnswer {
    bool cancel = false;
    std::filesystem::path path;
    int filter_index = 1;
  };

  // Reads the next command line; false at the end of the script.
  bool NextLine(std::vector<Text>& words);
  // Runs one command, reporting user errors; program errors end the run (FatalEnd).
  void Execute(const std::vector<Text>& words);
  void Dispatch(const std::vector<Text>& words);
  bool IsStageCommand(const std::vector<Text>& words) const;

  void Error(const std::string& message);
  void Refused(const std::string& message);
  void Line(const std::string& line);

  // Finds a control by reference; raises UserError naming the reference when there is none.
  Control& ResolveControl(TextView word) const;
  Screen& screen() const;

  void CmdGet(const Text& word);
  void CmdSet(const Text& word, const Text& value);
  void CmdSql(const Text& statement);
  void CmdGrid(const Text& word);
  void CmdStatus(const Text& number);
  void CmdNow(const Text& moment);
  void CmdKey(const Text& word, const Text& key);
  void CmdTick(const Text& word, const Text* number);
  void CmdPump();
  void CmdExit();

  std::optional<FileDialogAnswer> FileDialog();

  std::istream& script_;
  std::ostream& out_;
  Program program_;
  int line_number_ = 0;
  std::optional<std::vector<Text>> pending_;  // a line read ahead while setting the stage
  bool errors_ = false;
  int wait_cursor_ = 0;

  std::deque<MsgAnswer> answers_;
  Menu* popup_ = nullptr;  // the popup the last command opened
  std::deque<FileAnswer> files_;
  std::deque<std::optional<Colour>> colours_;
  std::vector<std::string> messages_;
  std::vector<std::string> outside_;
  Text clipboard_;
  std::vector<int> children_;  // process ids of started programs
};

}  // namespace lw
