#include "engine/document/outline/OutlineProposals.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "engine/document/outline/Segment.h"
#include "engine/document/outline/StraightEdges.h"

namespace corvana::engine {
namespace {

using Propose = std::function<void(const Quad&)>;

constexpr double kLeastShareOfPicture = 0.03;
constexpr double kLeastFilled = 0.80;  ///< of the outline by the patch that it is drawn around
constexpr int kLevels = 20;

constexpr std::size_t kMostEdges = 28;  ///< of one direction
constexpr double kDirectionStep = 10;   ///< degrees
constexpr double kDirectionReach = 9;
constexpr double kMostConvergence = 0.2;  ///< sine of the angle between opposite sides
constexpr double kLeastSine = 0.9;        ///< of the angle between neighbouring sides
constexpr double kLeastSide = 0.1;        ///< of the picture's longer side

/// The quadrilateral around a patch, if it fills one.
std::optional<Quad> quadAround(const std::vector<cv::Point>& patch) {
  std::vector<cv::Point> hull;
  cv::convexHull(patch, hull);
  const double area = cv::contourArea(hull);
  std::vector<cv::Point> corners;
  // Rounded corners are cut first; then the sides give way until four are left.
  const double length = cv::arcLength(hull, true);
  for (double share = 0.01; share < 0.08; share += 0.005) {
    cv::approxPolyDP(hull, corners, share * length, true);
    if (corners.size() <= 4) break;
  }
  if (corners.size() != 4) return {};
  const double filled = cv::contourArea(corners);
  if (filled <= 0 || cv::contourArea(patch) < kLeastFilled * filled || area > 1.1 * filled) {
    return {};
  }
  if (cv::contourArea(corners, true) < 0) std::ranges::reverse(corners);
  Quad quad;
  std::ranges::transform(corners, quad.corners.begin(), [](const cv::Point& corner) {
    return platform::CGPoint{double(corner.x), double(corner.y)};
  });
  return quad;
}

void addPatches(const cv::Mat& mask, const Propose& propose) {
  std::vector<std::vector<cv::Point>> patches;
  cv::findContours(mask, patches, cv::RETR_LIST, cv::CHAIN_APPROX_NONE);
  const double least = kLeastShareOfPicture * static_cast<double>(mask.total());
  for (const auto& patch : patches) {
    if (cv::contourArea(patch) < least) continue;
    if (const auto quad = quadAround(patch)) propose(*quad);
  }
}

/// Patches lighter or darker, or of another colour, than what they lie on.
void addLevels(const cv::Mat& rgb, const Propose& propose) {
  cv::Mat smooth;
  cv::medianBlur(rgb, smooth, 5);
  cv::Mat lab;
  cv::cvtColor(smooth, lab, cv::COLOR_RGB2Lab);
  std::array<cv::Mat, 3> channels;
  cv::split(lab, channels.data());
  const cv::Mat kernel = cv::getStructuringElement(cv::MORPH_ELLIPSE, {7, 7});
  for (const cv::Mat& channel : channels) {
    double low = 0;
    double high = 0;
    cv::minMaxLoc(channel, &low, &high);
    const double step = std::max(3.0, (high - low) / kLevels);
    for (double level = low + step; level < high; level += step) {
      // Print on a card makes holes, and the ground reaches into it beside light print.
      cv::Mat mask;
      cv::morphologyEx(channel > level, mask, cv::MORPH_OPEN, kernel);
      addPatches(mask, propose);
      addPatches(~mask, propose);
    }
  }
}

/// Patches enclosed by edges.
void addEnclosed(const cv::Mat& rgb, const Propose& propose) {
  cv::Mat smooth;
  cv::GaussianBlur(rgb, smooth, {5, 5}, 0);
  for (const double strong : {30.0, 60.0, 120.0}) {
    cv::Mat edges;
    cv::Canny(smooth, edges, strong / 2, strong);
    cv::dilate(edges, edges, cv::Mat::ones(3, 3, CV_8U));
    addPatches(edges, propose);
    addPatches(~edges, propose);
  }
}

std::optional<platform::CGPoint> meeting(const Segment& a, const Segment& b) {
  const double sine = cross(a.direction(), b.direction());
  if (std::abs(sine) < kLeastSine) return {};
  const cv::Point2d at = a.from + cross(b.from - a.from, b.direction()) / sine * a.direction();
  return platform::CGPoint{at.x, at.y};
}

using Pair = std::pair<Segment, Segment>;

/// Edges that may be opposite sides of a card.
std::vector<Pair> oppositeSides(const std::vector<Segment>& edges, double leastGap) {
  std::vector<Pair> pairs;
  for (std::size_t i = 0; i < edges.size(); ++i) {
    for (std::size_t k = i + 1; k < edges.size(); ++k) {
      const cv::Point2d along = edges[i].direction();
      if (std::abs(cross(along, edges[k].direction())) > kMostConvergence) continue;
      const cv::Point2d middle = (edges[k].from + edges[k].to) / 2;
      if (std::abs(cross(along, middle - edges[i].from)) < leastGap) continue;
      pairs.emplace_back(edges[i], edges[k]);
    }
  }
  return pairs;
}

std::optional<Quad> quadOf(const Pair& across, const Pair& down) {
  const auto a = meeting(across.first, down.first);
  const auto b = meeting(across.first, down.second);
  const auto c = meeting(across.second, down.second);
  const auto d = meeting(across.second, down.first);
  if (!a || !b || !c || !d) return {};
  Quad quad{{*a, *b, *c, *d}};
  if (!quad.isConvex()) std::ranges::reverse(quad.corners);
  return quad;
}

/// Outlines of edges that run two and two across each other.
void addCrossing(const std::vector<Segment>& edges, double leastGap, const Propose& propose) {
  const std::vector<Pair> pairs = oppositeSides(edges, leastGap);
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    for (std::size_t k = i + 1; k < pairs.size(); ++k) {
      const double sine = cross(pairs[i].first.direction(), pairs[k].first.direction());
      if (std::abs(sine) < kLeastSine) continue;
      if (const auto quad = quadOf(pairs[i], pairs[k])) propose(*quad);
    }
  }
}

/// Outlines of straight edges. Each direction has its own share of them, since a ground of printed
/// paper is full of edges, most of which run along its lines.
void addEdges(const cv::Mat& rgb, const Propose& propose) {
  const double leastGap = kLeastSide * std::max(rgb.cols, rgb.rows);
  const std::vector<Segment> edges = straightEdges(rgb);
  for (double middle = 0; middle < 90; middle += kDirectionStep) {
    std::vector<Segment> along;
    for (const Segment& edge : edges) {
      const cv::Point2d direction = edge.direction();
      const double degrees = std::atan2(direction.y, direction.x) * 180 / CV_PI;
      if (along.size() == kMostEdges) break;
      if (std::abs(std::remainder(degrees - middle, 90)) <= kDirectionReach) along.push_back(edge);
    }
    addCrossing(along, leastGap, propose);
  }
}

}  // namespace

void proposeOutlines(const cv::Mat& rgb, const std::function<void(const Quad&)>& propose) {
  addLevels(rgb, propose);
  addEnclosed(rgb, propose);
  addEdges(rgb, propose);
}

}  // namespace corvana::engine
