#include "app/machine/MachineSpeed.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <functional>
#include <string>

#include <opencv2/imgproc.hpp>

#include "app/machine/FilmSpeed.h"
#include "engine/document/text/NetworkTextReader.h"
#include "engine/vision/FaceDetector.h"
#include "engine/vision/MatViews.h"

namespace corvana::app {
namespace {

using platform::Expected;
using platform::PixelBufferRef;

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

Finding filmFinding(double pixelsPerSecond) {
  const devices::CameraMode usual;
  const double pixels = usual.width * usual.height;
  const double wanted = kFilmReserve * usual.framesPerSecond;
  const double pictures = pixelsPerSecond / pixels;
  const bool fine = pictures >= wanted;
  return {"a film of 720x1280: " + rounded(pictures) + " pictures a second, " + rounded(wanted) +
              " leave time for all else",
          fine,
          fine ? ""
               : "a live camera will be asked for " +
                     devices::nameOf(cameraModeFor(pixelsPerSecond)) +
                     ", unless --camera-mode asks for another"};
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
  const PixelBufferRef picture = movingStripes(0);
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

Expected<std::vector<Finding>> measureMachine(const Resources& resources) {
  const auto film = filmSpeed(devices::VideoCodecChoice::automatic);
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
