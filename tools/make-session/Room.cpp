#include "Room.h"

#include <algorithm>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "Ease.h"

namespace corvana::session {
namespace {

constexpr int kCoarse = 8;  // what is blurred needs no more than an eighth of the pixels

const cv::Vec3d kWallLight(206, 199, 188);
const cv::Vec3d kWallDark(132, 124, 118);

cv::Mat enlarged(const cv::Mat& portrait, double scale, cv::Point2d shift, cv::Size size) {
  const cv::Matx23d transform(scale, 0.0, shift.x, 0.0, scale, shift.y);
  cv::Mat picture;
  cv::warpAffine(portrait, picture, transform, size, cv::INTER_CUBIC, cv::BORDER_REPLICATE);
  return picture;
}

/// Light falls in from the upper left and fades downwards.
cv::Vec3d wallColour(double x, double y) {
  const double light = std::clamp(1.05 - 0.45 * x - 0.55 * y, 0.0, 1.0);
  return kWallDark + (kWallLight - kWallDark) * light;
}

/// The portrait's own colours spread far beyond it, on the way to the wall's.
cv::Mat surroundings(const cv::Mat& picture, const cv::Rect2d& portrait) {
  cv::Mat coarse;
  cv::resize(picture, coarse, {}, 1.0 / kCoarse, 1.0 / kCoarse, cv::INTER_AREA);
  cv::GaussianBlur(coarse, coarse, {}, 9.0, 9.0, cv::BORDER_REPLICATE);
  for (int row = 0; row < coarse.rows; ++row)
    for (int column = 0; column < coarse.cols; ++column) {
      const double x = column * kCoarse;
      const double y = row * kCoarse;
      const double far =
          std::max({portrait.x - x, x - portrait.br().x, portrait.y - y, y - portrait.br().y, 0.0});
      const double share = 0.75 * ease(far, 0.0, 420.0);
      const cv::Vec3d own = coarse.at<cv::Vec3b>(row, column);
      const cv::Vec3d wall = wallColour(x / picture.cols, y / picture.rows);
      coarse.at<cv::Vec3b>(row, column) = cv::Vec3b(own * (1.0 - share) + wall * share);
    }
  cv::Mat fine;
  cv::resize(coarse, fine, picture.size(), 0, 0, cv::INTER_CUBIC);
  return fine;
}

}  // namespace

cv::Mat setIntoRoom(const cv::Mat& portrait, double scale, cv::Point2d shift, cv::Size size) {
  cv::Mat picture = enlarged(portrait, scale, shift, size);
  const cv::Rect2d frame(shift.x, shift.y, portrait.cols * scale, portrait.rows * scale);
  const cv::Mat around = surroundings(picture, frame);
  const double feather = 12.0 * scale;
  for (int y = 0; y < size.height; ++y) {
    const double rows = std::min(y - frame.y, frame.br().y - y);
    for (int x = 0; x < size.width; ++x) {
      const double inside = std::min({rows, x - frame.x, frame.br().x - x});
      const double share = 1.0 - ease(inside, 0.0, feather);
      if (share <= 0.0) continue;
      const cv::Vec3d own = picture.at<cv::Vec3b>(y, x);
      const cv::Vec3d beyond = around.at<cv::Vec3b>(y, x);
      picture.at<cv::Vec3b>(y, x) = cv::Vec3b(own * (1.0 - share) + beyond * share);
    }
  }
  return picture;
}

}  // namespace corvana::session
