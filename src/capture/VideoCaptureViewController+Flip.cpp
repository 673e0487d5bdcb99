#include "capture/VideoCaptureViewController+IDCaptureDelegate.h"
#include "capture/VideoCaptureViewController.h"

namespace corvana::capture {

using corvana::CaptureMode;
using corvana::IDCapture;
using platform::Duration;
using platform::UIView;

namespace {

constexpr Duration kBeforeFlip = platform::seconds(0.5);
constexpr Duration kFlip = platform::seconds(1);
constexpr Duration kAfterFlip = platform::seconds(0.5);

}  // namespace

void VideoCaptureViewController::showFlipAnimation() {
  // Also leaves the barcode mode that the front may have needed.
  const CaptureMode wanted =
      IDCapture::options.capture4K ? CaptureMode::high : CaptureMode::standard;
  if (captureSession().captureMode() != wanted) captureSession().setCaptureMode(wanted);
  showingFlipAnimation_ = true;
  setIDImage(frontOverlay(environment()));
  showIDMessage(IDCapture::strings.flipToBack, corvana::PromptType::info, platform::colors::kWhite);
  setProgress(1);
  environment().runLoop.mainQueue().asyncAfter(kBeforeFlip,
                                               [self = strongSelf()] { self->flipSilhouette(); });
}

void VideoCaptureViewController::flipSilhouette() {
  const auto silhouette = outlets_.idImageView.view();
  if (!silhouette) return;
  UIView::transition(
      environment(), *silhouette, kFlip, UIView::Transition::flipFromLeft,
      [this] { setIDImage(backOverlay(environment())); },
      [self = strongSelf()] {
        self->environment().runLoop.mainQueue().asyncAfter(kAfterFlip,
                                                           [self] { self->endFlipAnimation(); });
      });
}

void VideoCaptureViewController::endFlipAnimation() {
  showingFlipAnimation_ = false;
  outlets_.idOverlayLabelView->setHidden(true);
  outlets_.idFrameImageView->setTintColor(platform::colors::kWhite);
  setProgress(0);
  outlets_.realnessScoresLabel->setText("Realness Scores:");
  outlets_.topMatchesLabel->setText("Top Matches:");
}

}  // namespace corvana::capture
