#include "capture/AudioCaptureSession.h"

#include <utility>

namespace corvana::capture {

using platform::AVAuthorizationStatus;
using platform::AVMediaType;

AudioCaptureSession::AudioCaptureSession(platform::RunLoop& loop, platform::MediaDevices& devices)
    : loop_(loop),
      devices_(devices),
      captureQueue_(loop.makeSerialQueue("AudioCaptureSessionQueue",
                                         platform::QualityOfService::unspecified)),
      audioDataOutput_(std::make_shared<platform::AVCaptureAudioDataOutput>(loop)) {}

void AudioCaptureSession::setDelegate(std::weak_ptr<AudioCaptureSessionDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void AudioCaptureSession::prepare() {
  if (!session_.inputs().empty()) return;
  if (!addInput()) return;
  audioDataOutput_->setSampleBufferDelegate(weak_from_this(), captureQueue_);
  if (session_.canAddOutput(audioDataOutput_)) session_.addOutput(audioDataOutput_);
}

bool AudioCaptureSession::addInput() {
  const auto device = devices_.defaultDevice(AVMediaType::audio);
  if (!device) return false;
  auto input = platform::AVCaptureDeviceInput::make(device);
  if (!input || !session_.canAddInput(*input)) return false;
  session_.addInput(std::move(*input));
  device_ = device;
  return true;
}

void AudioCaptureSession::authorizationStatus(std::function<void(bool granted)> completion) {
  const auto answer = [&loop = loop_, completion = std::move(completion)](bool granted) {
    loop.mainQueue().async([completion, granted] { completion(granted); });
  };
  switch (devices_.authorizationStatus(AVMediaType::audio)) {
    case AVAuthorizationStatus::notDetermined:
      return devices_.requestAccess(AVMediaType::audio, answer);
    case AVAuthorizationStatus::restricted:
    case AVAuthorizationStatus::denied:
      return answer(false);
    case AVAuthorizationStatus::authorized:
      break;
  }
  answer(true);  // a status that came later than this code counts as leave
}

void AudioCaptureSession::captureOutput(platform::AVCaptureOutput&,
                                        const platform::CMSampleBufferRef& sampleBuffer) {
  platform::callDelegate(loop_, delegate_,
                         [&](auto& delegate) { delegate.capturedAudio(sampleBuffer); });
}

}  // namespace corvana::capture
