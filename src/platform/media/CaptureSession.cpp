#include "platform/media/CaptureSession.h"

#include <algorithm>
#include <utility>

namespace platform {

AVCaptureOutput::AVCaptureOutput(RunLoop& loop, AVMediaType mediaType)
    : loop_(loop), mediaType_(mediaType) {}

void AVCaptureOutput::setSampleBufferDelegate(std::weak_ptr<AVCaptureSampleBufferDelegate> delegate,
                                              std::shared_ptr<DispatchQueue> queue) {
  delegate_ = std::move(delegate);
  queue_ = std::move(queue);
}

bool AVCaptureOutput::hasSampleBufferDelegate() const {
  return !delegate_.expired();
}

void AVCaptureOutput::deliver(CMSampleBufferRef sample) {
  if (!queue_) return;
  const int most = mediaType_ == AVMediaType::video ? kMostPicturesWaiting : kMostSoundsWaiting;
  if (waiting_ >= most) {
    ++dropped_;
    return;
  }
  ++waiting_;
  queue_->async([self = shared_from_this(), sample = std::move(sample)] {
    --self->waiting_;
    callDelegate(self->loop_, self->delegate_,
                 [&](auto& delegate) { delegate.captureOutput(*self, sample); });
  });
}

std::vector<AVVideoCodecType> AVCaptureVideoDataOutput::availableVideoCodecTypesForAssetWriter(
    const AVFileType& fileType) const {
  if (!device()) return {};
  return device()->availableVideoCodecTypes(fileType);
}

std::optional<WriterSettings> AVCaptureVideoDataOutput::recommendedVideoSettings(
    const AVVideoCodecType& codec, const AVFileType& fileType) const {
  WriterSettings settings;
  if (!device() || !device()->recommendedVideoSettings(codec, fileType, settings)) return {};
  return settings;
}

std::optional<WriterSettings> AVCaptureAudioDataOutput::recommendedAudioSettingsForAssetWriter(
    const AVFileType& fileType) const {
  WriterSettings settings{{kAVFormatIDKey, std::string("aac ")},
                          {kAVSampleRateKey, 48000},
                          {kAVNumberOfChannelsKey, 1},
                          {kAVEncoderBitRateKey, 96000}};
  if (device() && !device()->recommendedAudioSettings(fileType, settings)) return {};
  return settings;
}

std::optional<AVCaptureDeviceInput> AVCaptureDeviceInput::make(const AVCaptureDeviceRef& device) {
  if (!device || !device->open()) return {};
  return AVCaptureDeviceInput{device};
}

AVCaptureSession::~AVCaptureSession() {
  stopRunning();
}

bool AVCaptureSession::canAddInput(const AVCaptureDeviceInput& input) const {
  return std::ranges::none_of(inputs_, [&](const auto& other) {
    return other.device->mediaType() == input.device->mediaType();
  });
}

void AVCaptureSession::addInput(AVCaptureDeviceInput input) {
  inputs_.push_back(std::move(input));
  connect();
}

bool AVCaptureSession::canAddOutput(const std::shared_ptr<AVCaptureOutput>& output) const {
  return std::ranges::find(outputs_, output) == outputs_.end();
}

void AVCaptureSession::addOutput(std::shared_ptr<AVCaptureOutput> output) {
  outputs_.push_back(std::move(output));
  connect();
}

void AVCaptureSession::connect() {
  for (const auto& output : outputs_) {
    for (const auto& input : inputs_) {
      if (input.device->mediaType() == output->mediaType()) output->connect(input.device);
    }
  }
}

void AVCaptureSession::startRunning() {
  const std::lock_guard lock(turn_);
  if (running_.exchange(true)) return;
  for (const auto& input : inputs_) {
    for (const auto& output : outputs_) {
      if (input.device->mediaType() != output->mediaType()) continue;
      input.device->start(
          [output](CMSampleBufferRef sample) { output->deliver(std::move(sample)); });
    }
  }
}

void AVCaptureSession::stopRunning() {
  const std::lock_guard lock(turn_);
  if (!running_.exchange(false)) return;
  for (const auto& input : inputs_)
    input.device->stop();
}

}  // namespace platform
