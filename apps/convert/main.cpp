// lotwright-convert: backs up, compacts and converts the store. The program starts it without waiting,
// from the exit prompt and when it finds a store of an older layout, so with no options it does what
// both want: a dated backup, then the conversion if the layout is older, then compaction.
#include <cstring>
#include <iostream>
#include <string>

#include "apps/common/store_convert.h"
#include "core/primitives/convert.h"
#include "core/primitives/datetime.h"
#include "core/primitives/encoding.h"
#include "core/primitives/regional.h"
#include "core/primitives/settings.h"
#include "screen/main/database_location.h"

namespace {

constexpr char kUsage[] =
    "Usage: lotwright-convert [--backup] [--compact] [--convert] [--store FILE] [--layout FILE]\n"
    "\n"
    "Looks after the Lotwright store (by default the one the settings name: Database Path and Dbname).\n"
    "  --backup       copy the store beside itself as NAME-YYYY-MM-DD.mdb and remember today as the\n"
    "                 last backup date (Database Backupdate) for the backup prompt at exit\n"
    "  --compact      compact the store\n"
    "  --convert      bring a store of an older layout up to the current one, keeping every row\n"
    "  --check        only list what the store lacks against the current layout (exit 1 if anything)\n"
    "  --store FILE   work on FILE instead of the store the settings name\n"
    "  --layout FILE  the current layout as an SQL script (default: the one shipped with the program)\n"
    "With no action given, all three run in the order backup, convert, compact.\n"
    "Changes are made on a copy that replaces the store only when complete; on any failure the store is\n"
    "left as it was and the exit status is 1 (2 for a bad command line).\n";

}  // namespace

int main(int argc, char** argv) {
  bool backup = false, compact = false, convert = false, check = false;
  std::filesystem::path store, layout = LW_LAYOUT_SQL;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    auto value = [&](std::filesystem::path& out) {
      if (i + 1 >= argc) {
        std::cerr << "lotwright-convert: " << a << " needs a file name\n" << kUsage;
        return false;
      }
      out = argv[++i];
      return true;
    };
    if (a == "--help" || a == "-h") {
      std::cout << kUsage;
      return 0;
    } else if (a == "--backup") {
      backup = true;
    } else if (a == "--compact") {
      compact = true;
    } else if (a == "--convert") {
      convert = true;
    } else if (a == "--check") {
      check = true;
    } else if (a == "--store") {
      if (!value(store)) return 2;
    } else if (a == "--layout") {
      if (!value(layout)) return 2;
    } else {
      std::cerr << "lotwright-convert: unknown option " << a << "\n" << kUsage;
      return 2;
    }
  }
  if (!backup && !compact && !convert && !check) backup = compact = convert = true;

  try {
    lw::Settings settings(lw::Settings::DefaultPath());
    if (store.empty()) store = lw::ReadDatabaseLocation(settings).file();

    if (check) {
      auto missing = lw::MissingLayout(store, layout);
      for (auto& m : missing) std::cout << "missing: " << m << "\n";
      if (missing.empty()) std::cout << store.string() << " has the current layout\n";
      return missing.empty() ? 0 : 1;
    }

    if (backup) {
      lw::Clock clock;
      lw::Regional regional = lw::Regional::FromEnvironment();
      lw::Date today = clock.Today();
      auto copy = lw::BackupStore(store, today);
      settings.SaveSetting(lw::kAppKey, u"Database", u"Backupdate",
                           lw::Format(lw::Variant(today), u"short date", regional));
      std::cout << "backed up " << store.string() << " to " << copy.string() << "\n";
    }
    if (convert) {
      auto changes = lw::ConvertStore(store, layout, compact);
      for (auto& c : changes) std::cout << c << "\n";
      if (changes.empty())
        std::cout << store.string() << " has the current layout\n";
      else if (changes.size() > (compact ? 1u : 0u))
        std::cout << "converted " << store.string() << "\n";
    } else if (compact) {
      lw::CompactStore(store);
      std::cout << "compacted " << store.string() << "\n";
    }
  } catch (const std::exception& e) {
    std::cerr << "lotwright-convert: " << e.what() << "\n";
    return 1;
  }
  return 0;
}
