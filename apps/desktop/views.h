// The widget of each kind of control, and what ties it to its control: Sync reads the parts of the
// control that changed into the widget; the widget's user signals go back to the model as the user's
// actions (UserSet, UserClick ...), through the desktop's Dispatch; Check lists where the widget shows
// something other than the model.
#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "screen/control.h"

class QAction;

namespace lw::desktop {

class Renderer;

class ControlView {
 public:
  ControlView(Renderer& renderer, Control& control);
  virtual ~ControlView();
  ControlView(const ControlView&) = delete;
  ControlView& operator=(const ControlView&) = delete;

  Control& control() const { return control_; }
  // The widget that stands for the control in its container's layout (for menus, none).
  QWidget* widget() const { return widget_; }
  virtual QAction* action() const { return nullptr; }
  // Where the controls this one contains are laid out (a frame's box, a tab strip's page).
  virtual QWidget* Host(int page) const;
  // Grids, web views, trees and text boxes of several lines take the free space.
  virtual bool Stretches() const;

  // Reads the parts of the control that changed (change:: bits) into the widget.
  virtual void Sync(unsigned changes);
  // Adds a line for each thing the widget shows other than the model.
  virtual void Check(std::vector<std::string>& problems) const;

 protected:
  // A user's action on the widget: runs it on the model through the desktop, then shows what the model
  // made of it (a refused action puts the widget back as the model has it).
  void UserAction(const std::function<void()>& action);
  // Visible, enabled, tooltip, colours and font: what every control has.
  void SyncCommon(unsigned changes);
  // The widget a key press or a click in is the control's: its events go to the model first.
  void WatchInput(QWidget* target);
  void Report(std::vector<std::string>& problems, const std::string& what) const;

  Renderer& renderer_;
  Control& control_;
  QPointer<QWidget> widget_;

 private:
  class InputFilter;
  std::unique_ptr<InputFilter> filter_;
};

// The view of a control of this kind, or nullptr for a kind without a widget (timers, data controls).
std::unique_ptr<ControlView> MakeControlView(Renderer& renderer, Control& control);

// A list, grid or tree inside a scrolling page keeps room for a few rows rather than shrinking to
// nothing when the window is small.
void KeepRowsInSight(QWidget& list, int row_height, int rows = 6);

// Sets a widget's text colours and background from the model's colours. The model's defaults (black on
// white) leave the widget's own look.
void ApplyColours(QWidget& widget, const Control& control, bool input);

}  // namespace lw::desktop
