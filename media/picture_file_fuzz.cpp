// Fuzz target: the picture header reading, on bytes that may be anything a user's disk holds.
#include <cstddef>
#include <cstdint>

#include "media/picture_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  auto header = lw::ReadPictureHeader(std::span<const unsigned char>(data, size));
  if (header && (header->width <= 0 || header->height <= 0 || header->depth <= 0 || header->depth > 64))
    __builtin_trap();
  return 0;
}
