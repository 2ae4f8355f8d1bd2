// The renderer: one widget for each control of the screen model, made by the control's kind, placed by
// the model's containment, order and layout hints, and brought up to date from the model's change
// notices. It knows no form and no control by name: a form added to the model shows without code here
// unless it brings a control of a new kind.
#pragma once

#include <QObject>
#include <QPointer>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "screen/screen.h"

class QAction;
class QLayout;
class QMainWindow;
class QMenu;
class QStatusBar;
class QWidget;

namespace lw::desktop {

class Desktop;
class ControlView;
class WebView;

class Renderer : public ScreenObserver {
 public:
  Renderer(Desktop& desktop, Screen& screen);
  ~Renderer() override;
  Renderer(const Renderer&) = delete;
  Renderer& operator=(const Renderer&) = delete;

  Desktop& desktop() const { return desktop_; }
  Screen& screen() const { return screen_; }

  // ScreenObserver: changes are gathered and shown by Flush.
  void ControlChanged(Control& control, unsigned changes) override;
  void ControlAdded(Control& control) override;
  void ControlRemoved(Control& control) override;
  void FormChanged(Form& form) override;

  // Brings the widgets of every control that changed since the last time up to date, and each window's
  // title and focus.
  void Flush();

  // The window of a form, built at its first showing; nullptr before.
  QWidget* WindowOf(const Form& form) const;
  QWidget* MainWindow() const;
  // Builds the window of a form (hidden unless the form is visible), for a look at all of them.
  QWidget* Build(Form& form);
  void BuildAll();
  // Shows the window of a form as a modal dialog.
  void ShowModal(Form& form);
  // Closes every window, at the end of the run.
  void CloseAll();

  // The widget that shows a control (for menus the action's widget is none: see ActionOf), and the
  // control a widget shows, looking up through its parents.
  QWidget* WidgetOf(const Control& control) const;
  QAction* ActionOf(const Control& control) const;
  Control* ControlOf(const QWidget* widget) const;
  ControlView* ViewOf(const Control& control) const;

  // A popup menu of the model, shown under the pointer until an entry is chosen or it is dismissed.
  void PopupMenu(Menu& menu);

  // The web view of a browser control, made at first use.
  WebView& WebViewFor(BrowserControl& browser);

  // Every difference between what the widgets show and what the model holds: a control of a built form
  // without its widget, or a widget whose caption, text, items or visibility are not the model's. Empty
  // when the screen shows the model.
  std::vector<std::string> Check() const;

  // A view's widget asks its container to be laid out again (a control moved, one was added).
  void Relayout(Form& form);

  // For the views: whether the renderer is writing into widgets now (their signals are not the user's).
  bool syncing() const { return syncing_ > 0; }
  // Runs a change of the model a view makes itself (a tree node the user opened) without its notice.
  void Quietly(const Control& control, const std::function<void()>& change);

  // Whether the main window's fonts grow and shrink with it, asked at each change of its size.
  std::function<bool()> fonts_follow_window;
  // How much the fonts of a form's controls are scaled now: 1 but for the main window with fonts that
  // follow its size, where it is its size over the size it first had, in the smaller direction.
  double FontScale(const Form& form) const;

 private:
  struct Window;
  Window* WindowFor(const Form& form) const;
  void MakeViews(Window& window);
  ControlView* MakeView(Window& window, Control& control);
  void Layout(Window& window);
  void LayoutContainer(Window& window, QWidget* host, Control* container, int page, bool top);
  void ApplyGeometry(Window& window);
  void SyncWindow(Window& window);
  void OnFocusChanged(QWidget* now);
  void FollowWindowSize(Window& window);

  Desktop& desktop_;
  Screen& screen_;
  QObject context_;  // owns the renderer's connections and posted calls
  std::map<const Form*, std::unique_ptr<Window>> windows_;
  std::unordered_map<const Control*, std::unique_ptr<ControlView>> views_;
  std::unordered_map<const QWidget*, Control*> controls_;  // widget shown -> its control
  std::unordered_map<const Control*, std::unique_ptr<WebView>> web_views_;
  std::vector<std::pair<Control*, unsigned>> dirty_;
  std::unordered_map<const Control*, size_t> dirty_index_;
  bool flush_posted_ = false;
  int syncing_ = 0;
  const Control* quiet_ = nullptr;
  double font_scale_ = 1;

  friend class ControlView;
};

}  // namespace lw::desktop
