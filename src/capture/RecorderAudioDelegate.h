#pragma once

#include <memory>

#include "capture/AudioCaptureSession.h"
#include "corvana/VideoCapture.h"

namespace corvana::capture {

/// The recorder as receiver of the microphone: each buffer goes to the film, then to the
/// recogniser.
class RecorderAudioDelegate final : public AudioCaptureSessionDelegate {
 public:
  explicit RecorderAudioDelegate(std::shared_ptr<corvana::VideoCapture> recorder);

  void capturedAudio(const platform::CMSampleBufferRef& sampleBuffer) override;

 private:
  std::shared_ptr<corvana::VideoCapture> recorder_;
};

}  // namespace corvana::capture
