#include "import/import_screen.h"

namespace lw {

void RegisterDownload(ImportScreen&) {}

}  // namespace lw
