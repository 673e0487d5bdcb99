#pragma once

#include "platform/uikit/UIStoryboard.h"

namespace corvana::capture {

/// The views of the capture screen. All must be connected.
struct VideoCaptureOutlets {
  using View = platform::Outlet<platform::UIView>;
  using Label = platform::Outlet<platform::UILabel>;
  using ImageView = platform::Outlet<platform::UIImageView>;
  using Button = platform::Outlet<platform::UIButton>;
  using ProgressView = platform::Outlet<platform::UIProgressView>;
  using StackView = platform::Outlet<platform::UIStackView>;
  using Constraint = platform::Outlet<platform::NSLayoutConstraint>;

  View overlayTopView;
  Button closeButton;
  Label captureLabel;

  View selfieOverlayView;
  ImageView selfieOverlayImageBackground;
  ImageView selfieOverlayImageView;
  View selfieOverlayLabelView;
  Label selfieOverlayLabel;
  platform::OutletCollection<platform::UIView> selfieOverlayBezels;
  ImageView selfieOverlayBottomImageView;
  Constraint selfieLabelAboveConstraint;
  Constraint selfieLabelCenterConstraint;
  Constraint selfieLabelBelowConstraint;

  StackView selfieDebugStackView;
  Label faceLivenessScoreLabel;
  Label leftEyeOpenProbabilityLabel;
  Label rightEyeOpenProbabilityLabel;
  Label maskDetectionScoreLabel;

  View idOverlayView;
  ImageView idFrameImageView;
  Constraint idFrameImageViewWidthConstraint;
  ImageView idImageView;
  View idOverlayLabelView;
  Label idOverlayLabel;
  ProgressView progressView;
  Constraint idLabelAboveConstraint;
  Constraint idLabelCenterConstraint;
  Constraint idLabelBelowConstraint;

  StackView idDebugStackView;
  Label realnessScoresLabel;
  Label topMatchesLabel;

  View readingTextOverlayView;
  Label readingTextLabel;
  Label readingTextCountdownLabel;
  Button doneButton;

  void declare(platform::OutletBinder& binder);

 private:
  void declareSelfie(platform::OutletBinder& binder);
  void declareID(platform::OutletBinder& binder);
};

}  // namespace corvana::capture
