#include "capture/RecorderAudioDelegate.h"

#include <utility>

namespace corvana::capture {

RecorderAudioDelegate::RecorderAudioDelegate(std::shared_ptr<corvana::VideoCapture> recorder)
    : recorder_(std::move(recorder)) {}

void RecorderAudioDelegate::capturedAudio(const platform::CMSampleBufferRef& sampleBuffer) {
  recorder_->videoWriter().writeAudio(sampleBuffer);
  if (auto* recognizer = recorder_->speechRecognizer()) recognizer->append(sampleBuffer);
}

}  // namespace corvana::capture
