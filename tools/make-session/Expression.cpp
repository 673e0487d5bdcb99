#include "Expression.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include <opencv2/imgproc.hpp>

#include "Ease.h"

namespace corvana::session {
namespace {

using Indices = std::vector<std::size_t>;

// Rows of points of the 468-point face surface, right eye and left eye of the person.
const Indices kUpperLid[] = {{33, 246, 161, 160, 159, 158, 157, 173, 133},
                             {263, 466, 388, 387, 386, 385, 384, 398, 362}};
const Indices kLowerLid[] = {{33, 7, 163, 144, 145, 153, 154, 155, 133},
                             {263, 249, 390, 373, 374, 380, 381, 382, 362}};
const Indices kFold[] = {{33, 113, 225, 224, 223, 222, 221, 189, 133},
                         {263, 342, 445, 444, 443, 442, 441, 413, 362}};
const Indices kLowerLip = {78, 95, 88, 178, 87, 14, 317, 402, 318, 324, 308};
constexpr std::size_t kChin = 152;

// In face widths.
constexpr double kJawDrop = 0.050;
constexpr double kBelowChin = 0.35;
constexpr double kLash = 0.006;

const cv::Scalar kMouthInside(72, 30, 30);

Contour contour(const engine::FaceMesh& face, const Indices& indices) {
  std::vector<cv::Point2d> points;
  for (const std::size_t index : indices)
    points.emplace_back(face[index].x, face[index].y);
  return Contour(std::move(points));
}

cv::Rect within(cv::Size canvas, double left, double top, double right, double bottom) {
  const cv::Rect area(static_cast<int>(std::floor(left)), static_cast<int>(std::floor(top)),
                      static_cast<int>(std::ceil(right - left)),
                      static_cast<int>(std::ceil(bottom - top)));
  return area & cv::Rect({0, 0}, canvas);
}

/// Lays `above` over the canvas pixel by `share`.
void lay(cv::Vec3b& pixel, const cv::Scalar& above, double share) {
  for (int channel = 0; channel < 3; ++channel)
    pixel[channel] =
        cv::saturate_cast<std::uint8_t>(pixel[channel] * (1.0 - share) + above[channel] * share);
}

cv::Scalar colourAt(const cv::Mat& picture, double x, double y) {
  const int column = std::clamp(static_cast<int>(x), 0, picture.cols - 1);
  const int row = std::clamp(static_cast<int>(std::floor(y)), 0, picture.rows - 2);
  const double share = std::clamp(y - row, 0.0, 1.0);
  const cv::Vec3d upper = picture.at<cv::Vec3b>(row, column);
  const cv::Vec3d lower = picture.at<cv::Vec3b>(row + 1, column);
  return cv::Scalar(cv::Vec3d(upper * (1.0 - share) + lower * share));
}

}  // namespace

Contour::Contour(std::vector<cv::Point2d> points) : points_(std::move(points)) {
  std::sort(points_.begin(), points_.end(), [](auto& a, auto& b) { return a.x < b.x; });
}

double Contour::at(double x) const {
  const auto next =
      std::lower_bound(points_.begin(), points_.end(), x,
                       [](const cv::Point2d& p, double value) { return p.x < value; });
  if (next == points_.begin()) return points_.front().y;
  if (next == points_.end()) return points_.back().y;
  const cv::Point2d a = *(next - 1);
  const cv::Point2d b = *next;
  return mix(a.y, b.y, b.x > a.x ? (x - a.x) / (b.x - a.x) : 0.0);
}

Expression::Expression(const engine::FaceMesh& face, double faceWidth, const cv::Mat& canvas)
    : faceWidth_(faceWidth),
      eyes_{eye(face, false, faceWidth, canvas.size()), eye(face, true, faceWidth, canvas.size())},
      lowerLip_(contour(face, kLowerLip)),
      mouthX_(0.5 * (lowerLip_.left() + lowerLip_.right())),
      halfMouth_(0.5 * (lowerLip_.right() - lowerLip_.left())),
      chin_(face[kChin].y) {
  mouthArea_ =
      within(canvas.size(), mouthX_ - 2.1 * halfMouth_, lowerLip_.at(mouthX_) - 0.25 * faceWidth_,
             mouthX_ + 2.1 * halfMouth_, chin_ + kBelowChin * faceWidth_);
}

Expression::Eye Expression::eye(const engine::FaceMesh& face, bool left, double faceWidth,
                                cv::Size canvas) const {
  Eye eye{contour(face, kFold[left]),
          contour(face, kUpperLid[left]),
          contour(face, kLowerLid[left]),
          {}};
  const double middle = 0.5 * (eye.upper.left() + eye.upper.right());
  eye.area = within(canvas, eye.upper.left(), eye.upper.at(middle) - 0.25 * faceWidth,
                    eye.upper.right(), eye.lower.at(middle) + 0.12 * faceWidth);
  return eye;
}

void Expression::draw(const cv::Mat& rest, cv::Mat& canvas, double lids, double mouth) const {
  for (const Eye& eye : eyes_) {
    rest(eye.area).copyTo(canvas(eye.area));
    if (lids > 0.01) drawEye(eye, rest, canvas, lids);
  }
  rest(mouthArea_).copyTo(canvas(mouthArea_));
  if (mouth > 0.01) drawMouth(rest, canvas, mouth);
}

void Expression::drawEye(const Eye& eye, const cv::Mat& rest, cv::Mat& canvas, double lids) const {
  const double lash = kLash * faceWidth_;
  for (int x = eye.area.x; x < eye.area.br().x; ++x) {
    const double upper = eye.upper.at(x);
    const double lower = std::max(eye.lower.at(x), upper);
    const double fold = std::min(eye.fold.at(x), upper - 1.0);
    const double edge = mix(upper, lower, lids);
    const double opening = lower - upper;
    for (int y = std::max(eye.area.y, static_cast<int>(fold)); y < eye.area.br().y; ++y) {
      const double cover = std::clamp(edge + lash - y, 0.0, 1.0);
      if (cover <= 0.0) break;
      cv::Vec3b& pixel = canvas.at<cv::Vec3b>(y, x);
      // The lid's lower part lies in the shadow of its lashes, unfit to be stretched.
      const double skin = mix(upper - lash, mix(fold, upper, 0.6), lids);
      const double source = mix(fold, skin, std::min(1.0, (y - fold) / (edge - fold)));
      lay(pixel, colourAt(rest, x, source), cover);
      const double line = std::max(0.0, 1.0 - std::abs(y - edge) / (1.6 * lash));
      lay(pixel, cv::Scalar(46, 34, 32), 0.5 * line * std::min(1.0, 0.3 * opening) * lids);
    }
  }
}

void Expression::drawMouth(const cv::Mat& rest, cv::Mat& canvas, double open) const {
  const double most = open * kJawDrop * faceWidth_;
  const double end = mouthArea_.br().y;
  for (int x = mouthArea_.x; x < mouthArea_.br().x; ++x) {
    const double u = std::abs(x - mouthX_) / halfMouth_;
    const double jaw = most * (1.0 - ease(u, 0.4, 2.05));
    const double gap = most * std::max(0.0, 1.0 - u * u);
    const double lip = lowerLip_.at(x);
    const double whole =
        std::max(mix(lip, chin_, 0.5), lip + 1.0);  // from here all goes with the jaw
    const double chin = std::max(chin_, whole + 1.0);
    for (int y = std::max(mouthArea_.y, static_cast<int>(lip)); y < mouthArea_.br().y; ++y) {
      double source = lip;
      if (y > lip + gap) source = mix(lip, whole, (y - lip - gap) / (whole + jaw - lip - gap));
      if (y > whole + jaw) source = y - jaw;
      if (y > chin + jaw) source = mix(chin, end, (y - chin - jaw) / (end - chin - jaw));
      cv::Vec3b& pixel = canvas.at<cv::Vec3b>(y, x);
      lay(pixel, colourAt(rest, x, source), 1.0);
      const double inside = std::clamp(std::min(y - lip, lip + gap - y) + 0.5, 0.0, 1.0);
      if (gap > 0.5) lay(pixel, kMouthInside, 0.9 * inside);
    }
  }
}

}  // namespace corvana::session
