#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "engine/vision/ImageOps.h"
#include "engine/vision/MatViews.h"
#include "engine/vision/Portraits.h"

namespace corvana::engine {
namespace {

TEST(ImageOps, ReadsLimitedRangeYuvOfOddSizes) {
  // BT.601: red is Y 81, U 90, V 240; white Y 235, black Y 16.
  const int width = 5;
  const int height = 3;
  std::vector<std::uint8_t> bytes(width * height, 81);
  bytes.insert(bytes.end(), 3 * 2, 90);
  bytes.insert(bytes.end(), 3 * 2, 240);
  const auto red = std::make_shared<const platform::PixelBuffer>(
      width, height, platform::PixelFormat::i420, bytes);
  const auto rgb = rgbPicture(red);
  ASSERT_EQ(rgb->bytes().size(), 3U * width * height);
  for (std::size_t i = 0; i < rgb->bytes().size(); ++i) {
    EXPECT_NEAR(rgb->bytes()[i], i % 3 == 0 ? 254 : 0, 3) << i;
  }
  EXPECT_NEAR(luma(*red, {0, 0, width, height}).mean, 76, 1);
}

TEST(ImageOps, CutsRectanglesAtThePicturesEdges) {
  const auto picture = pixelBufferFrom(cv::Mat(20, 30, CV_8UC3, cv::Scalar(1, 2, 3)));
  const auto corner = cropped(*picture, {-5, 15.5, 10, 100});
  ASSERT_NE(corner, nullptr);
  EXPECT_EQ(corner->width(), 5);
  EXPECT_EQ(corner->height(), 5);
  EXPECT_EQ(cropped(*picture, {30, 0, 5, 5}), nullptr);
  EXPECT_EQ(cropped(*picture, {5, 5, -3, 4}), nullptr);
  EXPECT_EQ(sharpness(*picture, {-9, -9, 3, 3}), 0);
  EXPECT_EQ(resized(*picture, 7, 9)->bytes().size(), 7U * 9 * 3);
}

TEST(ImageOps, SharpnessFallsWithBlurAndHardlyDependsOnSize) {
  cv::Mat sharp, larger, blurred;
  cv::resize(tests::portrait('b')(cv::Rect(340, 220, 248, 248)), sharp, {480, 480});
  cv::resize(sharp, larger, {960, 960});
  cv::GaussianBlur(sharp, blurred, {}, 6);
  const auto of = [](const cv::Mat& mat) {
    return sharpness(*pixelBufferFrom(mat), {0, 0, double(mat.cols), double(mat.rows)});
  };
  EXPECT_LT(of(blurred), 0.3 * of(sharp));
  EXPECT_NEAR(of(larger) / of(sharp), 1, 0.15);
}

}  // namespace
}  // namespace corvana::engine
