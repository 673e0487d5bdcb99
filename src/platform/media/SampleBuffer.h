#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/foundation/Time.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::platform {

/// One camera picture or a run of microphone samples, with the instant of its first sample on the
/// run loop's clock. Immutable and shared; any thread.
struct CMSampleBuffer {
  TimePoint presentationTime{};
  Duration duration{};

  /// Camera picture, upright and not mirrored; null in an audio buffer.
  PixelBufferRef image;

  /// Microphone samples: 16-bit signed, channels interleaved; empty in a video buffer.
  std::vector<std::int16_t> samples;
  int sampleRate = 0;
  int channels = 0;
};

using CMSampleBufferRef = std::shared_ptr<const CMSampleBuffer>;

}  // namespace corvana::platform
