#include "devices/headless/SceneLayout.h"

namespace corvana::devices {
namespace {

using Kind = SceneView::Kind;

// Overlays fill the screen, so a frame inside one of them is also a rectangle of the screen.
// Prompts and the progress bar have nothing to show at first; the overlays of later phases start
// unseen.
SceneLayout captureScene() {
  SceneLayout scene;
  scene.identifier = "VideoCaptureViewController";
  scene.views = {
      {"selfieOverlayView", Kind::view, kHeadlessScreen},
      {"selfieOverlayImageBackground", Kind::imageView, kHeadlessScreen, "selfieOverlayView"},
      {"selfieOverlayImageView", Kind::imageView, {60, 100, 240, 320}, "selfieOverlayView"},
      {"selfieOverlayBezel1", Kind::view, {8, 72, 40, 40}, "selfieOverlayView"},
      {"selfieOverlayBezel2", Kind::view, {312, 72, 40, 40}, "selfieOverlayView"},
      {"selfieOverlayBezel3", Kind::view, {8, 520, 40, 40}, "selfieOverlayView"},
      {"selfieOverlayBezel4", Kind::view, {312, 520, 40, 40}, "selfieOverlayView"},
      {"selfieOverlayBottomImageView", Kind::imageView, {0, 568, 360, 72}, "selfieOverlayView"},
      {"selfieOverlayLabelView", Kind::view, {30, 436, 300, 48}, "selfieOverlayView", 1, true},
      {"selfieOverlayLabel", Kind::label, {38, 440, 284, 40}, "selfieOverlayLabelView"},
      {"selfieDebugStackView", Kind::stackView, {8, 72, 160, 80}, "selfieOverlayView"},
      {"faceLivenessScoreLabel", Kind::label, {8, 72, 160, 20}, "selfieDebugStackView"},
      {"leftEyeOpenProbabilityLabel", Kind::label, {8, 92, 160, 20}, "selfieDebugStackView"},
      {"rightEyeOpenProbabilityLabel", Kind::label, {8, 112, 160, 20}, "selfieDebugStackView"},
      {"maskDetectionScoreLabel", Kind::label, {8, 132, 160, 20}, "selfieDebugStackView"},
      {"idOverlayView", Kind::view, kHeadlessScreen, "", 0},
      {"idFrameImageView", Kind::imageView, {20, 400, 320, 202}, "idOverlayView"},
      {"idImageView", Kind::imageView, {20, 400, 320, 202}, "idOverlayView"},
      {"idOverlayLabelView", Kind::view, {30, 344, 300, 48}, "idOverlayView", 1, true},
      {"idOverlayLabel", Kind::label, {38, 348, 284, 40}, "idOverlayLabelView"},
      {"progressView", Kind::progressView, {20, 612, 320, 4}, "idOverlayView", 1, true},
      {"idDebugStackView", Kind::stackView, {8, 72, 200, 40}, "idOverlayView"},
      {"realnessScoresLabel", Kind::label, {8, 72, 200, 20}, "idDebugStackView"},
      {"topMatchesLabel", Kind::label, {8, 92, 200, 20}, "idDebugStackView"},
      {"readingTextOverlayView", Kind::view, kHeadlessScreen, "", 0},
      {"readingTextLabel", Kind::label, {20, 430, 320, 130}, "readingTextOverlayView"},
      {"readingTextCountdownLabel", Kind::label, {140, 390, 80, 32}, "readingTextOverlayView"},
      {"doneButton",
       Kind::button,
       {110, 580, 140, 44},
       "readingTextOverlayView",
       1,
       false,
       "doneReadingText"},
      {"overlayTopView", Kind::view, {0, 0, 360, 64}},
      {"closeButton", Kind::button, {8, 10, 44, 44}, "overlayTopView", 1, false, "close"},
      {"captureLabel", Kind::label, {60, 16, 240, 32}, "overlayTopView"},
  };
  scene.constraints = {"selfieLabelAboveConstraint", "selfieLabelCenterConstraint",
                       "selfieLabelBelowConstraint", "idFrameImageViewWidthConstraint",
                       "idLabelAboveConstraint",     "idLabelCenterConstraint",
                       "idLabelBelowConstraint"};
  scene.collections["selfieOverlayBezels"] = {"selfieOverlayBezel1", "selfieOverlayBezel2",
                                              "selfieOverlayBezel3", "selfieOverlayBezel4"};
  return scene;
}

SceneLayout retryScene() {
  SceneLayout scene;
  scene.identifier = "VideoRetryViewController";
  scene.views = {
      {"imageView", Kind::imageView, {120, 120, 120, 120}},
      {"label", Kind::label, {30, 270, 300, 96}},
      {"retryButton", Kind::button, {30, 490, 300, 48}, "", 1, false, "retry"},
      {"cancelButton", Kind::button, {30, 554, 300, 48}, "", 1, false, "cancel"},
  };
  scene.collections["buttons"] = {"retryButton", "cancelButton"};
  return scene;
}

}  // namespace

const std::vector<SceneLayout>& videoCaptureScenes() {
  static const std::vector<SceneLayout> kScenes{captureScene(), retryScene()};
  return kScenes;
}

}  // namespace corvana::devices
