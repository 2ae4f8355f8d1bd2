#include "apps/common/assembly.h"

#include <unistd.h>

#include <system_error>

#include "accounting/charges_screen.h"
#include "accounting/fees_screen.h"
#include "core/store/store.h"
#include "import/import_screen.h"
#include "listing/listing_screen.h"
#include "screen/main/startup.h"

namespace lw {

std::filesystem::path CurrentExecutable() {
  std::error_code ec;
  auto p = std::filesystem::read_symlink("/proc/self/exe", ec);
  return ec ? std::filesystem::path() : p;
}

ProgramFiles LocateProgramFiles(const std::filesystem::path& executable) {
  namespace fs = std::filesystem;
  fs::path dir = executable.parent_path();
  ProgramFiles f;
  f.shipped_store = ShippedStorePath(dir);
  std::error_code ec;
  // Installed: bin/lotwright-drive beside bin/lotwright-convert, help under share/lotwright/help.
  f.convert = dir / "lotwright-convert";
  f.help = dir.parent_path() / "share" / "lotwright" / "help" / "index.html";
#ifdef LW_CONVERT_PROGRAM
  if (!fs::exists(f.convert, ec)) f.convert = LW_CONVERT_PROGRAM;
#endif
#ifdef LW_HELP_INDEX
  if (!fs::exists(f.help, ec)) f.help = LW_HELP_INDEX;
#endif
  return f;
}

Assembly::Assembly(Ui& ui) : Assembly(ui, Settings::DefaultPath(), LocateProgramFiles(CurrentExecutable())) {}

Assembly::Assembly(Ui& ui, std::filesystem::path settings_file, ProgramFiles files)
    : settings_(std::move(settings_file)),
      program_(std::make_unique<Program>(ui, queue_, settings_, std::move(files))) {
  CreateForms(*program_);
  RegisterSubsystems(*program_);
}

Assembly::~Assembly() = default;

void Assembly::Start() {
  Main(*program_);
}

void Assembly::Exit() {
  program_->main->exit_program();
}

void RegisterSubsystems(Program& program) {
  // Each subsystem above the screen adds its Register...(program) call here.
  RegisterImport(program);
  RegisterCharges(program);
  RegisterFees(program);
  RegisterListing(program);
}

}  // namespace lw
