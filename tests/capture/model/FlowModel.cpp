#include "FlowModel.h"

#include <algorithm>
#include <utility>

#include "Judgement.h"
#include "capture/ControllerFactories.h"

namespace corvana::tests {

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

template <class Kind, class State>
bool is(const State& state) {
  return std::holds_alternative<Kind>(state.value);
}

}  // namespace

FlowModel::FlowModel(platform::Environment& environment, corvana::HostFactories& host,
                     SameFace sameFace)
    : CaptureSessionViewController(environment, host),
      sameFace_(std::move(sameFace)),
      secondsLeft_(VideoCapture::options.readTextCountdownSeconds) {}

platform::ControllerFactories FlowModel::factories(corvana::HostFactories& host,
                                                   const SameFace& sameFace) {
  auto factories = capture::controllerFactories(host);
  factories["VideoCaptureViewController"] = [&host, sameFace](auto& environment) {
    return std::make_shared<FlowModel>(environment, host, sameFace);
  };
  return factories;
}

void FlowModel::declareOutlets(platform::OutletBinder& binder) {
  binder.outlet("readingTextOverlayView", readingOverlay_);
  binder.action("close", [this] { close(); });
  binder.action("doneReadingText", [this] { finish(); });
}

void FlowModel::viewDidLoad() {
  sight_ = sightOf(view());  // as the storyboard has it
  sight_["selfieOverlayView"] = kHidden;
  sight_["readingTextLabel"] = *text;
  sight_["captureLabel"] = SelfieCapture::strings.captureSelfie;
  showCountdown();
}

void FlowModel::viewDidAppear(bool) {
  if (!recorder_) {
    recorder_ = host().makeVideoCapture({}, {}, {}, {});
    if (!recorder_) return;
    recorder_->setDelegate(self());
    auto* speech = recorder_->speechRecognizer();
    if (!speech || !speech->isAvailable())
      return alert("Error", "Speech Recognition Is Not Available");
    speech->setDelegate(self());
    speech->start();
  }
  const bool high = SelfieCapture::options.capture4K || IDCapture::options.capture4K;
  if (high && captureSession().captureMode() == CaptureMode::standard)
    captureSession().setCaptureMode(CaptureMode::high);
}

void FlowModel::viewWillDisappear(bool) {
  if (recorder_ && recorder_->speechRecognizer()) recorder_->speechRecognizer()->stop();
}

void FlowModel::captureSessionDidStartRunning() {
  later(0, [](FlowModel& model) {
    auto& overlay = model.sight_["selfieOverlayView"];
    if (overlay == kHidden) overlay = std::to_string(1.0);
  });
}

// ---- The face

void FlowModel::update(const SelfieCaptureState& state) {
  later(0, [state](FlowModel& model) { model.see(state); });
}

void FlowModel::see(const SelfieCaptureState& state) {
  using State = SelfieCaptureState;
  const auto& strings = SelfieCapture::strings;
  if (is<State::TimedOut>(state) || is<State::Failed>(state))
    return retry(RetryType::selfieCapture);
  if (const auto* success = std::get_if<State::Success>(&state.value))
    return seeSelfie(success->selfie);
  if (is<State::DetectingFace>(state)) {
    sight_["selfieOverlayLabel"] = kHidden;
    sight_["selfieOverlayImageView"] = inWords(colors::kWhite);
  }
  if (is<State::CapturingFace>(state)) promptFace(strings.capturingFace, Type::success);
  if (is<State::MultipleFacesDetected>(state))
    promptFace(strings.multipleFacesDetected, Type::error);
  if (is<State::MoveCloser>(state)) promptFace(strings.moveCloser, Type::error);
  if (is<State::MoveAway>(state)) promptFace(strings.moveAway, Type::error);
  if (is<State::AlignFace>(state)) promptFace(strings.alignOval, Type::error);
  if (const auto* issue = std::get_if<State::DetectedIssue>(&state.value))
    promptFace(issue->message, Type::error);
}

void FlowModel::seeSelfie(const corvana::Selfie& selfie) {
  const auto photo = idValidationFront->faceImage;
  const bool anyWillDo = VideoCapture::options.idToSelfieMatchThreshold >= 2;
  const auto same = photo ? sameFace_(selfie.faceImage, photo) : std::nullopt;
  if (same && (*same || anyWillDo)) {
    selfie_ = selfie;
    environment().systemSounds.play(4095);
    promptFace(SelfieCapture::strings.realFace, Type::success);
    if (recorder_) recorder_->setMode(VideoCaptureMode::idCapture);
    sight_["captureLabel"] = IDCapture::strings.captureFront;
    sight_["selfieOverlayView"] = std::to_string(0.0);
    sight_["idOverlayView"] = std::to_string(1.0);
  } else if (isOver(wrongFaceSince_, 3)) {
    promptFace(VideoCapture::strings.faceDoesNotMatch, Type::error);
  } else {
    promptFace(SelfieCapture::strings.capturingFace, Type::success);
  }
}

void FlowModel::foundLiveFace(const std::optional<platform::CGRect>& frame, const platform::CGSize&,
                              VideoCaptureMode mode) {
  later(0, [frame, mode](FlowModel& model) {
    if (!frame || mode == VideoCaptureMode::liveFaceLost)
      return model.retry(RetryType::liveFaceLost);
    // A square picture of 1000 fills the screen of 360 by 640 up to its height, and is mirrored.
    const double middle = 360 - ((frame->x + frame->width / 2) * 0.64 - 140);
    const double height = frame->height * 0.64;
    model.sight_["ellipse"] =
        inWords(platform::CGRect{middle - height * 0.375, frame->y * 0.64, height * 0.75, height});
  });
}

// ---- The card

void FlowModel::update(const IDCaptureState& state) {
  later(0, [state](FlowModel& model) { model.see(state); });
}

void FlowModel::see(const IDCaptureState& state) {
  using State = IDCaptureState;
  if (flipping_) return;
  const auto& strings = IDCapture::strings;
  if (const auto* success = std::get_if<State::Success>(&state.value))
    return seeSide(success->data);
  if (const auto* classified = std::get_if<State::ClassifiedDocument>(&state.value))
    return seeClassified(classified->data);
  if (is<State::DetectingBox>(state)) {
    sight_["idOverlayLabel"] = kHidden;
    sight_["idFrameImageView"] = inWords(colors::kWhite);
    progress(0);
    return silhouette(front_ ? kBackSilhouette : kFrontSilhouette);
  }
  if (const auto* box = std::get_if<State::DetectedBox>(&state.value)) {
    promptCard({}, Type::success);
    if (!box->data.type) progress(box->data.isReal == true ? 2.0F / 3 : 1.0F / 3);
  }
  if (is<State::TooMuchGlare>(state)) promptCard(strings.tooMuchGlare, Type::error);
  if (is<State::MoveCloser>(state)) promptCard(strings.moveCloser, Type::error);
  if (is<State::MoveAway>(state)) promptCard(strings.moveAway, Type::error);
  if (is<State::AlignRectangle>(state)) promptCard(strings.alignRectangle, Type::error);
  if (is<State::TimedOut>(state) || is<State::Failed>(state)) retry(RetryType::idCapture);
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
    sight_["selfieOverlayBezel1"] = sight_["selfieOverlayBezel4"] = kHidden;
  } else if (lacksBarcode) {
    promptCard(strings.makeSureBarcodeVisible, Type::error);
  }
}

void FlowModel::seeSide(const Data& data) {
  if (!data.ocrStrings) return;
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

std::optional<bool> FlowModel::frontMatches(const Data& data, std::string& complaint) const {
  const Data& given = *idValidationFront;
  bool face = true;
  if (given.faceImage) {
    const bool anyWillDo = VideoCapture::options.idToIdPhotoMatchThreshold >= 2;
    const auto same = data.faceImage ? sameFace_(data.faceImage, given.faceImage) : std::nullopt;
    face = same && (*same || anyWillDo);
  }
  if (!given.ocrStrings) return {};
  const bool alike = areAlike(*given.ocrStrings, *data.ocrStrings,
                              VideoCapture::options.frontLevenshteinThreshold);
  const std::string& otherFace = VideoCapture::strings.faceDoesNotMatch;
  if (!face) complaint = alike ? otherFace : otherFace + "\n" + complaint;
  return face && alike;
}

std::optional<bool> FlowModel::backMatches(const Data& data) const {
  if (!idValidationBack) return {};
  if (idValidationBack->mrz) return data.mrz && data.mrz->lines == idValidationBack->mrz->lines;
  if (!idValidationBack->ocrStrings) return {};
  return areAlike(*idValidationBack->ocrStrings, *data.ocrStrings,
                  VideoCapture::options.backLevenshteinThreshold);
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
        done.sight_["idOverlayLabel"] = kHidden;
        done.sight_["idFrameImageView"] = inWords(colors::kWhite);
        done.progress(0);
      });
    });
  });
}

// ---- The text

void FlowModel::startReading() {
  sight_["captureLabel"] = "Read Text";
  if (recorder_) recorder_->setMode(VideoCaptureMode::readingText);
  sight_["idOverlayView"] = std::to_string(0.0);
  sight_["readingTextOverlayView"] = std::to_string(1.0);
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
  std::vector<std::string> words;
  for (const auto& segment : result.bestTranscription.segments)
    words.push_back(segment.substring);
  platform::NSAttributedString marked{*text, {}};
  const float share = shareHeard(words, *text, marked.runs);
  if (VideoCapture::options.isDebugMode) sight_["readingTextLabel"] = inWords(marked);
  if (share > heard_) heard_ = share;
}

void FlowModel::speechRecognition(const corvana::IDError& error) {
  alert("Speech Recognition Error", error.localizedDescription());
}

void FlowModel::finish() {
  stopCountdown();
  if (heard_ < VideoCapture::options.readTextWordMatchThreshold)
    return retry(RetryType::spokenText);
  if (!recorder_) return;
  recorder_->stopVideoWriter([self = self()](const auto& film) {
    if (!film) return self->dismissWith(tl::unexpected(film.error()));
    if (!self->selfie_)
      return self->answer(tl::unexpected(corvana::IDError("videoIdResultSelfie == nil")));
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

void FlowModel::dismissWith(const Result& result) {
  dismiss(true, [self = self(), result] { self->answer(result); });
}

void FlowModel::answer(const Result& result) {
  if (const auto completion = std::exchange(videoIdCompletion, nullptr)) completion(result);
}

void FlowModel::retry(RetryType type) {
  stopCountdown();
  const auto screen = std::dynamic_pointer_cast<capture::VideoRetryViewController>(
      storyboard()->instantiateViewController("VideoRetryViewController"));
  if (screen) {
    screen->type = type;
    screen->setModalPresentationStyle(platform::UIModalPresentationStyle::fullScreen);
    screen->retryCompletion = [weak = std::weak_ptr(self())](bool again) {
      const auto self = weak.lock();
      if (!self) return;
      if (!again) return self->close();
      self->sight_["ellipse"] = "";
      if (self->recorder_) self->recorder_->retry();
    };
    present(screen, true);
  }
  sight_["ellipse"] = "";
  if (sight_["selfieOverlayView"] != kHidden) sight_["selfieOverlayView"] = std::to_string(1.0);
  sight_["idOverlayView"] = sight_["readingTextOverlayView"] = std::to_string(0.0);
  readingOverlay_->setAlpha(0);
  secondsLeft_ = VideoCapture::options.readTextCountdownSeconds;
  showCountdown();
  flipping_ = false;
  silhouette(kFrontSilhouette);
  update(SelfieCaptureState{SelfieCaptureState::DetectingFace{}});
  update(IDCaptureState{IDCaptureState::DetectingBox{}});
  front_.reset();
  wrongFaceSince_ = wrongCardSince_ = wrongTypeSince_ = {};
  sight_["captureLabel"] = SelfieCapture::strings.captureSelfie;
  sight_["readingTextLabel"] = *text;
  heard_ = 0;
  if (recorder_) recorder_->stopVideoWriter(nullptr);
}

// ---- What the user sees

namespace {

std::pair<UIColor, UIColor> textAndBackground(corvana::PromptType type,
                                              const corvana::Colors& table) {
  if (type == corvana::PromptType::info) return {colors::kWhite, colors::kGray};
  if (type == corvana::PromptType::error)
    return {table.errorLabelTextColor.value_or(colors::kWhite),
            table.errorLabelBackgroundColor.value_or(colors::kRed)};
  return {table.successLabelTextColor.value_or(colors::kWhite),
          table.successLabelBackgroundColor.value_or(UIColor{0.18, 0.49, 0.196, 1})};
}

}  // namespace

void FlowModel::alert(const char* title, const std::string& message) {
  const auto alert = std::make_shared<platform::UIAlertController>(environment(), title, message);
  alert->addAction({"OK", platform::UIAlertAction::Style::cancel, nullptr});
  present(alert, true);
}

void FlowModel::promptFace(const std::string& message, Type type) {
  const auto [textColor, background] = textAndBackground(type, SelfieCapture::colors);
  sight_["selfieOverlayLabel"] = inWords(message, textColor, background);
  sight_["selfieOverlayImageView"] = inWords(background);
}

void FlowModel::promptCard(const std::optional<std::string>& message, Type type,
                           std::optional<UIColor> frame) {
  const auto [textColor, background] = textAndBackground(type, IDCapture::colors);
  sight_["idOverlayLabel"] = inWords(message, textColor, background);
  sight_["idFrameImageView"] = inWords(frame.value_or(background));
}

void FlowModel::silhouette(const std::string& name) {
  sight_["idImageView"] = name;
  if (!recorder_ || recorder_->mode() != VideoCaptureMode::idCapture) return;
  if (name == kFrontSilhouette) sight_["captureLabel"] = IDCapture::strings.captureFront;
  if (name == kBackSilhouette) sight_["captureLabel"] = IDCapture::strings.captureBack;
}

void FlowModel::progress(float share) {
  sight_["progressView"] = share == 0 ? kHidden : std::to_string(share);
}

void FlowModel::showCountdown() {
  const int seconds = secondsLeft_ % 60;
  sight_["readingTextCountdownLabel"] =
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

std::shared_ptr<FlowModel> FlowModel::self() {
  return std::static_pointer_cast<FlowModel>(shared_from_this());
}

}  // namespace corvana::tests
