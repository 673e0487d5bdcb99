#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "engine/document/text/NetworkTextReader.h"
#include "engine/redaction/ShownHeads.h"
#include "engine/vision/MatViews.h"
#include "engine/vision/Portraits.h"

namespace corvana::engine {
namespace {

using platform::PixelBufferRef;
using platform::TimePoint;
using std::chrono::milliseconds;

const tests::Placed kPerson{'a', 360, 500, 300};
constexpr platform::CGRect kShownFace{210, 350, 300, 300};
/// Inside the head's ellipse, where the mouth is.
constexpr platform::CGPoint kOnTheChin{360, 610};

HeadFinder& finder() {
  static HeadFinder loaded = [] {
    const auto models =
        NetworkTextReader::Models::inFolder(tests::fromSource("src/engine/resources"));
    return HeadFinder::load(
               tests::fromSource("src/engine/resources/face_detection_short_range.tflite"),
               models.boxes)
        .value();
  }();
  return loaded;
}

/// The person, and a white strip of print over mouth and chin as the upper edge of a card is.
PixelBufferRef withPrintOnTheChin() {
  cv::Mat picture = rgbMat(*tests::cameraFrame({kPerson})).clone();
  cv::rectangle(picture, cv::Rect(100, 585, 520, 330), cv::Scalar::all(235), cv::FILLED);
  for (int line = 0; line < 4; ++line) {
    cv::putText(picture, "UTOPIA IDENTITY CARD", {130, 620 + 70 * line}, cv::FONT_HERSHEY_SIMPLEX,
                1.2, cv::Scalar::all(20), 3, cv::LINE_AA);
  }
  return pixelBufferFrom(picture);
}

bool isShown(const PixelBufferRef& picture, const ShownParts& parts, const platform::CGPoint& at) {
  const auto covered = coveredBut(*picture, parts);
  const auto* pixel = covered->plane(0) + static_cast<std::ptrdiff_t>(at.y) * covered->stride(0) +
                      3 * static_cast<std::ptrdiff_t>(at.x);
  return pixel[0] + pixel[1] + pixel[2] > 0;
}

TEST(HeadFinder, ShowsAFaceAndCoversPrintInFrontOfIt) {
  const auto plain = tests::cameraFrame({kPerson});
  const auto face = finder().faceIn(*plain);
  ASSERT_TRUE(face);
  EXPECT_GT(overlap(*face, kShownFace), 0.8);
  const auto shown = shownPartsAt({finder().lookAt(*plain, *face)}, 0);
  EXPECT_TRUE(isShown(plain, shown, {360, 470}));
  EXPECT_TRUE(isShown(plain, shown, kOnTheChin));
  EXPECT_FALSE(isShown(plain, shown, {360, 760}));

  const auto held = withPrintOnTheChin();
  const auto hidden = shownPartsAt({finder().lookAt(*held, *face)}, 0);
  EXPECT_TRUE(isShown(held, hidden, {360, 470}));
  EXPECT_FALSE(isShown(held, hidden, kOnTheChin));
}

TEST(HeadFinder, FollowsTheLiveFaceAndNeverAPhotoThatTakesItsPlace) {
  const auto both = tests::cameraFrame({kPerson, {'a', 200, 1050, 100}});
  const auto photoAlone = tests::cameraFrame({{'a', 360, 560, 120}});
  const auto photoOnTheFace = tests::cameraFrame({kPerson, {'b', 470, 620, 80}});
  TimePoint now{};
  const auto next = [&](const PixelBufferRef& picture) {
    now += milliseconds(100);
    return finder().next(picture, now, std::nullopt);
  };
  finder().begin(std::nullopt, now);
  const auto first = next(both);
  ASSERT_TRUE(first.face);
  EXPECT_GT(overlap(*first.face, kShownFace), 0.8);
  EXPECT_FALSE(first.isCrowded);
  EXPECT_TRUE(next(photoOnTheFace).isCrowded);
  EXPECT_FALSE(next(photoAlone).face);
  EXPECT_FALSE(next(tests::cameraFrame({})).face);
  EXPECT_TRUE(next(both).face) << "it is back";

  finder().begin(std::nullopt, now);
  EXPECT_FALSE(next(photoAlone).face) << "no live face is so small";
  finder().begin(kShownFace, now);
  EXPECT_TRUE(next(both).face);
}

}  // namespace
}  // namespace corvana::engine
