#include "engine/document/outline/OutlineRanking.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

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
/// Of the length of the lines along it, so much may run right across it, as titles do on some
/// cards.
constexpr double kMostUpward = 0.3;

/// Of the card's length across it; on a wider band the print would stand that tells a card.
constexpr double kLeastBand = 0.04;
constexpr double kMostBand = 0.4;
constexpr double kLeastBandSupport = 0.6;  ///< of its outer side
constexpr std::size_t kMostWholes = 6;
constexpr std::size_t kMostParts = 6;

constexpr int kSamples = 60;  ///< of a side
constexpr double kBeside = 5;
/// Of the Sobel operator: a step of ten grey levels, smoothed, gives about 25.
constexpr double kLeastSlope = 24;

cv::Point2d pointOf(platform::CGPoint point) {
  return {point.x, point.y};
}

bool mayBeSeenAtATilt(const Quad& quad) {
  return quad.isConvex() && quad.taper() <= kMostTaper && quad.aspect() <= kMostAspect;
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

/// No two nearly the same, and few in about the same place.
std::vector<Quad> clearest(RankedOutlines found, std::size_t most) {
  std::ranges::stable_sort(found, std::ranges::greater{}, &std::pair<double, Quad>::first);
  std::vector<Quad> best;
  for (const auto& each : found) {
    if (best.size() == most) break;
    const auto countNearer = [&](double reach) {
      return std::ranges::count_if(
          best, [&](const Quad& other) { return apart(each.second, other) < reach; });
    };
    if (countNearer(kSameOutline) == 0 && countNearer(kLikeOutline) < kMostAlike)
      best.push_back(each.second);
  }
  return best;
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
  if (!mayBeSeenAtATilt(quad)) return;
  const double share = quad.width() * quad.height() / size_.area();
  if (share < kLeastShareOfPicture) return;
  const double support = supportOf(quad);
  if (support < kLeastSupport) return;
  auto& found = quad.aspect() < kLeastAspect ? parts_ : found_;
  found.emplace_back(support + printFit(quad) + 0.05 * std::log(share), quad);
}

std::vector<Quad> OutlineRanking::best() const {
  return clearest(found_, kMostOutlines);
}

std::vector<Quad> OutlineRanking::wholes() const {
  const std::vector<Quad> known = best();
  std::vector<Quad> parts = known;
  std::ranges::move(clearest(parts_, kMostParts), std::back_inserter(parts));
  std::vector<Quad> wholes;
  for (const Quad& part : parts) {
    for (std::size_t side = 0; side < 4 && wholes.size() < kMostWholes; ++side) {
      const auto whole = wholeBeyond(part, side);
      if (!whole) continue;
      const auto isThere = [&](const Quad& other) { return apart(*whole, other) < kSameOutline; };
      if (std::ranges::any_of(known, isThere) || std::ranges::any_of(wholes, isThere)) continue;
      wholes.push_back(*whole);
    }
  }
  return wholes;
}

/// The outline with its side moved outward onto the clearest edge that gives it a document's shape.
std::optional<Quad> OutlineRanking::wholeBeyond(const Quad& part, std::size_t side) const {
  const std::size_t next = (side + 1) % 4;
  const cv::Point2d first = pointOf(part.corners[side]);
  const cv::Point2d second = pointOf(part.corners[next]);
  const cv::Point2d alongFirst = first - pointOf(part.corners[(side + 3) % 4]);
  const cv::Point2d alongSecond = second - pointOf(part.corners[(side + 2) % 4]);
  const double length = (cv::norm(alongFirst) + cv::norm(alongSecond)) / 2;
  std::optional<Quad> whole;
  double clearest = kLeastBandSupport;
  for (double band = kLeastBand * length; band < kMostBand * length; band += 1) {
    Quad quad = part;
    const cv::Point2d movedFirst = first + band / length * alongFirst;
    const cv::Point2d movedSecond = second + band / length * alongSecond;
    quad.corners[side] = {movedFirst.x, movedFirst.y};
    quad.corners[next] = {movedSecond.x, movedSecond.y};
    if (!lying(quad).hasDocumentsShape()) continue;
    const double support =
        sideSupport(movedFirst, movedSecond).value_or(0) - textureBeside(movedFirst, movedSecond);
    if (support <= clearest || supportOf(quad) < kLeastSupport) continue;
    clearest = support;
    whole = lying(quad);
  }
  return whole;
}

/// How well the lines of print that touch the outline fit it: those along it within it speak for
/// a card, those that it cuts or that run another way against one, and a few right across it for
/// nothing.
double OutlineRanking::printFit(const Quad& quad) const {
  const cv::Point2d width = pointOf(quad.corners[1]) - pointOf(quad.corners[0]) +
                            pointOf(quad.corners[2]) - pointOf(quad.corners[3]);
  const cv::Point2d along = width / cv::norm(width);
  double fitting = 0;
  double upward = 0;
  double others = 0;
  for (const Segment& line : print_) {
    const bool from = quad.contains({line.from.x, line.from.y});
    const bool to = quad.contains({line.to.x, line.to.y});
    if (!from && !to) continue;
    const bool isWithin = from && to;
    if (isWithin && std::abs(cross(along, line.direction())) < kMostPrintTilt) {
      fitting += line.length();
    } else if (isWithin && std::abs(along.dot(line.direction())) < kMostPrintTilt) {
      upward += line.length();
    } else {
      others += line.length();
    }
  }
  others += std::max(0.0, upward - kMostUpward * fitting);
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
