#include "Grain.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "Picture.h"

namespace corvana::session {
namespace {

constexpr double kNoise = 1.5;    // standard deviation in steps of 255
constexpr double kDrift = 0.018;  // of the exposure
constexpr int kSlack = 64;        // the noise lies elsewhere in every frame
constexpr double kBlack = 16.0;   // of video in limited range
constexpr double kWhite = 235.0;

}  // namespace

Grain::Grain(double light, Random& random)
    : light_(light),
      random_(static_cast<std::uint64_t>(random.uniform(0.0, 1e15))),
      exposure_(random, 0.08),
      lighter_(kPictureHeight + kSlack, kPictureWidth + kSlack, CV_8UC1),
      darker_(lighter_.size(), CV_8UC1) {
  const double noise = kNoise / std::min(1.0, std::sqrt(light_));
  for (int row = 0; row < lighter_.rows; ++row)
    for (int column = 0; column < lighter_.cols; ++column) {
      const int step = static_cast<int>(std::lround(noise * random_.normal()));
      lighter_.at<std::uint8_t>(row, column) = static_cast<std::uint8_t>(std::max(0, step));
      darker_.at<std::uint8_t>(row, column) = static_cast<std::uint8_t>(std::max(0, -step));
    }
}

void Grain::add(cv::Mat luma, double seconds) {
  const double gain = light_ * (1.0 + kDrift * exposure_.at(seconds));
  luma.convertTo(luma, -1, gain, kBlack * (1.0 - gain));
  const cv::Rect area(static_cast<int>(random_.uniform(0, kSlack)),
                      static_cast<int>(random_.uniform(0, kSlack)), luma.cols, luma.rows);
  cv::add(luma, lighter_(area), luma);
  cv::subtract(luma, darker_(area), luma);
  cv::min(luma, kWhite, luma);
}

}  // namespace corvana::session
