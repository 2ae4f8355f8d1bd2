// The picture header: sizes and depths of the formats the display takes, and every way a file can fail
// to be a picture.
#include "media/picture_file.h"

#include <gtest/gtest.h>
#include <stb/stb_image_write.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

namespace lw {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<unsigned char>;

Bytes Jpeg(int width, int height, int channels) {
  Bytes pixels(static_cast<size_t>(width) * height * channels, 128);
  Bytes out;
  stbi_write_jpg_to_func(
      [](void* to, void* data, int size) {
        auto* bytes = static_cast<unsigned char*>(data);
        static_cast<Bytes*>(to)->insert(static_cast<Bytes*>(to)->end(), bytes, bytes + size);
      },
      &out, width, height, channels, pixels.data(), 80);
  return out;
}

// The logical screen descriptor of a GIF: enough for its header.
Bytes GifHeader(int width, int height, unsigned char packed) {
  Bytes b = {'G', 'I', 'F', '8', '9', 'a'};
  for (int v : {width, height}) {
    b.push_back(static_cast<unsigned char>(v & 0xFF));
    b.push_back(static_cast<unsigned char>(v >> 8));
  }
  b.insert(b.end(), {packed, 0, 0});
  return b;
}

// A PNG signature and its IHDR chunk.
Bytes PngHeader(int width, int height, int bit_depth, int colour_type) {
  Bytes b = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13, 'I', 'H', 'D', 'R'};
  for (int v : {width, height})
    for (int shift : {24, 16, 8, 0}) b.push_back(static_cast<unsigned char>((v >> shift) & 0xFF));
  b.insert(b.end(),
           {static_cast<unsigned char>(bit_depth), static_cast<unsigned char>(colour_type), 0, 0, 0});
  b.insert(b.end(), {0, 0, 0, 0});  // the CRC, which a header reading does not check
  return b;
}

std::string Describe(const std::optional<PictureHeader>& h) {
  if (!h) return "none";
  return std::to_string(h->width) + "x" + std::to_string(h->height) + "x" + std::to_string(h->depth);
}

TEST(PictureHeader, SizesAndDepthsOfTheFormats) {
  EXPECT_EQ(Describe(ReadPictureHeader(Jpeg(37, 21, 3))), "37x21x24");
  EXPECT_EQ(Describe(ReadPictureHeader(GifHeader(40, 30, 0x81))), "40x30x2");
  EXPECT_EQ(Describe(ReadPictureHeader(GifHeader(40, 30, 0xF7))), "40x30x8");
  // Without a global colour table the frames bring tables of up to 8 bits.
  EXPECT_EQ(Describe(ReadPictureHeader(GifHeader(5, 6, 0x00))), "5x6x8");
  EXPECT_EQ(Describe(ReadPictureHeader(PngHeader(300, 200, 16, 2))), "300x200x48");
  EXPECT_EQ(Describe(ReadPictureHeader(PngHeader(300, 200, 8, 6))), "300x200x32");
  EXPECT_EQ(Describe(ReadPictureHeader(PngHeader(300, 200, 8, 0))), "300x200x8");
}

TEST(PictureHeader, WhatIsNoPictureOrTooLargeIsRefused) {
  Bytes jpeg = Jpeg(16, 16, 3);
  EXPECT_EQ(Describe(ReadPictureHeader(Bytes(jpeg.begin(), jpeg.begin() + 10))), "none");
  EXPECT_EQ(Describe(ReadPictureHeader(Bytes())), "none");
  std::string text = "Item,Title\r\n1234,Teapot\r\n";
  EXPECT_EQ(Describe(ReadPictureHeader(Bytes(text.begin(), text.end()))), "none");
  EXPECT_EQ(Describe(ReadPictureHeader(GifHeader(0, 30, 0x81))), "none");
  // 65535 by 65535 at four bytes a pixel is more than any display holds.
  EXPECT_EQ(Describe(ReadPictureHeader(GifHeader(65535, 65535, 0x81))), "none");
  EXPECT_EQ(Describe(ReadPictureHeader(GifHeader(23171, 23171, 0x81))), "none");
  EXPECT_EQ(Describe(ReadPictureHeader(GifHeader(23170, 23170, 0x81))), "23170x23170x2");
  EXPECT_EQ(Describe(ReadPictureHeader(PngHeader(1 << 25, 2, 8, 2))), "none");
}

class PictureFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("lw_picture_" + std::to_string(::getpid()));
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }
  fs::path Write(const char* name, const Bytes& bytes) {
    fs::path p = dir_ / name;
    std::ofstream(p, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return p;
  }
  static int ErrorOf(const fs::path& p) {
    try {
      ReadPictureFile(p);
    } catch (const RuntimeError& e) {
      return e.number();
    }
    return 0;
  }
  fs::path dir_;
};

TEST_F(PictureFileTest, DetailsOfAFileAndItsFailures) {
  Bytes jpeg = Jpeg(64, 48, 3);
  PictureDetails d = ReadPictureFile(Write("shot.jpg", jpeg));
  EXPECT_EQ(d.width, 64);
  EXPECT_EQ(d.height, 48);
  EXPECT_EQ(d.depth, 24);
  EXPECT_EQ(d.size, jpeg.size());
  // The name's ending does not matter, the bytes do.
  EXPECT_EQ(ReadPictureFile(Write("shot.dat", GifHeader(9, 7, 0x82))).depth, 3);

  EXPECT_EQ(ErrorOf(dir_ / "missing.jpg"), err::kFileNotFound);
  EXPECT_EQ(ErrorOf(dir_), err::kInvalidPicture);
  EXPECT_EQ(ErrorOf(Write("empty.jpg", {})), err::kInvalidPicture);
  EXPECT_EQ(ErrorOf(Write("cut.jpg", Bytes(jpeg.begin(), jpeg.begin() + 12))), err::kInvalidPicture);
  EXPECT_EQ(ErrorOf(Write("huge.gif", GifHeader(65535, 65535, 0x80))), err::kInvalidPicture);
}

}  // namespace
}  // namespace lw
