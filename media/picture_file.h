// The header of a picture file: width, height and depth, read without decoding the picture, for the
// details under the picture display. Any format the picture library reads (JPEG, GIF, PNG, BMP, ...) is
// taken; what is not a picture, or a picture too large for any display to hold in memory, is refused.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>

#include "screen/picture_box.h"

namespace lw {

struct PictureHeader {
  int width = 0;
  int height = 0;
  int depth = 0;  // bits per pixel: a GIF's colour table, else channels times bits per channel
};

// Nothing when the bytes hold no picture.
std::optional<PictureHeader> ReadPictureHeader(std::span<const unsigned char> bytes);

// The picture display's reader: the header of a file and the file's size. Reads only as much of the
// file as the header needs. Raises 53 "File not found" for a missing file and 481 "Invalid picture" for
// one that holds no picture.
PictureDetails ReadPictureFile(const std::filesystem::path& file);

}  // namespace lw
