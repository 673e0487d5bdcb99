#include "engine/selfie/RepetitionWatch.h"

#include <algorithm>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

/// The picture's longer side after it was shrunk: noise is gone then, every movement still there.
constexpr int kLongerSide = 64;
/// How many pictures must be alike, how far back they begin at least, and how far at most.
constexpr std::size_t kStretch = 6;
constexpr platform::Duration kShortestLoop = platform::seconds(0.9);
constexpr std::size_t kMostPictures = 150;
/// Where less than this moves, everything is like everything else: mean square of 255 steps, and of
/// the picture's own contrast, since in dim light the same head moves fewer steps.
constexpr double kLeastMovement = 0.6;
constexpr double kLeastMovementOfContrast = 1.4e-4;

double leastMovement(double contrast) {
  return std::min(kLeastMovement, kLeastMovementOfContrast * contrast * contrast);
}

std::vector<float> valuesOf(const platform::PixelBuffer& picture) {
  const double scale =
      static_cast<double>(kLongerSide) / std::max(picture.width(), picture.height());
  cv::Mat small;
  cv::resize(grayMat(picture), small,
             {std::max(1, static_cast<int>(picture.width() * scale)),
              std::max(1, static_cast<int>(picture.height() * scale))},
             0, 0, cv::INTER_AREA);
  cv::Mat values;
  small.convertTo(values, CV_32F);
  values -= cv::mean(values);
  return {values.begin<float>(), values.end<float>()};
}

double product(const std::vector<float>& a, const std::vector<float>& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i)
    sum += static_cast<double>(a[i] * b[i]);
  return sum / static_cast<double>(a.size());
}

}  // namespace

/// Mean square of what is left when both are shown with the same contrast: the exposure drifts by
/// one or two per cent, which between a bright and a dark place is more than a head at rest moves.
double RepetitionWatch::difference(const Picture& a, const Picture& b) {
  return std::max(0.0, 2 * (a.contrast * b.contrast - product(a.values, b.values)));
}

/// From look to look within the newest stretch. What led to it is left out: a head that comes back
/// to rest from afar is not where it was by repeating itself.
double RepetitionWatch::movement() const {
  double sum = 0;
  for (std::size_t i = 0; i + 1 < kStretch; ++i)
    sum += pictures_[i].differences.front();
  return sum / (kStretch - 1);
}

/// From the picture to its neighbours. The newest has one only.
double RepetitionWatch::movementAt(std::size_t index) const {
  const double before = pictures_[index].differences.front();
  const double after = index == 0 ? before : pictures_[index - 1].differences.front();
  return std::max(0.5 * (before + after), leastMovement(pictures_[index].contrast));
}

/// A loop seldom begins again just when it is looked at: the newest pictures are laid between those
/// of two lags, where they fit best, as a share of the way from the nearer lag to the farther.
double RepetitionWatch::shareBetween(std::size_t lag) const {
  double near = 0, far = 0, apart = 0;
  for (std::size_t i = 0; i < kStretch; ++i) {
    near += pictures_[i].differences[lag - 1];
    far += pictures_[i].differences[lag];
    apart += pictures_[i + lag].differences.front();
  }
  return apart <= 0 ? 0 : std::clamp((near - far + apart) / (2 * apart), 0.0, 1.0);
}

/// Each picture counts by its own movement: a film that begins again rests as it rested, where who
/// comes nearer and goes back twice passes the same places, but sets out and arrives elsewhere. The
/// mean squares of what lies between two pictures follow from theirs and from the difference of
/// both.
double RepetitionWatch::unlikeness(std::size_t lag) const {
  const double share = shareBetween(lag);
  double sum = 0;
  for (std::size_t i = 0; i < kStretch; ++i) {
    const double between = (1 - share) * pictures_[i].differences[lag - 1] +
                           share * pictures_[i].differences[lag] -
                           share * (1 - share) * pictures_[i + lag].differences.front();
    sum += std::max(0.0, between) / movementAt(i);
  }
  return sum / kStretch;
}

void RepetitionWatch::add(platform::TimePoint time, const platform::PixelBuffer& picture) {
  Picture next{time, valuesOf(picture), 0, {}};
  next.contrast = std::sqrt(product(next.values, next.values));
  if (!pictures_.empty() && pictures_.front().values.size() != next.values.size())
    pictures_.clear();
  for (const Picture& earlier : pictures_)
    next.differences.push_back(difference(next, earlier));
  pictures_.push_front(std::move(next));
  if (pictures_.size() > kMostPictures) pictures_.pop_back();

  difference_.reset();
  if (pictures_.size() <= kStretch) return;
  if (movement() < leastMovement(pictures_.front().contrast)) return;
  for (std::size_t lag = 2; lag + kStretch < pictures_.size(); ++lag) {
    if (time - pictures_[lag].time < kShortestLoop) continue;
    const double found = unlikeness(lag);
    difference_ = std::min(difference_.value_or(found), found);
  }
}

}  // namespace corvana::engine
