#include "devices/scripted/ScriptedMedia.h"

namespace corvana::devices {

using platform::AVMediaType;

bool ScriptedCaptureDevice::isRunning() const {
  const std::lock_guard lock(mutex_);
  return static_cast<bool>(handler_);
}

void ScriptedCaptureDevice::push(platform::CMSampleBufferRef sample) const {
  const std::lock_guard lock(mutex_);
  if (handler_) handler_(std::move(sample));
}

void ScriptedCaptureDevice::start(SampleHandler handler) {
  const std::lock_guard lock(mutex_);
  if (handler_) return;
  handler_ = std::move(handler);
  ++starts_;
}

void ScriptedCaptureDevice::stop() {
  const std::lock_guard lock(mutex_);
  handler_ = nullptr;
  ++stops_;
}

std::vector<platform::AVVideoCodecType> ScriptedCaptureDevice::availableVideoCodecTypes(
    const platform::AVFileType& fileType) const {
  fileTypes_.push_back(fileType);
  return codecs;
}

bool ScriptedCaptureDevice::recommendedVideoSettings(const platform::AVVideoCodecType& codec,
                                                     const platform::AVFileType& fileType,
                                                     platform::WriterSettings& settings) const {
  fileTypes_.push_back(fileType);
  if (!recommendedVideo) return false;
  settings = *recommendedVideo;
  settings[platform::kAVVideoCodecKey] = codec;
  return true;
}

bool ScriptedCaptureDevice::recommendedAudioSettings(const platform::AVFileType& fileType,
                                                     platform::WriterSettings& settings) const {
  fileTypes_.push_back(fileType);
  if (!recommendedAudio) return false;
  settings = *recommendedAudio;
  return true;
}

platform::AVCaptureDeviceRef ScriptedMediaDevices::defaultDevice(AVMediaType type) {
  return type == AVMediaType::audio ? microphone : camera;
}

platform::AVAuthorizationStatus ScriptedMediaDevices::authorizationStatus(AVMediaType type) {
  return type == AVMediaType::audio ? microphoneStatus
                                    : platform::AVAuthorizationStatus::authorized;
}

void ScriptedMediaDevices::requestAccess(AVMediaType, std::function<void(bool)> answer) {
  ++requests_;
  loop_.globalQueue(platform::QualityOfService::userInitiated)
      .asyncAfter(answerDelay, [this, answer = std::move(answer)] {
        using Status = platform::AVAuthorizationStatus;
        microphoneStatus = grantsWhenAsked ? Status::authorized : Status::denied;
        answer(grantsWhenAsked);
      });
}

void ScriptedSpeechAuthorization::request(
    std::function<void(platform::SFSpeechRecognizerAuthorizationStatus)> answer) {
  ++requests_;
  loop_.globalQueue(platform::QualityOfService::userInitiated)
      .asyncAfter(answerDelay, [this, answer = std::move(answer)] { answer(status); });
}

platform::CMSampleBufferRef silentSample(platform::TimePoint start, platform::Duration length) {
  constexpr int kSampleRate = 16000;
  auto sample = std::make_shared<platform::CMSampleBuffer>();
  sample->presentationTime = start;
  sample->duration = length;
  sample->sampleRate = kSampleRate;
  sample->channels = 1;
  sample->samples.resize(static_cast<std::size_t>(platform::inSeconds(length) * kSampleRate));
  return sample;
}

}  // namespace corvana::devices
