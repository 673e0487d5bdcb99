#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/media/SampleBuffer.h"

namespace corvana::engine {

/// Brings a stream of microphone samples to one channel and one rate, low-passed. One thread at a
/// time.
class MonoResampler {
 public:
  explicit MonoResampler(int outputRate);
  ~MonoResampler();
  MonoResampler(const MonoResampler&) = delete;
  MonoResampler& operator=(const MonoResampler&) = delete;

  /// The next samples at the output rate, a few milliseconds late. A buffer of another rate than
  /// the one before begins a new stream; one that holds no whole frame of samples gives nothing.
  std::vector<std::int16_t> convert(const platform::CMSampleBuffer& buffer);
  /// Forgets the stream: the next buffer begins a new one.
  void reset();

 private:
  struct Converter;
  int outputRate_;
  int inputRate_ = 0;
  std::unique_ptr<Converter> converter_;
};

}  // namespace corvana::engine
