#include "import/import_screen.h"

namespace lw {

void RegisterAuctionImports(ImportScreen&) {}

}  // namespace lw
