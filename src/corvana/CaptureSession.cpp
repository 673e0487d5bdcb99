#include "corvana/CaptureSession.h"

#include <utility>

namespace corvana {

CaptureSession::CaptureSession(platform::RunLoop& loop)
    : loop_(loop), output_(std::make_shared<platform::AVCaptureVideoDataOutput>(loop)) {}

std::shared_ptr<CaptureSession> CaptureSession::make(platform::RunLoop& loop,
                                                     const platform::AVCaptureDeviceRef& camera) {
  std::shared_ptr<CaptureSession> self(new CaptureSession(loop));
  if (auto input = platform::AVCaptureDeviceInput::make(camera)) {
    self->session_.addInput(std::move(*input));
  }
  self->output_->setSampleBufferDelegate(self, loop.makeSerialQueue("CaptureSessionQueue"));
  self->session_.addOutput(self->output_);
  return self;
}

void CaptureSession::setDelegate(std::weak_ptr<CaptureSessionDelegate> delegate) {
  const std::lock_guard lock(delegateMutex_);
  delegate_ = std::move(delegate);
}

void CaptureSession::captureOutput(platform::AVCaptureOutput&,
                                   const platform::CMSampleBufferRef& sampleBuffer) {
  std::weak_ptr<CaptureSessionDelegate> delegate;
  {
    const std::lock_guard lock(delegateMutex_);
    delegate = delegate_;
  }
  platform::callDelegate(loop_, delegate, [&](auto& d) { d.capturedVideo(sampleBuffer); });
}

}  // namespace corvana
