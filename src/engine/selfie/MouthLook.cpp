#include "engine/selfie/MouthLook.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

constexpr std::size_t kUnderTheNose = 2;

/// The plane of the face: the outer corners of the eyes at (0, 0) and (1, 0), the foot of the nose
/// where it lies on an even face.
const cv::Point2f kFoot[] = {{0.0F, 0.0F}, {1.0F, 0.0F}, {0.5F, 0.55F}};
const cv::Rect2d kLipsPlace{0.2, 0.68, 0.6, 0.42};
const cv::Rect2d kSkinPlace{0.1, 0.15, 0.8, 0.35};
/// Pixels that make one of a patch, along each side: what is sampled too thinly flickers.
constexpr int kOversampling = 2;

cv::Mat faceToPicture(const FaceMesh& mesh) {
  cv::Point2f points[3];
  std::ranges::transform(std::array{kRightEyeOuterCorner, kLeftEyeOuterCorner, kUnderTheNose},
                         points, [&](std::size_t index) {
                           return cv::Point2f(static_cast<float>(mesh[index].x),
                                              static_cast<float>(mesh[index].y));
                         });
  return cv::getAffineTransform(kFoot, points);
}

/// The part of a picture that the patches are cut from.
cv::Rect faceIn(const cv::Mat& faceToPicture, cv::Size picture) {
  constexpr double kMargin = 2;  // interpolation looks beside its place
  const cv::Rect2d place = kLipsPlace | kSkinPlace;
  std::vector<cv::Point2d> corners{
      place.tl(), {place.br().x, place.y}, place.br(), {place.x, place.br().y}};
  cv::transform(corners, corners, faceToPicture);
  const auto [left, right] = std::ranges::minmax(corners, {}, &cv::Point2d::x);
  const auto [top, bottom] = std::ranges::minmax(corners, {}, &cv::Point2d::y);
  return pixelRect({left.x - kMargin, top.y - kMargin, right.x - left.x + 2 * kMargin,
                    bottom.y - top.y + 2 * kMargin},
                   picture);
}

template <std::size_t Count>
void cut(const cv::Mat& picture, const cv::Mat& faceToPicture, const cv::Rect2d& place,
         std::size_t width, std::array<float, Count>& patch) {
  const cv::Size size(static_cast<int>(width), static_cast<int>(Count / width));
  const cv::Size sampled = size * kOversampling;
  const cv::Mat patchToFace = (cv::Mat_<double>(3, 3) << place.width / sampled.width, 0, place.x, 0,
                               place.height / sampled.height, place.y, 0, 0, 1);
  cv::Mat samples;
  cv::warpAffine(picture, samples, faceToPicture * patchToFace, sampled,
                 cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, cv::BORDER_REPLICATE);
  samples.convertTo(samples, CV_32F);
  cv::Mat pixels(size, CV_32F, patch.data());
  cv::resize(samples, pixels, size, 0, 0, cv::INTER_AREA);
  pixels /= std::max(cv::mean(pixels)[0], 1.0);
}

template <std::size_t Count>
double meanDifference(const std::array<float, Count>& a, const std::array<float, Count>& b) {
  double sum = 0;
  for (std::size_t i = 0; i < Count; ++i)
    sum += std::abs(a[i] - b[i]);
  return sum / static_cast<double>(Count);
}

}  // namespace

MouthLook mouthLook(const platform::PixelBuffer& picture, const FaceMesh& mesh) {
  cv::Mat transform = faceToPicture(mesh);
  const cv::Rect face = faceIn(transform, {picture.width(), picture.height()});
  MouthLook look;
  if (face.empty()) return look;
  const cv::Mat grey = grayMat(picture, face);
  transform.at<double>(0, 2) -= face.x;
  transform.at<double>(1, 2) -= face.y;
  cut(grey, transform, kLipsPlace, MouthLook::kLipsWidth, look.lips);
  cut(grey, transform, kSkinPlace, MouthLook::kSkinWidth, look.skin);
  return look;
}

MouthChange changeBetween(const MouthLook& a, const MouthLook& b) {
  return {meanDifference(a.lips, b.lips), meanDifference(a.skin, b.skin)};
}

}  // namespace corvana::engine
