#pragma once

#include <cmath>
#include <cstdint>
#include <memory>
#include <numbers>
#include <vector>

#include "platform/media/SampleBuffer.h"

/// Made pictures and sound for films.
namespace devices::test {

constexpr int kSampleRate = 48000;
constexpr std::int64_t kSamplesPerBuffer = 960;
constexpr platform::Duration kBuffer = std::chrono::milliseconds(20);

inline platform::Duration frameTime(std::int64_t index, int framesPerSecond = 30) {
  return platform::Duration(index * 1'000'000'000 / framesPerSecond);
}

/// A moving diagonal pattern around `luma`, neutral in colour.
inline platform::CMSampleBufferRef frame(std::int64_t index, int luma = 100, int width = 320,
                                         int height = 240) {
  std::vector<std::uint8_t> bytes(
      platform::PixelBuffer::byteCount(width, height, platform::PixelFormat::i420), 128);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      bytes[static_cast<std::size_t>(y * width + x)] =
          static_cast<std::uint8_t>(luma + (x + y + 3 * index) % 24);
    }
  }
  platform::CMSampleBuffer sample;
  sample.presentationTime = platform::TimePoint(frameTime(index));
  sample.duration = frameTime(1);
  sample.image = std::make_shared<platform::PixelBuffer>(width, height, platform::PixelFormat::i420,
                                                         std::move(bytes));
  return std::make_shared<platform::CMSampleBuffer>(std::move(sample));
}

/// 20 ms of a 1 kHz tone of the given strength, in step with all others.
inline platform::CMSampleBufferRef sound(platform::Duration time, int strength) {
  platform::CMSampleBuffer sample;
  sample.presentationTime = platform::TimePoint(time);
  sample.duration = kBuffer;
  sample.sampleRate = kSampleRate;
  sample.channels = 1;
  for (int i = 0; i < kSamplesPerBuffer; ++i) {
    sample.samples.push_back(static_cast<std::int16_t>(
        strength * std::sin(2 * std::numbers::pi * 1000 * i / kSampleRate)));
  }
  return std::make_shared<platform::CMSampleBuffer>(std::move(sample));
}

}  // namespace devices::test
