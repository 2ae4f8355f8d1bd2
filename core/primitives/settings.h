// The persistent per-user key and value settings: application, section, key -> text. Kept in one file
// ($XDG_CONFIG_HOME/lotwright/settings.ini by default), rewritten atomically on every save so that a
// crash never leaves half a file, and read back at the next start.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <tuple>

#include "core/primitives/types.h"

namespace lw {

class Settings {
 public:
  explicit Settings(std::filesystem::path file);
  // $XDG_CONFIG_HOME/lotwright/settings.ini, or $HOME/.config/lotwright/settings.ini.
  static std::filesystem::path DefaultPath();

  // Names match without regard to case, as in a per-user key store; a name keeps the case it was
  // first saved with. A key never saved gives the default.
  Text GetSetting(TextView app, TextView section, TextView key, TextView default_value) const;
  // Writes the whole file again before returning. An empty name raises 5; a file that cannot be
  // written raises 75 "Path/File access error" and leaves the value as it was.
  void SaveSetting(TextView app, TextView section, TextView key, TextView value);
  // Deleting a key that was never saved does nothing.
  void DeleteSetting(TextView app, TextView section, TextView key);
  const std::filesystem::path& path() const { return file_; }

 private:
  void Load();
  void Store() const;
  std::filesystem::path file_;
  std::map<std::tuple<Text, Text, Text>, Text> values_;
};

}  // namespace lw
