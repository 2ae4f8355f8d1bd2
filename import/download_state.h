// What the fetch side keeps for the run besides the import screen's job state: the transports, whether
// they have been wired to the main form's events, and the dialog of the update command.
#pragma once

#include "import/download.h"

namespace lw {

class ImportDaysForm;

struct DownloadState {
  Transports transports;
  bool wired = false;
  ImportDaysForm* days_form = nullptr;
  // The item number the browser's last address ends in, for the bid controls.
  Text current_item;
};

}  // namespace lw
