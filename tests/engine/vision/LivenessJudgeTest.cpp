#include <algorithm>
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

double radians(double degrees) {
  return degrees * std::acos(-1.0) / 180;
}

/// How far before its rim each part of the photographed head lies, spread smoothly between the
/// points of the face.
double nearness(const FaceMesh& mesh, double x, double y) {
  double sum = 0, weights = 0;
  for (const SurfacePoint& point : mesh) {
    const double weight = 1 / std::pow(std::hypot(point.x - x, point.y - y) + 4, 4);
    sum -= weight * point.z;
    weights += weight;
  }
  return sum / weights;
}

/// The photograph of a head that turned about its upright axis.
cv::Mat turnedHead(const cv::Mat& photo, double degrees) {
  const FaceMesh mesh = detailsOf(photo).mesh;
  constexpr int kStep = 8;
  cv::Mat shift(photo.rows / kStep, photo.cols / kStep, CV_32FC1);
  for (int y = 0; y < shift.rows; ++y)
    for (int x = 0; x < shift.cols; ++x)
      shift.at<float>(y, x) = static_cast<float>(
          std::sin(radians(degrees)) * nearness(mesh, (x + 0.5) * kStep, (y + 0.5) * kStep));
  cv::resize(shift, shift, photo.size());
  cv::Mat mapX(photo.size(), CV_32FC1), mapY(photo.size(), CV_32FC1);
  for (int y = 0; y < photo.rows; ++y)
    for (int x = 0; x < photo.cols; ++x) {
      mapX.at<float>(y, x) = static_cast<float>(x) - shift.at<float>(y, x);
      mapY.at<float>(y, x) = static_cast<float>(y);
    }
  cv::Mat turned;
  cv::remap(photo, turned, mapX, mapY, cv::INTER_LINEAR, cv::BORDER_REPLICATE);
  return turned;
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

/// A print that is rolled about its upright axis, by so much from side to side, and then turned:
/// what rays from the camera meet of the cylinder.
cv::Mat bentPrint(const cv::Mat& photo, double bend, double degrees) {
  const double radius = photo.cols / bend, distance = 2.5 * photo.cols;
  const double c = std::cos(radians(degrees)), s = std::sin(radians(degrees));
  cv::Mat mapX(photo.size(), CV_32FC1), mapY(photo.size(), CV_32FC1);
  for (int row = 0; row < photo.rows; ++row)
    for (int column = 0; column < photo.cols; ++column) {
      const double px = column - photo.cols / 2.0, py = row - photo.rows / 2.0;
      const cv::Vec2d from(-s * distance, c * distance + radius);
      const cv::Vec2d ray(c * px + s * distance, s * px - c * distance);
      const double half = from.dot(ray);
      const double root = half * half - ray.dot(ray) * (from.dot(from) - radius * radius);
      const double t = (-half - std::sqrt(std::max(root, 0.0))) / ray.dot(ray);
      const cv::Vec2d met = from + t * ray;
      mapX.at<float>(row, column) =
          static_cast<float>(photo.cols / 2.0 + radius * std::atan2(met[0], met[1]));
      mapY.at<float>(row, column) = static_cast<float>(photo.rows / 2.0 + t * py);
    }
  cv::Mat bent;
  cv::remap(photo, bent, mapX, mapY, cv::INTER_LINEAR, cv::BORDER_REPLICATE);
  return bent;
}

FaceView viewOf(const cv::Mat& rgb) {
  return faceView(*pixelBufferFrom(rgb), detailsOf(rgb).mesh);
}

TEST(Relief, MovesInATurningHeadAndNotInAPrintHoweverTiltedAndBent) {
  for (const char person : {'a', 'b'}) {
    const cv::Mat photo = tests::portrait(person);
    const FaceView straight = viewOf(photo);
    for (const float inset : {0.1F, 0.2F, 0.3F})
      EXPECT_LT(reliefMotion(straight, viewOf(tiltedPrint(photo, inset))), 0.015)
          << person << inset;
    for (const double bend : {0.5, 1.0, 1.4}) {
      EXPECT_LT(reliefMotion(straight, viewOf(bentPrint(photo, bend, 0))), 0.01) << person << bend;
      // It is bent further while it is turned.
      const FaceView before = viewOf(bentPrint(photo, 0.7 * bend, -8));
      EXPECT_LT(reliefMotion(before, viewOf(bentPrint(photo, bend, 10))), 0.01) << person << bend;
    }
    for (const double degrees : {-16, -12, -8, 8, 12, 16}) {
      const double motion = reliefMotion(straight, viewOf(turnedHead(photo, degrees)));
      EXPECT_GT(motion, 0.02) << person << degrees;
      EXPECT_LT(motion, std::sin(radians(std::abs(degrees)))) << person << degrees;
    }
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
                                        .relief = 0.02,
                                        .repetition = 0.7,
                                        .edges = 0.88};

/// Paints closed lids over the eyes.
void closeEyes(cv::Mat& picture, const FaceMesh& mesh) {
  constexpr std::size_t kCheek = 50;
  const cv::Vec3b skin = picture.at<cv::Vec3b>(static_cast<int>(mesh[kCheek].y),  //
                                               static_cast<int>(mesh[kCheek].x));
  for (const auto& [outer, inner] : {std::pair{33U, 133U}, std::pair{263U, 362U}}) {
    const double x = (mesh[outer].x + mesh[inner].x) / 2, y = (mesh[outer].y + mesh[inner].y) / 2;
    const double width = std::abs(mesh[outer].x - mesh[inner].x);
    cv::ellipse(picture, cv::RotatedRect(cv::Point2d(x, y), cv::Size2d(width, width / 2), 0),
                cv::Scalar(skin), -1);
  }
}

/// Looks at a scene ten times a second.
class Judging {
 public:
  /// `isPrint`: what the network takes for lids is none, and nothing in the picture changes.
  explicit Judging(char person, bool isPrint = false)
      : photo_(tests::portrait(person)), details_(detailsOf(photo_)), isPrint_(isPrint) {}

  /// A scene that moves with `phase`, and aside by so many pixels, and shows lids opened so far.
  LivenessVerdict look(double phase, double lids, double aside = 0) {
    const double x = 20 * std::sin(phase) + aside, y = 14 * std::sin(1.7 * phase);
    const cv::Matx23d shift(1, 0, x, 0, 1, y);
    cv::Mat moved;
    cv::warpAffine(photo_, moved, shift, photo_.size(), cv::INTER_LINEAR, cv::BORDER_REFLECT);
    moved.convertTo(moved, -1, exposure_);
    FaceDetails details = details_;
    details.lidOpening *= lids;
    for (SurfacePoint& point : details.mesh)
      point = {point.x + x, point.y + y, point.z};
    if (lids < 0.5 && !isPrint_) closeEyes(moved, details.mesh);
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
  void expose(double gain) { exposure_ = gain; }

 private:
  const cv::Mat photo_;
  const FaceDetails details_;
  const bool isPrint_;
  LivenessJudge judge_{kLimits};
  platform::TimePoint now_{};
  double phase_ = 0;
  double exposure_ = 1;
};

TEST(BlinkWatch, CountsBothBlinksOfAPairThatTheNetworkHardlyFollowsAndNoneOfAPrint) {
  struct Look {
    double share, opening, likeness;
  };
  // Two blinks 0.55 s apart, as they were seen in a film of a face 264 pixels wide.
  const Look looks[] = {{1.00, 1.02, 0.99}, {0.94, 1.07, 0.65}, {0.96, 1.13, 0.61},
                        {0.88, 0.70, 0.92}, {1.01, 1.00, 0.55}, {1.00, 0.98, 0.50},
                        {0.93, 0.81, 0.96}, {0.92, 1.05, 0.63}, {0.87, 0.87, 0.71},
                        {1.02, 1.01, 0.98}, {1.00, 1.00, 0.49}, {1.00, 1.00, 0.59}};
  for (const bool isPrint : {false, true}) {
    BlinkWatch watch(0.91);
    platform::TimePoint time{};
    const auto add = [&](const Look& look) {
      watch.add(time += platform::seconds(0.1),
                {look.opening, 0.3 * look.share, 0.3 * look.share, isPrint ? 0.98 : look.likeness});
    };
    for (int i = 0; i < 10; ++i)
      add({1, 1, 0.99});
    std::ranges::for_each(looks, add);
    EXPECT_EQ(watch.blinks(), isPrint ? 0 : 2);
  }
}

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
  EXPECT_FALSE(verdict.isBeginning);
  const LivenessVerdict lidsDown = staring.look(11, 0.3);
  EXPECT_TRUE(lidsDown.isBeginning) << "it may become a blink";
  EXPECT_EQ(lidsDown.kind, Kind::undecided);
}

TEST(LivenessJudge, DoesNotBelieveEyesThatAreSeenNarrowerButLookAsTheyDid) {
  for (const char person : {'a', 'b'}) {
    const LivenessVerdict verdict = Judging(person, true).watch(60, 0.11);
    EXPECT_EQ(verdict.kind, Kind::undecided) << person;
    EXPECT_LT(verdict.score, 0.3F) << person;
  }
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

TEST(LivenessJudge, FindsACalmFilmThatBeginsAgainInAnyLightThoughTheCamerasExposureDrifts) {
  const double turn = 2 * std::acos(-1.0);
  struct Film {
    double light, pixels;
  };
  for (const auto& [light, pixels] : {Film{1, 6}, Film{0.35, 1.5}}) {
    Judging loop('a');
    Kind kind = Kind::undecided;
    for (int i = 0; i < 31; ++i) {
      loop.expose(light * (1 - 0.004 * i));
      kind = loop.look(0, 1, pixels * std::sin(turn * (i % 20) / 20)).kind;
    }
    EXPECT_EQ(kind, Kind::spoof) << light;
  }
}

TEST(LivenessJudge, DoesNotTakeAMovementThatIsMadeTwiceForAFilmThatBeginsAgain) {
  for (const int repeated : {4, 12}) {
    Judging person('a');
    bool isSpoof = false;
    for (int i = 0; i < 45; ++i) {
      const bool isAsBefore = i >= 25 && i < 25 + repeated;
      const double phase = 0.11 * (isAsBefore ? i - 20 : i);
      isSpoof = isSpoof || person.look(phase, 1).kind == Kind::spoof;
    }
    EXPECT_EQ(isSpoof, repeated == 12) << "looks alike: " << repeated;
  }
}

/// From 0 to 1 within `rise`, and back within a second after it began; times in looks.
double thereAndBack(double since, double rise) {
  const auto smooth = [](double share) {
    const double t = std::clamp(share, 0.0, 1.0);
    return t * t * (3 - 2 * t);
  };
  return smooth(since / rise) * (1 - smooth((since - 10 + rise) / rise));
}

TEST(LivenessJudge, DoesNotTakeWhoMovesThereAndBackTwiceForAFilmThatBeginsAgain) {
  for (const double strength : {1.15, 1.3}) {
    Judging person('a');
    for (int i = 0; i < 48; ++i) {
      const double twice = thereAndBack(i - 8, 3.5) + strength * thereAndBack(i - 28.2, 4.3);
      const double unrest = 3 * std::sin(0.23 * i) + 1.5 * std::sin(0.17 * i + 1);
      EXPECT_NE(person.look(0.9 * twice, 1, unrest).kind, Kind::spoof) << strength << ", " << i;
    }
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
  EXPECT_EQ(unclear->flaw.value().flaw, FaceFlaw::blurred);
  EXPECT_LT(unclear->flaw->value, unclear->flaw->limit);
  const auto dark = rgbMat(*frame) / 8;
  const auto unlit =
      compare.look(platform::TimePoint{} + platform::seconds(11), *pixelBufferFrom(cv::Mat(dark)),
                   tests::detector().detect(*frame).at(0), {selfie, 0.42});
  EXPECT_EQ(unlit.value().flaw.value().flaw, FaceFlaw::tooDark);
}

}  // namespace
}  // namespace corvana::engine
