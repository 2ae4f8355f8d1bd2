#include "import/file_display.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "core/primitives/encoding.h"
#include "platform/charset.h"

namespace lw {

Text FileDisplay::NormaliseLineEnds(TextView text) {
  Text out;
  out.reserve(text.size() + text.size() / 32);
  for (size_t i = 0; i < text.size(); ++i) {
    char16_t c = text[i];
    if (c == u'\r') {
      out += u"\r\n";
      if (i + 1 < text.size() && text[i + 1] == u'\n') ++i;
    } else if (c == u'\n') {
      out += u"\r\n";
    } else {
      out.push_back(c);
    }
  }
  return out;
}

void FileDisplay::set_text(TextView text) {
  text_ = NormaliseLineEnds(text);
  sel_start_ = 0;
  sel_length_ = 0;
}

void FileDisplay::SaveFile(const std::filesystem::path& path, int /*format*/) const {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  if (!out) throw RuntimeError(75, "Path/File access error: " + path.string());
  std::string bytes = "\xEF\xBB\xBF" + ToUtf8(text_);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) throw RuntimeError(75, "Path/File access error: " + path.string());
}

void FileDisplay::LoadFile(const std::filesystem::path& path) {
  std::error_code ec;
  if (!std::filesystem::is_regular_file(path, ec))
    throw RuntimeError(err::kFileNotFound, "File not found: " + path.string());
  std::ifstream in(path, std::ios::binary);
  if (!in) throw RuntimeError(err::kFileNotFound, "File not found: " + path.string());
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  set_text(DecodePage(bytes));
}

long FileDisplay::Find(TextView what, long from) {
  long start = from < 0 ? sel_start_ : from;
  if (start > static_cast<long>(text_.size())) return kNotFound;
  size_t at = text_.find(what, static_cast<size_t>(start));
  if (at == Text::npos) return kNotFound;
  sel_start_ = static_cast<long>(at);
  sel_length_ = static_cast<long>(what.size());
  return sel_start_;
}

long FileDisplay::GetLineFromChar(long pos) const {
  size_t end = std::min(text_.size(), static_cast<size_t>(std::max(0L, pos)));
  return static_cast<long>(std::count(text_.begin(), text_.begin() + static_cast<long>(end), u'\n'));
}

Text FileDisplay::SelText() const {
  return text_.substr(static_cast<size_t>(sel_start_), sel_length_);
}

void FileDisplay::SetSelStart(long pos) {
  sel_start_ = std::clamp(pos, 0L, static_cast<long>(text_.size()));
  sel_length_ = 0;
}

void FileDisplay::SetSelLength(long length) {
  if (length < 0) throw RuntimeError(err::kInvalidPropertyValue, "Invalid property value");
  sel_length_ = std::min(length, static_cast<long>(text_.size()) - sel_start_);
}

void FileDisplay::SetSelText(TextView text) {
  Text insert = NormaliseLineEnds(text);
  size_t start = static_cast<size_t>(sel_start_);
  text_.replace(start, static_cast<size_t>(sel_length_), insert);
  size_t caret = start + insert.size();
  // A selection that began or ended between the CR and the LF of a line end leaves a lone one at a
  // seam; only then is the whole text put back into CR LF form, with the caret kept after the new text.
  auto broken = [this](size_t i) {
    if (i >= text_.size()) return false;
    if (text_[i] == u'\r') return i + 1 >= text_.size() || text_[i + 1] != u'\n';
    if (text_[i] == u'\n') return i == 0 || text_[i - 1] != u'\r';
    return false;
  };
  bool seam =
      (start > 0 && broken(start - 1)) || broken(start) || (caret > 0 && broken(caret - 1)) || broken(caret);
  if (seam) {
    size_t normalised_caret = NormaliseLineEnds(TextView(text_).substr(0, caret)).size();
    text_ = NormaliseLineEnds(text_);
    caret = std::min(normalised_caret, text_.size());
  }
  sel_start_ = static_cast<long>(caret);
  sel_length_ = 0;
}

Text FileDisplay::LineAtCaret() const {
  size_t start = static_cast<size_t>(sel_start_);
  size_t end = text_.find(u"\r\n", start);
  if (end == Text::npos) end = text_.size();
  return text_.substr(start, end - start);
}

}  // namespace lw
