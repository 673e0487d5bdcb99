#pragma once

#include <cstdint>
#include <memory>

#include "platform/media/SampleBuffer.h"

namespace corvana::devices {

/// Brings microphone buffers of any usual rate into a film's form, should the microphone change
/// its own. Buffers that have that form already pass untouched. Not thread safe.
class FilmSoundConverter {
 public:
  FilmSoundConverter(int sampleRate, int channels);
  ~FilmSoundConverter();

  /// The buffer in the film's form; null when that can't be made of it: it is neither mono nor
  /// stereo, or names no real rate.
  platform::CMSampleBufferRef convert(const platform::CMSampleBufferRef& buffer);

 private:
  struct Run;

  const int sampleRate_;
  const int channels_;
  std::unique_ptr<Run> run_;  ///< the buffers of one form that come now
};

}  // namespace corvana::devices
