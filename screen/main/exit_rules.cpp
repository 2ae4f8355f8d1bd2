#include "screen/main/exit_rules.h"

#include <cmath>

namespace lw {

WindowGeometry GeometryToSave(const WindowGeometry& w) {
  WindowGeometry s;
  s.width = w.width > 11400 ? w.width : 11445;
  s.height = w.height > 8800 ? w.height : 9000;
  s.left = w.left >= 0 ? w.left : 0;
  s.top = w.top >= 0 ? w.top : 0;
  return s;
}

int BackupIntervalDays(int index) {
  static constexpr int kDays[] = {0, 2, 3, 5, 7};
  return index >= 0 && index < 5 ? kDays[index] : 0;
}

bool BackupDue(Date last_backup, int interval_days, Date today) {
  return std::floor(last_backup.serial) + interval_days <= std::floor(today.serial);
}

}  // namespace lw
