// The picture display: a control that shows one picture file. It keeps the file's name, how the picture
// is fitted into the box, and the picture's width, height, depth and file size as read when the file
// was set. The model reads only the picture's header (through `reader`); the front end draws the file
// itself, in the display mode the box holds.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

#include "screen/control.h"

namespace lw {

namespace err {
inline constexpr int kInvalidPicture = 481;
}  // namespace err

// What a picture file holds, as far as the display needs to know before drawing it.
struct PictureDetails {
  int width = 0;            // pixels
  int height = 0;           // pixels
  int depth = 0;            // bits per pixel
  std::uintmax_t size = 0;  // bytes of the file
  // The file as found on disk (a name written in another case may find it): what a front end draws.
  // The box fills in the name as written when the reader leaves it empty.
  std::filesystem::path path;
};

class PictureBox : public Control {
 public:
  // Display modes, with the numbers the program sets: the whole picture scaled to fit the box keeping
  // its proportions, the picture scaled to the box's width, or the picture pixel for pixel.
  static constexpr int kFitToWidth = 2;
  static constexpr int kBestFit = 4;
  static constexpr int kActualSize = 5;

  PictureBox(Form& form, Text name, int index = -1)
      : Control(form, ControlKind::Picture, std::move(name), index) {}

  // Reads a file's details; raises RuntimeError 53 for a missing file and 481 for one that holds no
  // picture. Set by whoever places the box.
  std::function<PictureDetails(const std::filesystem::path&)> reader;

  const Text& file_name() const { return file_name_; }
  // Loads the file: its details are read at once. The empty text unloads. A file the reader refuses
  // leaves the box empty and raises the reader's error.
  void SetFileName(const Text& file);
  bool loaded() const { return !file_name_.empty(); }
  const PictureDetails& details() const { return details_; }

  int display_mode() const { return display_mode_; }
  // Raises 380 for a number that is no display mode.
  void SetDisplayMode(int mode);

  // filename, displaymode, picwidth, picheight, picsize, picdepth.
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;

 private:
  Text file_name_;
  PictureDetails details_;
  int display_mode_ = kBestFit;
};

}  // namespace lw
