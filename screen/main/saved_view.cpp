#include "screen/main/saved_view.h"

#include <fstream>

#include "core/primitives/encoding.h"
#include "core/primitives/ini_input.h"

namespace lw {

std::optional<SavedView> ImportIniFile(const std::filesystem::path& file) {
  try {
    IniInput in(file);
    SavedView v;
    v.auction_type = in.Read();
    v.userid = in.Read();
    v.status = in.Read();
    v.query = in.Read();
    v.site = in.Read();
    return v;
  } catch (const RuntimeError& e) {
    if (e.number() == err::kFileNotFound || e.number() == err::kInputPastEnd) return std::nullopt;
    throw;
  }
}

void WriteIniFile(const std::filesystem::path& file, const SavedView& view) {
  // Written beside and renamed over, so that a full disk never leaves a cut-off view behind.
  std::filesystem::path tmp = file;
  tmp += ".new";
  {
    std::ofstream out(tmp, std::ios::binary | std::ios::trunc);
    out << ToUtf8(view.auction_type) << "\r\n"
        << '"' << ToUtf8(view.userid) << '"' << "\r\n"
        << ToUtf8(view.status) << "\r\n"
        << ToUtf8(view.query) << "\r\n"
        << ToUtf8(view.site) << "\r\n";
    out.flush();
    if (!out) {
      std::error_code ec;
      std::filesystem::remove(tmp, ec);
      throw RuntimeError(75, "Path/File access error");
    }
  }
  std::error_code ec;
  std::filesystem::rename(tmp, file, ec);
  if (ec) {
    std::filesystem::remove(tmp, ec);
    throw RuntimeError(75, "Path/File access error");
  }
}

}  // namespace lw
