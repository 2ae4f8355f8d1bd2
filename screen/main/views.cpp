#include "screen/main/main_form.h"
#include "screen/main/main_parts.h"

namespace lw {

void RegisterViews(MainForm&) {}

}  // namespace lw
