#include "devices/scripted/ScriptedHost.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace corvana::devices {

using corvana::nameOf;
using corvana::VideoCaptureMode;
using Kind = HostEvent::Kind;

void ScriptedSpeechRecognizer::hear(const std::string& transcript) {
  platform::SFSpeechRecognitionResult result;
  std::istringstream words(transcript);
  for (std::string word; words >> word;)
    result.bestTranscription.segments.push_back({word});
  post("result", [result](auto& delegate) { delegate.speechRecognition(result); });
}

void ScriptedSpeechRecognizer::fail(const std::string& message) {
  post("error",
       [error = corvana::IDError(message)](auto& delegate) { delegate.speechRecognition(error); });
}

void ScriptedSpeechRecognizer::post(const char* name,
                                    std::function<void(corvana::SpeechRecognizerDelegate&)> call) {
  loop_.mainQueue().async([weak = weak_from_this(), name, call = std::move(call), run = run_] {
    const auto self = weak.lock();
    if (!self || !self->running_ || run != self->run_) return;
    if (self->onEvent_) self->onEvent_(name);
    if (const auto delegate = self->delegate_.lock()) call(*delegate);
  });
}

void ScriptedSpeechRecognizer::setDelegate(
    std::weak_ptr<corvana::SpeechRecognizerDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void ScriptedSpeechRecognizer::start() {
  running_ = true;
  ++run_;
  ++starts_;
  if (onEvent_) onEvent_("start");
}

void ScriptedSpeechRecognizer::stop() {
  running_ = false;
  ++stops_;
  if (onEvent_) onEvent_("stop");
}

void ScriptedSpeechRecognizer::append(const platform::CMSampleBufferRef&) {
  ++buffers_;
  if (audioLog_) audioLog_->push_back("append");
}

ScriptedRecorder::ScriptedRecorder(platform::RunLoop& loop, RecorderSetup recorderSetup)
    : setup(std::move(recorderSetup)),
      loop_(loop),
      captureQueue_(loop.makeSerialQueue("scripted capture")) {
  if (!setup.hasSpeechRecognizer) return;
  speech_ = std::make_shared<ScriptedSpeechRecognizer>(loop);
  speech_->available = setup.speechAvailable;
  speech_->audioLog_ = &audioCalls_;
  speech_->onEvent_ = [this](const char* name) { note(Kind::speech, name); };
}

ScriptedRecorder::~ScriptedRecorder() {
  if (speech_) speech_->onEvent_ = nullptr;
}

void ScriptedRecorder::post(Kind kind, const char* name,
                            std::function<void(corvana::VideoCaptureDelegate&)> call) {
  captureQueue_->async([weak = weak_from_this(), kind, name, call = std::move(call)] {
    const auto self = weak.lock();
    if (!self) return;
    self->note(kind, name);
    platform::callDelegate(self->loop_, self->delegate_, call);
  });
}

void ScriptedRecorder::report(corvana::SelfieCaptureState state) {
  const char* name = nameOf(state);
  post(Kind::state, name, [state = std::move(state)](auto& delegate) { delegate.update(state); });
}

void ScriptedRecorder::report(corvana::IDCaptureState state) {
  const char* name = nameOf(state);
  post(Kind::state, name, [state = std::move(state)](auto& delegate) { delegate.update(state); });
}

void ScriptedRecorder::reportLiveFace(const platform::CGRect& frame,
                                      const platform::CGSize& fullSize) {
  reportLiveFace(frame, fullSize, mode_);
}

void ScriptedRecorder::reportLiveFaceLost() {
  mode_ = VideoCaptureMode::liveFaceLost;
  reportLiveFace(std::nullopt, {1000, 1000}, mode_);
}

void ScriptedRecorder::reportLiveFace(const std::optional<platform::CGRect>& frame,
                                      const platform::CGSize& fullSize, VideoCaptureMode mode) {
  const bool lost = !frame || mode == VideoCaptureMode::liveFaceLost;
  post(Kind::liveFace, lost ? "lost" : "found",
       [=](auto& delegate) { delegate.foundLiveFace(frame, fullSize, mode); });
}

int ScriptedRecorder::count(const std::string& call) const {
  return static_cast<int>(std::ranges::count(calls_, call));
}

void ScriptedRecorder::note(Kind kind, const std::string& name) {
  if (kind == Kind::call) calls_.push_back(name);
  if (onEvent) onEvent({loop_.now(), kind, name});
}

void ScriptedRecorder::setDelegate(std::weak_ptr<corvana::VideoCaptureDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void ScriptedRecorder::setMode(VideoCaptureMode mode) {
  mode_ = mode;
  calls_.push_back(std::string("setMode ") + nameOf(mode));
  note(Kind::mode, nameOf(mode));
}

void ScriptedRecorder::stopVideoWriter(StopCompletion completion) {
  note(Kind::call, "stopVideoWriter");
  // The screen asks for it before `retry()`, when it chooses the caption that the user comes back
  // to.
  mode_ = VideoCaptureMode::selfieCapture;
  if (!completion) return;
  note(Kind::completion, "expected");
  loop_.mainQueue().asyncAfter(
      setup.stopLatency,
      [self = shared_from_this(), completion = std::move(completion), film = setup.film] {
        for (int i = 0; i < self->setup.stopAnswers; ++i) {
          self->note(Kind::completion, film ? "film" : "error");
          completion(film);
        }
      });
}

void ScriptedRecorder::retry() {
  note(Kind::call, "retry");
  mode_ = VideoCaptureMode::selfieCapture;
  note(Kind::mode, nameOf(mode_));
  if (speech_ && speech_->available) speech_->start();
}

void ScriptedRecorder::typeMismatch() {
  note(Kind::call, "typeMismatch");
}

void ScriptedRecorder::capturedVideo(const platform::CMSampleBufferRef&) {
  ++framesReceived_;
}

std::shared_ptr<corvana::CaptureSession> ScriptedHost::makeCaptureSession(
    corvana::CameraPosition position) {
  positions_.push_back(position);
  session_ =
      corvana::CaptureSession::make(loop_, devices_.defaultDevice(platform::AVMediaType::video));
  return session_;
}

std::shared_ptr<corvana::VideoCapture> ScriptedHost::makeVideoCapture(
    const platform::CGRect& selfieOverlayFrame, const platform::CGRect& idOverlayFrame,
    const std::optional<platform::WriterSettings>& videoSettings,
    const std::optional<platform::WriterSettings>& audioSettings) {
  if (!makesRecorder) return nullptr;
  setup.selfieOverlayFrame = selfieOverlayFrame;
  setup.idOverlayFrame = idOverlayFrame;
  setup.videoSettings = videoSettings;
  setup.audioSettings = audioSettings;
  recorder_ = std::make_shared<ScriptedRecorder>(loop_, setup);
  ++recordersMade_;
  if (onRecorder) onRecorder(*recorder_);
  return recorder_;
}

}  // namespace corvana::devices
