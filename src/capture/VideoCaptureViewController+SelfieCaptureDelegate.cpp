#include <utility>
#include <variant>

#include "capture/Overloaded.h"
#include "capture/PromptColors.h"
#include "capture/VideoCaptureViewController+SelfieCaptureDelegate.h"
#include "capture/VideoCaptureViewController.h"
#include "corvana/Geometry.h"

namespace corvana::capture {

using corvana::IDCapture;
using corvana::PromptType;
using corvana::Selfie;
using corvana::SelfieCapture;
using corvana::SelfieCaptureState;
using corvana::VideoCapture;
using corvana::VideoCaptureMode;
using platform::CAShapeLayer;
using platform::CGRect;
using platform::CGSize;
using platform::Duration;
using platform::UIView;

namespace {

/// How long a face may fail to match before the user is told.
constexpr Duration kFaceMismatchGrace = platform::seconds(3);
constexpr Duration kOverlayFade = platform::seconds(0.5);
/// A face is narrower than it is tall.
constexpr double kEllipseWidthPerHeight = 0.75;
constexpr double kEllipseLineWidth = 3;

/// A vertical ellipse's box, centred on the box of a face.
CGRect ellipseBox(const CGRect& face) {
  const double width = face.height * kEllipseWidthPerHeight;
  return {face.minX() + (face.width - width) * 0.5, face.minY(), width, face.height};
}

std::shared_ptr<CAShapeLayer> ellipse(const CGRect& box) {
  auto shape = std::make_shared<CAShapeLayer>();
  shape->path = CAShapeLayer::Path::ellipse;
  shape->pathRect = box;
  shape->strokeColor = platform::colors::kGreen;
  shape->fillColor = platform::colors::kClear;
  shape->lineWidth = kEllipseLineWidth;
  return shape;
}

}  // namespace

CGRect mirrored(const CGRect& rect, const CGSize& size) {
  const double half = size.width * 0.5;
  CGRect result = rect;
  if (rect.midX() < half) {
    result.x = half + (half - rect.midX()) - rect.width * 0.5;
  } else if (rect.midX() > half) {
    result.x = half - (rect.midX() - half) - rect.width * 0.5;
  }
  return result;
}

void VideoCaptureViewController::update(const SelfieCaptureState& state) {
  environment().runLoop.mainQueue().async([self = strongSelf(), state] { self->handle(state); });
}

void VideoCaptureViewController::handle(const SelfieCaptureState& state) {
  using State = SelfieCaptureState;
  const SelfieCapture::Strings& strings = SelfieCapture::strings;
  const auto error = [this](const std::string& prompt) {
    showSelfieMessage(prompt, PromptType::error);
  };
  std::visit(Overloaded{
                 [&](const State::DetectedIssue& issue) { error(issue.message); },
                 [&](const State::Success& success) { judgeSelfie(success.selfie); },
                 [&](const State::TimedOut&) { retry(RetryType::selfieCapture); },
                 [&](const State::Failed&) { retry(RetryType::selfieCapture); },
                 [&](const State::DetectingFace&) {
                   outlets_.selfieOverlayLabelView->setHidden(true);
                   outlets_.selfieOverlayImageView->setTintColor(platform::colors::kWhite);
                 },
                 [&](const State::MultipleFacesDetected&) { error(strings.multipleFacesDetected); },
                 [&](const State::MoveCloser&) { error(strings.moveCloser); },
                 [&](const State::MoveAway&) { error(strings.moveAway); },
                 [&](const State::AlignFace&) { error(strings.alignOval); },
                 [&](const State::CapturingFace&) {
                   showSelfieMessage(strings.capturingFace, PromptType::success);
                 },
             },
             state.value);
}

void VideoCaptureViewController::judgeSelfie(const Selfie& selfie) {
  if (compareWithReference(selfie)) {
    acceptSelfie(selfie);
  } else {
    showFaceMismatch();
  }
}

bool VideoCaptureViewController::compareWithReference(const Selfie& selfie) {
  if (!idValidationFront || !idValidationFront->faceImage) return false;
  const float threshold = VideoCapture::options.idToSelfieMatchThreshold;
  const auto match =
      faceMatchDetector_.faceMatch(selfie.faceImage, idValidationFront->faceImage, threshold);
  const bool matched = match && match->isMatched;
  noteDecision("selfieFace", match ? std::optional<double>(match->distance) : std::nullopt,
               threshold, matched);
  return matched;
}

void VideoCaptureViewController::acceptSelfie(const Selfie& selfie) {
  videoIdResultSelfie_ = selfie;
  environment().systemSounds.play(platform::kSystemSoundVibrate);
  showSelfieMessage(SelfieCapture::strings.realFace, PromptType::success);
  if (videoCapture_) videoCapture_->setMode(VideoCaptureMode::idCapture);
  outlets_.captureLabel->setText(IDCapture::strings.captureFront);
  UIView::animate(environment(), kOverlayFade, [this] {
    outlets_.selfieOverlayView->setAlpha(0);
    outlets_.idOverlayView->setAlpha(1);
  });
}

void VideoCaptureViewController::showFaceMismatch() {
  const auto now = environment().runLoop.now();
  if (!firstFaceDoesNotMatchTime_) firstFaceDoesNotMatchTime_ = now;
  if (now - *firstFaceDoesNotMatchTime_ > kFaceMismatchGrace) {
    showSelfieMessage(VideoCapture::strings.faceDoesNotMatch, PromptType::error);
  } else {
    showSelfieMessage(SelfieCapture::strings.capturingFace, PromptType::success);
  }
}

void VideoCaptureViewController::showSelfieMessage(const std::optional<std::string>& message,
                                                   PromptType type) {
  if (decisions_) decisions_->prompted(corvana::PromptPlace::face, type);
  const PromptColors colors = promptColors(type, SelfieCapture::colors);
  outlets_.selfieOverlayLabel->setTextColor(colors.text);
  if (const auto& font = SelfieCapture::fonts.labelFont)
    outlets_.selfieOverlayLabel->setFont(*font);
  outlets_.selfieOverlayLabelView->setBackgroundColor(colors.background);
  outlets_.selfieOverlayLabel->setText(message);
  outlets_.selfieOverlayLabelView->setHidden(!message);
  outlets_.selfieOverlayImageView->setTintColor(colors.background);
  view().setNeedsLayout();
}

void VideoCaptureViewController::foundLiveFace(const std::optional<CGRect>& frame,
                                               const CGSize& fullSize, VideoCaptureMode mode) {
  environment().runLoop.mainQueue().async(
      [self = strongSelf(), frame, fullSize, mode] { self->showLiveFace(frame, fullSize, mode); });
}

void VideoCaptureViewController::showLiveFace(const std::optional<CGRect>& frame,
                                              const CGSize& fullSize, VideoCaptureMode mode) {
  if (!frame || mode == VideoCaptureMode::liveFaceLost) return retry(RetryType::liveFaceLost);
  if (!faceEllipseLayer_->superlayer()) view().layer().addSublayer(faceEllipseLayer_);
  const CGSize screen = environment().mainScreen.bounds.size();
  const CGRect face = corvana::aspectFill(*frame, fullSize, screen);
  const auto shape = ellipse(mirrored(ellipseBox(face), screen));
  corvana::removeShapeSublayers(*faceEllipseLayer_);
  faceEllipseLayer_->addSublayer(shape);
}

}  // namespace corvana::capture
