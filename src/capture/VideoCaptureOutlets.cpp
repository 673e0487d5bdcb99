#include "capture/VideoCaptureOutlets.h"

#include "corvana/OutletNames.h"

namespace corvana::capture {

void VideoCaptureOutlets::declare(platform::OutletBinder& binder) {
  binder.outlet(outlets::kOverlayTopView, overlayTopView);
  binder.outlet(outlets::kCloseButton, closeButton);
  binder.outlet(outlets::kCaptureLabel, captureLabel);
  declareSelfie(binder);
  declareID(binder);
  binder.outlet(outlets::kReadingTextOverlayView, readingTextOverlayView);
  binder.outlet(outlets::kReadingTextLabel, readingTextLabel);
  binder.outlet(outlets::kReadingTextCountdownLabel, readingTextCountdownLabel);
  binder.outlet(outlets::kDoneButton, doneButton);
}

void VideoCaptureOutlets::declareSelfie(platform::OutletBinder& binder) {
  binder.outlet(outlets::kSelfieOverlayView, selfieOverlayView);
  binder.outlet(outlets::kSelfieOverlayImageBackground, selfieOverlayImageBackground);
  binder.outlet(outlets::kSelfieOverlayImageView, selfieOverlayImageView);
  binder.outlet(outlets::kSelfieOverlayLabelView, selfieOverlayLabelView);
  binder.outlet(outlets::kSelfieOverlayLabel, selfieOverlayLabel);
  binder.collection(outlets::kSelfieOverlayBezels, selfieOverlayBezels);
  binder.outlet(outlets::kSelfieOverlayBottomImageView, selfieOverlayBottomImageView);
  binder.constraint(outlets::kSelfieLabelAboveConstraint, selfieLabelAboveConstraint);
  binder.constraint(outlets::kSelfieLabelCenterConstraint, selfieLabelCenterConstraint);
  binder.constraint(outlets::kSelfieLabelBelowConstraint, selfieLabelBelowConstraint);
  binder.outlet(outlets::kSelfieDebugStackView, selfieDebugStackView);
  binder.outlet(outlets::kFaceLivenessScoreLabel, faceLivenessScoreLabel);
  binder.outlet(outlets::kLeftEyeOpenProbabilityLabel, leftEyeOpenProbabilityLabel);
  binder.outlet(outlets::kRightEyeOpenProbabilityLabel, rightEyeOpenProbabilityLabel);
  binder.outlet(outlets::kMaskDetectionScoreLabel, maskDetectionScoreLabel);
}

void VideoCaptureOutlets::declareID(platform::OutletBinder& binder) {
  binder.outlet(outlets::kIdOverlayView, idOverlayView);
  binder.outlet(outlets::kIdFrameImageView, idFrameImageView);
  binder.constraint(outlets::kIdFrameImageViewWidthConstraint, idFrameImageViewWidthConstraint);
  binder.outlet(outlets::kIdImageView, idImageView);
  binder.outlet(outlets::kIdOverlayLabelView, idOverlayLabelView);
  binder.outlet(outlets::kIdOverlayLabel, idOverlayLabel);
  binder.outlet(outlets::kProgressView, progressView);
  binder.constraint(outlets::kIdLabelAboveConstraint, idLabelAboveConstraint);
  binder.constraint(outlets::kIdLabelCenterConstraint, idLabelCenterConstraint);
  binder.constraint(outlets::kIdLabelBelowConstraint, idLabelBelowConstraint);
  binder.outlet(outlets::kIdDebugStackView, idDebugStackView);
  binder.outlet(outlets::kRealnessScoresLabel, realnessScoresLabel);
  binder.outlet(outlets::kTopMatchesLabel, topMatchesLabel);
}

}  // namespace corvana::capture
