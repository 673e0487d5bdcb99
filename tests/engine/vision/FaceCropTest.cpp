#include <cmath>
#include <numeric>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "engine/vision/FaceCrop.h"
#include "engine/vision/MatViews.h"
#include "engine/vision/Portraits.h"
#include "engine/vision/TfliteModel.h"

namespace engine {
namespace {

using Embedding = std::vector<double>;

Embedding embeddingOf(const platform::UIImage& crop) {
  static TfliteModel model = *TfliteModel::load(
      tests::fromSource("src/capture/resources/facenet.tflite"), {{1, 160, 160, 3}, {128}});
  cv::Mat pixels;
  cv::resize(rgbMat(*crop.pixels()), pixels, {160, 160});
  cv::Scalar mean;
  cv::Scalar deviation;
  cv::meanStdDev(pixels.reshape(1), mean, deviation);
  cv::Mat input(160, 160, CV_32FC3, model.input().data());
  pixels.convertTo(input, CV_32FC3, 1 / deviation[0], -mean[0] / deviation[0]);
  model.run();
  Embedding embedding(model.output(0).begin(), model.output(0).end());
  const double length = cv::norm(embedding);
  for (double& value : embedding)
    value /= length;
  return embedding;
}

platform::UIImageRef cropOf(const platform::PixelBufferRef& picture) {
  return cropFace(*picture, tests::detector().detect(*picture).at(0));
}

TEST(FaceCrop, KeepsAPersonNearThemselvesAndAwayFromOthers) {
  constexpr double kThreshold = 0.44;  // the matcher's
  const Embedding a = embeddingOf(*cropOf(pixelBufferFrom(tests::portrait('a'))));
  const Embedding b = embeddingOf(*cropOf(pixelBufferFrom(tests::portrait('b'))));
  EXPECT_NEAR(cv::norm(a, b), 0.60, 0.04);
  for (const double width : {90, 120, 240, 420}) {
    for (const char person : {'a', 'b'}) {
      const Embedding live = embeddingOf(*cropOf(tests::cameraFrame({{person, 330, 520, width}})));
      EXPECT_LT(cv::norm(live, person == 'a' ? a : b), 0.25) << person << " " << width;
      EXPECT_GT(cv::norm(live, person == 'a' ? b : a), kThreshold) << person << " " << width;
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
  small.box.width = kMinFaceWidth - 1;
  EXPECT_EQ(cropFace(*picture, small), nullptr);
  face.keypoints.fill({300, 300});
  EXPECT_EQ(cropFace(*picture, face), nullptr);
}

}  // namespace
}  // namespace engine
