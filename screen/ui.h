// Everything that needs a person or the desktop goes through this one interface: message boxes, file
// and colour dialogs, the wait cursor, modal forms, popup menus, the clipboard, help and web addresses,
// starting another program and ending the process. The desktop front end answers with widgets; the
// headless driver answers from its script.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

#include "core/primitives/types.h"

namespace lw {

class Form;
class Menu;

// Button sets and answers keep the numbers the desktop runtime gives them, so code that stores or
// compares them keeps working.
enum class MsgButtons {
  OK = 0,
  OKCancel = 1,
  AbortRetryIgnore = 2,
  YesNoCancel = 3,
  YesNo = 4,
  RetryCancel = 5
};
enum class MsgIcon { None = 0, Critical = 16, Question = 32, Exclamation = 48, Information = 64 };
enum class MsgAnswer { OK = 1, Cancel = 2, Abort = 3, Retry = 4, Ignore = 5, Yes = 6, No = 7 };

// The buttons of a set in the order they stand on the box; the first is the default answer.
std::vector<MsgAnswer> ButtonsOf(MsgButtons buttons);
const char* ButtonsName(MsgButtons buttons);  // "OK", "OKCancel", "YesNo" ...
const char* IconName(MsgIcon icon);           // "none", "critical", "question" ...
const char* AnswerName(MsgAnswer answer);     // "OK", "Cancel", "Yes" ...
// Reads an answer name as the driver's `answer` command writes it; case is ignored.
std::optional<MsgAnswer> ParseAnswer(TextView name);

// A file dialog as the program asks for it. `filter` is "Description|pattern|Description|pattern";
// `filter_index` counts from 1.
struct FileDialogRequest {
  Text title;
  Text filter;
  int filter_index = 1;
  Text initial_dir;
  Text file_name;
  Text default_ext;
};
struct FileDialogAnswer {
  std::filesystem::path path;
  int filter_index = 1;
};

// Colours are 0x00BBGGRR, as the program stores them in its settings.
using Colour = int32_t;

// Thrown by Ui::EndProcess to take the process down through every handler. It is deliberately not a
// std::exception: handlers catch RuntimeError (or std::exception) and must let this one pass.
struct ProcessEnd {
  int code = 0;
};

class Ui {
 public:
  virtual ~Ui() = default;

  // A modal message box; returns the button chosen.
  virtual MsgAnswer MsgBox(const Text& title, const Text& text, MsgButtons buttons, MsgIcon icon) = 0;
  // File dialogs; nothing when the user cancels.
  virtual std::optional<FileDialogAnswer> ShowOpen(const FileDialogRequest& request) = 0;
  virtual std::optional<FileDialogAnswer> ShowSave(const FileDialogRequest& request) = 0;
  // The colour dialog; nothing when the user cancels.
  virtual std::optional<Colour> ChooseColour(Colour initial) = 0;
  // The hourglass for the time of a blocking call.
  virtual void SetWaitCursor(bool on) = 0;
  // Runs the form modally: returns once the form is hidden or unloaded. The form is already loaded and
  // visible when this is called (Form::Show does that).
  virtual void ShowModal(Form& form) = 0;
  // Shows a popup menu under the pointer; the user picks an entry (its Click runs) or dismisses it.
  virtual void PopupMenu(Form& form, Menu& menu) = 0;
  virtual void SetClipboardText(const Text& text) = 0;
  virtual void ClearClipboard() = 0;
  virtual Text ClipboardText() = 0;
  // Opens the help file at a topic (0 for its contents).
  virtual void OpenHelp(const std::filesystem::path& file, int topic) = 0;
  // Opens an address in the user's web browser or mail program.
  virtual void OpenAddress(const Text& address) = 0;
  // Starts another program in a normal window without waiting for it. Raises RuntimeError 53 when the
  // program file does not exist.
  virtual void StartProgram(const std::filesystem::path& program, const std::vector<Text>& arguments) = 0;
  // Ends the process at once. Never returns: implementations throw ProcessEnd (or exit).
  [[noreturn]] virtual void EndProcess(int code) = 0;
  // The short warning sound of a refused action. Silent where there is no speaker.
  virtual void Beep() {}
  // In the middle of long work: lets the user act meanwhile (a Cancel button, a look at another page)
  // and the screen show the progress. The caller must be safe against the user starting another command
  // before this returns. Without a window there is nothing to let through.
  virtual void DoEvents() {}
};

// Sets the wait cursor for the life of the object, and back even when the call throws.
class WaitCursor {
 public:
  explicit WaitCursor(Ui& ui) : ui_(ui) { ui_.SetWaitCursor(true); }
  ~WaitCursor() { ui_.SetWaitCursor(false); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;

 private:
  Ui& ui_;
};

}  // namespace lw
