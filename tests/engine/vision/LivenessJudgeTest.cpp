#include <cmath>
#include <cstdint>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "engine/selfie/FrameEdges.h"
#include "engine/selfie/LivenessJudge.h"
#include "engine/selfie/PersonCompare.h"
#include "engine/vision/FaceCrop.h"
#include "engine/vision/MatViews.h"
#include "engine/vision/Portraits.h"

namespace corvana::engine {
namespace {

using Kind = LivenessVerdict::Kind;

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

/// A print rolled about its upright axis, its middle nearest to the camera.
cv::Mat bentPrint(const cv::Mat& photo, double radians) {
  cv::Mat mapX(photo.size(), CV_32FC1);
  cv::Mat mapY(photo.size(), CV_32FC1);
  const double radius = photo.cols / radians;
  for (int y = 0; y < photo.rows; ++y)
    for (int x = 0; x < photo.cols; ++x) {
      const double angle = std::asin((x - photo.cols / 2.0) / radius);
      const double far = 1 + (1 - std::cos(angle)) * radius / (2.5 * photo.cols);
      mapX.at<float>(y, x) = static_cast<float>(photo.cols / 2.0 + far * angle * radius);
      mapY.at<float>(y, x) = static_cast<float>(photo.rows / 2.0 + far * (y - photo.rows / 2.0));
    }
  cv::Mat bent;
  cv::remap(photo, bent, mapX, mapY, cv::INTER_LINEAR, cv::BORDER_REPLICATE);
  return bent;
}

TEST(Relief, MovesInATurningHeadAndHardlyInTiltedAndBentPrints) {
  for (const char person : {'a', 'b'}) {
    const FaceMesh flat = detailsOf(tests::portrait(person)).mesh;
    for (const float inset : {0.1F, 0.2F, 0.3F}) {
      const FaceMesh tilted = detailsOf(tiltedPrint(tests::portrait(person), inset)).mesh;
      EXPECT_LT(reliefMotion(flat, tilted), 0.04) << person << inset;
    }
    for (const double bend : {0.5, 1.0}) {
      const FaceMesh bent = detailsOf(bentPrint(tests::portrait(person), bend)).mesh;
      EXPECT_LT(reliefMotion(flat, bent), 0.04) << person << bend;
    }
    EXPECT_NEAR(reliefMotion(flat, turned(flat, 8)), std::sin(8 * std::acos(-1.0) / 180), 0.001);
  }
}

TEST(Edges, EncloseADisplayButNeitherAPersonNorOneInADoor) {
  cv::Mat picture(1280, 720, CV_8UC3, cv::Scalar(170, 170, 170));
  const platform::CGRect face{260, 360, 200, 240};
  EXPECT_LT(edgesAround(*pixelBufferFrom(picture), face), 0.1);
  // Posts on both sides and a lintel; the body hides whatever is below.
  cv::rectangle(picture, {80, 60}, {110, 1279}, {60, 50, 40}, -1);
  cv::rectangle(picture, {600, 60}, {630, 1279}, {60, 50, 40}, -1);
  cv::rectangle(picture, {80, 60}, {630, 90}, {60, 50, 40}, -1);
  EXPECT_LT(edgesAround(*pixelBufferFrom(picture), face), 0.1);
  cv::rectangle(picture, {80, 1000}, {630, 1030}, {60, 50, 40}, -1);
  EXPECT_GT(edgesAround(*pixelBufferFrom(picture), face), 0.9);
}

constexpr LivenessJudge::Limits kLimits{.watchTime = std::chrono::seconds(3),
                                        .blinkShare = 0.91,
                                        .relief = 0.05,
                                        .repetition = 0.8,
                                        .edges = 0.88};

/// Looks at a scene ten times a second.
class Judging {
 public:
  explicit Judging(char person) : photo_(tests::portrait(person)), details_(detailsOf(photo_)) {}

  /// A scene that moves with `phase` and shows lids opened so far.
  LivenessVerdict look(double phase, double lids) {
    const cv::Matx23d shift(1, 0, 20 * std::sin(phase), 0, 1, 14 * std::sin(1.7 * phase));
    cv::Mat moved;
    cv::warpAffine(photo_, moved, shift, photo_.size(), cv::INTER_LINEAR, cv::BORDER_REFLECT);
    FaceDetails details = details_;
    details.lidOpening *= lids;
    for (const std::size_t lid : {160U, 158U, 387U, 385U})
      details.mesh[lid].y += (1 - lids) * 0.01 * details.mesh[152].y;
    now_ += platform::seconds(0.1);
    return judge_.add({now_, *pixelBufferFrom(moved), {200, 200, 200, 240}, details, 0.5F});
  }

  /// Looks for so many tenths of a second, with a blink at the end of each second.
  LivenessVerdict watch(int looks, double phaseStep) {
    LivenessVerdict verdict;
    for (int i = 0; i < looks; ++i)
      verdict = look(phase_ += phaseStep, i % 10 >= 8 ? 0.3 : 1);
    return verdict;
  }
  void loseSight() { now_ += platform::seconds(1.5); }

 private:
  const cv::Mat photo_;
  const FaceDetails details_;
  LivenessJudge judge_{kLimits};
  platform::TimePoint now_{};
  double phase_ = 0;
};

TEST(LivenessJudge, BelievesABlinkAfterAWhileAndNoFaceThatNeverGaveASign) {
  Judging blinking('a');
  EXPECT_EQ(blinking.watch(25, 0.11).kind, Kind::undecided) << "too early";
  const LivenessVerdict living = blinking.watch(10, 0.11);
  EXPECT_EQ(living.kind, Kind::living);
  EXPECT_EQ(living.evidence, "blink");
  EXPECT_GT(living.score, 0.4F);
  blinking.loseSight();
  EXPECT_EQ(blinking.watch(5, 0.11).kind, Kind::undecided) << "perhaps another face";

  Judging staring('b');
  LivenessVerdict verdict;
  for (int i = 0; i < 100; ++i)
    verdict = staring.look(0.11 * i, 1);
  EXPECT_EQ(verdict.kind, Kind::undecided);
  EXPECT_GE(verdict.watchedFor, platform::seconds(9.5));
  EXPECT_LT(verdict.score, 0.3F);
}

TEST(LivenessJudge, DoesNotBelieveABlinkInAFilmThatBeginsAgain) {
  const double turn = 2 * std::acos(-1.0);
  // The second film begins again between two looks.
  for (const double period : {20.0, 20.5}) {
    Judging loop('a');
    Kind kind = Kind::undecided;
    std::string evidence;
    for (int i = 0; i < 31; ++i) {
      const double place = std::fmod(i, period);
      const LivenessVerdict verdict =
          loop.look(turn * place / period, static_cast<int>(place) == 15 ? 0.3 : 1);
      EXPECT_NE(verdict.kind, Kind::living) << period;
      kind = verdict.kind;
      evidence = verdict.evidence;
    }
    EXPECT_EQ(kind, Kind::spoof) << period;
    EXPECT_EQ(evidence, "repetition") << period;
  }
}

TEST(PersonCompare, TellsTheSelfiesFaceFromAnothersAboutOnceASecondAndWhenItJumps) {
  const auto model = tests::fromSource("src/capture/resources/facenet.tflite");
  const auto landmarks = tests::fromSource("src/engine/resources/face_landmark.tflite");
  PersonCompare compare(std::make_shared<FaceLandmarks>(*FaceLandmarks::load(landmarks)),
                        *FaceEmbedder::load(model));
  const auto lookAt = [&](double seconds, char person, double x,
                          const platform::UIImageRef& selfie) {
    const auto frame = tests::cameraFrame({{person, x, 560, 300}});
    return compare.look(platform::TimePoint{} + platform::seconds(seconds), *frame,
                        tests::detector().detect(*frame).at(0), {selfie, 0.42});
  };
  const auto frame = tests::cameraFrame({{'a', 340, 540, 280}});
  const auto selfie = cropFace(*frame, tests::detector().detect(*frame).at(0));
  EXPECT_FALSE(lookAt(0, 'a', 360, nullptr)) << "no selfie yet";
  EXPECT_LT(*lookAt(0.1, 'a', 360, selfie).value().distance, 0.3);
  EXPECT_FALSE(lookAt(0.9, 'b', 360, selfie)) << "not yet";
  EXPECT_GT(*lookAt(1.1, 'b', 360, selfie).value().distance, 0.5);
  EXPECT_GT(*lookAt(1.5, 'b', 360, selfie).value().distance, 0.5) << "soon, to be sure";
  EXPECT_LT(*lookAt(1.9, 'a', 360, selfie).value().distance, 0.3);
  EXPECT_TRUE(lookAt(2.0, 'a', 160, selfie)) << "it jumped";
  cv::Mat soft;
  cv::GaussianBlur(rgbMat(*frame), soft, {}, 12);
  const auto unclear =
      compare.look(platform::TimePoint{} + platform::seconds(9), *pixelBufferFrom(soft),
                   tests::detector().detect(*frame).at(0), {selfie, 0.42});
  EXPECT_FALSE(unclear.value().distance);
}

}  // namespace
}  // namespace corvana::engine
