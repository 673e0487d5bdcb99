#include <algorithm>

#include <gtest/gtest.h>

#include "engine/redaction/Cover.h"

namespace corvana::engine {
namespace {

using platform::CGRect;
using platform::PixelBuffer;
using platform::PixelFormat;

constexpr std::uint8_t kScene = 200;
constexpr CGRect kFace{80, 60, 40, 40};
constexpr Quad kCard{{{{20, 120}, {120, 120}, {120, 180}, {20, 180}}}};
/// Across the face.
constexpr Quad kLine{{{{70, 78}, {130, 78}, {130, 84}, {70, 84}}}};

PixelBuffer scene(PixelFormat format) {
  return {200, 200, format,
          std::vector<std::uint8_t>(PixelBuffer::byteCount(200, 200, format), kScene)};
}

/// The first byte of the pixel, in the first plane.
int at(const PixelBuffer& picture, int x, int y) {
  const int bytes = picture.format() == PixelFormat::rgb24 ? 3 : 1;
  return picture.plane(0)[y * picture.stride(0) + x * bytes];
}

int colourAt(const PixelBuffer& picture, int x, int y) {
  return picture.plane(1)[y / 2 * picture.stride(1) + x / 2];
}

TEST(Cover, ShowsTheHeadAndPaintsOverAllElse) {
  const struct {
    PixelFormat format;
    int black, grey;
  } cases[] = {{PixelFormat::rgb24, 0, 110}, {PixelFormat::i420, 16, 110}};
  for (const auto& c : cases) {
    const PixelBuffer original = scene(c.format);
    const auto covered = coveredBut(original, {{kFace}, {kLine}, {kCard}});
    EXPECT_EQ(covered->format(), c.format);
    EXPECT_EQ(at(*covered, 100, 70), kScene) << "the face";
    EXPECT_EQ(at(*covered, 100, 81), c.black) << "print in front of it";
    EXPECT_EQ(at(*covered, 70, 150), c.grey) << "the card";
    EXPECT_EQ(at(*covered, 18, 150), c.grey) << "its margin";
    EXPECT_EQ(at(*covered, 180, 20), c.black) << "what is around";
    EXPECT_EQ(at(*covered, 100, 110), c.black) << "below the chin";
    if (c.format != PixelFormat::i420) continue;
    EXPECT_EQ(colourAt(*covered, 100, 70), kScene);
    EXPECT_EQ(colourAt(*covered, 70, 150), 128);
    EXPECT_EQ(colourAt(*covered, 180, 20), 128);
  }
}

TEST(Cover, LeavesNoColourOfWhatIsCoveredAtTheEdgeOfTheHead) {
  const PixelBuffer original = scene(PixelFormat::i420);
  const auto covered = coveredBut(original, {{kFace}, {}, {}});
  for (int y = 0; y < 200; ++y) {
    for (int x = 0; x < 200; ++x) {
      if (colourAt(*covered, x, y) != kScene) continue;
      ASSERT_EQ(at(*covered, x, y), kScene) << x << " " << y;
    }
  }
}

TEST(Cover, ShowsOnlyWhatSeveralFacesShareAndNothingWithoutOne) {
  const PixelBuffer original = scene(PixelFormat::rgb24);
  const CGRect moved{kFace.x + 30, kFace.y, kFace.width, kFace.height};
  const auto shared = coveredBut(original, {{kFace, moved}, {}, {}});
  EXPECT_EQ(at(*shared, 115, 80), kScene);
  EXPECT_EQ(at(*shared, 82, 80), 0) << "the first one alone";
  EXPECT_EQ(at(*shared, 148, 80), 0) << "the second one alone";
  const auto none = coveredBut(original, {});
  EXPECT_EQ(std::ranges::count(none->bytes(), 0), std::ssize(none->bytes()));
}

}  // namespace
}  // namespace corvana::engine
