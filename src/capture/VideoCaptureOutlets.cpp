#include "capture/VideoCaptureOutlets.h"

namespace corvana::capture {

void VideoCaptureOutlets::declare(platform::OutletBinder& binder) {
  binder.outlet("overlayTopView", overlayTopView);
  binder.outlet("closeButton", closeButton);
  binder.outlet("captureLabel", captureLabel);
  declareSelfie(binder);
  declareID(binder);
  binder.outlet("readingTextOverlayView", readingTextOverlayView);
  binder.outlet("readingTextLabel", readingTextLabel);
  binder.outlet("readingTextCountdownLabel", readingTextCountdownLabel);
  binder.outlet("doneButton", doneButton);
}

void VideoCaptureOutlets::declareSelfie(platform::OutletBinder& binder) {
  binder.outlet("selfieOverlayView", selfieOverlayView);
  binder.outlet("selfieOverlayImageBackground", selfieOverlayImageBackground);
  binder.outlet("selfieOverlayImageView", selfieOverlayImageView);
  binder.outlet("selfieOverlayLabelView", selfieOverlayLabelView);
  binder.outlet("selfieOverlayLabel", selfieOverlayLabel);
  binder.collection("selfieOverlayBezels", selfieOverlayBezels);
  binder.outlet("selfieOverlayBottomImageView", selfieOverlayBottomImageView);
  binder.constraint("selfieLabelAboveConstraint", selfieLabelAboveConstraint);
  binder.constraint("selfieLabelCenterConstraint", selfieLabelCenterConstraint);
  binder.constraint("selfieLabelBelowConstraint", selfieLabelBelowConstraint);
  binder.outlet("selfieDebugStackView", selfieDebugStackView);
  binder.outlet("faceLivenessScoreLabel", faceLivenessScoreLabel);
  binder.outlet("leftEyeOpenProbabilityLabel", leftEyeOpenProbabilityLabel);
  binder.outlet("rightEyeOpenProbabilityLabel", rightEyeOpenProbabilityLabel);
  binder.outlet("maskDetectionScoreLabel", maskDetectionScoreLabel);
}

void VideoCaptureOutlets::declareID(platform::OutletBinder& binder) {
  binder.outlet("idOverlayView", idOverlayView);
  binder.outlet("idFrameImageView", idFrameImageView);
  binder.constraint("idFrameImageViewWidthConstraint", idFrameImageViewWidthConstraint);
  binder.outlet("idImageView", idImageView);
  binder.outlet("idOverlayLabelView", idOverlayLabelView);
  binder.outlet("idOverlayLabel", idOverlayLabel);
  binder.outlet("progressView", progressView);
  binder.constraint("idLabelAboveConstraint", idLabelAboveConstraint);
  binder.constraint("idLabelCenterConstraint", idLabelCenterConstraint);
  binder.constraint("idLabelBelowConstraint", idLabelBelowConstraint);
  binder.outlet("idDebugStackView", idDebugStackView);
  binder.outlet("realnessScoresLabel", realnessScoresLabel);
  binder.outlet("topMatchesLabel", topMatchesLabel);
}

}  // namespace corvana::capture
