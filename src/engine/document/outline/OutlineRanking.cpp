#include "engine/document/outline/OutlineRanking.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <opencv2/imgproc.hpp>

namespace corvana::engine {
namespace {

constexpr double kLeastShareOfPicture = 0.03;
/// Between a page that leans back and a card that leans to the side.
constexpr double kLeastAspect = 1.27;
constexpr double kMostAspect = 1.98;
constexpr double kMostTaper = 1.35;  ///< of a side against the opposite one
constexpr double kLeastSupport = 0.45;
constexpr double kSameOutline = 0.03;  ///< corners apart, of the width
/// Lines on a card or beside it make many outlines of about the same place.
constexpr double kLikeOutline = 0.3;
constexpr int kMostAlike = 4;
constexpr std::size_t kMostOutlines = 12;
constexpr double kMostPrintTilt = 0.12;  ///< sine of the angle between print and outline
constexpr double kPrintWeight = 0.3;     ///< against the share of the sides that is seen

constexpr int kSamples = 60;  ///< of a side
constexpr double kBeside = 5;
/// Of the Sobel operator: a step of ten grey levels, smoothed, gives about 25.
constexpr double kLeastSlope = 24;

cv::Point2d pointOf(platform::CGPoint point) {
  return {point.x, point.y};
}

bool hasCardsShape(const Quad& quad) {
  return quad.isConvex() && quad.taper() <= kMostTaper && quad.aspect() >= kLeastAspect &&
         quad.aspect() <= kMostAspect;
}

/// At each pixel the derivatives of the channel that changes most, as two channels.
cv::Mat derivatives(const cv::Mat& rgb) {
  cv::Mat smooth;
  cv::GaussianBlur(rgb, smooth, {3, 3}, 0);
  std::array<cv::Mat, 3> channels;
  cv::split(smooth, channels.data());
  cv::Mat strongest(rgb.size(), CV_32F, cv::Scalar(-1));
  cv::Mat result(rgb.size(), CV_32FC2);
  for (const cv::Mat& channel : channels) {
    std::array<cv::Mat, 2> both;
    cv::Sobel(channel, both[0], CV_32F, 1, 0);
    cv::Sobel(channel, both[1], CV_32F, 0, 1);
    cv::Mat strength;
    cv::magnitude(both[0], both[1], strength);
    cv::Mat merged;
    cv::merge(both.data(), both.size(), merged);
    const cv::Mat stronger = strength > strongest;
    merged.copyTo(result, stronger);
    strength.copyTo(strongest, stronger);
  }
  return result;
}

}  // namespace

Quad lying(Quad quad) {
  if (quad.width() < quad.height())
    std::rotate(quad.corners.begin(), quad.corners.begin() + 1, quad.corners.end());
  return quad;
}

OutlineRanking::OutlineRanking(const cv::Mat& rgb, std::vector<Segment> print)
    : derivatives_(derivatives(rgb)), size_(rgb.size()), print_(std::move(print)) {}

void OutlineRanking::add(const Quad& outline) {
  const Quad quad = lying(outline);
  if (!hasCardsShape(quad)) return;
  const double share = quad.width() * quad.height() / size_.area();
  if (share < kLeastShareOfPicture) return;
  const double support = supportOf(quad);
  if (support < kLeastSupport) return;
  found_.emplace_back(support + printFit(quad) + 0.05 * std::log(share), quad);
}

std::vector<Quad> OutlineRanking::best() {
  std::ranges::stable_sort(found_, std::ranges::greater{}, &std::pair<double, Quad>::first);
  std::vector<Quad> best;
  for (const auto& found : found_) {
    if (best.size() == kMostOutlines) break;
    const auto countNearer = [&](double reach) {
      return std::ranges::count_if(
          best, [&](const Quad& other) { return apart(found.second, other) < reach; });
    };
    if (countNearer(kSameOutline) == 0 && countNearer(kLikeOutline) < kMostAlike)
      best.push_back(found.second);
  }
  return best;
}

/// How well the lines of print that touch the outline fit it: those along it within it speak for
/// a card, those that it cuts or that run another way against one.
double OutlineRanking::printFit(const Quad& quad) const {
  const cv::Point2d along = pointOf(quad.corners[1]) - pointOf(quad.corners[0]) +
                            pointOf(quad.corners[2]) - pointOf(quad.corners[3]);
  double fitting = 0;
  double others = 0;
  for (const Segment& line : print_) {
    const bool from = quad.contains({line.from.x, line.from.y});
    const bool to = quad.contains({line.to.x, line.to.y});
    if (!from && !to) continue;
    const double sine = std::abs(cross(along / cv::norm(along), line.direction()));
    (from && to && sine < kMostPrintTilt ? fitting : others) += line.length();
  }
  return fitting + others == 0 ? 0 : kPrintWeight * (fitting - 2 * others) / (fitting + others);
}

/// The share of the sides that lies on edges along them, less what lies on such edges beside
/// them, as all lines in a texture do. Sides beyond the picture don't count.
double OutlineRanking::supportOf(const Quad& quad) const {
  double sum = 0;
  int seen = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    const auto own = sideSupport(pointOf(quad.corners[i]), pointOf(quad.corners[(i + 1) % 4]));
    if (!own) continue;
    sum += *own;
    ++seen;
  }
  // Most outlines end here, which spares the rest.
  if (seen < 3 || sum / seen < kLeastSupport) return 0;
  for (std::size_t i = 0; i < 4; ++i)
    sum -= 0.5 * textureBeside(pointOf(quad.corners[i]), pointOf(quad.corners[(i + 1) % 4]));
  return sum / seen;
}

double OutlineRanking::textureBeside(cv::Point2d a, cv::Point2d b) const {
  if (!sideSupport(a, b)) return 0;
  const cv::Point2d along = (b - a) / cv::norm(b - a);
  const cv::Point2d beside = cv::Point2d(-along.y, along.x) * kBeside;
  return std::min(sideSupport(a + beside, b + beside).value_or(0),
                  sideSupport(a - beside, b - beside).value_or(0));
}

/// Absent where most of the side lies beyond the picture.
std::optional<double> OutlineRanking::sideSupport(cv::Point2d a, cv::Point2d b) const {
  const cv::Point2d along = (b - a) / cv::norm(b - a);
  const cv::Point2d normal(-along.y, along.x);
  const cv::Rect inside(3, 3, size_.width - 6, size_.height - 6);
  int samples = 0;
  int hits = 0;
  for (int i = 0; i < kSamples; ++i) {
    const cv::Point2d place = a + (0.07 + 0.86 * i / kSamples) * (b - a);
    if (!inside.contains(place)) continue;
    ++samples;
    const bool isOnEdge = std::ranges::any_of(std::array{-1.5, 0.0, 1.5}, [&](double offset) {
      const cv::Point2d at = place + offset * normal;
      const auto& slope = derivatives_.at<cv::Vec2f>(cvRound(at.y), cvRound(at.x));
      const double across = std::abs(slope[0] * normal.x + slope[1] * normal.y);
      const double lengthwise = std::abs(slope[0] * along.x + slope[1] * along.y);
      return across >= kLeastSlope && across > 2 * lengthwise;
    });
    if (isOnEdge) ++hits;
  }
  if (samples < kSamples / 2) return {};
  return double(hits) / samples;
}

}  // namespace corvana::engine
