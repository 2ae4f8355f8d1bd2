// Bringing the program up: the store, the splash screen, the main form.
#pragma once

#include "screen/main/program.h"

namespace lw {

// Makes the program's forms (main, splash, wizard) in the program's screen. Call once, before Main.
void CreateForms(Program& program);

// The process entry: opens the store named by the settings (falling back on the default folder, where
// the shipped empty store is installed when there is none), opens the Misc and Setup cursors, and shows
// the splash screen, which loads the main form; then the main form is shown and activated.
// Ends through Ui::EndProcess when the store needs conversion.
void Main(Program& program);

// Copies the shipped empty store to `target` (through a temporary file, so a failed copy leaves no
// half store). Raises RuntimeError 3024 when there is nothing to copy and 3043 when it cannot be written.
void InstallShippedStore(const std::filesystem::path& shipped, const std::filesystem::path& target);

}  // namespace lw
