#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/foundation/RunLoop.h"
#include "platform/media/CaptureDevice.h"
#include "platform/media/SampleBranch.h"

namespace corvana::platform {

class AVCaptureOutput;

/// Receives the samples of an output on the queue that was given with it.
class AVCaptureSampleBufferDelegate {
 public:
  virtual ~AVCaptureSampleBufferDelegate() = default;
  virtual void captureOutput(AVCaptureOutput& output, const CMSampleBufferRef& sampleBuffer) = 0;
};

/// An output hands each sample to its delegate (held weakly, loaded afresh for every sample). When
/// the delegate falls behind so far that memory counts more, samples are dropped.
class AVCaptureOutput : public std::enable_shared_from_this<AVCaptureOutput> {
 public:
  AVCaptureOutput(RunLoop& loop, AVMediaType mediaType);
  virtual ~AVCaptureOutput() = default;

  AVMediaType mediaType() const { return mediaType_; }
  void setSampleBufferDelegate(std::weak_ptr<AVCaptureSampleBufferDelegate> delegate,
                               std::shared_ptr<DispatchQueue> queue);
  bool hasSampleBufferDelegate() const;
  /// Any thread.
  std::uint64_t samplesDropped() const { return branch_ ? branch_->samplesDropped() : 0; }

  /// Samples that may wait for the delegate: a second of pictures, ten of sound in the usual 20 ms.
  static constexpr std::size_t kMostPicturesWaiting = 30;
  static constexpr std::size_t kMostSoundsWaiting = 500;

 protected:
  const AVCaptureDevice* device() const { return device_.get(); }

 private:
  friend class AVCaptureSession;
  void connect(AVCaptureDeviceRef device) { device_ = std::move(device); }
  void deliver(CMSampleBufferRef sample);

  RunLoop& loop_;
  AVMediaType mediaType_;
  std::weak_ptr<AVCaptureSampleBufferDelegate> delegate_;
  std::shared_ptr<SampleBranch> branch_;
  AVCaptureDeviceRef device_;
};

class AVCaptureVideoDataOutput final : public AVCaptureOutput {
 public:
  explicit AVCaptureVideoDataOutput(RunLoop& loop) : AVCaptureOutput(loop, AVMediaType::video) {}
  std::vector<AVVideoCodecType> availableVideoCodecTypesForAssetWriter(
      const AVFileType& fileType) const;
  /// Absent when the output has none.
  std::optional<WriterSettings> recommendedVideoSettings(const AVVideoCodecType& codec,
                                                         const AVFileType& fileType) const;
};

class AVCaptureAudioDataOutput final : public AVCaptureOutput {
 public:
  explicit AVCaptureAudioDataOutput(RunLoop& loop) : AVCaptureOutput(loop, AVMediaType::audio) {}
  /// Absent when the microphone recommends none. Without a microphone (none there, or not allowed)
  /// the field's usual settings: the film then has a track of silence.
  std::optional<WriterSettings> recommendedAudioSettingsForAssetWriter(
      const AVFileType& fileType) const;
};

/// A device that was opened as the source of a session.
struct AVCaptureDeviceInput {
  AVCaptureDeviceRef device;
  /// Absent when the device can't be opened.
  static std::optional<AVCaptureDeviceInput> make(const AVCaptureDeviceRef& device);
};

/// Connects inputs to outputs of the same media type. Configured on the main queue, also while it
/// runs: a device that is connected then starts on a global queue. Started and stopped on any
/// thread, since starting may take time: one waits for the other.
class AVCaptureSession {
 public:
  AVCaptureSession();
  ~AVCaptureSession();

  /// Main queue.
  const std::vector<AVCaptureDeviceInput>& inputs() const;
  bool canAddInput(const AVCaptureDeviceInput& input) const;
  void addInput(AVCaptureDeviceInput input);
  bool canAddOutput(const std::shared_ptr<AVCaptureOutput>& output) const;
  void addOutput(std::shared_ptr<AVCaptureOutput> output);
  void startRunning();
  void stopRunning();
  bool isRunning() const;

 private:
  class Connections;
  void connect();

  std::shared_ptr<Connections> connections_;  ///< shared with what starts devices on other queues
};

}  // namespace corvana::platform
