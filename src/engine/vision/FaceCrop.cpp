#include "engine/vision/FaceCrop.h"

#include <array>
#include <cmath>
#include <complex>
#include <memory>

#include <opencv2/imgproc.hpp>

#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

// Points of the plane as complex numbers: a similarity is then z → a·z + b.
using Point = std::complex<double>;

/// Where right eye, left eye and mouth lie in a square of side 1. The embedding network was trained
/// on faces aligned like this; of the crops compared it separates strangers best by far.
constexpr std::array<Point, 3> kTemplate{Point{0.3092, 0.3175}, Point{0.6908, 0.3175},
                                         Point{0.5, 0.7215}};

struct Similarity {
  Point a;
  Point b;
};

Point meanOf(const std::array<Point, 3>& points) {
  return (points[0] + points[1] + points[2]) / 3.0;
}

/// Least-squares similarity that brings the template to the face.
Similarity templateToFace(const std::array<Point, 3>& face) {
  const Point templateMean = meanOf(kTemplate);
  const Point faceMean = meanOf(face);
  Point numerator = 0;
  double denominator = 0;
  for (std::size_t i = 0; i < face.size(); ++i) {
    numerator += std::conj(kTemplate[i] - templateMean) * (face[i] - faceMean);
    denominator += std::norm(kTemplate[i] - templateMean);
  }
  const Point a = numerator / denominator;
  return {a, faceMean - a * templateMean};
}

}  // namespace

platform::UIImageRef cropFace(const platform::PixelBuffer& picture, const Face& face) {
  if (face.box.width < kLeastFaceWidth) return nullptr;
  const auto point = [&](Face::Keypoint which) {
    return Point{face.keypoints[which].x, face.keypoints[which].y};
  };
  const Similarity fit =
      templateToFace({point(Face::rightEye), point(Face::leftEye), point(Face::mouth)});
  const int side = static_cast<int>(std::lround(std::abs(fit.a)));
  if (side < kLeastFaceWidth / 2 || side > 2 * face.size()) return nullptr;

  // Pixel (i + 0.5) of the crop is the template's (i + 0.5) / side, and pixel centres lie at halves
  // in the picture too.
  const Point a = fit.a / static_cast<double>(side);
  const Point half{0.5, 0.5};
  const Point b = fit.b + a * half - half;
  const cv::Matx23d transform(a.real(), -a.imag(), b.real(), a.imag(), a.real(), b.imag());
  cv::Mat crop;
  cv::warpAffine(rgbMat(picture), crop, transform, {side, side},
                 cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, cv::BORDER_REPLICATE);
  return std::make_shared<const platform::UIImage>(pixelBufferFrom(crop));
}

}  // namespace corvana::engine
