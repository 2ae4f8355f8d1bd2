#include "core/update/update_check.h"

#include <system_error>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/ini_input.h"
#include "core/primitives/text.h"
#include "platform/ftp_client.h"
#include "platform/hosts.h"

namespace lw {

namespace {

constexpr char16_t kApp[] = u"Lotwright";
constexpr char16_t kSection[] = u"Database";
constexpr char16_t kKey[] = u"lastupdatecheck";
constexpr char16_t kNeverChecked[] = u"01/01/2000";
constexpr char16_t kChecking[] = u"Checking for Updates .....";
// The anonymous logon gives an address of the maker's own domain as its password.
constexpr char kAnonymousPassword[] = "update@lotwright.com";

}  // namespace

bool UpdateCheckDue(int number, Date today, const Text& last_check, const Regional& regional) {
  if (number != 0 && number != 30) return false;
  try {
    return today.serial - CDate(Variant(last_check), regional).serial > 6;
  } catch (const RuntimeError&) {
    return true;
  }
}

double ReadServerVersion(const std::filesystem::path& file) {
  IniInput input(file);
  Text item = input.Read();
  if (!IsNumeric(Variant(item), Regional::FromLocale("en_US")))
    throw RuntimeError(err::kTypeMismatch, "Type mismatch");
  return Val(item);
}

UpdateCheck::UpdateCheck(Settings& settings, const Regional& regional, const Clock& clock, double version,
                         UpdateCheckScreen screen)
    : settings_(settings),
      regional_(regional),
      clock_(clock),
      version_(version),
      screen_(std::move(screen)) {}

void UpdateCheck::Tick(int number) {
  Text last = settings_.GetSetting(kApp, kSection, kKey, kNeverChecked);
  if (UpdateCheckDue(number, clock_.Today(), last, regional_)) check_for_update();
}

void UpdateCheck::Menu() {
  checks_ = 0;
  check_for_update();
}

void UpdateCheck::check_for_update() {
  if (checks_ >= 1) return;
  ++checks_;
  auto status = [this](const Text& text) {
    if (screen_.status) screen_.status(text);
  };
  status(kChecking);
  try {
    std::filesystem::path file =
        screen_.server_ini ? screen_.server_ini() : std::filesystem::path("server.ini");
    FtpClient ftp{EventPort{}};
    ftp.set_timeout(timeout_);
    ftp.host = BaseUrlFor(settings_, "update");
    ftp.user = "anonymous";
    ftp.password = kAnonymousPassword;
    ftp.Act(ftp_action::kConnect);
    ftp.remote_directory = "incoming";
    ftp.Act(ftp_action::kChangeDirectory);
    ftp.local_file = file;
    ftp.remote_file = "server.ini";
    ftp.Act(ftp_action::kGetFile);
    status(Text(kChecking) + u" Completed.");
    double newest = ReadServerVersion(file);
    std::error_code ec;
    std::filesystem::remove(file, ec);
    if (version_ < newest) {
      Text text = u"A new version (" + CStr(Variant(newest), regional_) + u") is available for download." +
                  u"\r\n\r\nDo you want to go to the Announcements page now?";
      if (screen_.ask && screen_.ask(text) && screen_.show_announcements) screen_.show_announcements();
    } else {
      status(Text(kChecking) + u" Completed. Your version is up to date. Current version is " +
             CStr(Variant(version_), regional_) + u".");
      settings_.SaveSetting(kApp, kSection, kKey, Format(Variant(clock_.Today()), u"short date", regional_));
    }
  } catch (const RuntimeError&) {
    // A failed transfer changes nothing but the status text, so the next start tries again.
  }
}

}  // namespace lw
