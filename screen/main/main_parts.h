// The parts of the main screen that hang their routines on the registry when the form is built: the
// user ids with the Setup page and the wizard, the auction views, and the record operations.
#pragma once

namespace lw {

class MainForm;

void RegisterUserids(MainForm& form);
void RegisterViews(MainForm& form);
void RegisterRecords(MainForm& form);

}  // namespace lw
