#include "engine/document/outline/StraightEdges.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include <opencv2/imgproc.hpp>

namespace corvana::engine {
namespace {

constexpr double kLeastPiece = 14;  ///< pixels
constexpr double kOnOneLine = 2;    ///< pixels beside it
/// Surfaces that differ by more, in grey levels, are no more likely a card and its ground.
constexpr double kClearDifference = 20;
constexpr double kSampleStep = 4;
/// Of the surface to each side so many pixels are looked at.
constexpr std::array kBeside{3.0, 6.0, 9.0, 12.0};

struct Edge {
  Segment line;
  double covered = 0;  ///< by pieces, in pixels
  double strength = 0;
};

std::vector<Segment> piecesOf(const cv::Mat& rgb) {
  cv::Mat gray;
  cv::cvtColor(rgb, gray, cv::COLOR_RGB2GRAY);
  std::vector<cv::Vec4f> found;
  cv::createLineSegmentDetector()->detect(gray, found);
  std::vector<Segment> pieces;
  for (const cv::Vec4f& line : found)
    pieces.push_back({{line[0], line[1]}, {line[2], line[3]}});
  std::erase_if(pieces, [](const Segment& piece) { return piece.length() < kLeastPiece; });
  std::ranges::stable_sort(pieces, std::ranges::greater{}, &Segment::length);
  return pieces;
}

bool isOn(const Segment& line, const Segment& piece) {
  const cv::Point2d along = line.direction();
  return std::abs(cross(along, piece.from - line.from)) < kOnOneLine &&
         std::abs(cross(along, piece.to - line.from)) < kOnOneLine;
}

void join(Edge& edge, const Segment& piece) {
  const Segment line = edge.line;
  const cv::Point2d along = line.direction();
  const auto place = [&](cv::Point2d point) { return along.dot(point - line.from); };
  const auto [first, last] = std::minmax({0.0, line.length(), place(piece.from), place(piece.to)});
  edge.line = {line.from + first * along, line.from + last * along};
  edge.covered += piece.length();
}

/// By how much the surfaces to both sides of a line differ, in the channel that differs most.
double differenceAcross(const cv::Mat& rgb, const Segment& line) {
  const cv::Point2d along = line.direction();
  const cv::Point2d normal(-along.y, along.x);
  const cv::Rect inside({}, rgb.size());
  cv::Vec3d sum;
  int samples = 0;
  for (double t = 0; t < line.length(); t += kSampleStep) {
    for (const double beside : kBeside) {
      const cv::Point one(line.from + t * along + beside * normal);
      const cv::Point other(line.from + t * along - beside * normal);
      if (!inside.contains(one) || !inside.contains(other)) continue;
      sum += cv::Vec3d(rgb.at<cv::Vec3b>(one)) - cv::Vec3d(rgb.at<cv::Vec3b>(other));
      ++samples;
    }
  }
  // At the picture's rim there is no other side.
  if (samples == 0) return kClearDifference;
  return std::max({std::abs(sum[0]), std::abs(sum[1]), std::abs(sum[2])}) / samples;
}

}  // namespace

std::vector<Segment> straightEdges(const cv::Mat& rgb) {
  std::vector<Edge> edges;
  for (const Segment& piece : piecesOf(rgb)) {
    const auto same =
        std::ranges::find_if(edges, [&](const Edge& edge) { return isOn(edge.line, piece); });
    if (same == edges.end())
      edges.push_back({piece, piece.length()});
    else
      join(*same, piece);
  }
  for (Edge& edge : edges) {
    edge.strength = edge.covered * std::min(differenceAcross(rgb, edge.line), kClearDifference);
  }
  std::ranges::stable_sort(edges, std::ranges::greater{}, &Edge::strength);
  std::vector<Segment> lines;
  std::ranges::transform(edges, std::back_inserter(lines), &Edge::line);
  return lines;
}

}  // namespace corvana::engine
