#include "devices/scripted/ScriptedHost.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace devices {

using corvana::VideoCaptureMode;

const char* nameOf(VideoCaptureMode mode) {
  switch (mode) {
    case VideoCaptureMode::selfieCapture:
      return "selfieCapture";
    case VideoCaptureMode::idCapture:
      return "idCapture";
    case VideoCaptureMode::readingText:
      return "readingText";
    case VideoCaptureMode::liveFaceLost:
      return "liveFaceLost";
  }
  return "unknown";
}

void ScriptedSpeechRecognizer::hear(const std::string& transcript) {
  platform::SFSpeechRecognitionResult result;
  std::istringstream words(transcript);
  for (std::string word; words >> word;)
    result.bestTranscription.segments.push_back({word});
  post([result](auto& delegate) { delegate.speechRecognition(result); });
}

void ScriptedSpeechRecognizer::fail(const std::string& message) {
  post([error = corvana::IDError(message)](auto& delegate) { delegate.speechRecognition(error); });
}

void ScriptedSpeechRecognizer::post(std::function<void(corvana::SpeechRecognizerDelegate&)> call) {
  loop_.mainQueue().async([weak = weak_from_this(), call = std::move(call), run = run_] {
    const auto self = weak.lock();
    if (!self || !self->running_ || run != self->run_) return;
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
}

void ScriptedSpeechRecognizer::stop() {
  running_ = false;
  ++stops_;
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
}

void ScriptedRecorder::post(std::function<void(corvana::VideoCaptureDelegate&)> call) {
  captureQueue_->async([&loop = loop_, delegate = delegate_, call = std::move(call)] {
    platform::callDelegate(loop, delegate, call);
  });
}

void ScriptedRecorder::report(corvana::SelfieCaptureState state) {
  post([state = std::move(state)](auto& delegate) { delegate.update(state); });
}

void ScriptedRecorder::report(corvana::IDCaptureState state) {
  post([state = std::move(state)](auto& delegate) { delegate.update(state); });
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
  post([=](auto& delegate) { delegate.foundLiveFace(frame, fullSize, mode); });
}

int ScriptedRecorder::count(const std::string& call) const {
  return static_cast<int>(std::ranges::count(calls_, call));
}

void ScriptedRecorder::note(const std::string& call) {
  calls_.push_back(call);
  if (onCall) onCall(call);
}

void ScriptedRecorder::setDelegate(std::weak_ptr<corvana::VideoCaptureDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void ScriptedRecorder::setMode(VideoCaptureMode mode) {
  mode_ = mode;
  note(std::string("setMode ") + nameOf(mode));
}

void ScriptedRecorder::stopVideoWriter(StopCompletion completion) {
  note("stopVideoWriter");
  if (!completion) return;
  loop_.mainQueue().asyncAfter(setup.stopLatency, [completion = std::move(completion),
                                                   film = setup.film] { completion(film); });
}

void ScriptedRecorder::retry() {
  mode_ = VideoCaptureMode::selfieCapture;
  note("retry");
  if (speech_ && speech_->available) speech_->start();
}

void ScriptedRecorder::typeMismatch() {
  note("typeMismatch");
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

}  // namespace devices
