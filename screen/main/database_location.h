// Where the store lives. The settings keep a folder ("Path") and a file name with a leading backslash
// ("Dbname"); every file the program names as "{path}\name" is that folder joined with the name.
#pragma once

#include <filesystem>

#include "core/primitives/settings.h"
#include "core/primitives/types.h"

namespace lw {

inline constexpr char16_t kAppKey[] = u"Lotwright";
inline constexpr char16_t kDefaultDbName[] = u"\\lw.mdb";

// $XDG_DATA_HOME/lotwright, else $HOME/.local/share/lotwright: where an installer would put the store.
std::filesystem::path DefaultDatabaseFolder();

// "{path}\name": the folder joined with a name that may start with a backslash or slash and may use
// backslashes between its parts.
std::filesystem::path JoinDatabasePath(TextView path, TextView name);

// The store file the settings point at, with the defaults start-up uses.
struct DatabaseLocation {
  Text path;  // folder
  Text name;  // "\lw.mdb"
  std::filesystem::path file() const { return JoinDatabasePath(path, name); }
};
DatabaseLocation ReadDatabaseLocation(const Settings& settings);

}  // namespace lw
