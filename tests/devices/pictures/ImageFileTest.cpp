#include <algorithm>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <tuple>

#include <gtest/gtest.h>
#include <png.h>
#include <sys/resource.h>

#include "devices/MediaTestSupport.h"
#include "devices/pictures/ImageFile.h"

namespace corvana::devices::test {
namespace {

using platform::PixelBuffer;
using platform::PixelFormat;

constexpr int kWidth = 37;
constexpr int kHeight = 24;

/// Left half red, right half blue, with a green band at the top.
PixelBuffer flag() {
  std::vector<std::uint8_t> bytes;
  for (int i = 0; i < kWidth * kHeight; ++i) {
    const bool top = i / kWidth < kHeight / 3;
    const bool left = i % kWidth < kWidth / 2;
    for (const bool on : {left && !top, top, !left && !top})
      bytes.push_back(on ? 255 : 0);
  }
  return PixelBuffer(kWidth, kHeight, PixelFormat::rgb24, bytes);
}

/// The strongest colour near the middle of the left, right, top or bottom edge.
char colourAt(const PixelBuffer& image, char edge) {
  const int x = edge == 'l' ? 1 : edge == 'r' ? 8 : 5;
  const int y = edge == 't' ? 1 : edge == 'b' ? 8 : 5;
  const std::uint8_t* pixel =
      image.plane(0) + y * image.height() / 10 * image.stride(0) + x * image.width() / 10 * 3;
  return "RGB"[std::max_element(pixel, pixel + 3) - pixel];
}

void expectRed(const std::uint8_t* pixel) {
  EXPECT_NEAR(pixel[0], 254, 8);
  EXPECT_NEAR(pixel[1], 0, 8);
  EXPECT_NEAR(pixel[2], 0, 8);
}

/// Puts an EXIF note on the orientation behind the first marker of a JPEG file.
std::string withOrientation(const std::string& jpeg, char orientation) {
  using namespace std::string_literals;
  const std::string note =
      "Exif\0\0MM\0\x2a\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0"s + orientation + "\0\0\0\0\0\0"s;
  const auto length = static_cast<char>(note.size() + 2);
  return jpeg.substr(0, 2) + "\xff\xe1\0"s + length + note + jpeg.substr(2);
}

TEST(ImageFileTest, readsWhatItWrites) {
  ScratchFolder folder;
  const PixelBuffer image = flag();
  ASSERT_TRUE(writePng(folder / "flag.png", image));
  const auto png = readImage(folder / "flag.png");
  ASSERT_TRUE(png) << png.error().sentence;
  EXPECT_EQ((*png)->bytes(), image.bytes());

  ASSERT_TRUE(writeJpeg(folder / "flag.jpg", image));
  ASSERT_TRUE(writeJpeg(folder / "flag.jpg", image)) << "a second writing replaces the file";
  const auto jpeg = readImage(folder / "flag.jpg");
  ASSERT_TRUE(jpeg) << jpeg.error().sentence;
  ASSERT_EQ((*jpeg)->width(), kWidth);
  expectRed((*jpeg)->plane(0) + 20 * (*jpeg)->stride(0) + 5 * 3);
  constexpr auto kOwners = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
  EXPECT_EQ(std::filesystem::status(folder / "flag.jpg").permissions(), kOwners);
}

TEST(ImageFileTest, writesLimitedRangeColoursAsTheyAre) {
  ScratchFolder folder;
  // BT.601: this is a strong, pure red.
  std::vector<std::uint8_t> bytes(64 * 64, 81);
  bytes.resize(bytes.size() + 32 * 32, 90);
  bytes.resize(bytes.size() + 32 * 32, 240);
  ASSERT_TRUE(writePng(folder / "red.png", PixelBuffer(64, 64, PixelFormat::i420, bytes)));
  const auto red = readImage(folder / "red.png");
  ASSERT_TRUE(red) << red.error().sentence;
  expectRed((*red)->plane(0));
}

TEST(ImageFileTest, readsGreyAndTransparentPngPictures) {
  ScratchFolder folder;
  const std::vector<std::uint8_t> grayAlpha{40, 255, 200, 7};
  const std::vector<std::uint8_t> rgba{10, 20, 30, 0, 40, 50, 60, 255};
  const std::tuple<png_uint_32, std::vector<std::uint8_t>, std::vector<std::uint8_t>> cases[] = {
      {PNG_FORMAT_GRAY, {40, 200}, {40, 40, 40, 200, 200, 200}},
      {PNG_FORMAT_GA, grayAlpha, {40, 40, 40, 200, 200, 200}},
      {PNG_FORMAT_RGBA, rgba, {10, 20, 30, 40, 50, 60}}};
  for (const auto& [format, pixels, colors] : cases) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = 2;
    image.height = 1;
    image.format = format;
    const std::string path = folder / "kind.png";
    ASSERT_TRUE(png_image_write_to_file(&image, path.c_str(), 0, pixels.data(), 0, nullptr));
    const auto read = readImage(path);
    ASSERT_TRUE(read) << read.error().sentence;
    EXPECT_EQ((*read)->bytes(), colors) << format;
  }
}

TEST(ImageFileTest, turnsPicturesUpright) {
  ScratchFolder folder;
  ASSERT_TRUE(writeJpeg(folder / "flag.jpg", flag()));
  const std::string jpeg = bytesOf(folder / "flag.jpg");
  // At which edges of the upright picture green and red lie, for each orientation.
  int orientation = 0;
  for (const std::string sides : {"tl", "tr", "br", "bl", "lt", "rt", "rb", "lb"}) {
    SCOPED_TRACE(++orientation);
    writeBytes(folder / "turned.jpg", withOrientation(jpeg, static_cast<char>(orientation)));
    const auto image = readImage(folder / "turned.jpg");
    ASSERT_TRUE(image) << image.error().sentence;
    EXPECT_EQ((*image)->width(), orientation > 4 ? kHeight : kWidth);
    EXPECT_EQ(colourAt(**image, sides[0]), 'G');
    EXPECT_EQ(colourAt(**image, sides[1]), 'R');
  }
}

TEST(ImageFileTest, saysInOneSentenceWhatIsWrong) {
  ScratchFolder folder;
  ASSERT_TRUE(writePng(folder / "flag.png", flag()));
  ASSERT_TRUE(writeJpeg(folder / "flag.jpg", flag()));
  const std::string png = bytesOf(folder / "flag.png");
  const std::string jpeg = bytesOf(folder / "flag.jpg");
  std::string bomb = png;
  bomb.replace(16, 8, std::string("\0\0\xff\xff\0\0\xff\xff", 8));
  writeBytes(folder / "bomb.png", bomb);
  writeBytes(folder / "cut.png", png.substr(0, 60));
  writeBytes(folder / "cut.jpg", jpeg.substr(0, 30));
  writeBytes(folder / "text.jpg", "no picture");
  const std::pair<const char*, const char*> cases[] = {
      {"none.png", "There is no file"}, {".", "is not a file"},
      {"text.jpg", "is not a picture"}, {"bomb.png", "claims 65535x65535"},
      {"cut.png", "is damaged"},        {"cut.jpg", "is not a picture"}};
  for (const auto& [name, part] : cases) {
    const auto image = readImage(folder / name);
    ASSERT_FALSE(image) << name;
    EXPECT_NE(image.error().sentence.find(part), std::string::npos) << image.error().sentence;
  }
  EXPECT_FALSE(writePng(folder / "none/flag.png", flag()));
}

TEST(ImageFileTest, leavesNothingOpenWhenTheDiskIsFull) {
  const ScratchFolder folder;
  // The media library opens and closes files of its own meanwhile.
  const auto openFiles = [&folder] {
    return std::ranges::count_if(
        std::filesystem::directory_iterator("/proc/self/fd"), [&folder](const auto& descriptor) {
          std::error_code gone;
          const auto file = std::filesystem::read_symlink(descriptor, gone);
          return file.string().starts_with(folder.path().string());
        });
  };
  ASSERT_TRUE(writePng(folder / "flag.png", flag()));
  // A limit on the size of files is the full disk that any user can make.
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{50, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
  const auto written = writePng(folder / "flag.png", flag());
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  ASSERT_FALSE(written);
  EXPECT_NE(written.error().sentence.find("File too large"), std::string::npos)
      << written.error().sentence;
  EXPECT_EQ(openFiles(), 0);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
  EXPECT_TRUE(readImage(folder / "flag.png")) << "the one that was there before";
}

}  // namespace
}  // namespace corvana::devices::test
