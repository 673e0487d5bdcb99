#include "app/machine/FilmSpeed.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "app/record/ScratchFolder.h"
#include "devices/film/FilmWriter.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace corvana::app {
namespace {

using devices::CameraMode;
using platform::Expected;
using platform::PixelBuffer;

/// From the best to the least with which a card's print can still be read.
constexpr std::array<CameraMode, 4> kCameraModes{
    {{1280, 720, 30}, {1280, 720, 15}, {640, 480, 30}, {640, 480, 15}}};

constexpr int kFilmWidth = 720;
constexpr int kFilmHeight = 1280;
constexpr int kFilmRate = 30;
constexpr int kMostPictures = 60;
/// On a slow machine: a person waits before the camera.
constexpr std::chrono::seconds kMostTime{1};

double pixelsPerSecondOf(const CameraMode& mode) {
  return mode.width * mode.height * mode.framesPerSecond;
}

platform::CMSampleBufferRef frame(int number) {
  auto sample = std::make_shared<platform::CMSampleBuffer>();
  sample->presentationTime =
      platform::TimePoint(platform::seconds(static_cast<double>(number) / kFilmRate));
  sample->duration = platform::seconds(1.0 / kFilmRate);
  sample->image = movingStripes(number);
  return sample;
}

}  // namespace

platform::PixelBufferRef movingStripes(int number) {
  constexpr auto kFormat = platform::PixelFormat::i420;
  std::vector<std::uint8_t> bytes(PixelBuffer::byteCount(kFilmWidth, kFilmHeight, kFormat), 128);
  for (int i = 0; i < kFilmWidth * kFilmHeight; ++i) {
    const int x = i % kFilmWidth + 3 * number;
    bytes[static_cast<std::size_t>(i)] =
        static_cast<std::uint8_t>(40 + (x * x / 64 + i / kFilmWidth) % 160);
  }
  return std::make_shared<PixelBuffer>(kFilmWidth, kFilmHeight, kFormat, std::move(bytes));
}

Expected<double> filmSpeed(devices::VideoCodecChoice choice) {
  using Clock = std::chrono::steady_clock;
  const auto folder = ScratchFolder::make();
  if (!folder) return tl::unexpected(folder.error());
  const auto codecs = devices::realTimeVideoCodecs(choice);
  if (codecs.empty()) return platform::failure("No encoder of films is installed.");
  platform::VirtualRunLoop loop;
  const auto film = devices::FilmWriterFactory(loop).make(
      folder->path() / "film.mp4", devices::videoSettings(codecs.front(), kFilmWidth, kFilmHeight),
      std::nullopt);
  if (!film) return tl::unexpected(film.error());
  const auto began = Clock::now();
  int pictures = 0;
  while (pictures < kMostPictures && Clock::now() - began < kMostTime)
    (*film)->appendVideo(frame(pictures++));
  if (const auto finished = (*film)->finish(); !finished) return tl::unexpected(finished.error());
  const double seconds = std::chrono::duration<double>(Clock::now() - began).count();
  return pictures * kFilmWidth * kFilmHeight / seconds;
}

CameraMode cameraModeFor(double pixelsPerSecond) {
  const auto mode = std::ranges::find_if(kCameraModes, [=](const CameraMode& candidate) {
    return pixelsPerSecond >= kFilmReserve * pixelsPerSecondOf(candidate);
  });
  return mode == kCameraModes.end() ? kCameraModes.back() : *mode;
}

}  // namespace corvana::app
