#include "core/primitives/settings.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unicode/uchar.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>

#include "core/primitives/encoding.h"

// The file is a plain UTF-8 text a person can read and edit:
//
//   [Lotwright/Settings]
//   DBPath=/home/me/auctions
//   Letter=Dear buyer,\nthank you.
//
// A header names the application and the section, split at the first '/'. Inside names and values a
// backslash escapes: \\ \n \r \t, \uXXXX for other control characters, lone surrogate halves and blanks
// at either end, and a backslash before any other character keeps it as it is (\= \/ \] \[ \# \;).
// Blank lines and lines starting with '#' or ';' are comments; blanks around '=' are ignored.

namespace lw {

namespace {

constexpr int kPathFileAccessError = 75;

[[noreturn]] void AccessError(const std::filesystem::path& p, int e) {
  throw RuntimeError(kPathFileAccessError, "Path/File access error: " + p.string() + ": " + std::strerror(e));
}

void AppendHex(Text& out, char16_t c) {
  static const char16_t kHex[] = u"0123456789ABCDEF";
  out += u"\\u";
  for (int shift = 12; shift >= 0; shift -= 4) out += kHex[(c >> shift) & 0xF];
}

bool IsSurrogate(char16_t c) {
  return c >= 0xD800 && c <= 0xDFFF;
}

// `specials` are the characters that need a backslash where this piece of text is written.
Text Escape(TextView in, TextView specials, bool guard_first) {
  Text out;
  out.reserve(in.size() + 8);
  for (size_t i = 0; i < in.size(); ++i) {
    char16_t c = in[i];
    bool edge = (i == 0 || i + 1 == in.size());
    if (c == u'\\') {
      out += u"\\\\";
    } else if (c == u'\n') {
      out += u"\\n";
    } else if (c == u'\r') {
      out += u"\\r";
    } else if (c == u'\t') {
      out += u"\\t";
    } else if (c < 0x20 || c == 0x7F || (c == u' ' && edge)) {
      AppendHex(out, c);
    } else if (IsSurrogate(c)) {
      // A well-formed pair goes out as one UTF-8 character; a lone half would be lost in UTF-8.
      bool high = c <= 0xDBFF;
      if (high && i + 1 < in.size() && in[i + 1] >= 0xDC00 && in[i + 1] <= 0xDFFF) {
        out += c;
        out += in[++i];
      } else {
        AppendHex(out, c);
      }
    } else if (specials.find(c) != TextView::npos ||
               (guard_first && i == 0 && (c == u'[' || c == u'#' || c == u';'))) {
      out += u'\\';
      out += c;
    } else {
      out += c;
    }
  }
  return out;
}

int HexDigit(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  return -1;
}

std::optional<Text> Unescape(TextView in) {
  Text out;
  out.reserve(in.size());
  for (size_t i = 0; i < in.size(); ++i) {
    char16_t c = in[i];
    if (c != u'\\') {
      out += c;
      continue;
    }
    if (++i >= in.size()) return std::nullopt;
    switch (in[i]) {
      case u'n':
        out += u'\n';
        break;
      case u'r':
        out += u'\r';
        break;
      case u't':
        out += u'\t';
        break;
      case u'u': {
        if (i + 4 >= in.size()) return std::nullopt;
        int v = 0;
        for (int k = 1; k <= 4; ++k) {
          int h = HexDigit(in[i + k]);
          if (h < 0) return std::nullopt;
          v = v * 16 + h;
        }
        out += static_cast<char16_t>(v);
        i += 4;
        break;
      }
      default:
        out += in[i];
    }
  }
  return out;
}

// Position of the first `c` not preceded by an escaping backslash, else npos.
size_t FindUnescaped(TextView s, char16_t c) {
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] == u'\\') {
      ++i;
    } else if (s[i] == c) {
      return i;
    }
  }
  return TextView::npos;
}

TextView TrimBlanks(TextView s) {
  size_t b = 0, e = s.size();
  while (b < e && (s[b] == u' ' || s[b] == u'\t')) ++b;
  while (e > b && (s[e - 1] == u' ' || s[e - 1] == u'\t')) --e;
  return s.substr(b, e - b);
}

bool ValidUtf8(std::string_view s) {
  size_t i = 0;
  while (i < s.size()) {
    unsigned char c = static_cast<unsigned char>(s[i]);
    size_t len = c < 0x80 ? 1 : (c >> 5) == 0x6 ? 2 : (c >> 4) == 0xE ? 3 : (c >> 3) == 0x1E ? 4 : 0;
    if (len == 0 || i + len > s.size()) return false;
    for (size_t k = 1; k < len; ++k)
      if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) return false;
    i += len;
  }
  return true;
}

// Names compare as the per-user key store compares them: without regard to case.
bool SameName(TextView a, TextView b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (a[i] == b[i]) continue;
    if (u_foldCase(a[i], U_FOLD_CASE_DEFAULT) != u_foldCase(b[i], U_FOLD_CASE_DEFAULT)) return false;
  }
  return true;
}

void FsyncPath(const std::filesystem::path& p) {
  int fd = ::open(p.c_str(), O_RDONLY | O_DIRECTORY);
  if (fd >= 0) {
    ::fsync(fd);
    ::close(fd);
  }
}

}  // namespace

Settings::Settings(std::filesystem::path file) : file_(std::move(file)) {
  Load();
}

std::filesystem::path Settings::DefaultPath() {
  const char* xdg = std::getenv("XDG_CONFIG_HOME");
  // Relative values are to be ignored, so that the file does not move with the working folder.
  if (xdg != nullptr && xdg[0] == '/') return std::filesystem::path(xdg) / "lotwright" / "settings.ini";
  const char* home = std::getenv("HOME");
  std::filesystem::path base;
  if (home != nullptr && home[0] != '\0') {
    base = home;
  } else if (const passwd* pw = ::getpwuid(::getuid()); pw != nullptr && pw->pw_dir != nullptr) {
    base = pw->pw_dir;
  } else {
    base = std::filesystem::current_path();
  }
  return base / ".config" / "lotwright" / "settings.ini";
}

namespace {
template <typename Map>
auto FindEntry(Map& values, TextView app, TextView section, TextView key) {
  auto it = values.find(std::make_tuple(Text(app), Text(section), Text(key)));
  if (it != values.end()) return it;
  for (it = values.begin(); it != values.end(); ++it) {
    const auto& [a, s, k] = it->first;
    if (SameName(a, app) && SameName(s, section) && SameName(k, key)) return it;
  }
  return values.end();
}
}  // namespace

Text Settings::GetSetting(TextView app, TextView section, TextView key, TextView default_value) const {
  auto it = FindEntry(values_, app, section, key);
  return it == values_.end() ? Text(default_value) : it->second;
}

void Settings::SaveSetting(TextView app, TextView section, TextView key, TextView value) {
  if (app.empty() || section.empty() || key.empty()) {
    throw RuntimeError(err::kInvalidProcedureCall, "Invalid procedure call or argument");
  }
  auto it = FindEntry(values_, app, section, key);
  std::optional<Text> before;
  if (it != values_.end()) {
    before = it->second;
    it->second = Text(value);
  } else {
    it = values_.emplace(std::make_tuple(Text(app), Text(section), Text(key)), Text(value)).first;
  }
  try {
    Store();
  } catch (...) {
    // What is in memory must stay what is on disk, or the next start would see something else.
    if (before) {
      it->second = std::move(*before);
    } else {
      values_.erase(it);
    }
    throw;
  }
}

void Settings::DeleteSetting(TextView app, TextView section, TextView key) {
  auto it = FindEntry(values_, app, section, key);
  if (it == values_.end()) return;
  auto saved = *it;
  values_.erase(it);
  try {
    Store();
  } catch (...) {
    values_.insert(std::move(saved));
    throw;
  }
}

void Settings::Load() {
  values_.clear();
  std::ifstream in(file_, std::ios::binary);
  if (!in) return;  // no file yet: nothing saved
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (bytes.size() >= 3 && bytes.compare(0, 3, "\xEF\xBB\xBF") == 0) bytes.erase(0, 3);

  std::optional<std::pair<Text, Text>> section;
  size_t pos = 0;
  while (pos < bytes.size()) {
    size_t eol = bytes.find('\n', pos);
    if (eol == std::string::npos) eol = bytes.size();
    std::string_view raw(bytes.data() + pos, eol - pos);
    pos = eol + 1;
    if (!raw.empty() && raw.back() == '\r') raw.remove_suffix(1);
    if (!ValidUtf8(raw)) continue;  // garbled by hand or by a disk: skip it, keep the rest
    Text line = FromUtf8(raw);
    TextView l = TrimBlanks(line);
    if (l.empty() || l[0] == u'#' || l[0] == u';') continue;
    if (l[0] == u'[') {
      section.reset();
      size_t close = FindUnescaped(l.substr(1), u']');
      if (close == TextView::npos || close + 2 != l.size()) continue;
      TextView inner = l.substr(1, close);
      size_t slash = FindUnescaped(inner, u'/');
      if (slash == TextView::npos) continue;
      auto app = Unescape(inner.substr(0, slash));
      auto sec = Unescape(inner.substr(slash + 1));
      if (!app || !sec || app->empty() || sec->empty()) continue;
      section.emplace(std::move(*app), std::move(*sec));
      continue;
    }
    if (!section) continue;  // a value outside any section belongs nowhere
    size_t eq = FindUnescaped(l, u'=');
    if (eq == TextView::npos) continue;
    auto key = Unescape(TrimBlanks(l.substr(0, eq)));
    auto value = Unescape(TrimBlanks(l.substr(eq + 1)));
    if (!key || !value || key->empty()) continue;
    auto it = FindEntry(values_, section->first, section->second, *key);
    if (it != values_.end()) {
      it->second = std::move(*value);  // the later line wins
    } else {
      values_.emplace(std::make_tuple(section->first, section->second, std::move(*key)), std::move(*value));
    }
  }
}

void Settings::Store() const {
  Text text = u"# Lotwright settings. Written by the program; \\n is a line break, \\\\ a backslash.\n";
  const Text* app = nullptr;
  const Text* sec = nullptr;
  for (const auto& [k, v] : values_) {
    const auto& [a, s, key] = k;
    if (app == nullptr || *app != a || *sec != s) {
      text += u"\n[";
      text += Escape(a, u"/]", false);
      text += u'/';
      text += Escape(s, u"]", false);
      text += u"]\n";
      app = &a;
      sec = &s;
    }
    text += Escape(key, u"=", true);
    text += u'=';
    text += Escape(v, u"", false);
    text += u'\n';
  }
  std::string bytes = ToUtf8(text);

  namespace fs = std::filesystem;
  std::error_code ec;
  // A settings file kept elsewhere behind a link stays there; the link is not replaced by a file.
  fs::path target = file_;
  if (fs::is_symlink(file_, ec)) {
    fs::path real = fs::weakly_canonical(file_, ec);
    if (!ec) target = real;
  }
  fs::path folder = target.parent_path();
  if (folder.empty()) folder = ".";
  fs::create_directories(folder, ec);
  if (ec) AccessError(folder, ec.value());

  // A temporary file beside the real one, so that the rename below stays on one file system and
  // replaces the old file in one step.
  std::string tmpl = (folder / (target.filename().string() + ".XXXXXX")).string();
  int fd = ::mkstemp(tmpl.data());
  if (fd < 0) AccessError(folder, errno);
  auto fail = [&](int e) {
    ::close(fd);
    ::unlink(tmpl.c_str());
    AccessError(file_, e);
  };
  ::fchmod(fd, 0600);
  size_t done = 0;
  while (done < bytes.size()) {
    ssize_t w = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (w < 0) {
      if (errno == EINTR) continue;
      fail(errno);
    }
    done += static_cast<size_t>(w);
  }
  if (::fsync(fd) != 0) fail(errno);
  if (::close(fd) != 0) {
    int e = errno;
    ::unlink(tmpl.c_str());
    AccessError(file_, e);
  }
  if (::rename(tmpl.c_str(), target.c_str()) != 0) {
    int e = errno;
    ::unlink(tmpl.c_str());
    AccessError(file_, e);
  }
  FsyncPath(folder);
}

}  // namespace lw
