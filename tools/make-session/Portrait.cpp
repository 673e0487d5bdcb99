#include "Portrait.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "devices/pictures/ImageFile.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::session {
namespace {

// Points of the 468-point face surface, numbered from the person's own sides.
constexpr std::size_t kRightCheekEdge = 234;
constexpr std::size_t kLeftCheekEdge = 454;
constexpr std::size_t kRightEyeOuter = 33;
constexpr std::size_t kLeftEyeOuter = 263;

}  // namespace

cv::Point2d Portrait::centre() const {
  const auto [left, right] = std::minmax_element(
      mesh.begin(), mesh.end(), [](const auto& a, const auto& b) { return a.x < b.x; });
  const auto [top, bottom] = std::minmax_element(
      mesh.begin(), mesh.end(), [](const auto& a, const auto& b) { return a.y < b.y; });
  return {0.5 * (left->x + right->x), 0.5 * (top->y + bottom->y)};
}

double Portrait::faceWidth() const {
  return cv::norm(point(kLeftCheekEdge) - point(kRightCheekEdge));
}

Result<PortraitReader> PortraitReader::create(const std::filesystem::path& models) {
  auto detector = engine::FaceDetector::load(models / "face_detection_short_range.tflite");
  if (!detector) return fault(detector.error().sentence);
  auto landmarks = engine::FaceLandmarks::load(models / "face_landmark.tflite");
  if (!landmarks) return fault(landmarks.error().sentence);
  return PortraitReader(std::move(*detector), std::move(*landmarks));
}

Result<Portrait> PortraitReader::read(const std::filesystem::path& file) {
  const auto pixels = devices::readImage(file);
  if (!pixels) return fault(pixels.error().sentence);
  const std::vector<engine::Face> faces = detector_.detect(**pixels);
  if (faces.empty())
    return fault("No face is found in " + file.string() +
                 ": give a picture of a person who faces the camera.");
  const cv::Mat shared((*pixels)->height(), (*pixels)->width(), CV_8UC3,
                       const_cast<std::uint8_t*>((*pixels)->plane(0)),
                       static_cast<std::size_t>((*pixels)->stride(0)));
  return Portrait{shared.clone(), landmarks_.locate(**pixels, faces.front()).mesh};
}

cv::Mat passportPhoto(const Portrait& portrait, double aspect, int width) {
  const cv::Point2d eyes = portrait.point(kLeftEyeOuter) - portrait.point(kRightEyeOuter);
  const double roll = std::atan2(eyes.y, eyes.x);
  const double scale = portrait.faceWidth() / (width * 7.0 / 12.0);
  const double height = width / aspect;
  const cv::Point2d centre = portrait.centre();
  const double c = scale * std::cos(roll);
  const double s = scale * std::sin(roll);
  // From the photo to the portrait; the face sits a little below the middle, hair above it.
  const cv::Matx23d toPortrait(c, -s, centre.x - c * 0.5 * width + s * 0.55 * height,  //
                               s, c, centre.y - s * 0.5 * width - c * 0.55 * height);
  cv::Mat photo;
  cv::warpAffine(portrait.image, photo, toPortrait, {width, static_cast<int>(std::lround(height))},
                 cv::INTER_CUBIC | cv::WARP_INVERSE_MAP, cv::BORDER_REPLICATE);
  return photo;
}

}  // namespace corvana::session
