// Advanced edit on the details page: the item number, the price and the start and end dates of the
// current row become editable, the dates through three date editors, until one of them is left.
#pragma once

#include <functional>

namespace lw {

class MainForm;

// Adds the date editors `ctDEdit1(0)` (end time), `ctDEdit1(1)` (end date) and `ctDEdit1(2)` (start
// date) when the form has none yet, puts the details page in its normal locked state, and registers
// `edit_advanced` and `edit_finished`.
void RegisterAdvancedEdit(MainForm& form);

// Runs a record command under its handler: a run-time error ends the command, the rows stay as the
// error left them, and the status bar says why.
void RunHandled(MainForm& form, const std::function<void()>& body);

}  // namespace lw
