#include "engine/selfie/FrameEdges.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

/// Longer side of the picture in which edges are looked for.
constexpr int kLongerSide = 320;
/// An edge's slope against its side, at most.
constexpr double kSteepest = 1.0 / 6;
/// A step of luma at an edge, in units of the gradient, and how much it must outweigh that along.
constexpr int kLeastStep = 40;
constexpr int kOutweighs = 2;
/// Edges lie at least so far from the face, and are followed so far beyond it, in face heights.
constexpr double kDistance = 0.05;
constexpr double kBeyond = 0.3;
/// Corners are round, in pixels; two lines are so far apart at least.
constexpr int kRoundCorner = 2;
constexpr int kApart = 3;
/// A line that is seen less is not looked at any further.
constexpr double kLeastShare = 0.6;

/// Where the picture has an upright edge: 1, else 0.
cv::Mat uprightEdges(const cv::Mat& gray) {
  cv::Mat across;
  cv::Mat along;
  cv::Sobel(gray, across, CV_16S, 1, 0);
  cv::Sobel(gray, along, CV_16S, 0, 1);
  cv::Mat edges(gray.size(), CV_8UC1);
  for (int row = 0; row < gray.rows; ++row)
    for (int column = 0; column < gray.cols; ++column) {
      const int step = std::abs(across.at<std::int16_t>(row, column));
      const int other = std::abs(along.at<std::int16_t>(row, column));
      edges.at<std::uint8_t>(row, column) = step > kLeastStep && step > kOutweighs * other ? 1 : 0;
    }
  return edges;
}

struct Edges {
  cv::Mat upright;
  cv::Mat flat;  ///< with rows and columns exchanged
};

/// x as a function of y.
struct UprightLine {
  double x = 0;      ///< at y = 0
  double slope = 0;  ///< of x over y
  double share = 0;  ///< how much of it lies on edges

  double at(double y) const { return x + slope * y; }
};

double shareOnEdges(const cv::Mat& edges, const UprightLine& line, int top, int bottom) {
  int hits = 0;
  for (int y = top; y < bottom; ++y) {
    const int x = static_cast<int>(std::lround(line.at(y)));
    if (x >= 0 && x < edges.cols) hits += edges.at<std::uint8_t>(y, x);
  }
  return bottom > top ? static_cast<double>(hits) / (bottom - top) : 0.0;
}

/// The line from top to bottom that lies on edges most, between both bounds of x.
UprightLine bestLine(const cv::Mat& edges, cv::Range x, cv::Range y) {
  UprightLine best;
  const int reach = static_cast<int>(y.size() * kSteepest);
  for (int upper = x.start; upper < x.end; ++upper)
    for (int lower = std::max(x.start, upper - reach); lower <= std::min(x.end - 1, upper + reach);
         ++lower) {
      const double slope = static_cast<double>(lower - upper) / std::max(1, y.size());
      UprightLine line{upper - slope * y.start, slope, 0};
      line.share = shareOnEdges(edges, line, y.start, y.end);
      if (line.share > best.share) best = line;
    }
  return best;
}

/// The best line, and the best on each side of it: a display's frame has an edge inside and one
/// outside, and either may be lost in front of something dark.
std::vector<UprightLine> likelyLines(const cv::Mat& edges, cv::Range x, cv::Range y) {
  std::vector<UprightLine> lines{bestLine(edges, x, y)};
  const int place = static_cast<int>(lines.front().at(0.5 * (y.start + y.end)));
  lines.push_back(bestLine(edges, {x.start, place - kApart}, y));
  lines.push_back(bestLine(edges, {place + kApart, x.end}, y));
  std::erase_if(lines, [](const UprightLine& line) { return line.share < kLeastShare; });
  return lines;
}

/// How far both lines and one that joins them below the face are seen.
double enclosure(const Edges& edges, const UprightLine& left, const UprightLine& right,
                 cv::Range face, int lowest) {
  const cv::Range between(
      std::max(0, static_cast<int>(left.at(face.end)) + kRoundCorner),
      std::min(edges.upright.cols, static_cast<int>(right.at(face.end)) - kRoundCorner));
  if (between.size() <= 0) return 0;
  const UprightLine below = bestLine(edges.flat, {lowest, edges.upright.rows - 1}, between);
  const auto down = [&](const UprightLine& side, int corner) {
    return shareOnEdges(edges.upright, side, face.start,
                        static_cast<int>(below.at(corner)) - kRoundCorner);
  };
  return std::min({down(left, between.start), down(right, between.end), below.share});
}

}  // namespace

double edgesAround(const platform::PixelBuffer& picture, const platform::CGRect& face) {
  const double scale =
      static_cast<double>(kLongerSide) / std::max(picture.width(), picture.height());
  cv::Mat gray;
  cv::resize(grayMat(picture), gray, {}, scale, scale, cv::INTER_AREA);
  const auto place = [scale](double value) { return static_cast<int>(std::lround(scale * value)); };
  const double distance = kDistance * face.height;
  const cv::Range rows(std::max(0, place(face.y)),
                       std::min(gray.rows, place(face.maxY() + kBeyond * face.height)));
  if (rows.size() <= 0) return 0;
  // What lies flat is upright in the picture turned about its diagonal.
  const Edges edges{uprightEdges(gray), uprightEdges(gray.t())};
  double most = 0;
  for (const UprightLine& left : likelyLines(edges.upright, {1, place(face.x - distance)}, rows))
    for (const UprightLine& right : likelyLines(
             edges.upright, {std::max(1, place(face.maxX() + distance)), gray.cols - 1}, rows))
      most = std::max(
          most, enclosure(edges, left, right, rows, std::max(1, place(face.maxY() + distance))));
  return most;
}

}  // namespace corvana::engine
