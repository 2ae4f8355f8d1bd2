// The whole program, put together for a front end (the headless driver now, the desktop later): the
// settings, the event queue, the program context with its forms, and every subsystem's routines.
#pragma once

#include <filesystem>
#include <memory>

#include "core/primitives/settings.h"
#include "screen/event_queue.h"
#include "screen/main/main_form.h"
#include "screen/main/program.h"

namespace lw {

// Where the files that ship with the program are, for a program started from `executable`: the
// build tree's copies when it runs from the build tree, else the installed share folder beside it.
ProgramFiles LocateProgramFiles(const std::filesystem::path& executable);
// The running program's own file (/proc/self/exe).
std::filesystem::path CurrentExecutable();

class Assembly {
 public:
  // Settings come from their default file ($XDG_CONFIG_HOME/lotwright/settings.ini).
  explicit Assembly(Ui& ui);
  Assembly(Ui& ui, std::filesystem::path settings_file, ProgramFiles files);
  ~Assembly();
  Assembly(const Assembly&) = delete;
  Assembly& operator=(const Assembly&) = delete;

  Program& program() { return *program_; }
  EventQueue& queue() { return queue_; }
  Settings& settings() { return settings_; }
  MainForm& main_form() { return *program_->main; }
  Database* database() { return program_->startup.db.get(); }

  // Start-up (Main). May end the process through Ui::EndProcess.
  void Start();
  // The exit routine of the main form. Ends the process through Ui::EndProcess.
  void Exit();

 private:
  Settings settings_;
  EventQueue queue_;
  std::unique_ptr<Program> program_;
};

// Registers the routines of every subsystem built so far into the program's registry.
void RegisterSubsystems(Program& program);

}  // namespace lw
