#include <utility>
#include <variant>

#include "capture/Bundle+Framework.h"
#include "capture/Overloaded.h"
#include "capture/PromptColors.h"
#include "capture/VideoCaptureViewController+IDCaptureDelegate.h"
#include "capture/VideoCaptureViewController.h"

namespace corvana::capture {

using corvana::CaptureMode;
using corvana::DetectedData;
using corvana::DocumentSide;
using corvana::IDCapture;
using corvana::IDCaptureState;
using corvana::PromptType;
using corvana::VideoCaptureMode;
using platform::UIImageRef;

namespace {

// How far the reading of a side has come, as a share of the bar.
constexpr float kBoxFound = 1.0F / 3;
constexpr float kRealBoxFound = 2.0F / 3;
constexpr float kTypeUnknown = 2.0F / 3;
constexpr float kTypeKnown = 5.0F / 6;

}  // namespace

UIImageRef frontOverlay(platform::Environment& environment) {
  if (const UIImageRef& image = IDCapture::images.frontSilhouetteImage) return image;
  return moduleBundle(environment).image("overlay_portrait_id_front");
}

UIImageRef backOverlay(platform::Environment& environment) {
  if (const UIImageRef& image = IDCapture::images.backSilhouetteImage) return image;
  return moduleBundle(environment).image("overlay_landscape_id_back");
}

void VideoCaptureViewController::update(const IDCaptureState& state) {
  environment().runLoop.mainQueue().async([self = strongSelf(), state] { self->handle(state); });
}

void VideoCaptureViewController::handle(const IDCaptureState& state) {
  if (showingFlipAnimation_) return;
  using State = IDCaptureState;
  const IDCapture::Strings& strings = IDCapture::strings;
  const auto giveUp = [this] {
    retry(RetryType::idCapture);
    setIDImage(nullptr);
  };
  const auto error = [this](const std::string& prompt) {
    showIDError(prompt);
    setIDImage(nullptr);
  };
  std::visit(
      Overloaded{
          [&](const State::DetectingBox&) { showDetectingBox(); },
          [&](const State::DetectedBox& box) { showDetectedBox(box.data); },
          [&](const State::ClassifiedDocument& card) { handleClassifiedDocument(card.data); },
          [&](const State::Success& side) { judgeSide(side.data); },
          [&](const State::TimedOut&) { giveUp(); },
          [&](const State::Failed&) { giveUp(); },
          [&](const State::Autofill&) { setIDImage(nullptr); },
          [&](const State::TooMuchGlare&) { error(strings.tooMuchGlare); },
          [&](const State::MoveCloser&) { error(strings.moveCloser); },
          [&](const State::MoveAway&) { error(strings.moveAway); },
          [&](const State::AlignRectangle&) { error(strings.alignRectangle); },
      },
      state.value);
}

void VideoCaptureViewController::showDetectingBox() {
  setIDImage(frontDetectedData_ ? backOverlay(environment()) : frontOverlay(environment()));
  outlets_.idOverlayLabelView->setHidden(true);
  outlets_.idFrameImageView->setTintColor(platform::colors::kWhite);
  setProgress(0);
}

void VideoCaptureViewController::showDetectedBox(const DetectedData& data) {
  showIDMessage(std::nullopt, PromptType::success, std::nullopt);
  // A box whose type is known keeps the progress that its classification has reached.
  if (!data.type) setProgress(data.isReal.value_or(false) ? kRealBoxFound : kBoxFound);
  setIDImage(nullptr);
}

void VideoCaptureViewController::handleClassifiedDocument(const DetectedData& data) {
  if (isUnexpected(data)) return;
  if (!frontDetectedData_ && data.side == DocumentSide::back) {
    showIDError(IDCapture::strings.useFront);
  } else {
    setProgress(data.type ? kTypeKnown : kTypeUnknown);
    promptForMissingFeature(data);
  }
  setIDImage(nullptr);
}

void VideoCaptureViewController::promptForMissingFeature(const DetectedData& data) {
  const IDCapture::Strings& strings = IDCapture::strings;
  const bool lacksPhoto = data.shouldHavePhoto && !data.isPhotoPresent;
  if (lacksPhoto || (data.shouldHaveMrz && !data.mrz)) {
    showIDError(strings.makeSurePhotoTextVisible);
  } else if (data.shouldHaveBarcode && !data.barcode) {
    if (captureSession().captureMode() == CaptureMode::barcode) {
      showIDMessage(strings.scanBarcode, PromptType::info, platform::colors::kClear);
    } else {
      showIDError(strings.makeSureBarcodeVisible);
    }
  }
}

void VideoCaptureViewController::showIDMessage(
    const std::optional<std::string>& message, PromptType type,
    const std::optional<platform::UIColor>& frameTintColor) {
  if (decisions_) decisions_->prompted(corvana::PromptPlace::card, type);
  if (frameTintColor == platform::colors::kClear) {
    for (const auto& bezel : outlets_.selfieOverlayBezels)
      bezel->setHidden(true);
  }
  const PromptColors colors = promptColors(type, IDCapture::colors);
  outlets_.idOverlayLabel->setTextColor(colors.text);
  if (const auto& font = IDCapture::fonts.labelFont) outlets_.idOverlayLabel->setFont(*font);
  outlets_.idOverlayLabel->setText(message);
  outlets_.idOverlayLabelView->setBackgroundColor(colors.background);
  outlets_.idOverlayLabelView->setHidden(!message);
  outlets_.idFrameImageView->setTintColor(frameTintColor.value_or(colors.background));
  view().setNeedsLayout();
}

void VideoCaptureViewController::showIDError(const std::string& message) {
  showIDMessage(message, PromptType::error, std::nullopt);
}

void VideoCaptureViewController::setIDImage(UIImageRef image) {
  idImage_ = std::move(image);
  idImageDidSet();
}

void VideoCaptureViewController::idImageDidSet() {
  outlets_.idImageView->setImage(idImage_);
  if (!videoCapture_ || videoCapture_->mode() != VideoCaptureMode::idCapture) return;
  if (idImage_ == frontOverlay(environment())) {
    outlets_.captureLabel->setText(IDCapture::strings.captureFront);
  } else if (idImage_ == backOverlay(environment())) {
    outlets_.captureLabel->setText(IDCapture::strings.captureBack);
  }
}

}  // namespace corvana::capture
