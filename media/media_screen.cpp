#include "media/media_screen.h"

#include <chrono>
#include <system_error>

#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "media/scanner.h"
#include "screen/main/main_form.h"

namespace lw {

MediaScreen::MediaScreen(Program& program) : program_(&program) {}

MediaScreen::~MediaScreen() = default;

MainForm& MediaScreen::main() const {
  if (!program_->main)
    throw RuntimeError(err::kObjectVariableNotSet, "Object variable or With block variable not set");
  return *program_->main;
}

FtpClient& MediaScreen::mFTP1() {
  if (!ftp_) {
    ftp_ = std::make_unique<FtpClient>(program_->screen.queue().Port());
    double seconds = Val(program_->settings.GetSetting(u"Lotwright", u"Network", u"timeout", u"60"));
    if (seconds > 0) ftp_->set_timeout(std::chrono::milliseconds(static_cast<long long>(seconds * 1000)));
  }
  return *ftp_;
}

Recordset* MediaScreen::SetupRow() const {
  DataControl& setup = main().setup_datacontrl;
  Recordset* row = setup.HasRecordset() ? &setup.recordset() : program_->startup.setup.get();
  if (!row || row->Eof() || row->Bof()) return nullptr;
  return row;
}

Text GetFileName(TextView path) {
  size_t cut = path.find_last_of(u"\\/");
  return Text(cut == TextView::npos ? path : path.substr(cut + 1));
}

std::filesystem::path ExistingPath(TextView path) {
  namespace fs = std::filesystem;
  fs::path written(ToUtf8(path));
  std::error_code ec;
  if (written.empty() || fs::exists(written, ec)) return written;
  fs::path found = written.root_path();
  for (const fs::path& part : written.relative_path()) {
    fs::path next = found / part;
    if (fs::exists(next, ec)) {
      found = next;
      continue;
    }
    Text wanted = LCase(FromUtf8(part.string()));
    bool matched = false;
    for (const auto& entry : fs::directory_iterator(found.empty() ? fs::path(".") : found, ec)) {
      if (LCase(FromUtf8(entry.path().filename().string())) == wanted) {
        found /= entry.path().filename();
        matched = true;
        break;
      }
    }
    if (!matched) return written;
  }
  return found;
}

void RegisterMedia(Program& program) {
  auto screen = std::make_shared<MediaScreen>(program);
  program.subsystems.push_back(screen);
  RegisterImagePage(*screen);
  RegisterScanner(*screen);
  RegisterUpload(*screen);
}

}  // namespace lw
