#pragma once

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "devices/film/FilmSettings.h"
#include "devices/film/FilmWriter.h"
#include "devices/recorded/MediaFile.h"
#include "platform/foundation/VirtualRunLoop.h"
#include "support/LoopAround.h"
#include "support/Scratch.h"

/// Made pictures and sound for films, and what films hold.
namespace corvana::devices::test {

using tests::bytesOf;
using tests::ScratchFolder;
using tests::writeBytes;

constexpr int kSampleRate = 48000;
constexpr platform::Duration kBuffer = std::chrono::milliseconds(20);

inline platform::Duration frameTime(std::int64_t index) {
  return platform::Duration(index * 1'000'000'000 / 30);
}

/// A moving diagonal pattern around `luma`, neutral in colour.
inline platform::CMSampleBufferRef frame(std::int64_t index, int luma = 100, int width = 320,
                                         int height = 240) {
  std::vector<std::uint8_t> bytes(
      platform::PixelBuffer::byteCount(width, height, platform::PixelFormat::i420), 128);
  for (int i = 0; i < width * height; ++i) {
    bytes[static_cast<std::size_t>(i)] =
        static_cast<std::uint8_t>(luma + (i % width + i / width + 3 * index) % 24);
  }
  auto sample = std::make_shared<platform::CMSampleBuffer>();
  sample->presentationTime = platform::TimePoint(frameTime(index));
  sample->duration = frameTime(1);
  sample->image = std::make_shared<platform::PixelBuffer>(
      width, height, platform::PixelFormat::i420, std::move(bytes));
  return sample;
}

/// 20 ms of a 1 kHz tone of the given strength, in step with all others.
inline platform::CMSampleBufferRef sound(platform::Duration time, int strength) {
  auto sample = std::make_shared<platform::CMSampleBuffer>();
  sample->presentationTime = platform::TimePoint(time);
  sample->duration = kBuffer;
  sample->sampleRate = kSampleRate;
  sample->channels = 1;
  for (int i = 0; i < kSampleRate / 50; ++i) {
    sample->samples.push_back(static_cast<std::int16_t>(
        strength * std::sin(2 * std::numbers::pi * 1000 * i / kSampleRate)));
  }
  return sample;
}

/// An open film of 320×240, by default with a sound track.
inline tl::expected<std::shared_ptr<platform::AssetWriter>, platform::Fault> openFilm(
    platform::RunLoop& loop, const std::filesystem::path& path,
    const std::optional<platform::WriterSettings>& sound = audioSettings(),
    const std::optional<platform::WriterSettings>& video =
        videoSettings(platform::kAVVideoCodecTypeH264, 320, 240)) {
  return FilmWriterFactory(loop).make(path, video, sound);
}

/// Real time as far as devices can tell, on a machine that stalls when told to.
class StallingLoop final : public tests::LoopAround {
 public:
  StallingLoop() : LoopAround(inner) {}
  platform::TimePoint now() const override { return inner.now() + stall; }
  void scheduleDevice(platform::TimePoint time, platform::EventClass eventClass,
                      platform::Block block) override {
    inner.scheduleDevice(time - stall, eventClass, std::move(block));
  }
  bool isVirtual() const override { return false; }

  platform::VirtualRunLoop inner;
  platform::Duration stall{};
};

/// Everything a file's camera and microphone deliver when both start at once.
struct Recording {
  std::vector<platform::CMSampleBufferRef> pictures;
  std::vector<std::int16_t> samples;  ///< of all sounds, from the first picture on
  int ends = 0;
  std::vector<std::string> errors;
};

inline Recording play(const std::filesystem::path& path) {
  Recording recording;
  platform::VirtualRunLoop loop;
  const auto file = MediaFile::open(loop, path);
  if (!file) {
    recording.errors.push_back(file.error().sentence);
    return recording;
  }
  (*file)->onEnd = [&] { ++recording.ends; };
  (*file)->onError = [&](const platform::Fault& fault) {
    recording.errors.push_back(fault.sentence);
  };
  (*file)->camera()->start([&](auto sample) { recording.pictures.push_back(std::move(sample)); });
  if (const auto microphone = (*file)->microphone()) {
    microphone->start([&](auto sample) {
      recording.samples.insert(recording.samples.end(), sample->samples.begin(),
                               sample->samples.end());
    });
  }
  loop.advance(std::chrono::minutes(2));
  return recording;
}

/// What became of a command of the shell, as `wait` tells it.
inline int run(const std::string& command) {
  return std::system(("exec " + command).c_str());
}

}  // namespace corvana::devices::test
