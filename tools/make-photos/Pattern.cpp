#include "Pattern.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "Angles.h"
#include "Painting.h"
#include "Random.h"

namespace corvana::photos {
namespace {

using session::kFullTurn;
using session::Random;

cv::Mat gradient(const std::vector<cv::Scalar>& colours, cv::Size size) {
  cv::Mat picture(size, CV_8UC3);
  const auto last = static_cast<double>(colours.size() - 1);
  for (int x = 0; x < size.width; ++x) {
    const double at = last * x / size.width;
    const auto from = static_cast<std::size_t>(at);
    const std::size_t to = std::min(from + 1, colours.size() - 1);
    const double share = at - static_cast<double>(from);
    picture.col(x).setTo(colours[from] * (1.0 - share) + colours[to] * share);
  }
  return picture;
}

void drawWaves(cv::Mat& picture, Random& random, const cv::Scalar& colour) {
  const double phase = random.uniform(0.0, kFullTurn);
  const double turns = random.uniform(1.5, 4.0);
  for (double line = -0.2; line < 1.2; line += 0.019) {
    std::vector<cv::Point2d> points;
    for (int x = -8; x <= picture.cols + 8; x += 8) {
      const double share = static_cast<double>(x) / picture.cols;
      points.emplace_back(
          x,
          picture.rows * (line + 0.05 * std::sin(kFullTurn * turns * share + phase + 2.0 * line) +
                          0.01 * std::sin(kFullTurn * turns * 5.0 * share + 8.0 * line)));
    }
    session::drawCurve(picture, points, colour);
  }
}

void drawRosettes(cv::Mat& picture, Random& random, const cv::Scalar& colour) {
  for (int i = 0; i < 5; ++i) {
    const cv::Point2d centre(picture.cols * random.uniform(0.0, 1.0),
                             picture.rows * random.uniform(0.0, 1.0));
    const double radius = picture.rows * random.uniform(0.2, 0.45);
    const double leaves = std::floor(random.uniform(7.0, 15.0));
    for (double ring = 0.3; ring <= 1.0; ring += 0.06) {
      std::vector<cv::Point2d> points;
      for (int step = 0; step <= 540; ++step) {
        const double angle = kFullTurn * step / 540.0;
        const double r = radius * ring * (1.0 + 0.18 * std::sin(leaves * angle + 8.0 * ring));
        points.emplace_back(centre.x + r * std::cos(angle), centre.y + r * std::sin(angle));
      }
      session::drawCurve(picture, points, colour);
    }
  }
}

void drawMesh(cv::Mat& picture, Random& random, const cv::Scalar& colour) {
  const double slope = random.uniform(0.3, 0.8);
  const double step = picture.rows / 42.0;
  for (double x = -picture.rows; x < picture.cols + picture.rows; x += step) {
    session::drawCurve(
        picture, {{x, 0.0}, {x + slope * picture.rows, static_cast<double>(picture.rows)}}, colour);
    session::drawCurve(
        picture, {{x, 0.0}, {x - slope * picture.rows, static_cast<double>(picture.rows)}}, colour);
  }
}

void drawRays(cv::Mat& picture, Random& random, const cv::Scalar& colour) {
  const cv::Point2d centre(picture.cols * random.uniform(-0.1, 1.1), picture.rows * 1.15);
  const double far = 1.4 * picture.cols;
  for (double angle = 0.0; angle < kFullTurn / 2.0; angle += kFullTurn / 420.0) {
    std::vector<cv::Point2d> points;
    for (double r = 0.02 * far; r < far; r += 0.01 * far) {
      const double bent = angle + 0.03 * std::sin(kFullTurn * 5.0 * r / far);
      points.emplace_back(centre.x + r * std::cos(bent), centre.y - r * std::sin(bent));
    }
    session::drawCurve(picture, points, colour);
  }
}

/// Rows of arcs, each between two of the row above.
void drawScales(cv::Mat& picture, Random& random, const cv::Scalar& colour) {
  const double radius = picture.rows * random.uniform(0.03, 0.06);
  int row = 0;
  for (double y = -radius; y < picture.rows + radius; y += 0.5 * radius, ++row) {
    for (double x = row % 2 == 0 ? 0.0 : radius; x < picture.cols + radius; x += 2.0 * radius) {
      std::vector<cv::Point2d> points;
      for (double angle = 0.0; angle <= 0.5 * kFullTurn; angle += kFullTurn / 40.0)
        points.emplace_back(x + radius * std::cos(angle), y + radius * std::sin(angle));
      session::drawCurve(picture, points, colour);
    }
  }
}

/// Hexagons that share their sides: of each its upper corner and the two sides that leave it, and
/// the side down from there.
void drawHoneycomb(cv::Mat& picture, Random& random, const cv::Scalar& colour) {
  const double side = picture.rows * random.uniform(0.022, 0.034);
  const double half = 0.5 * std::sqrt(3.0) * side;
  int row = 0;
  for (double y = -side; y < picture.rows + side; y += 1.5 * side, ++row)
    for (double x = row % 2 == 0 ? 0.0 : half; x < picture.cols + half; x += 2.0 * half)
      session::drawCurve(picture,
                         {{x - half, y + 0.5 * side},
                          {x, y},
                          {x + half, y + 0.5 * side},
                          {x + half, y + 1.5 * side}},
                         colour);
}

/// Rings around a point beside the card, as a stone makes them in water.
void drawRipples(cv::Mat& picture, Random& random, const cv::Scalar& colour) {
  const cv::Point2d centre(picture.cols * random.uniform(-0.2, 1.2),
                           picture.rows * random.uniform(-0.3, 1.3));
  const double step = picture.rows * random.uniform(0.016, 0.024);
  const double lobes = std::floor(random.uniform(9.0, 17.0));
  for (double radius = step; radius < 1.5 * picture.cols; radius += step) {
    std::vector<cv::Point2d> points;
    for (int i = 0; i <= 720; ++i) {
      const double angle = kFullTurn * i / 720.0;
      const double r = radius + 0.8 * step * std::sin(lobes * angle + 0.12 * radius / step);
      points.emplace_back(centre.x + r * std::cos(angle), centre.y + r * std::sin(angle));
    }
    session::drawCurve(picture, points, colour);
  }
}

/// Strands that cross each other in bands from side to side.
void drawBraid(cv::Mat& picture, Random& random, const cv::Scalar& colour) {
  const double band = picture.rows * random.uniform(0.14, 0.22);
  const double turns = random.uniform(4.0, 8.0);
  for (double middle = random.uniform(-0.5, 0.5) * band; middle < picture.rows + band;
       middle += 0.9 * band) {
    for (double strand = 0.0; strand < 1.0; strand += 1.0 / 9.0) {
      std::vector<cv::Point2d> points;
      for (int x = -8; x <= picture.cols + 8; x += 8) {
        const double along = kFullTurn * (turns * x / picture.cols + strand);
        points.emplace_back(x, middle + 0.5 * band * std::sin(along) * std::cos(0.37 * along));
      }
      session::drawCurve(picture, points, colour);
    }
  }
}

/// Rings in rows, each linked with its neighbours.
void drawLinks(cv::Mat& picture, Random& random, const cv::Scalar& colour) {
  const double radius = picture.rows * random.uniform(0.035, 0.055);
  for (double y = -radius; y < picture.rows + radius; y += 1.5 * radius)
    for (double x = -radius; x < picture.cols + radius; x += 1.5 * radius) {
      std::vector<cv::Point2d> points;
      for (int i = 0; i <= 36; ++i) {
        const double angle = kFullTurn * i / 36.0;
        points.emplace_back(x + radius * std::cos(angle), y + radius * std::sin(angle));
      }
      session::drawCurve(picture, points, colour);
    }
}

}  // namespace

cv::Mat printedGround(const Design& design, cv::Size size, std::uint64_t seed) {
  Random random(seed);
  cv::Mat picture = gradient(design.groundColours, size);
  for (const cv::Scalar& colour : design.patternColours) {
    if (design.pattern == "waves") drawWaves(picture, random, colour);
    if (design.pattern == "rosettes") drawRosettes(picture, random, colour);
    if (design.pattern == "mesh") drawMesh(picture, random, colour);
    if (design.pattern == "scales") drawScales(picture, random, colour);
    if (design.pattern == "rays") drawRays(picture, random, colour);
    if (design.pattern == "honeycomb") drawHoneycomb(picture, random, colour);
    if (design.pattern == "ripples") drawRipples(picture, random, colour);
    if (design.pattern == "braid") drawBraid(picture, random, colour);
    if (design.pattern == "links") drawLinks(picture, random, colour);
  }
  return picture;
}

}  // namespace corvana::photos
