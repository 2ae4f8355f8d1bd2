// The parts of the main screen that hang their routines on the registry when the form is built: the
// user ids with the Setup page and the wizard, the auction views, the record operations, and the update
// check.
#pragma once

namespace lw {

class MainForm;

void RegisterUserids(MainForm& form);
void RegisterViews(MainForm& form);
void RegisterRecords(MainForm& form);
// The weekly update check on the clock's tick and the help menu's "Check for Updates".
void RegisterUpdateCheck(MainForm& form);

}  // namespace lw
