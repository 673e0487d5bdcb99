#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "capture/FaceMatchDetector.h"
#include "devices/screen/DirectoryBundle.h"
#include "devices/scripted/ScriptedSystem.h"
#include "engine/vision/FaceCrop.h"
#include "engine/vision/MatViews.h"
#include "engine/vision/Portraits.h"

namespace corvana::engine {
namespace {

platform::UIImageRef cropOf(const platform::PixelBufferRef& picture) {
  return cropFace(*picture, tests::detector().detect(*picture).at(0));
}

TEST(FaceCrop, KeepsAPersonNearThemselvesAndAwayFromOthers) {
  devices::CapturingConsole console;
  capture::FaceMatchDetector matcher(
      devices::DirectoryBundle(tests::fromSource("src/capture/resources"), {}), console);
  const auto distance = [&](const platform::UIImageRef& a, const platform::UIImageRef& b) {
    return matcher.faceMatch(a, b, 0).value().distance;
  };
  constexpr double kThreshold = 0.44;  // the matcher's
  const auto a = cropOf(pixelBufferFrom(tests::portrait('a')));
  const auto b = cropOf(pixelBufferFrom(tests::portrait('b')));
  EXPECT_NEAR(distance(a, b), 0.60, 0.04);
  for (const double width : {90, 120, 240, 420}) {
    for (const char person : {'a', 'b'}) {
      const auto live = cropOf(tests::cameraFrame({{person, 330, 520, width}}));
      EXPECT_LT(distance(live, person == 'a' ? a : b), 0.25) << person << " " << width;
      EXPECT_GT(distance(live, person == 'a' ? b : a), kThreshold) << person << " " << width;
    }
  }
}

TEST(FaceCrop, BringsATiltedFaceToTheTemplate) {
  const cv::Mat upright = tests::portrait('a');
  for (const double angle : {-25.0, 20.0}) {
    cv::Mat turned;
    cv::warpAffine(upright, turned, cv::getRotationMatrix2D({226, 123}, angle, 1.5), {512, 400});
    const platform::UIImageRef crop = cropOf(pixelBufferFrom(turned));
    const int side = crop->pixels()->width();
    EXPECT_EQ(crop->pixels()->height(), side);
    EXPECT_NEAR(side, 1.5 * 111, 8);
    // Twice around: the crop's own face lies on the template.
    cv::Mat framed;
    cv::copyMakeBorder(rgbMat(*crop->pixels()), framed, side, side, side, side,
                       cv::BORDER_REPLICATE);
    const auto faces = tests::detector().detect(*pixelBufferFrom(framed));
    ASSERT_EQ(faces.size(), 1U);
    EXPECT_NEAR(faces[0].keypoints[Face::rightEye].x - side, 0.3092 * side, 0.04 * side);
    EXPECT_NEAR(faces[0].keypoints[Face::rightEye].y - side, 0.3175 * side, 0.04 * side);
    EXPECT_NEAR(faces[0].keypoints[Face::leftEye].y - side, 0.3175 * side, 0.04 * side);
    EXPECT_NEAR(faces[0].keypoints[Face::mouth].y - side, 0.7215 * side, 0.04 * side);
  }
}

TEST(FaceCrop, RefusesFacesTooSmallOrWithoutEyes) {
  const auto picture = tests::cameraFrame({{'a', 360, 640, 200}});
  Face face = tests::detector().detect(*picture).at(0);
  ASSERT_NE(cropFace(*picture, face), nullptr);
  Face small = face;
  small.box.width = kLeastFaceWidth - 1;
  EXPECT_EQ(cropFace(*picture, small), nullptr);
  face.keypoints.fill({300, 300});
  EXPECT_EQ(cropFace(*picture, face), nullptr);
}

}  // namespace
}  // namespace corvana::engine
