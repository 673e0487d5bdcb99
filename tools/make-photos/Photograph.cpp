#include "Photograph.h"

#include <algorithm>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "CardView.h"
#include "Grounds.h"
#include "Light.h"
#include "Thumb.h"
#include "View.h"

namespace corvana::photos {
namespace {

using session::layOver;
using session::Random;

constexpr double kOversampling = 1.15;  // so that a tilted card stays sharp
constexpr double kFinestGround = 10.0;  // pixels a millimetre

session::Result<cv::Mat> layGround(const View& view, const Conditions& conditions, Random& random) {
  const View::Spread spread = view.spread(conditions.groundTurn);
  const double scale = std::min(view.scale(), kFinestGround);
  const cv::Size size(static_cast<int>(std::ceil(spread.millimetres.width * scale)),
                      static_cast<int>(std::ceil(spread.millimetres.height * scale)));
  auto ground = paintGround(conditions.ground, size, scale, random);
  if (!ground) return ground;
  cv::Mat opaque;
  cv::cvtColor(*ground, opaque, cv::COLOR_RGB2RGBA);
  cv::Mat picture = cv::Mat::zeros(view.frame(), CV_8UC3);
  layOver(picture, opaque, spread.corners, 1.0);
  return picture;
}

void laySheet(cv::Mat& picture, const Sheet& sheet, const View& view,
              const Conditions& conditions) {
  const auto corners = view.corners(sheet.place);
  // A card lies close: its shadow is narrow, and falls where the light goes.
  const double angle = conditions.fallAngle * CV_PI / 180.0;
  const cv::Point2f fall(static_cast<float>(0.7 * view.scale() * std::cos(angle)),
                         static_cast<float>(0.7 * view.scale() * std::sin(angle)));
  auto fallen = corners;
  for (cv::Point2f& corner : fallen)
    corner += fall;
  cv::Mat shade(sheet.picture.size(), CV_8UC4, cv::Scalar(0, 0, 0, 100));
  layOver(picture, shade, fallen, 1.0);
  cv::GaussianBlur(picture, picture, {}, 0.25 * view.scale());

  cv::Mat scaled;
  const double factor =
      std::min(1.0, kOversampling * sheet.place.width * view.scale() / sheet.picture.cols);
  cv::resize(sheet.picture, scaled, {}, factor, factor, cv::INTER_AREA);
  layOver(picture, scaled, corners, 1.0);
}

void layThumb(cv::Mat& picture, const ThumbPlace& place, const View& view, Random& random) {
  const cv::Scalar light(226, 184, 160), dark(116, 78, 60);
  const double share = random.uniform(0.0, 1.0);
  const cv::Mat thumb = session::drawThumb(light * share + dark * (1.0 - share));
  const double length = kThumbWidth * thumb.rows / thumb.cols;
  const double angle = place.angle * CV_PI / 180.0;
  const auto seen = [&](double across, double along) {
    return cv::Point2f(
        view.at(place.tip + cv::Point2d(across * std::cos(angle) - along * std::sin(angle),
                                        across * std::sin(angle) + along * std::cos(angle))));
  };
  const double half = 0.5 * kThumbWidth;
  layOver(picture, thumb,
          {seen(-half, 0.0), seen(half, 0.0), seen(half, length), seen(-half, length)}, 1.0);
}

}  // namespace

session::Result<Photograph> takePhotograph(const Sheet& sheet, const Conditions& conditions,
                                           Random& random) {
  const View view(conditions, sheet.card, sheet.place, sheet.contents);
  auto picture = layGround(view, conditions, random);
  if (!picture) return session::fault(picture.error());
  laySheet(*picture, sheet, view, conditions);
  if (conditions.thumb) layThumb(*picture, *conditions.thumb, view, random);
  shine(*picture, conditions, view);
  expose(*picture, conditions, random);
  return Photograph{std::move(*picture), view.corners({{0.0, 0.0}, sheet.card}), view.cuts()};
}

}  // namespace corvana::photos
