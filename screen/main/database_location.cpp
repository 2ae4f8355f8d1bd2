#include "screen/main/database_location.h"

#include <cstdlib>

#include "core/primitives/encoding.h"

namespace lw {

std::filesystem::path DefaultDatabaseFolder() {
  const char* data = std::getenv("XDG_DATA_HOME");
  if (data && *data) return std::filesystem::path(data) / "lotwright";
  const char* home = std::getenv("HOME");
  return std::filesystem::path(home && *home ? home : ".") / ".local" / "share" / "lotwright";
}

std::filesystem::path JoinDatabasePath(TextView path, TextView name) {
  std::string n = ToUtf8(name);
  for (char& c : n)
    if (c == '\\') c = '/';
  size_t start = n.find_first_not_of('/');
  n = start == std::string::npos ? std::string() : n.substr(start);
  std::filesystem::path folder(ToUtf8(path));
  return n.empty() ? folder : folder / n;
}

DatabaseLocation ReadDatabaseLocation(const Settings& settings) {
  DatabaseLocation loc;
  loc.path = settings.GetSetting(kAppKey, u"Database", u"Path", FromUtf8(DefaultDatabaseFolder().string()));
  loc.name = settings.GetSetting(kAppKey, u"Database", u"Dbname", kDefaultDbName);
  return loc;
}

}  // namespace lw
