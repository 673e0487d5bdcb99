#pragma once

#include <memory>
#include <utility>

#include "devices/qtquick/PreviewItem.h"
#include "platform/foundation/RunLoop.h"
#include "platform/media/CaptureDevice.h"

namespace corvana::devices {

/// The machine's cameras and microphones, with an eye on the camera's pictures: each goes to the
/// preview as well as to whoever started the camera.
class PreviewedMediaDevices final : public platform::MediaDevices {
 public:
  PreviewedMediaDevices(platform::RunLoop& loop, platform::MediaDevices& devices,
                        std::shared_ptr<PreviewFeed> feed)
      : loop_(loop), devices_(devices), feed_(std::move(feed)) {}

  platform::AVCaptureDeviceRef defaultDevice(platform::AVMediaType type) override;
  platform::AVAuthorizationStatus authorizationStatus(platform::AVMediaType type) override {
    return devices_.authorizationStatus(type);
  }
  void requestAccess(platform::AVMediaType type, std::function<void(bool)> answer) override {
    devices_.requestAccess(type, std::move(answer));
  }

 private:
  platform::RunLoop& loop_;
  platform::MediaDevices& devices_;
  std::shared_ptr<PreviewFeed> feed_;
};

}  // namespace corvana::devices
