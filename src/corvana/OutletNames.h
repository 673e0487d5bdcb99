#pragma once

/// The names that connect the views, constraints and collections of a storyboard to the screens of
/// the module. A storyboard has to offer all of a scene's; whoever reads or touches the screen
/// finds its views by them.
namespace corvana::outlets {

// Scene "VideoCaptureViewController": bar at the top.
inline constexpr const char* kOverlayTopView = "overlayTopView";
inline constexpr const char* kCloseButton = "closeButton";
inline constexpr const char* kCaptureLabel = "captureLabel";

// The same: selfie.
inline constexpr const char* kSelfieOverlayView = "selfieOverlayView";
inline constexpr const char* kSelfieOverlayImageBackground = "selfieOverlayImageBackground";
inline constexpr const char* kSelfieOverlayImageView = "selfieOverlayImageView";
inline constexpr const char* kSelfieOverlayLabelView = "selfieOverlayLabelView";
inline constexpr const char* kSelfieOverlayLabel = "selfieOverlayLabel";
inline constexpr const char* kSelfieOverlayBezels = "selfieOverlayBezels";
inline constexpr const char* kSelfieOverlayBottomImageView = "selfieOverlayBottomImageView";
inline constexpr const char* kSelfieLabelAboveConstraint = "selfieLabelAboveConstraint";
inline constexpr const char* kSelfieLabelCenterConstraint = "selfieLabelCenterConstraint";
inline constexpr const char* kSelfieLabelBelowConstraint = "selfieLabelBelowConstraint";
inline constexpr const char* kSelfieDebugStackView = "selfieDebugStackView";
inline constexpr const char* kFaceLivenessScoreLabel = "faceLivenessScoreLabel";
inline constexpr const char* kLeftEyeOpenProbabilityLabel = "leftEyeOpenProbabilityLabel";
inline constexpr const char* kRightEyeOpenProbabilityLabel = "rightEyeOpenProbabilityLabel";
inline constexpr const char* kMaskDetectionScoreLabel = "maskDetectionScoreLabel";

// The same: card.
inline constexpr const char* kIdOverlayView = "idOverlayView";
inline constexpr const char* kIdFrameImageView = "idFrameImageView";
inline constexpr const char* kIdFrameImageViewWidthConstraint = "idFrameImageViewWidthConstraint";
inline constexpr const char* kIdImageView = "idImageView";
inline constexpr const char* kIdOverlayLabelView = "idOverlayLabelView";
inline constexpr const char* kIdOverlayLabel = "idOverlayLabel";
inline constexpr const char* kProgressView = "progressView";
inline constexpr const char* kIdLabelAboveConstraint = "idLabelAboveConstraint";
inline constexpr const char* kIdLabelCenterConstraint = "idLabelCenterConstraint";
inline constexpr const char* kIdLabelBelowConstraint = "idLabelBelowConstraint";
inline constexpr const char* kIdDebugStackView = "idDebugStackView";
inline constexpr const char* kRealnessScoresLabel = "realnessScoresLabel";
inline constexpr const char* kTopMatchesLabel = "topMatchesLabel";

// The same: text to be read.
inline constexpr const char* kReadingTextOverlayView = "readingTextOverlayView";
inline constexpr const char* kReadingTextLabel = "readingTextLabel";
inline constexpr const char* kReadingTextCountdownLabel = "readingTextCountdownLabel";
inline constexpr const char* kDoneButton = "doneButton";

// Scene "VideoRetryViewController".
inline constexpr const char* kRetryLabel = "label";
inline constexpr const char* kRetryImageView = "imageView";
inline constexpr const char* kRetryButton = "retryButton";
inline constexpr const char* kCancelButton = "cancelButton";
inline constexpr const char* kRetryButtons = "buttons";

}  // namespace corvana::outlets
