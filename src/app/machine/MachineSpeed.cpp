#include "app/machine/MachineSpeed.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <functional>
#include <string>

#include <opencv2/imgproc.hpp>

#include "app/record/ScratchFolder.h"
#include "devices/film/FilmSettings.h"
#include "devices/film/FilmWriter.h"
#include "engine/document/text/NetworkTextReader.h"
#include "engine/vision/FaceDetector.h"
#include "engine/vision/MatViews.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace corvana::app {
namespace {

using platform::Expected;
using platform::PixelBuffer;
using platform::PixelBufferRef;

struct CameraMode {
  const char* name;
  double pixelsPerSecond;
};

/// From the best to the least with which a card's print can still be read.
constexpr std::array<CameraMode, 4> kCameraModes{{{"1280x720@30", 1280.0 * 720 * 30},
                                                  {"1280x720@15", 1280.0 * 720 * 15},
                                                  {"640x480@30", 640.0 * 480 * 30},
                                                  {"640x480@15", 640.0 * 480 * 15}}};
/// How much faster than its camera an encoder has to be, so that a core has time for the looks.
constexpr double kFilmReserve = 2;

constexpr int kFilmWidth = 720;
constexpr int kFilmHeight = 1280;
constexpr int kFilmRate = 30;
constexpr int kFilmPictures = 60;

/// A face is looked for ten times a second; as much time again is left to all else.
constexpr double kMostFaceSearch = 0.05;
/// A card is read while it is held still, and nobody likes to do that for long.
constexpr double kMostReading = 1.5;
constexpr int kRepeats = 5;

/// Seconds of the wall clock, which is what a person in front of the machine waits.
double secondsOf(const std::function<void()>& work) {
  const auto began = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
}

/// The first run of a network is dearer than the others, and so is not counted.
double medianSecondsOf(const std::function<void()>& work) {
  work();
  std::array<double, kRepeats> seconds;
  std::ranges::generate(seconds, [&] { return secondsOf(work); });
  std::ranges::nth_element(seconds, seconds.begin() + kRepeats / 2);
  return seconds[kRepeats / 2];
}

std::string rounded(double value) {
  return std::to_string(std::lround(value));
}

/// Stripes that move over a slope, so that there is something to encode in each picture.
PixelBufferRef stripes(int number) {
  constexpr auto kFormat = platform::PixelFormat::i420;
  std::vector<std::uint8_t> bytes(PixelBuffer::byteCount(kFilmWidth, kFilmHeight, kFormat), 128);
  for (int i = 0; i < kFilmWidth * kFilmHeight; ++i) {
    const int x = i % kFilmWidth + 3 * number;
    bytes[static_cast<std::size_t>(i)] =
        static_cast<std::uint8_t>(40 + (x * x / 64 + i / kFilmWidth) % 160);
  }
  return std::make_shared<PixelBuffer>(kFilmWidth, kFilmHeight, kFormat, std::move(bytes));
}

platform::CMSampleBufferRef frame(int number) {
  auto sample = std::make_shared<platform::CMSampleBuffer>();
  sample->presentationTime =
      platform::TimePoint(platform::seconds(static_cast<double>(number) / kFilmRate));
  sample->duration = platform::seconds(1.0 / kFilmRate);
  sample->image = stripes(number);
  return sample;
}

/// Pixels a second that the film's encoder takes.
Expected<double> filmSpeed() {
  const auto folder = ScratchFolder::make();
  if (!folder) return tl::unexpected(folder.error());
  const auto codecs = devices::realTimeVideoCodecs(devices::VideoCodecChoice::automatic);
  if (codecs.empty()) return platform::failure("No encoder of films is installed.");
  platform::VirtualRunLoop loop;
  const auto film = devices::FilmWriterFactory(loop).make(
      folder->path() / "film.mp4", devices::videoSettings(codecs.front(), kFilmWidth, kFilmHeight),
      std::nullopt);
  if (!film) return tl::unexpected(film.error());
  Expected<void> finished;
  const double seconds = secondsOf([&] {
    for (int number = 0; number < kFilmPictures; ++number)
      (*film)->appendVideo(frame(number));
    finished = (*film)->finish();
  });
  if (!finished) return tl::unexpected(finished.error());
  return kFilmPictures * kFilmWidth * kFilmHeight / seconds;
}

Finding filmFinding(double pixelsPerSecond) {
  const double pictures = pixelsPerSecond / (kFilmWidth * kFilmHeight);
  const bool fine = pictures >= kFilmReserve * kFilmRate;
  return {"a film of 720x1280: " + rounded(pictures) + " pictures a second, " +
              rounded(kFilmReserve * kFilmRate) + " leave time for all else",
          fine,
          fine ? ""
               : std::string("ask less of the camera, with --camera-mode ") +
                     cameraModeFor(pixelsPerSecond)};
}

Finding timeFinding(const std::string& what, double seconds, double most, const std::string& cure) {
  const bool fine = seconds <= most;
  return {what + ": " + rounded(seconds * 1000) + " ms, at most " + rounded(most * 1000) +
              " keep up with a live person",
          fine, fine ? "" : cure};
}

/// A picture without a face is the dearest: it is searched to its last corner.
Expected<double> faceSearchSeconds(const Resources& resources) {
  auto detector = engine::FaceDetector::load(resources.faceDetector());
  if (!detector) return tl::unexpected(detector.error());
  const PixelBufferRef picture = stripes(0);
  return medianSecondsOf([&] { detector->detect(*picture); });
}

PixelBufferRef printedCard() {
  cv::Mat card(630, 1000, CV_8UC3, cv::Scalar::all(235));
  for (int line = 0; line < 8; ++line) {
    cv::putText(card, "SPECIMEN LINE 0123456789", {40, 80 + 70 * line}, cv::FONT_HERSHEY_SIMPLEX,
                1.2, cv::Scalar::all(20), 2, cv::LINE_AA);
  }
  return engine::pixelBufferFrom(card);
}

Expected<double> readingSeconds(const Resources& resources) {
  auto reader = engine::NetworkTextReader::load(resources.textReader());
  if (!reader) return tl::unexpected(reader.error());
  const PixelBufferRef card = printedCard();
  return medianSecondsOf([&] { reader->read(*card); });
}

}  // namespace

const char* cameraModeFor(double pixelsPerSecond) {
  const auto mode = std::ranges::find_if(kCameraModes, [=](const CameraMode& candidate) {
    return pixelsPerSecond >= kFilmReserve * candidate.pixelsPerSecond;
  });
  return mode == kCameraModes.end() ? kCameraModes.back().name : mode->name;
}

Expected<std::vector<Finding>> measureMachine(const Resources& resources) {
  const auto film = filmSpeed();
  if (!film) return tl::unexpected(film.error());
  const auto search = faceSearchSeconds(resources);
  if (!search) return tl::unexpected(search.error());
  const auto reading = readingSeconds(resources);
  if (!reading) return tl::unexpected(reading.error());
  const std::string lessWork = "close other programs, or take a faster machine";
  return std::vector{
      filmFinding(*film), timeFinding("a search for faces", *search, kMostFaceSearch, lessWork),
      timeFinding("reading a card of eight lines", *reading, kMostReading, lessWork)};
}

}  // namespace corvana::app
