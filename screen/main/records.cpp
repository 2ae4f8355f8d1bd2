#include "screen/main/main_form.h"
#include "screen/main/main_parts.h"

namespace lw {

void RegisterRecords(MainForm&) {}

}  // namespace lw
