#include "screen/picture_box.h"

#include <string>

#include "core/primitives/encoding.h"
#include "screen/names.h"

namespace lw {

void PictureBox::SetFileName(const Text& file) {
  const bool had = loaded();
  file_name_.clear();
  details_ = PictureDetails{};
  if (file.empty()) {
    if (had) Changed(change::kText);
    return;
  }
  // The box is emptied first and stays so if the reader refuses the file: drawn afresh either way.
  Changed(change::kText);
  if (!reader) throw RuntimeError(err::kInvalidPicture, "Invalid picture");
  const std::filesystem::path written(ToUtf8(file));
  details_ = reader(written);
  if (details_.path.empty()) details_.path = written;
  file_name_ = file;
}

void PictureBox::SetDisplayMode(int mode) {
  if (mode != kFitToWidth && mode != kBestFit && mode != kActualSize)
    throw RuntimeError(err::kInvalidPropertyValue, "Invalid property value");
  if (mode == display_mode_) return;
  display_mode_ = mode;
  Changed(change::kValue);
}

std::optional<Text> PictureBox::Property(TextView name, const std::vector<Text>& args) const {
  if (args.empty()) {
    const Text n = FoldName(name);
    auto number = [](auto v) { return FromUtf8(std::to_string(v)); };
    if (n == u"filename") return file_name_;
    if (n == u"displaymode") return number(display_mode_);
    if (n == u"picwidth") return number(details_.width);
    if (n == u"picheight") return number(details_.height);
    if (n == u"picsize") return number(details_.size);
    if (n == u"picdepth") return number(details_.depth);
  }
  return Control::Property(name, args);
}

}  // namespace lw
