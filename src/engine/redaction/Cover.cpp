#include "engine/redaction/Cover.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "platform/foundation/Require.h"

namespace corvana::engine {
namespace {

using platform::CGPoint;
using platform::CGRect;
using platform::PixelBuffer;
using platform::PixelFormat;

// A head reaches above the brows by half of what is below them. A card is held at the chin at its
// highest, so little is shown below it.
constexpr double kWide = 1.45;
constexpr double kAbove = 0.55;
constexpr double kBelow = 0.12;

/// Outlines are good to a few pixels, and a card moves between two looks.
constexpr double kCardMargin = 0.08;
/// Of a line's height.
constexpr double kPrintMargin = 0.5;

enum Paint : std::uint8_t { kBlack, kGrey, kShown };

struct Colour {
  std::uint8_t luma;
  std::uint8_t rgb;
};

/// Of black and grey, with limited range and without.
constexpr Colour kColours[] = {{16, 0}, {110, 110}};

std::vector<cv::Point> pointsOf(const Quad& quad, double margin) {
  const CGPoint center = quad.center();
  std::vector<cv::Point> points;
  for (const CGPoint& corner : quad.corners) {
    const double across = corner.x - center.x;
    const double down = corner.y - center.y;
    const double length = std::max(std::hypot(across, down), 1.0);
    const double factor = (length + margin) / length;
    points.emplace_back(cvRound(center.x + factor * across), cvRound(center.y + factor * down));
  }
  std::vector<cv::Point> hull;
  cv::convexHull(points, hull);
  return hull;
}

void fill(cv::Mat& mask, const Quad& quad, double margin, Paint paint) {
  cv::fillConvexPoly(mask, pointsOf(quad, margin), cv::Scalar(paint));
}

void showHead(cv::Mat& mask, const CGRect& face) {
  const CGRect head = headAround(face);
  const cv::RotatedRect ellipse(
      cv::Point2f(static_cast<float>(head.midX()), static_cast<float>(head.midY())),
      cv::Size2f(static_cast<float>(head.width), static_cast<float>(head.height)), 0);
  cv::ellipse(mask, ellipse, cv::Scalar(kShown), cv::FILLED);
}

/// A `Paint` for each pixel.
cv::Mat maskOf(cv::Size size, const ShownParts& shown) {
  cv::Mat mask(size, CV_8U, cv::Scalar(shown.faces.empty() ? kBlack : kShown));
  for (const CGRect& face : shown.faces) {
    cv::Mat head(size, CV_8U, cv::Scalar(kBlack));
    showHead(head, face);
    mask = cv::min(mask, head);
  }
  for (const Quad& print : shown.covered)
    fill(mask, print, kPrintMargin * std::min(print.width(), print.height()), kBlack);
  // Last: how long the lines on a card are says something, too.
  for (const Quad& card : shown.cards)
    fill(mask, card, kCardMargin * card.width(), kGrey);
  return mask;
}

void coverPlane(std::uint8_t* plane, int width, int height, const auto& paintAt,
                const auto& colourOf) {
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      const Paint paint = paintAt(row, column);
      if (paint != kShown) plane[column] = colourOf(paint);
    }
    plane += width;
  }
}

void coverYuv(std::vector<std::uint8_t>& bytes, const cv::Mat& mask) {
  const auto at = [&](int row, int column) {
    return static_cast<Paint>(
        mask.at<std::uint8_t>(std::min(row, mask.rows - 1), std::min(column, mask.cols - 1)));
  };
  // A pixel of colour stands for four, of which each might be one to be covered.
  const auto least = [&](int row, int column) {
    return std::min({at(2 * row, 2 * column), at(2 * row, 2 * column + 1),
                     at(2 * row + 1, 2 * column), at(2 * row + 1, 2 * column + 1)});
  };
  const auto noColour = [](Paint) { return std::uint8_t{128}; };
  const int halfWidth = (mask.cols + 1) / 2;
  const int halfHeight = (mask.rows + 1) / 2;
  std::uint8_t* plane = bytes.data();
  coverPlane(plane, mask.cols, mask.rows, at, [](Paint paint) { return kColours[paint].luma; });
  plane += mask.total();
  coverPlane(plane, halfWidth, halfHeight, least, noColour);
  plane += static_cast<std::ptrdiff_t>(halfWidth) * halfHeight;
  coverPlane(plane, halfWidth, halfHeight, least, noColour);
}

void coverRgb(std::vector<std::uint8_t>& bytes, const cv::Mat& mask) {
  constexpr int kChannels = 3;
  coverPlane(
      bytes.data(), kChannels * mask.cols, mask.rows,
      [&](int row, int column) {
        return static_cast<Paint>(mask.at<std::uint8_t>(row, column / kChannels));
      },
      [](Paint paint) { return kColours[paint].rgb; });
}

}  // namespace

CGRect headAround(const CGRect& face) {
  return {face.midX() - kWide / 2 * face.width, face.y - kAbove * face.height, kWide * face.width,
          (1 + kAbove + kBelow) * face.height};
}

platform::PixelBufferRef coveredBut(const PixelBuffer& picture, const ShownParts& shown) {
  platform::require(picture.format() != PixelFormat::gray8,
                    "coveredBut: a picture without colours");
  const cv::Mat mask = maskOf({picture.width(), picture.height()}, shown);
  std::vector<std::uint8_t> bytes = picture.bytes();
  if (picture.format() == PixelFormat::i420) {
    coverYuv(bytes, mask);
  } else {
    coverRgb(bytes, mask);
  }
  return std::make_shared<PixelBuffer>(picture.width(), picture.height(), picture.format(),
                                       std::move(bytes));
}

}  // namespace corvana::engine
