#include <algorithm>
#include <numeric>
#include <utility>

#include "capture/NumberText.h"
#include "capture/TextMatching.h"
#include "capture/VideoCaptureViewController.h"

namespace corvana::capture {

using corvana::DetectedData;
using corvana::DocumentSide;
using corvana::IDCapture;
using corvana::PromptType;
using corvana::VideoCapture;
using corvana::VideoCaptureMode;
using platform::Duration;
using platform::UIView;

namespace {

/// How long a card may fail to match before the user is told.
constexpr Duration kIDMismatchGrace = platform::seconds(3);
/// How long a card of another type is held back.
constexpr Duration kTypeMismatchLimit = platform::seconds(5);
constexpr Duration kOverlayFade = platform::seconds(0.5);
constexpr std::size_t kFrontSuffixLength = 6;  // "_FRONT"

std::string joined(const std::vector<std::string>& lines) {
  return std::accumulate(lines.begin(), lines.end(), std::string());
}

/// The share of characters that differ; not a number when both texts are empty.
double textDifference(const std::vector<std::string>& given, const std::vector<std::string>& live) {
  const std::string givenText = joined(given);
  const std::string liveText = joined(live);
  const auto longer = std::max(characterCount(givenText), characterCount(liveText));
  return levenshteinDistance(givenText, liveText) / static_cast<double>(longer);
}

std::string mismatchText(bool faceMatches, bool textMatches) {
  std::string text;
  if (!faceMatches) text = VideoCapture::strings.faceDoesNotMatch + "\n";
  if (!textMatches) text += VideoCapture::strings.idDoesNotMatch;
  return textMatches ? trimmed(text) : text;
}

}  // namespace

void VideoCaptureViewController::judgeSide(const DetectedData& data) {
  if (!data.ocrStrings) return;
  outlets_.realnessScoresLabel->setText("Face Distance:");
  outlets_.topMatchesLabel->setText("Levenshtein:");
  if (frontDetectedData_) {
    judgeBack(data);
  } else {
    judgeFront(data);
  }
}

void VideoCaptureViewController::judgeFront(const DetectedData& data) {
  const bool faceMatches = frontFaceMatches(data);
  if (!idValidationFront || !idValidationFront->ocrStrings) return;
  const bool sameText = textMatches("frontText", *idValidationFront->ocrStrings, *data.ocrStrings,
                                    VideoCapture::options.frontLevenshteinThreshold);
  if (faceMatches && sameText) {
    acceptFront(data);
  } else {
    showIDMismatch(mismatchText(faceMatches, sameText));
  }
}

void VideoCaptureViewController::judgeBack(const DetectedData& data) {
  bool matches = false;
  if (idValidationBack && idValidationBack->mrz) {
    matches = data.mrz == idValidationBack->mrz;
    noteDecision("backMrz", std::nullopt, std::nullopt, matches);
  } else {
    if (!idValidationBack || !idValidationBack->ocrStrings) return;
    matches = textMatches("backText", *idValidationBack->ocrStrings, *data.ocrStrings,
                          VideoCapture::options.backLevenshteinThreshold);
  }
  if (matches) {
    acceptBack(data);
  } else {
    showIDMismatch(VideoCapture::strings.idDoesNotMatch);
  }
}

bool VideoCaptureViewController::frontFaceMatches(const DetectedData& data) {
  if (!idValidationFront || !idValidationFront->faceImage) return true;  // nothing to compare
  const float threshold = VideoCapture::options.idToIdPhotoMatchThreshold;
  std::optional<FaceMatchResult> match;
  if (data.faceImage) {
    match = faceMatchDetector_.faceMatch(data.faceImage, idValidationFront->faceImage, threshold);
  }
  const bool matches = match && match->isMatched;
  outlets_.realnessScoresLabel->setText("Face Distance: " +
                                        (match ? shortestDecimal(match->distance) : "None Found!"));
  noteDecision("frontFace", match ? std::optional<double>(match->distance) : std::nullopt,
               threshold, matches);
  return matches;
}

bool VideoCaptureViewController::textMatches(const char* decision,
                                             const std::vector<std::string>& given,
                                             const std::vector<std::string>& live,
                                             float threshold) {
  const double difference = textDifference(given, live);
  outlets_.topMatchesLabel->setText("Levenshtein: " + shortestDecimal(difference));
  // Written so that two empty texts, whose difference is not a number, match.
  const bool matches = !(static_cast<double>(threshold) < difference);
  noteDecision(decision, difference, threshold, matches);
  return matches;
}

void VideoCaptureViewController::acceptFront(const DetectedData& data) {
  environment().systemSounds.play(platform::kSystemSoundVibrate);
  frontDetectedData_ = data;
  firstIdDoesNotMatchTime_.reset();
  if (idValidationBack) {
    showFlipAnimation();
  } else {
    handOverToReadingText();
  }
}

void VideoCaptureViewController::acceptBack(const DetectedData& data) {
  environment().systemSounds.play(platform::kSystemSoundVibrate);
  backDetectedData_ = data;
  handOverToReadingText();
}

void VideoCaptureViewController::showIDMismatch(const std::string& message) {
  const auto now = environment().runLoop.now();
  if (!firstIdDoesNotMatchTime_) firstIdDoesNotMatchTime_ = now;
  if (now - *firstIdDoesNotMatchTime_ > kIDMismatchGrace) {
    showIDError(message);
  } else {
    showIDMessage(std::nullopt, PromptType::success, std::nullopt);
  }
}

void VideoCaptureViewController::handOverToReadingText() {
  startAudioCaptureSession();
  outlets_.captureLabel->setText("Read Text");
  if (videoCapture_) videoCapture_->setMode(VideoCaptureMode::readingText);
  UIView::animate(
      environment(), kOverlayFade,
      [this] {
        outlets_.idOverlayView->setAlpha(0);
        outlets_.readingTextOverlayView->setAlpha(1);
      },
      [self = strongSelf()] { self->startCountdownTimer(); });
  setIDImage(nullptr);
}

bool VideoCaptureViewController::isUnexpected(const DetectedData& data) {
  if (!frontDetectedData_) {
    typeMismatchStartTime_.reset();
    return false;
  }
  if (!frontDetectedData_->type || !data.type) return false;
  if (!compareWithFrontsType(*data.type)) {
    showIDError(IDCapture::strings.frontBackMismatch);
    const auto now = environment().runLoop.now();
    if (!typeMismatchStartTime_) typeMismatchStartTime_ = now;
    if (now - *typeMismatchStartTime_ > kTypeMismatchLimit) return false;
    if (videoCapture_) videoCapture_->typeMismatch();
    return true;
  }
  if (data.side == DocumentSide::front) {
    showFlipAnimation();
    return true;
  }
  typeMismatchStartTime_.reset();
  return false;
}

bool VideoCaptureViewController::compareWithFrontsType(const std::string& type) const {
  const bool same = hasPrefixDroppingLast(type, *frontDetectedData_->type, kFrontSuffixLength);
  noteDecision("documentType", std::nullopt, std::nullopt, same);
  return same;
}

}  // namespace corvana::capture
