#pragma once

#include <cstdint>
#include <memory>

#include "platform/media/SampleBuffer.h"

namespace devices {

/// Brings microphone buffers of any usual rate into a film's form, should the microphone change
/// its own. Buffers that have that form already pass untouched. Not thread safe.
class FilmSoundConverter {
 public:
  FilmSoundConverter(int sampleRate, int channels);
  ~FilmSoundConverter();

  /// Null when nothing can be made of the buffer: neither mono nor stereo, or no real rate.
  platform::CMSampleBufferRef convert(const platform::CMSampleBufferRef& buffer);

 private:
  struct Run;

  const int sampleRate_;
  const int channels_;
  std::unique_ptr<Run> run_;  ///< of buffers of one form
};

}  // namespace devices
