#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "engine/selfie/SelfieAnalyzer.h"
#include "engine/vision/FaceCrop.h"
#include "engine/vision/MatViews.h"
#include "engine/vision/Portraits.h"

namespace corvana::engine {
namespace {

// An oval in the upper middle of a 720×1280 picture.
constexpr platform::CGRect kOval{140, 240, 440, 600};

SelfieAnalyzer& analyzer() {
  static SelfieAnalyzer shared({&tests::detector(), [](auto*) {}},
                               {&tests::landmarks(), [](auto*) {}});
  return shared;
}

TEST(SelfieAnalyzer, TellsWhereTheFaceShouldGo) {
  using enum SelfieVerdict;
  struct Case {
    const char* what;
    platform::PixelBufferRef frame;
    SelfieVerdict verdict;
  };
  const Case cases[] = {
      {"nobody", tests::cameraFrame({}), noFace},
      {"far", tests::cameraFrame({{'a', 360, 540, 150}}), moveCloser},
      {"near", tests::cameraFrame({{'b', 360, 560, 600}}), moveAway},
      {"low", tests::cameraFrame({{'a', 360, 900, 300}}), alignFace},
      {"left", tests::cameraFrame({{'b', 170, 540, 280}}), alignFace},
      {"half outside", tests::cameraFrame({{'b', 80, 540, 300}}), alignFace},
      {"two people", tests::cameraFrame({{'b', 560, 900, 180}, {'a', 330, 450, 240}}),
       multipleFaces},
      {"a small portrait beside", tests::cameraFrame({{'b', 600, 1100, 90}, {'a', 360, 540, 280}}),
       good},
      {"middle", tests::cameraFrame({{'a', 360, 540, 320}}), good},
      {"middle, other", tests::cameraFrame({{'b', 360, 540, 320}}), good},
      {"small, off the middle", tests::cameraFrame({{'b', 420, 640, 210}}), good},
      {"large, high", tests::cameraFrame({{'b', 350, 420, 480}}), good},
  };
  for (const Case& one : cases) {
    const SelfieJudgement judgement = analyzer().analyze(one.frame, kOval);
    EXPECT_EQ(judgement.verdict, one.verdict) << one.what << ": " << judgement.issueMessage;
    EXPECT_EQ(judgement.faceImage != nullptr, one.verdict == good) << one.what;
    EXPECT_EQ(judgement.face.has_value(), one.verdict != noFace) << one.what;
  }
  EXPECT_EQ(analyzer().analyze(cases[8].frame, {}).verdict, alignFace);
}

TEST(SelfieAnalyzer, LetsWhoWasToldToMoveGoOnUntilTheFaceIsClearlyInPlace) {
  using enum SelfieVerdict;
  struct Case {
    SelfieVerdict told;
    tests::Placed from, step;  ///< towards the place
  };
  const Case cases[] = {{moveCloser, {'a', 360, 540, 170}, {'a', 0, 0, 3}},
                        {moveAway, {'a', 360, 540, 600}, {'a', 0, 0, -8}},
                        {alignFace, {'a', 360, 820, 320}, {'a', 0, -4, 0}}};
  for (const auto& [told, from, step] : cases) {
    int between = 0;
    auto [person, x, y, width] = from;
    for (auto before = told; before == told;) {
      x += step.x, y += step.y, width += step.faceWidth;
      const auto frame = tests::cameraFrame({{person, x, y, width}});
      before = analyzer().analyze(frame, kOval, told).verdict;
      between += before == told && analyzer().analyze(frame, kOval).verdict == good;
    }
    EXPECT_GE(between, 2) << static_cast<int>(told);
    EXPECT_LE(between, 8) << static_cast<int>(told);
  }
}

TEST(SelfieAnalyzer, RefusesPicturesTheMatcherCannotUse) {
  const auto good = tests::cameraFrame({{'b', 360, 540, 320}});
  cv::Mat dark;
  rgbMat(*good).convertTo(dark, -1, 0.25);
  cv::Mat blurred;
  cv::GaussianBlur(rgbMat(*good), blurred, {}, 9);
  EXPECT_EQ(analyzer().analyze(pixelBufferFrom(dark), kOval).issueMessage, "It is too dark here");
  EXPECT_EQ(analyzer().analyze(pixelBufferFrom(blurred), kOval).issueMessage,
            "Hold still, the picture is blurred");

  const SelfieJudgement judgement = analyzer().analyze(good, kOval);
  EXPECT_GT(judgement.details->leftEyeOpen, 0.8F);
  EXPECT_GT(judgement.details->rightEyeOpen, 0.8F);
  EXPECT_GT(judgement.passiveLiveness, 0);
  EXPECT_GE(judgement.faceImage->pixels()->width(), kLeastFaceWidth);
}

}  // namespace
}  // namespace corvana::engine
