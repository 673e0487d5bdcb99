#include "devices/live/LiveDevices.h"

#include <utility>

#include "devices/live/LiveCamera.h"
#include "devices/live/LiveMicrophone.h"
#include "platform/foundation/Fault.h"

namespace corvana::devices {
namespace {

constexpr platform::Duration kLookInterval = std::chrono::milliseconds(250);

std::string named(const char* kind, const platform::AVCaptureDevice& device) {
  return std::string("The ") + kind + " \"" + device.localizedName() + "\" ";
}

}  // namespace

LiveDevices::LiveDevices(platform::RunLoop& loop, Setup setup)
    : loop_(loop),
      cameraIsVirtual_(setup.camera.isVirtual),
      cameraClaimsUsb_(setup.camera.claimsUsb),
      microphoneIsVirtual_(setup.microphone && setup.microphone->isVirtual) {
  camera_ =
      std::make_shared<LiveCamera>(loop, std::move(setup.camera), setup.turn, setup.codecChoice);
  if (setup.microphone) {
    microphone_ = std::make_shared<LiveMicrophone>(loop, std::move(*setup.microphone));
  }
}

LiveDevices::~LiveDevices() {
  if (timer_) timer_->invalidate();
}

platform::Expected<std::shared_ptr<LiveDevices>> LiveDevices::open(platform::RunLoop& loop,
                                                                   Setup setup) {
  const platform::Duration patience = setup.patience;
  std::shared_ptr<LiveDevices> devices(new LiveDevices(loop, std::move(setup)));
  if (auto opened = devices->openBoth(patience); !opened) return tl::unexpected(opened.error());
  devices->timer_ = loop.scheduledTimer(kLookInterval, true, [weak = std::weak_ptr(devices)] {
    if (const auto self = weak.lock()) self->watch();
  });
  return devices;
}

platform::Expected<void> LiveDevices::openBoth(platform::Duration patience) {
  if (auto opened = camera_->open(patience); !opened || !microphone_) return opened;
  return microphone_->open(patience);
}

platform::AVCaptureDeviceRef LiveDevices::camera() const {
  return camera_;
}

platform::AVCaptureDeviceRef LiveDevices::microphone() const {
  return microphone_;
}

std::vector<CameraSign> LiveDevices::cameraSigns() const {
  std::vector<CameraSign> signs;
  if (cameraClaimsUsb_) signs.push_back({"claimsUsb", 1, 0});
  for (CameraSign& sign : camera_->signs())
    signs.push_back(std::move(sign));
  return signs;
}

std::uint64_t LiveDevices::framesDropped() const {
  return camera_->stream().samplesDropped();
}

platform::Duration LiveDevices::Pulse::look(const LiveStream& stream) {
  const std::uint64_t taken = stream.samplesTaken();
  quietLooks = taken == std::exchange(samplesTaken, taken) ? quietLooks + 1 : 0;
  return quietLooks * kLookInterval;
}

void LiveDevices::watch() {
  // Nobody listens yet, or no longer: what happens now is told then, or to nobody.
  if (onError) watchCamera();
  if (onCameraSign) tellSigns();
  if (onWarning && microphone_) watchMicrophone();
}

void LiveDevices::watchCamera() {
  const bool quiet = cameraPulse_.look(camera_->stream()) >= kCameraPatience;
  auto fault = camera_->stream().fault();
  if (!fault && quiet) {
    fault = platform::Fault{named("camera", *camera_) +
                            "delivers no pictures any more: connect it again."};
  }
  if (fault && !std::exchange(cameraLost_, true)) {
    onError({fault->sentence, platform::FaultCause::cameraLost});
  }
  warnOnce(cameraChanged_, camera_->hasChanged(),
           named("camera", *camera_) +
               "changed its size or format; the film keeps its first size, with borders.");
  warnOnce(cameraJumped_, camera_->stream().clockJumped(),
           named("camera", *camera_) + "set its clock anew; pictures count from their arrival.");
}

void LiveDevices::watchMicrophone() {
  const LiveStream& stream = microphone_->stream();
  const bool quiet = microphonePulse_.look(stream) >= kMicrophonePatience;
  auto fault = stream.fault();
  if (!fault && quiet) {
    fault = platform::Fault{named("microphone", *microphone_) + "delivers nothing any more."};
  }
  warnOnce(microphoneLost_, fault.has_value(),
           (fault ? fault->sentence : "") + " The film goes on without sound.");
  warnOnce(
      microphoneSilent_, microphone_->silentFor() >= kLongestSilence,
      named("microphone", *microphone_) + "delivers nothing but silence: see whether it is muted.");
  warnOnce(
      microphoneJumped_, stream.clockJumped(),
      named("microphone", *microphone_) + "set its clock anew; sound counts from its arrival.");
}

void LiveDevices::tellSigns() {
  const auto signs = cameraSigns();
  while (onCameraSign && signsTold_ < signs.size())
    onCameraSign(signs[signsTold_++]);
}

void LiveDevices::warnOnce(bool& warned, bool now, const std::string& sentence) {
  if (!now || std::exchange(warned, true)) return;
  if (onWarning) onWarning(sentence);
}

}  // namespace corvana::devices
