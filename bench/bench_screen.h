// What the benchmarks of the whole screen share: a user who answers every question with its first
// button, and a fresh home whose default store folder holds the shipped store filled by one statement.
#pragma once

#include <sqlite3.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "screen/form.h"
#include "screen/main/main_form.h"
#include "screen/main/startup.h"
#include "screen/testing.h"

namespace lw::bench {

// Modal forms close at once; every question takes its first button.
class QuietUi : public testing::StubUi {
 public:
  void ShowModal(Form& form) override { form.Unload(); }
};

// A fresh folder named by `prefix` and the process, with XDG_DATA_HOME and XDG_CONFIG_HOME in it and the
// shipped store in the default store folder, filled by `fill` (SQLite's own SQL). Returns the folder.
inline std::filesystem::path PrepareBenchHome(const std::string& prefix, const char* fill) {
  namespace fs = std::filesystem;
  fs::path dir = fs::temp_directory_path() / (prefix + std::to_string(::getpid()));
  fs::remove_all(dir);
  fs::create_directories(dir / "data" / "lotwright");
  setenv("XDG_DATA_HOME", (dir / "data").c_str(), 1);
  setenv("XDG_CONFIG_HOME", (dir / "config").c_str(), 1);
  fs::path store = dir / "data" / "lotwright" / "lw.mdb";
  fs::copy_file(LW_SHIPPED_STORE, store);
  sqlite3* db = nullptr;
  char* error = nullptr;
  bool ok = sqlite3_open(store.c_str(), &db) == SQLITE_OK &&
            sqlite3_exec(db, fill, nullptr, nullptr, &error) == SQLITE_OK;
  std::string why = error ? error : db ? sqlite3_errmsg(db) : "cannot open the store";
  sqlite3_free(error);
  sqlite3_close(db);
  if (!ok) throw std::runtime_error("filling the bench store: " + why);
  return dir;
}

// The whole program started on a bench home made by PrepareBenchHome: its forms, the subsystems
// `subsystems` registers, and start-up. The home goes with it.
struct BenchProgram {
  std::filesystem::path dir;
  QuietUi ui;
  EventQueue queue;
  std::unique_ptr<Settings> settings;
  std::unique_ptr<Program> program;

  BenchProgram(std::filesystem::path home, const std::function<void(Program&)>& subsystems)
      : dir(std::move(home)) {
    settings = std::make_unique<Settings>(dir / "config" / "settings.ini");
    program =
        std::make_unique<Program>(ui, queue, *settings, ProgramFiles{LW_SHIPPED_STORE, "/bin/true", "help"});
    CreateForms(*program);
    if (subsystems) subsystems(*program);
    Main(*program);
  }
  ~BenchProgram() {
    program.reset();
    std::filesystem::remove_all(dir);
  }
  MainForm& main() { return *program->main; }
};

}  // namespace lw::bench
