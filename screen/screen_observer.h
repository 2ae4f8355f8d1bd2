// What a front end that draws the screen hears from the model: a control whose state changed, a control
// added to a form or going away, a form shown, hidden or unloaded. The screen tells at most one observer;
// with none attached a change costs the test of a null pointer, so the driver pays nothing for it.
//
// Parts of a control that code reaches by reference (a toolbar's button, a tab strip's page, a list
// bar's group, a tree's node, a grid's column) report a change when the reference is handed out: the
// observer is expected to read the control again after the handler that changed it has returned, not at
// once.
#pragma once

namespace lw {

class Control;
class Form;

// What changed on a control, as bits; a front end reads those parts of the control again.
namespace change {
inline constexpr unsigned kText = 1u << 0;       // text or caption
inline constexpr unsigned kValue = 1u << 1;      // check box or option value, meter level
inline constexpr unsigned kState = 1u << 2;      // visible, enabled, locked; a timer's interval
inline constexpr unsigned kLook = 1u << 3;       // colours, tooltip, font
inline constexpr unsigned kItems = 1u << 4;      // list items, buttons, groups, pages, panels, nodes, columns
inline constexpr unsigned kSelection = 1u << 5;  // list index, current page, group, row or node
inline constexpr unsigned kRows = 1u << 6;       // the rows a grid shows
inline constexpr unsigned kPlace = 1u << 7;      // container or layout hint
inline constexpr unsigned kAll = 0xFFu;
}  // namespace change

class ScreenObserver {
 public:
  virtual ~ScreenObserver() = default;
  // `changes` is a set of change:: bits.
  virtual void ControlChanged(Control& control, unsigned changes) = 0;
  // A control made after the form was built.
  virtual void ControlAdded(Control& control) = 0;
  // Called from the control's destructor: only the address may be used, as a key.
  virtual void ControlRemoved(Control& control) = 0;
  // The form was shown, hidden or unloaded; its caption and geometry may have changed too.
  virtual void FormChanged(Form& form) = 0;
};

}  // namespace lw
