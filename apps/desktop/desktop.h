// The desktop front end: the whole program (the same assembly the headless driver runs) shown in Qt
// windows. It is the program's Ui, answered with widgets; it runs the model's event queue and timers in
// the Qt event loop; and every call from a widget into the model goes through Dispatch, which keeps the
// model's errors and its end of the process out of Qt's event handling.
#pragma once

#include <QElapsedTimer>
#include <QPointer>

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/common/assembly.h"
#include "screen/ui.h"

class QEventLoop;
class QWebEngineProfile;
class QTimer;
class QWidget;

namespace lw {
class HttpSession;
}

namespace lw::desktop {

class Renderer;
class CookieBridge;

struct DesktopOptions {
  std::filesystem::path settings_file;  // empty: the default settings file
  ProgramFiles files;
  // A store to open for this run instead of the one the settings name.
  std::optional<std::filesystem::path> database;
};

class Desktop : public Ui {
 public:
  explicit Desktop(DesktopOptions options);
  ~Desktop() override;
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

  Program& program() { return assembly_->program(); }
  Renderer& renderer() { return *renderer_; }
  HttpSession& http_session();
  // The web views' one profile: in memory only, its cookies shared with the program's fetches.
  QWebEngineProfile& web_profile() { return *profile_; }

  // Starts the program (the store, the splash screen, the main form, the wizard on a first start) and
  // runs until it ends; returns the exit code.
  int Run();
  // The two halves of Run: start-up, then the event loop until the program ends.
  void Start();
  int Loop();
  // Ends the run at once, without the program's exit routine: for a tool or a test done with it.
  void Quit(int code) { End(code); }
  bool ended() const { return ended_; }
  int exit_code() const { return exit_code_; }

  // Runs a call into the model for a widget or an event of the loop. A user action refused by the model
  // changes nothing; an error no handler took is shown; the end of the process ends the loops. The
  // widgets follow the model's changes afterwards.
  void Dispatch(const std::function<void()>& call);

  // The window that owns dialogs opened now: the innermost modal form's, else the main window.
  QWidget* DialogParent() const;
  // A widget that shows progress changed in the middle of long work: it is painted now, now and then,
  // while the user's input waits for the work to end.
  void ShowProgress(QWidget& widget);

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
  void DoEvents() override;
  void Beep() override;

 private:
  // Ends the run: every loop of ours returns and every dialog closes.
  void End(int code);
  // Runs a nested loop until `done` holds or the program ends; rethrows the end into the model code
  // that waits on the loop.
  void Wait(const std::function<bool()>& done);
  void ThrowIfEnded() const;
  // Delivers the model's queued events and due timers, then sleeps until the next timer.
  void DeliverEvents();
  void ArmTimer();
  void ShowError(const std::string& what);

  std::unique_ptr<QWebEngineProfile> profile_;
  std::unique_ptr<Assembly> assembly_;
  std::unique_ptr<Renderer> renderer_;
  std::unique_ptr<CookieBridge> cookies_;
  std::unique_ptr<QTimer> timer_;
  QPointer<QWidget> help_window_;
  // The loops running now, the innermost last, each with what ends it (nothing for the main loop).
  std::vector<std::pair<QEventLoop*, std::function<bool()>>> waits_;
  std::vector<QPointer<QWidget>> dialogs_;  // message boxes and file dialogs open now
  std::vector<std::function<void()>> deferred_;
  std::atomic<bool> delivery_posted_{false};
  int dispatch_depth_ = 0;
  bool repainting_ = false;
  QElapsedTimer busy_since_;
  QElapsedTimer repaint_clock_;
  int wait_cursor_ = 0;
  bool ended_ = false;
  int exit_code_ = 0;
};

}  // namespace lw::desktop
