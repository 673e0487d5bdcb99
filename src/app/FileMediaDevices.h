#pragma once

#include <memory>
#include <utility>

#include "devices/gstreamer/MediaFile.h"
#include "platform/media/CaptureDevice.h"
#include "platform/media/Speech.h"

namespace app {

/// A recorded file as the machine's camera and microphone; who names a file has allowed its use.
class FileMediaDevices final : public platform::MediaDevices {
 public:
  explicit FileMediaDevices(std::shared_ptr<devices::MediaFile> file) : file_(std::move(file)) {}

  platform::AVCaptureDeviceRef defaultDevice(platform::AVMediaType type) override {
    return type == platform::AVMediaType::video ? file_->camera() : file_->microphone();
  }
  platform::AVAuthorizationStatus authorizationStatus(platform::AVMediaType) override {
    return platform::AVAuthorizationStatus::authorized;
  }
  void requestAccess(platform::AVMediaType, std::function<void(bool)> answer) override {
    answer(true);
  }

 private:
  std::shared_ptr<devices::MediaFile> file_;
};

/// Speech is recognised on this machine and leaves it nowhere: nobody is to be asked.
class LocalSpeechAuthorization final : public platform::SpeechAuthorization {
 public:
  void request(
      std::function<void(platform::SFSpeechRecognizerAuthorizationStatus)> answer) override {
    answer(platform::SFSpeechRecognizerAuthorizationStatus::authorized);
  }
};

}  // namespace app
