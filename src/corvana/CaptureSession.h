#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "platform/foundation/RunLoop.h"
#include "platform/media/CaptureSession.h"

namespace corvana {

enum class CameraPosition { front, back };

/// Which picture is analysed for documents; never changes the film.
enum class CaptureMode { standard, high, barcode };

/// Receives every camera frame, in order, on the capture queue.
class CaptureSessionDelegate {
 public:
  virtual ~CaptureSessionDelegate() = default;
  virtual void capturedVideo(const platform::CMSampleBufferRef& sampleBuffer) = 0;
};

/// The camera of a screen. Configured on the main queue.
class CaptureSession final : public platform::AVCaptureSampleBufferDelegate,
                             public std::enable_shared_from_this<CaptureSession> {
 public:
  /// A null camera gives a session that never delivers a frame.
  static std::shared_ptr<CaptureSession> make(platform::RunLoop& loop,
                                              const platform::AVCaptureDeviceRef& camera);

  /// Held weakly.
  void setDelegate(std::weak_ptr<CaptureSessionDelegate> delegate);
  CaptureMode captureMode() const { return captureMode_; }
  void setCaptureMode(CaptureMode mode) { captureMode_ = mode; }
  platform::AVCaptureVideoDataOutput& videoDataOutput() { return *output_; }
  /// Any queue but the main one in real time.
  void startRunning() { session_.startRunning(); }
  void stopRunning() { session_.stopRunning(); }

  void captureOutput(platform::AVCaptureOutput& output,
                     const platform::CMSampleBufferRef& sampleBuffer) override;

 private:
  explicit CaptureSession(platform::RunLoop& loop);

  platform::RunLoop& loop_;
  platform::AVCaptureSession session_;
  std::shared_ptr<platform::AVCaptureVideoDataOutput> output_;
  std::mutex delegateMutex_;
  std::weak_ptr<CaptureSessionDelegate> delegate_;
  std::atomic<CaptureMode> captureMode_ = CaptureMode::standard;
};

}  // namespace corvana
