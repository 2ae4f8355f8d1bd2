#include "media/picture_file.h"

#include <stb/stb_image.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>
#include <system_error>

#include "core/primitives/types.h"

namespace lw {

namespace {

// A picture no display can hold: the library itself refuses to decode more than this many bytes.
bool Holdable(int width, int height) {
  if (width <= 0 || height <= 0) return false;
  return static_cast<unsigned long long>(width) * static_cast<unsigned long long>(height) * 4ULL <=
         static_cast<unsigned long long>(INT_MAX);
}

// A GIF is drawn from a colour table: its depth is the table's size in bits, not the library's four
// channels of the decoded picture. The logical screen descriptor tells it; without a global table the
// frames bring their own, of up to 8 bits.
int GifDepth(const unsigned char* head, size_t size) {
  if (size < 13 || std::memcmp(head, "GIF", 3) != 0) return 0;
  unsigned char packed = head[10];
  return (packed & 0x80) ? (packed & 0x07) + 1 : 8;
}

std::optional<PictureHeader> Finish(int ok, int width, int height, int channels, bool sixteen,
                                    const unsigned char* head, size_t head_size) {
  if (!ok || !Holdable(width, height) || channels < 1 || channels > 4) return std::nullopt;
  PictureHeader h{width, height, channels * (sixteen ? 16 : 8)};
  if (int gif = GifDepth(head, head_size)) h.depth = gif;
  return h;
}

// The library reads through these, so that only the header's bytes are read from the disk. The end is
// known from the size: a seek clears the stream's own end flag, and a reader that never sees the end of a
// cut file would wait for its marker for ever.
struct FileReader {
  std::FILE* file;
  long size;
  static FileReader* Of(void* self) { return static_cast<FileReader*>(self); }
  static int Read(void* self, char* data, int size) {
    return static_cast<int>(std::fread(data, 1, static_cast<size_t>(size), Of(self)->file));
  }
  static void Skip(void* self, int n) { std::fseek(Of(self)->file, n, SEEK_CUR); }
  static int Eof(void* self) {
    long at = std::ftell(Of(self)->file);
    return at < 0 || at >= Of(self)->size || std::feof(Of(self)->file);
  }
};

std::optional<PictureHeader> ReadHeader(std::FILE* file, long size) {
  unsigned char head[16] = {};
  size_t head_size = std::fread(head, 1, sizeof head, file);
  std::rewind(file);
  FileReader reader{file, size};
  const stbi_io_callbacks callbacks{&FileReader::Read, &FileReader::Skip, &FileReader::Eof};
  int width = 0, height = 0, channels = 0;
  int ok = stbi_info_from_callbacks(&callbacks, &reader, &width, &height, &channels);
  bool sixteen = false;
  if (ok) {
    std::rewind(file);
    sixteen = stbi_is_16_bit_from_callbacks(&callbacks, &reader);
  }
  return Finish(ok, width, height, channels, sixteen, head, head_size);
}

[[noreturn]] void Invalid() {
  throw RuntimeError(err::kInvalidPicture, "Invalid picture");
}

}  // namespace

std::optional<PictureHeader> ReadPictureHeader(std::span<const unsigned char> bytes) {
  if (bytes.empty() || bytes.size() > static_cast<size_t>(LONG_MAX)) return std::nullopt;
  // Through a stream over the bytes, so that this reads exactly as a file on disk is read.
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> f(
      fmemopen(const_cast<unsigned char*>(bytes.data()), bytes.size(), "rb"), &std::fclose);
  if (!f) return std::nullopt;
  return ReadHeader(f.get(), static_cast<long>(bytes.size()));
}

PictureDetails ReadPictureFile(const std::filesystem::path& file) {
  std::error_code ec;
  if (!std::filesystem::is_regular_file(file, ec)) {
    if (std::filesystem::exists(file, ec)) Invalid();
    throw RuntimeError(err::kFileNotFound, "File not found");
  }
  std::uintmax_t size = std::filesystem::file_size(file, ec);
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> f(std::fopen(file.c_str(), "rb"), &std::fclose);
  if (!f) throw RuntimeError(75, "Path/File access error");
  auto header = ReadHeader(
      f.get(), ec || size > static_cast<std::uintmax_t>(LONG_MAX) ? LONG_MAX : static_cast<long>(size));
  if (!header) Invalid();
  return PictureDetails{header->width, header->height, header->depth, ec ? 0 : size, file};
}

}  // namespace lw
