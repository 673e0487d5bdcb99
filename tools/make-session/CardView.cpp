#include "CardView.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "Thumb.h"

namespace corvana::session {
namespace {

/// More pixels in the drawing than in the film, so that a tilted card stays sharp.
constexpr double kOversampling = 1.15;
/// A thumb is about 18 mm wide, a card 85.6 mm.
constexpr double kThumbShare = 0.19;

cv::Mat scaledDown(const cv::Mat& drawing, double width) {
  cv::Mat scaled;
  const double factor = width * kOversampling / drawing.cols;
  cv::resize(drawing, scaled, {}, factor, factor, cv::INTER_AREA);
  return scaled;
}

void blendRow(cv::Vec3b* under, const cv::Vec4b* over, int count, int light) {
  for (int x = 0; x < count; ++x) {
    const int alpha = over[x][3];
    if (alpha == 0) continue;
    for (int channel = 0; channel < 3; ++channel) {
      const int colour = std::min(255, over[x][channel] * light >> 8);
      under[x][channel] =
          static_cast<std::uint8_t>((under[x][channel] * (255 - alpha) + colour * alpha) / 255);
    }
  }
}

}  // namespace

void layOver(cv::Mat& picture, const cv::Mat& layer, const std::array<cv::Point2f, 4>& corners,
             double light) {
  const std::vector<cv::Point2f> target(corners.begin(), corners.end());
  const cv::Rect bounds = cv::boundingRect(target) + cv::Size(2, 2) - cv::Point(1, 1);
  const cv::Rect area = bounds & cv::Rect({0, 0}, picture.size());
  if (area.empty() || std::abs(cv::contourArea(target)) < 4.0) return;
  std::vector<cv::Point2f> inArea;
  inArea.reserve(target.size());
  for (const cv::Point2f& corner : target)
    inArea.push_back(corner - cv::Point2f(area.tl()) - cv::Point2f(0.5F, 0.5F));
  const float right = static_cast<float>(layer.cols) - 0.5F;
  const float bottom = static_cast<float>(layer.rows) - 0.5F;
  const std::vector<cv::Point2f> source = {
      {-0.5F, -0.5F}, {right, -0.5F}, {right, bottom}, {-0.5F, bottom}};
  cv::Mat warped;
  cv::warpPerspective(layer, warped, cv::getPerspectiveTransform(source, inArea), area.size(),
                      cv::INTER_LINEAR, cv::BORDER_CONSTANT, cv::Scalar::all(0));
  const int factor = static_cast<int>(std::lround(256.0 * light));
  for (int row = 0; row < area.height; ++row)
    blendRow(picture.ptr<cv::Vec3b>(area.y + row) + area.x, warped.ptr<cv::Vec4b>(row), area.width,
             factor);
}

CardView::CardView(const cv::Mat& front, const cv::Mat& back, double width, const cv::Scalar& skin)
    : front_(scaledDown(front, width)),
      back_(scaledDown(back, width)),
      thumb_(drawThumb(skin)),
      thumbWidth_(kThumbShare * width) {}

void CardView::draw(const CardPose& pose, cv::Mat& picture) const {
  if (!pose.visible) return;
  layOver(picture, pose.back ? back_ : front_, pose.corners, pose.light);
  const double angle = (pose.roll - 9.0) * CV_PI / 180.0;
  const cv::Point2d across(thumbWidth_ * std::cos(angle), thumbWidth_ * std::sin(angle));
  const double length = static_cast<double>(thumb_.rows) / thumb_.cols;
  const cv::Point2d along(-across.y * length, across.x * length);
  const cv::Point2d left = pose.grip - 0.5 * across;
  layOver(picture, thumb_,
          {cv::Point2f(left), cv::Point2f(left + across), cv::Point2f(left + across + along),
           cv::Point2f(left + along)},
          1.0);
}

}  // namespace corvana::session
