// The arithmetic of shutting down: the window geometry that is saved, and whether the backup prompt
// is due.
#pragma once

#include "core/primitives/types.h"

namespace lw {

// Twips, as the settings keep them.
struct WindowGeometry {
  long width = 11445;
  long height = 9000;
  long left = 0;
  long top = 0;
};

// A window too small to be useful is saved at the design size; a window pushed off the top or left of
// the screen is saved at the edge.
WindowGeometry GeometryToSave(const WindowGeometry& window);

// The backup intervals of the setup page in list order.
inline constexpr const char16_t* kBackupIntervals[] = {u"Always", u"2 days", u"3 days", u"5 days", u"7 days"};
// Days of the interval at a list index; an index outside the list counts as "Always".
int BackupIntervalDays(int index);
// The prompt is due when the last backup date plus the interval is at or before today (dates only).
bool BackupDue(Date last_backup, int interval_days, Date today);

}  // namespace lw
