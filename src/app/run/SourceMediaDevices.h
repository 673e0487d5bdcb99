#pragma once

#include <memory>
#include <utility>

#include "devices/film/MediaSource.h"
#include "platform/media/CaptureDevice.h"
#include "platform/media/Speech.h"

namespace corvana::app {

/// The camera and microphone of a run as the machine's; who starts the program has allowed their
/// use.
class SourceMediaDevices final : public platform::MediaDevices {
 public:
  explicit SourceMediaDevices(std::shared_ptr<devices::MediaSource> source)
      : source_(std::move(source)) {}

  platform::AVCaptureDeviceRef defaultDevice(platform::AVMediaType type) override {
    return type == platform::AVMediaType::video ? source_->camera() : source_->microphone();
  }
  platform::AVAuthorizationStatus authorizationStatus(platform::AVMediaType) override {
    return platform::AVAuthorizationStatus::authorized;
  }
  void requestAccess(platform::AVMediaType, std::function<void(bool)> answer) override {
    answer(true);
  }

 private:
  std::shared_ptr<devices::MediaSource> source_;
};

/// Speech is recognised on this machine and leaves it nowhere: nobody is to be asked.
class LocalSpeechAuthorization final : public platform::SpeechAuthorization {
 public:
  void request(
      std::function<void(platform::SFSpeechRecognizerAuthorizationStatus)> answer) override {
    answer(platform::SFSpeechRecognizerAuthorizationStatus::authorized);
  }
};

}  // namespace corvana::app
