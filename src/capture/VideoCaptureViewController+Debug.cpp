#include <utility>

#include "capture/NumberText.h"
#include "capture/VideoCaptureViewController.h"
#include "corvana/Geometry.h"

namespace corvana::capture {

using corvana::CaptureMode;
using corvana::DebugData;
using platform::CGRect;
using platform::CGSize;
using platform::Notification;

namespace {

constexpr platform::Duration kDebugDisplay = platform::seconds(1);

void showNumber(const Notification& notification, const char* key, const char* title,
                const VideoCaptureOutlets::Label& label) {
  if (const auto* value = notification.value<float>(key)) {
    label->setText(title + shortestDecimal(*value));
  }
}

std::string realnessText(const corvana::RealnessScores& scores) {
  return "Photocopy Score: " + shortestDecimal(scores.photocopyScore) +
         "\nRealness Score: " + shortestDecimal(scores.realScore) +
         "\nScreen Score: " + shortestDecimal(scores.screenScore);
}

std::string topMatchesText(const std::vector<std::pair<std::string, float>>& results) {
  std::string text = "Top Matches:";
  int position = 0;
  for (const auto& [name, score] : results) {
    text += "\n - " + std::to_string(++position) + " " + name + ": " + shortestDecimal(score);
  }
  return text;
}

}  // namespace

void VideoCaptureViewController::selfieCaptureDebugData(const Notification& notification) {
  if (!notification.userInfo) return;
  outlets_.selfieDebugStackView->setHidden(false);
  hideLater(*outlets_.selfieDebugStackView);

  const auto* faceRect = notification.value<CGRect>("faceRect");
  const auto* fullSize = notification.value<CGSize>("fullSize");
  if (faceRect && fullSize) {
    platform::CALayer& layer = view().layer();
    corvana::removeShapeSublayers(layer);
    corvana::draw(layer,
                  corvana::aspectFill(*faceRect, *fullSize, environment().mainScreen.bounds.size()),
                  platform::colors::kYellow);
  }
  showNumber(notification, "faceLivenessScore",
             "Face Liveness Score: ", outlets_.faceLivenessScoreLabel);
  showNumber(notification, "leftEyeOpenProbability",
             "Left Eye Open Probability: ", outlets_.leftEyeOpenProbabilityLabel);
  showNumber(notification, "rightEyeOpenProbability",
             "Right Eye Open Probability: ", outlets_.rightEyeOpenProbabilityLabel);
  showNumber(notification, "faceMaskProbability",
             "Mask Detection Score: ", outlets_.maskDetectionScoreLabel);
}

void VideoCaptureViewController::idCaptureDebugData(const Notification& notification) {
  const auto* data = notification.value<DebugData>("debugData");
  if (!data || !data->fullSize) return;
  if (captureSession().captureMode() == CaptureMode::barcode) return;
  outlets_.idDebugStackView->setHidden(false);
  if (data->realnessScores) {
    outlets_.realnessScoresLabel->setText(realnessText(*data->realnessScores));
  }
  if (data->topClassifierResults) {
    outlets_.topMatchesLabel->setText(topMatchesText(*data->topClassifierResults));
  }
  hideLater(*outlets_.idDebugStackView);

  const CGSize screen = environment().mainScreen.bounds.size();
  platform::CALayer& layer = view().layer();
  corvana::removeShapeSublayers(layer);
  corvana::draw(layer, corvana::aspectFit(data->documentLocation, *data->fullSize, screen),
                platform::colors::kYellow);
  if (data->faceLocation) {
    corvana::draw(layer, corvana::aspectFit(*data->faceLocation, *data->fullSize, screen),
                  platform::colors::kPurple);
  }
}

void VideoCaptureViewController::idCaptureMode(const Notification& notification) {
  const auto* mode = notification.value<CaptureMode>("captureMode");
  if (mode && *mode != captureSession().captureMode()) captureSession().setCaptureMode(*mode);
}

void VideoCaptureViewController::hideLater(platform::UIStackView& stack) {
  if (debugTimer_) debugTimer_->invalidate();
  debugTimer_ =
      environment().runLoop.scheduledTimer(kDebugDisplay, false, [weak = weakSelf(), &stack] {
        const auto self = weak.lock();
        if (!self) return;
        stack.setHidden(true);
        corvana::removeShapeSublayers(self->view().layer());
        if (self->debugTimer_) self->debugTimer_->invalidate();
      });
}

}  // namespace corvana::capture
