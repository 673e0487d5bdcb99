#pragma once

#include <functional>
#include <memory>

#include "platform/media/CaptureSession.h"

namespace corvana::capture {

/// Receives each microphone buffer on the queue "AudioCaptureSessionQueue".
class AudioCaptureSessionDelegate {
 public:
  virtual ~AudioCaptureSessionDelegate() = default;
  virtual void capturedAudio(const platform::CMSampleBufferRef& sampleBuffer) = 0;
};

/// The microphone beside the camera's session. Configured on the main queue; reports no errors:
/// what can't be had leaves the recording without sound. Made by `std::make_shared`.
class AudioCaptureSession final : public platform::AVCaptureSampleBufferDelegate,
                                  public std::enable_shared_from_this<AudioCaptureSession> {
 public:
  AudioCaptureSession(platform::RunLoop& loop, platform::MediaDevices& devices);

  /// Held weakly. Set before the session runs.
  void setDelegate(std::weak_ptr<AudioCaptureSessionDelegate> delegate);
  platform::AVCaptureAudioDataOutput& audioDataOutput() { return *audioDataOutput_; }

  /// Connects the default microphone, once; further calls are harmless. When the session runs by
  /// then (the user took long to allow it), the microphone begins to deliver.
  void prepare();
  /// Any queue; not the main one, since a microphone takes time to start.
  void start() { session_.startRunning(); }
  void stop() { session_.stopRunning(); }
  /// Answers on the main queue, once and never before it returns; asks the user if need be.
  void authorizationStatus(std::function<void(bool granted)> completion);

  void captureOutput(platform::AVCaptureOutput& output,
                     const platform::CMSampleBufferRef& sampleBuffer) override;

 private:
  bool addInput();

  platform::RunLoop& loop_;
  platform::MediaDevices& devices_;
  platform::AVCaptureSession session_;
  std::shared_ptr<platform::DispatchQueue> captureQueue_;
  std::shared_ptr<platform::AVCaptureAudioDataOutput> audioDataOutput_;
  std::weak_ptr<AudioCaptureSessionDelegate> delegate_;
  platform::AVCaptureDeviceRef device_;  ///< the microphone, once it is an input
};

}  // namespace corvana::capture
