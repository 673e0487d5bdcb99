#include <array>
#include <cstdio>
#include <utility>

#include "capture/TextMatching.h"
#include "capture/VideoCaptureViewController.h"

namespace corvana::capture {

using corvana::IDError;
using corvana::VideoCapture;

namespace {

constexpr platform::Duration kCountdownInterval = platform::seconds(1);
constexpr int kSecondsPerMinute = 60;

std::string minutesAndSeconds(int seconds) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%d:%02d", seconds / kSecondsPerMinute,
                seconds % kSecondsPerMinute);
  return text.data();
}

platform::NSAttributedString highlighted(const std::string& text,
                                         const std::vector<MatchRange>& ranges) {
  platform::NSAttributedString result{text, {}};
  for (const MatchRange& range : ranges)
    result.runs.push_back({range.location, range.length, platform::colors::kYellow});
  return result;
}

}  // namespace

void VideoCaptureViewController::startCountdownTimer() {
  invalidateCountdownTimer();
  countdownTimer_ = environment().runLoop.scheduledTimer(
      kCountdownInterval, true, [self = strongSelf()] { self->countdownTick(); });
}

void VideoCaptureViewController::countdownTick() {
  --countdownTimerSeconds_;
  if (countdownTimerSeconds_ < 0) return doneReadingText();
  showCountdown();
}

void VideoCaptureViewController::showCountdown() {
  outlets_.readingTextCountdownLabel->setText(minutesAndSeconds(countdownTimerSeconds_));
}

void VideoCaptureViewController::speechRecognition(
    const platform::SFSpeechRecognitionResult& result) {
  std::vector<std::string> words;
  for (const auto& segment : result.bestTranscription.segments)
    words.push_back(lowercased(segment.substring));
  if (!text) return;
  const SpokenWordMatch match = matchSpokenWords(words, *text);
  if (VideoCapture::options.isDebugMode) {
    outlets_.readingTextLabel->setAttributedText(highlighted(*text, match.ranges));
  }
  // A later, worse guess never lowers the share; neither does one that is not a number.
  if (wordMatchPercentage_ <= match.percentage) wordMatchPercentage_ = match.percentage;
}

void VideoCaptureViewController::speechRecognition(const IDError& error) {
  presentAlert("Speech Recognition Error", error.localizedDescription(),
               {"OK", platform::UIAlertAction::Style::cancel, nullptr});
}

void VideoCaptureViewController::doneReadingText() {
  invalidateCountdownTimer();
  const float threshold = VideoCapture::options.readTextWordMatchThreshold;
  const bool tooFew = wordMatchPercentage_ < threshold;
  noteDecision("spokenWords", wordMatchPercentage_, threshold, !tooFew);
  if (tooFew) return retry(RetryType::spokenText);
  if (!videoCapture_) return;
  videoCapture_->stopVideoWriter(
      [self = strongSelf()](const auto& film) { self->videoWriterStopped(film); });
}

void VideoCaptureViewController::videoWriterStopped(
    const tl::expected<corvana::FileURL, IDError>& film) {
  if (!film) return dismissDelivering(tl::unexpected(film.error()));
  if (!videoIdResultSelfie_) {
    return deliver(tl::unexpected(IDError("videoIdResultSelfie == nil")));
  }
  dismissDelivering(VideoIdResult{.videoURL = *film,
                                  .selfie = *videoIdResultSelfie_,
                                  .idToSelfieMatch = true,
                                  .idToIdPhotoMatch = true,
                                  .idFrontDataMatch = true,
                                  .idBackDataMatch = true});
}

void VideoCaptureViewController::dismissDelivering(Result result) {
  dismiss(true, [self = strongSelf(), result = std::move(result)] { self->deliver(result); });
}

void VideoCaptureViewController::setProgress(float progress) {
  const bool shown = progress > 0;
  outlets_.progressView->setHidden(!shown);
  outlets_.progressView->setProgress(progress, shown);
}

}  // namespace corvana::capture
