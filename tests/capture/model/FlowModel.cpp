#include "FlowModel.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "capture/NumberText.h"
#include "capture/TextMatching.h"
#include "corvana/Geometry.h"
#include "corvana/StateNames.h"

namespace tests {

using capture::RetryType;
using corvana::CaptureMode;
using corvana::DocumentSide;
using corvana::IDCapture;
using corvana::IDCaptureState;
using corvana::SelfieCapture;
using corvana::SelfieCaptureState;
using corvana::VideoCapture;
using corvana::VideoCaptureMode;
using platform::UIColor;
namespace colors = platform::colors;

namespace {

constexpr const char* kFrontSilhouette = "overlay_portrait_id_front";
constexpr const char* kBackSilhouette = "overlay_landscape_id_back";

std::string join(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines)
    text += line;
  return text;
}

}  // namespace

// ---- The face

void FlowModel::update(const SelfieCaptureState& state) {
  later(0, [state](FlowModel& model) { model.see(state); });
}

void FlowModel::see(const SelfieCaptureState& state) {
  const auto& strings = SelfieCapture::strings;
  const std::map<std::string, std::string> advice = {
      {"multipleFacesDetected", strings.multipleFacesDetected},
      {"selfieMoveCloser", strings.moveCloser},
      {"selfieMoveAway", strings.moveAway},
      {"alignFace", strings.alignOval}};
  const std::string name = corvana::nameOf(state);
  if (advice.contains(name)) return promptFace(advice.at(name), Type::error);
  if (name == "capturingFace") return promptFace(strings.capturingFace, Type::success);
  if (name == "selfieTimedOut" || name == "selfieFailed") return retry(RetryType::selfieCapture);
  if (const auto* issue = std::get_if<SelfieCaptureState::DetectedIssue>(&state.value))
    return promptFace(issue->message, Type::error);
  if (const auto* success = std::get_if<SelfieCaptureState::Success>(&state.value))
    return seeSelfie(success->selfie);
  sight_.face.hidden = true;
  sight_.oval = colors::kWhite;
}

void FlowModel::seeSelfie(const corvana::Selfie& selfie) {
  const auto photo = idValidationFront ? idValidationFront->faceImage : nullptr;
  const auto distance = photo ? distance_(selfie.faceImage, photo) : std::nullopt;
  if (distance && *distance <= VideoCapture::options.idToSelfieMatchThreshold) {
    selfie_ = selfie;
    environment().systemSounds.play(4095);
    promptFace(SelfieCapture::strings.realFace, Type::success);
    if (recorder_) recorder_->setMode(VideoCaptureMode::idCapture);
    sight_.caption = IDCapture::strings.captureFront;
    return showOverlays(0, 1, sight_.readingAlpha);
  }
  if (isOver(wrongFaceSince_, 3)) {
    promptFace(VideoCapture::strings.faceDoesNotMatch, Type::error);
  } else {
    promptFace(SelfieCapture::strings.capturingFace, Type::success);
  }
}

void FlowModel::foundLiveFace(const std::optional<platform::CGRect>& frame,
                              const platform::CGSize& fullSize, VideoCaptureMode mode) {
  later(0, [frame, fullSize, mode](FlowModel& model) {
    if (!frame || mode == VideoCaptureMode::liveFaceLost)
      return model.retry(RetryType::liveFaceLost);
    const platform::CGSize screen = model.environment().mainScreen.bounds.size();
    const auto face = corvana::aspectFill(*frame, fullSize, screen);
    const double width = face.height * 3 / 4;
    model.sight_.ellipse = {screen.width - face.midX() - width / 2, face.minY(), width,
                            face.height};
  });
}

// ---- The card

void FlowModel::update(const IDCaptureState& state) {
  later(0, [state](FlowModel& model) { model.see(state); });
}

void FlowModel::see(const IDCaptureState& state) {
  if (flipping_) return;
  const auto& strings = IDCapture::strings;
  const std::map<std::string, std::string> advice = {{"tooMuchGlare", strings.tooMuchGlare},
                                                     {"idMoveCloser", strings.moveCloser},
                                                     {"idMoveAway", strings.moveAway},
                                                     {"alignRectangle", strings.alignRectangle}};
  const std::string name = corvana::nameOf(state);
  if (const auto* success = std::get_if<IDCaptureState::Success>(&state.value))
    return seeSide(success->data);
  if (const auto* classified = std::get_if<IDCaptureState::ClassifiedDocument>(&state.value))
    return seeClassified(classified->data);
  if (name == "detectingBox") {
    sight_.card.hidden = true;
    sight_.frame = colors::kWhite;
    progress(0);
    return silhouette(front_ ? kBackSilhouette : kFrontSilhouette);
  }
  if (const auto* box = std::get_if<IDCaptureState::DetectedBox>(&state.value)) {
    promptCard({}, Type::success);
    if (!box->data.type) progress(box->data.isReal == true ? 2.0F / 3 : 1.0F / 3);
  }
  if (advice.contains(name)) promptCard(advice.at(name), Type::error);
  if (name == "idTimedOut" || name == "idFailed") retry(RetryType::idCapture);
  silhouette("");
}

void FlowModel::seeClassified(const Data& data) {
  const auto& strings = IDCapture::strings;
  if (!front_) wrongTypeSince_.reset();
  if (front_ && front_->type && data.type) {
    const std::string family = front_->type->substr(0, front_->type->size() - 6);
    if (!data.type->starts_with(family)) {
      promptCard(strings.frontBackMismatch, Type::error);
      if (!isOver(wrongTypeSince_, 5)) {
        if (recorder_) recorder_->typeMismatch();
        return;
      }
    } else if (data.side == DocumentSide::front) {
      return flip();
    } else {
      wrongTypeSince_.reset();
    }
  }
  silhouette("");
  if (!front_ && data.side == DocumentSide::back) return promptCard(strings.useFront, Type::error);
  progress(data.type ? 5.0F / 6 : 2.0F / 3);
  const bool lacksBarcode = data.shouldHaveBarcode && !data.barcode;
  if ((data.shouldHavePhoto && !data.isPhotoPresent) || (data.shouldHaveMrz && !data.mrz)) {
    promptCard(strings.makeSurePhotoTextVisible, Type::error);
  } else if (lacksBarcode && captureSession().captureMode() == CaptureMode::barcode) {
    promptCard(strings.scanBarcode, Type::info, colors::kClear);
    sight_.bezelsHidden = true;
  } else if (lacksBarcode) {
    promptCard(strings.makeSureBarcodeVisible, Type::error);
  }
}

void FlowModel::seeSide(const Data& data) {
  if (!data.ocrStrings) return;
  sight_.realness = "Face Distance:";
  sight_.topMatches = "Levenshtein:";
  std::string complaint = VideoCapture::strings.idDoesNotMatch;
  const auto matches = front_ ? backMatches(data) : frontMatches(data, complaint);
  if (!matches) return;
  if (!*matches) {
    return isOver(wrongCardSince_, 3) ? promptCard(complaint, Type::error)
                                      : promptCard({}, Type::success);
  }
  environment().systemSounds.play(4095);
  if (front_) return startReading();
  front_ = data;
  wrongCardSince_.reset();
  idValidationBack ? flip() : startReading();
}

std::optional<bool> FlowModel::frontMatches(const Data& data, std::string& complaint) {
  bool face = true;
  if (idValidationFront->faceImage) {
    const auto distance =
        data.faceImage ? distance_(data.faceImage, idValidationFront->faceImage) : std::nullopt;
    face = distance && *distance <= VideoCapture::options.idToIdPhotoMatchThreshold;
    sight_.realness =
        "Face Distance: " + (distance ? capture::shortestDecimal(*distance) : "None Found!");
  }
  if (!idValidationFront->ocrStrings) return {};
  const bool same =
      textMatches(*idValidationFront, data, VideoCapture::options.frontLevenshteinThreshold);
  const std::string& otherFace = VideoCapture::strings.faceDoesNotMatch;
  if (!face) complaint = same ? otherFace : otherFace + "\n" + complaint;
  return face && same;
}

std::optional<bool> FlowModel::backMatches(const Data& data) {
  if (!idValidationBack) return {};
  if (idValidationBack->mrz) return data.mrz == idValidationBack->mrz;
  if (!idValidationBack->ocrStrings) return {};
  return textMatches(*idValidationBack, data, VideoCapture::options.backLevenshteinThreshold);
}

bool FlowModel::textMatches(const Data& given, const Data& live, float threshold) {
  const std::string a = join(*given.ocrStrings);
  const std::string b = join(*live.ocrStrings);
  const double share =
      capture::levenshteinDistance(a, b) / static_cast<double>(std::max(a.size(), b.size()));
  sight_.topMatches = "Levenshtein: " + capture::shortestDecimal(share);
  return std::isnan(share) || share <= static_cast<double>(threshold);
}

void FlowModel::flip() {
  captureSession().setCaptureMode(IDCapture::options.capture4K ? CaptureMode::high
                                                               : CaptureMode::standard);
  flipping_ = true;
  silhouette(kFrontSilhouette);
  promptCard(IDCapture::strings.flipToBack, Type::info, colors::kWhite);
  progress(1);
  later(0.5, [](FlowModel& model) {
    model.silhouette(kBackSilhouette);
    model.later(1, [](FlowModel& turned) {
      turned.later(0.5, [](FlowModel& done) {
        done.flipping_ = false;
        done.sight_.card.hidden = true;
        done.sight_.frame = colors::kWhite;
        done.progress(0);
        done.sight_.realness = "Realness Scores:";
        done.sight_.topMatches = "Top Matches:";
      });
    });
  });
}

// ---- The text

void FlowModel::startReading() {
  startMicrophone();
  sight_.caption = "Read Text";
  if (recorder_) recorder_->setMode(VideoCaptureMode::readingText);
  showOverlays(sight_.selfieAlpha, 0, 1);
  platform::UIView::animate(environment(), platform::seconds(0.5),
                            [this] { readingOverlay_->setAlpha(1); });
  later(0.5, [](FlowModel& model) {
    model.stopCountdown();
    model.countdown_ = model.environment().runLoop.scheduledTimer(
        platform::seconds(1), true, [self = model.self()] { self->tick(); });
  });
  silhouette("");
}

void FlowModel::tick() {
  if (--secondsLeft_ < 0) return finish();
  showCountdown();
}

void FlowModel::speechRecognition(const platform::SFSpeechRecognitionResult& result) {
  if (!text) return;
  std::vector<std::string> words;
  for (const auto& segment : result.bestTranscription.segments)
    words.push_back(capture::lowercased(segment.substring));
  const auto match = capture::matchSpokenWords(words, *text);
  if (VideoCapture::options.isDebugMode) {
    sight_.reading = text;
    sight_.highlights.clear();
    for (const auto& range : match.ranges)
      sight_.highlights.push_back({range.location, range.length, colors::kYellow});
  }
  if (match.percentage > heard_) heard_ = match.percentage;
}

void FlowModel::speechRecognition(const corvana::IDError& error) {
  alert("Speech Recognition Error", error.localizedDescription(),
        {"OK", platform::UIAlertAction::Style::cancel, nullptr});
}

void FlowModel::finish() {
  stopCountdown();
  if (heard_ < VideoCapture::options.readTextWordMatchThreshold)
    return retry(RetryType::spokenText);
  if (!recorder_) return;
  recorder_->stopVideoWriter([self = self()](const auto& film) {
    if (!film) return self->dismissWith(tl::unexpected(film.error()));
    if (!self->selfie_) {
      return self->answer(tl::unexpected(corvana::IDError("videoIdResultSelfie == nil")));
    }
    self->dismissWith(capture::VideoIdResult{*film, *self->selfie_, true, true, true, true});
  });
}

// ---- The end, and another try

void FlowModel::stopCountdown() {
  if (const auto timer = std::exchange(countdown_, nullptr)) timer->invalidate();
}

void FlowModel::close() {
  stopCountdown();
  dismissWith(tl::unexpected(corvana::IDError(corvana::IDError::Strings::canceled)));
}

void FlowModel::dismissWith(tl::expected<capture::VideoIdResult, corvana::IDError> result) {
  dismiss(true, [self = self(), result] { self->answer(result); });
}

void FlowModel::answer(const tl::expected<capture::VideoIdResult, corvana::IDError>& result) {
  if (const auto completion = std::exchange(videoIdCompletion, nullptr)) completion(result);
}

void FlowModel::retry(RetryType type) {
  stopCountdown();
  const auto screen = std::dynamic_pointer_cast<capture::VideoRetryViewController>(
      storyboard()->instantiateViewController("VideoRetryViewController"));
  if (screen) {
    screen->type = type;
    screen->setModalPresentationStyle(platform::UIModalPresentationStyle::fullScreen);
    screen->retryCompletion = [weak = weak()](bool again) {
      const auto self = weak.lock();
      if (!self) return;
      if (!again) return self->close();
      self->sight_.ellipse.reset();
      if (self->recorder_) self->recorder_->retry();
    };
    present(screen, true);
  }
  sight_.ellipse.reset();
  showOverlays(1, 0, 0);
  readingOverlay_->setAlpha(0);
  secondsLeft_ = VideoCapture::options.readTextCountdownSeconds;
  showCountdown();
  flipping_ = false;
  silhouette(kFrontSilhouette);
  update(SelfieCaptureState{SelfieCaptureState::DetectingFace{}});
  update(IDCaptureState{IDCaptureState::DetectingBox{}});
  front_.reset();
  wrongFaceSince_ = wrongCardSince_ = wrongTypeSince_ = {};
  sight_.caption = SelfieCapture::strings.captureSelfie;
  sight_.reading = text;
  sight_.highlights.clear();
  heard_ = 0;
  if (recorder_) recorder_->stopVideoWriter(nullptr);
}

// ---- What the user sees

namespace {

void colour(Prompt& prompt, corvana::PromptType type, const corvana::Colors& table) {
  using corvana::PromptType;
  prompt.textColor = colors::kWhite;
  prompt.background = colors::kGray;
  if (type == PromptType::success) {
    prompt.textColor = table.successLabelTextColor.value_or(colors::kWhite);
    prompt.background = table.successLabelBackgroundColor.value_or(
        corvana::CaptureSessionViewController::greenColor);
  } else if (type == PromptType::error) {
    prompt.textColor = table.errorLabelTextColor.value_or(colors::kWhite);
    prompt.background = table.errorLabelBackgroundColor.value_or(colors::kRed);
  }
}

}  // namespace

void FlowModel::promptFace(std::optional<std::string> message, Type type) {
  colour(sight_.face, type, SelfieCapture::colors);
  sight_.face.hidden = !message;
  sight_.face.text = std::move(message);
  sight_.oval = sight_.face.background;
}

void FlowModel::promptCard(std::optional<std::string> message, Type type,
                           std::optional<UIColor> frame) {
  colour(sight_.card, type, IDCapture::colors);
  sight_.card.hidden = !message;
  sight_.card.text = std::move(message);
  sight_.frame = frame.value_or(sight_.card.background);
}

void FlowModel::silhouette(const std::string& name) {
  sight_.silhouette = name;
  if (!recorder_ || recorder_->mode() != VideoCaptureMode::idCapture) return;
  if (name == kFrontSilhouette) sight_.caption = IDCapture::strings.captureFront;
  if (name == kBackSilhouette) sight_.caption = IDCapture::strings.captureBack;
}

void FlowModel::progress(float share) {
  sight_.progress = share;
  sight_.progressHidden = share == 0;
}

void FlowModel::showOverlays(double selfie, double card, double reading) {
  sight_.selfieAlpha = selfie;
  sight_.cardAlpha = card;
  sight_.readingAlpha = reading;
}

void FlowModel::showDebug(bool Sight::*hidden, int outlines) {
  sight_.*hidden = false;
  sight_.outlines = outlines;
  if (debugTimer_) debugTimer_->invalidate();
  debugTimer_ =
      environment().runLoop.scheduledTimer(platform::seconds(1), false, [weak = weak(), hidden] {
        const auto self = weak.lock();
        if (!self) return;
        self->sight_.*hidden = true;
        self->sight_.outlines = 0;
      });
}

void FlowModel::showCountdown() {
  const int seconds = secondsLeft_ % 60;
  sight_.countdown =
      std::to_string(secondsLeft_ / 60) + (seconds < 10 ? ":0" : ":") + std::to_string(seconds);
}

bool FlowModel::isOver(Clock& clock, double limit) {
  const auto now = environment().runLoop.now();
  if (!clock) clock = now;
  return now - *clock > platform::seconds(limit);
}

void FlowModel::later(double delay, std::function<void(FlowModel&)> step) {
  auto& main = environment().runLoop.mainQueue();
  const auto run = [self = self(), step = std::move(step)] { step(*self); };
  delay > 0 ? main.asyncAfter(platform::seconds(delay), run) : main.async(run);
}

}  // namespace tests
