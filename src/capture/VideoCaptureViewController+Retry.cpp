#include "capture/VideoCaptureViewController+IDCaptureDelegate.h"
#include "capture/VideoCaptureViewController.h"
#include "corvana/Geometry.h"
#include "corvana/StoryboardIdentifier.h"

namespace corvana::capture {

using corvana::IDCaptureState;
using corvana::SelfieCaptureState;
using corvana::VideoCapture;

void VideoCaptureViewController::retry(RetryType type) {
  invalidateCountdownTimer();
  presentRetryScreen(type);
  resetFlow();
  if (videoCapture_) videoCapture_->stopVideoWriter(nullptr);
}

void VideoCaptureViewController::presentRetryScreen(RetryType type) {
  if (!storyboard()) return;
  const auto screen =
      std::dynamic_pointer_cast<VideoRetryViewController>(storyboard()->instantiateViewController(
          corvana::storyboardIdentifier<VideoRetryViewController>()));
  if (!screen) return;
  screen->type = type;
  screen->setModalPresentationStyle(platform::UIModalPresentationStyle::fullScreen);
  screen->retryCompletion = [weak = weakSelf()](bool retry) {
    if (const auto self = weak.lock()) self->retryAnswered(retry);
  };
  present(screen, true);
}

void VideoCaptureViewController::resetFlow() {
  corvana::removeShapeSublayers(*faceEllipseLayer_);
  outlets_.selfieOverlayView->setAlpha(1);
  outlets_.idOverlayView->setAlpha(0);
  outlets_.readingTextOverlayView->setAlpha(0);
  countdownTimerSeconds_ = VideoCapture::options.readTextCountdownSeconds;
  showCountdown();
  typeMismatchStartTime_.reset();
  showingFlipAnimation_ = false;
  setIDImage(frontOverlay(environment()));
  // Both are handled after this reset, and so find no front accepted.
  update(SelfieCaptureState{SelfieCaptureState::DetectingFace{}});
  update(IDCaptureState{IDCaptureState::DetectingBox{}});
  frontDetectedData_.reset();
  backDetectedData_.reset();
  outlets_.captureLabel->setText(corvana::SelfieCapture::strings.captureSelfie);
  firstFaceDoesNotMatchTime_.reset();
  firstIdDoesNotMatchTime_.reset();
  outlets_.readingTextLabel->setText(text);
  wordMatchPercentage_ = 0;
}

void VideoCaptureViewController::retryAnswered(bool retry) {
  if (!retry) return close();
  corvana::removeShapeSublayers(*faceEllipseLayer_);
  if (videoCapture_) videoCapture_->retry();
}

}  // namespace corvana::capture
