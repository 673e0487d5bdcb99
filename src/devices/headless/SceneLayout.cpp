#include "devices/headless/SceneLayout.h"

#include "corvana/OutletNames.h"

namespace corvana::devices {
namespace {

using namespace outlets;
using Kind = SceneView::Kind;

// Overlays fill the screen, so a frame inside one of them is also a rectangle of the screen.
// Prompts and the progress bar have nothing to show at first; the overlays of later phases start
// unseen.
SceneLayout captureScene() {
  SceneLayout scene;
  scene.identifier = "VideoCaptureViewController";
  scene.views = {
      {kSelfieOverlayView, Kind::view, kHeadlessScreen},
      {kSelfieOverlayImageBackground, Kind::imageView, kHeadlessScreen, kSelfieOverlayView},
      {kSelfieOverlayImageView, Kind::imageView, {60, 100, 240, 320}, kSelfieOverlayView},
      {"selfieOverlayBezel1", Kind::view, {8, 72, 40, 40}, kSelfieOverlayView},
      {"selfieOverlayBezel2", Kind::view, {312, 72, 40, 40}, kSelfieOverlayView},
      {"selfieOverlayBezel3", Kind::view, {8, 520, 40, 40}, kSelfieOverlayView},
      {"selfieOverlayBezel4", Kind::view, {312, 520, 40, 40}, kSelfieOverlayView},
      {kSelfieOverlayBottomImageView, Kind::imageView, {0, 568, 360, 72}, kSelfieOverlayView},
      {kSelfieOverlayLabelView, Kind::view, {30, 436, 300, 48}, kSelfieOverlayView, 1, true},
      {kSelfieOverlayLabel, Kind::label, {38, 440, 284, 40}, kSelfieOverlayLabelView},
      {kSelfieDebugStackView, Kind::stackView, {8, 72, 160, 80}, kSelfieOverlayView},
      {kFaceLivenessScoreLabel, Kind::label, {8, 72, 160, 20}, kSelfieDebugStackView},
      {kLeftEyeOpenProbabilityLabel, Kind::label, {8, 92, 160, 20}, kSelfieDebugStackView},
      {kRightEyeOpenProbabilityLabel, Kind::label, {8, 112, 160, 20}, kSelfieDebugStackView},
      {kMaskDetectionScoreLabel, Kind::label, {8, 132, 160, 20}, kSelfieDebugStackView},
      {kIdOverlayView, Kind::view, kHeadlessScreen, "", 0},
      {kIdFrameImageView, Kind::imageView, {20, 400, 320, 202}, kIdOverlayView},
      {kIdImageView, Kind::imageView, {20, 400, 320, 202}, kIdOverlayView},
      {kIdOverlayLabelView, Kind::view, {30, 344, 300, 48}, kIdOverlayView, 1, true},
      {kIdOverlayLabel, Kind::label, {38, 348, 284, 40}, kIdOverlayLabelView},
      {kProgressView, Kind::progressView, {20, 612, 320, 4}, kIdOverlayView, 1, true},
      {kIdDebugStackView, Kind::stackView, {8, 72, 200, 40}, kIdOverlayView},
      {kRealnessScoresLabel, Kind::label, {8, 72, 200, 20}, kIdDebugStackView},
      {kTopMatchesLabel, Kind::label, {8, 92, 200, 20}, kIdDebugStackView},
      {kReadingTextOverlayView, Kind::view, kHeadlessScreen, "", 0},
      {kReadingTextLabel, Kind::label, {20, 430, 320, 130}, kReadingTextOverlayView},
      {kReadingTextCountdownLabel, Kind::label, {140, 390, 80, 32}, kReadingTextOverlayView},
      {kDoneButton,
       Kind::button,
       {110, 580, 140, 44},
       kReadingTextOverlayView,
       1,
       false,
       "doneReadingText"},
      {kOverlayTopView, Kind::view, {0, 0, 360, 64}},
      {kCloseButton, Kind::button, {8, 10, 44, 44}, kOverlayTopView, 1, false, "close"},
      {kCaptureLabel, Kind::label, {60, 16, 240, 32}, kOverlayTopView},
  };
  scene.constraints = {kSelfieLabelAboveConstraint, kSelfieLabelCenterConstraint,
                       kSelfieLabelBelowConstraint, kIdFrameImageViewWidthConstraint,
                       kIdLabelAboveConstraint,     kIdLabelCenterConstraint,
                       kIdLabelBelowConstraint};
  scene.collections[kSelfieOverlayBezels] = {"selfieOverlayBezel1", "selfieOverlayBezel2",
                                             "selfieOverlayBezel3", "selfieOverlayBezel4"};
  return scene;
}

SceneLayout retryScene() {
  SceneLayout scene;
  scene.identifier = "VideoRetryViewController";
  scene.views = {
      {kRetryImageView, Kind::imageView, {120, 120, 120, 120}},
      {kRetryLabel, Kind::label, {30, 270, 300, 96}},
      {kRetryButton, Kind::button, {30, 490, 300, 48}, "", 1, false, "retry"},
      {kCancelButton, Kind::button, {30, 554, 300, 48}, "", 1, false, "cancel"},
  };
  scene.collections[kRetryButtons] = {kRetryButton, kCancelButton};
  return scene;
}

}  // namespace

const std::vector<SceneLayout>& videoCaptureScenes() {
  static const std::vector<SceneLayout> kScenes{captureScene(), retryScene()};
  return kScenes;
}

}  // namespace corvana::devices
