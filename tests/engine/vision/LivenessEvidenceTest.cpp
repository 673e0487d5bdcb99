#include <cmath>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "engine/selfie/LivenessEvidence.h"
#include "engine/vision/MatViews.h"
#include "engine/vision/Portraits.h"

namespace corvana::engine {
namespace {

FaceDetails detailsOf(const cv::Mat& rgb) {
  const auto picture = pixelBufferFrom(rgb);
  return tests::landmarks().locate(*picture, tests::detector().detect(*picture).at(0));
}

/// The mesh as a head turned about its upright axis.
FaceMesh turned(FaceMesh mesh, double degrees) {
  const double angle = degrees * std::acos(-1.0) / 180;
  for (SurfacePoint& point : mesh) {
    point = {point.x * std::cos(angle) + point.z * std::sin(angle), point.y,
             point.z * std::cos(angle) - point.x * std::sin(angle)};
  }
  return mesh;
}

/// The photograph as a flat print turned about its upright axis before a camera.
cv::Mat tiltedPrint(const cv::Mat& photo, float inset) {
  const auto width = static_cast<float>(photo.cols);
  const auto height = static_cast<float>(photo.rows);
  const cv::Point2f from[] = {{0, 0}, {width, 0}, {width, height}, {0, height}};
  const cv::Point2f to[] = {{0, 0},
                            {width * (1 - inset), height * inset / 3},
                            {width * (1 - inset), height * (1 - inset / 3)},
                            {0, height}};
  cv::Mat tilted;
  cv::warpPerspective(photo, tilted, cv::getPerspectiveTransform(from, to), photo.size());
  return tilted;
}

float scoreAfter(LivenessEvidence& evidence, const std::vector<FaceMesh>& meshes,
                 const std::vector<double>& openings) {
  float score = 0;
  for (std::size_t i = 0; i < openings.size(); ++i) {
    score = evidence.add({.time = platform::TimePoint{} + platform::seconds(0.1 * double(i)),
                          .mesh = meshes[std::min(i, meshes.size() - 1)],
                          .lidOpening = openings[i],
                          .passiveScore = 0.5F});
  }
  return score;
}

TEST(LivenessEvidence, RewardsAHeadThatTurnsInDepthAndABlink) {
  const FaceMesh still = detailsOf(tests::portrait('a')).mesh;
  const std::vector<FaceMesh> turning{still, turned(still, 8), turned(still, 16),
                                      turned(still, 20)};
  const std::vector<double> open(10, 0.08);
  const std::vector<double> blink{.08, .079, .081, .08, .03, .04, .08, .08, .08, .08};
  const std::vector<double> asleep{.08, .08, .08, .08, .03, .03, .03, .03, .03, .03};

  LivenessEvidence nothing, depth, lids, both, closed;
  EXPECT_FLOAT_EQ(nothing.score(), 0);
  EXPECT_LT(scoreAfter(nothing, {still}, open), 0.15F);
  EXPECT_GT(scoreAfter(depth, turning, open), 0.45F);
  EXPECT_GT(scoreAfter(lids, {still}, blink), 0.45F);
  EXPECT_GT(scoreAfter(both, turning, blink), 0.85F);
  EXPECT_LT(scoreAfter(closed, {still}, asleep), 0.15F);
  EXPECT_TRUE(lids.blinkSeen());
  EXPECT_FALSE(closed.blinkSeen());
}

TEST(LivenessEvidence, AFlatPrintMovedAndTiltedShowsLittleDepth) {
  const FaceMesh flat = detailsOf(tests::portrait('b')).mesh;
  for (const float inset : {0.1F, 0.2F, 0.3F}) {
    const FaceMesh tilted = detailsOf(tiltedPrint(tests::portrait('b'), inset)).mesh;
    EXPECT_LT(nonPlanarMotion(flat, tilted), 0.025) << inset;
  }
  EXPECT_GT(nonPlanarMotion(flat, turned(flat, 15)), 0.05);
}

}  // namespace
}  // namespace corvana::engine
