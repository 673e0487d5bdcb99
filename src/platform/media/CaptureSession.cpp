#include "platform/media/CaptureSession.h"

#include <algorithm>
#include <utility>

namespace corvana::platform {

AVCaptureOutput::AVCaptureOutput(RunLoop& loop, AVMediaType mediaType)
    : loop_(loop), mediaType_(mediaType) {}

void AVCaptureOutput::setSampleBufferDelegate(std::weak_ptr<AVCaptureSampleBufferDelegate> delegate,
                                              std::shared_ptr<DispatchQueue> queue) {
  delegate_ = std::move(delegate);
  const bool isVideo = mediaType_ == AVMediaType::video;
  branch_ = std::make_shared<SampleBranch>(
      std::move(queue), isVideo ? kMostPicturesWaiting : kMostSoundsWaiting,
      SampleBranch::WhenFull::keepsOldest, [weak = weak_from_this()](const auto& sample) {
        const auto self = weak.lock();
        if (!self) return;
        callDelegate(self->loop_, self->delegate_,
                     [&](auto& receiver) { receiver.captureOutput(*self, sample); });
      });
}

bool AVCaptureOutput::hasSampleBufferDelegate() const {
  return !delegate_.expired();
}

void AVCaptureOutput::deliver(CMSampleBufferRef sample) {
  if (branch_) branch_->push(std::move(sample));
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

/// What is connected, and which of it runs.
class AVCaptureSession::Connections {
 public:
  void run() {
    const std::lock_guard turn(turn_);
    running_ = true;
    startWaiting();
  }
  /// Starts what was connected since the session runs.
  void catchUp() {
    const std::lock_guard turn(turn_);
    if (running_) startWaiting();
  }
  void stop() {
    const std::lock_guard turn(turn_);
    running_ = false;
    for (const auto& device : std::exchange(started_, {}))
      device->stop();
  }
  bool isRunning() const { return running_; }

  std::vector<AVCaptureDeviceInput> inputs;
  std::vector<std::shared_ptr<AVCaptureOutput>> outputs;
  std::mutex configuration;  ///< guards inputs and outputs against `startWaiting`, for moments only

 private:
  using Pair = std::pair<AVCaptureDeviceRef, std::shared_ptr<AVCaptureOutput>>;

  std::vector<Pair> pairs() {
    const std::lock_guard lock(configuration);
    std::vector<Pair> found;
    for (const auto& input : inputs) {
      const auto output =
          std::ranges::find(outputs, input.device->mediaType(), &AVCaptureOutput::mediaType);
      if (output != outputs.end()) found.emplace_back(input.device, *output);
    }
    return found;
  }
  void startWaiting() {
    for (const auto& [device, output] : pairs()) {
      if (std::ranges::find(started_, device) != started_.end()) continue;
      started_.push_back(device);
      device->start(
          [output = output](CMSampleBufferRef sample) { output->deliver(std::move(sample)); });
    }
  }

  std::mutex turn_;  ///< held while devices start or stop
  std::vector<AVCaptureDeviceRef> started_;
  std::atomic<bool> running_ = false;
};

AVCaptureSession::AVCaptureSession() : connections_(std::make_shared<Connections>()) {}

AVCaptureSession::~AVCaptureSession() {
  stopRunning();
}

const std::vector<AVCaptureDeviceInput>& AVCaptureSession::inputs() const {
  return connections_->inputs;
}

bool AVCaptureSession::canAddInput(const AVCaptureDeviceInput& input) const {
  return std::ranges::none_of(connections_->inputs, [&](const auto& other) {
    return other.device->mediaType() == input.device->mediaType();
  });
}

void AVCaptureSession::addInput(AVCaptureDeviceInput input) {
  {
    const std::lock_guard lock(connections_->configuration);
    connections_->inputs.push_back(std::move(input));
  }
  connect();
}

bool AVCaptureSession::canAddOutput(const std::shared_ptr<AVCaptureOutput>& output) const {
  return std::ranges::find(connections_->outputs, output) == connections_->outputs.end();
}

void AVCaptureSession::addOutput(std::shared_ptr<AVCaptureOutput> output) {
  {
    const std::lock_guard lock(connections_->configuration);
    connections_->outputs.push_back(std::move(output));
  }
  connect();
}

void AVCaptureSession::connect() {
  for (const auto& output : connections_->outputs) {
    for (const auto& input : connections_->inputs) {
      if (input.device->mediaType() == output->mediaType()) output->connect(input.device);
    }
  }
  if (!connections_->isRunning() || connections_->outputs.empty()) return;
  connections_->outputs.front()
      ->loop_.globalQueue(QualityOfService::userInitiated)
      .async([connections = connections_] { connections->catchUp(); });
}

void AVCaptureSession::startRunning() {
  connections_->run();
}

void AVCaptureSession::stopRunning() {
  connections_->stop();
}

bool AVCaptureSession::isRunning() const {
  return connections_->isRunning();
}

}  // namespace corvana::platform
