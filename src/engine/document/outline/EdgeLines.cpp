#include "engine/document/outline/EdgeLines.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include <opencv2/imgproc.hpp>

namespace corvana::engine {
namespace {

constexpr int kAngles = 53;
constexpr double kAngleStep = std::numbers::pi / 180;
/// A pixel votes for lines at most this many steps from its own gradient's.
constexpr int kVoteSpread = 6;
// Of the Sobel operator: a step of ten grey levels, smoothed, gives about 25.
constexpr double kWeakEdge = 14;
constexpr double kStrongEdge = 32;
/// A card's corners are rounded with a radius of 3.7 % of its width, 5.9 % of its height.
constexpr double kCornerShare = 0.06;
constexpr double kLeastVotes = 18;

double angleOf(int step) {
  constexpr int kLevel = kAngles / 2;
  return (step - kLevel) * kAngleStep;
}

/// At each pixel the derivatives of the channel that changes most: two colours may be equally
/// light.
void strongestDerivatives(const cv::Mat& rgb, cv::Mat& dx, cv::Mat& dy) {
  std::array<cv::Mat, 3> channels;
  cv::split(rgb, channels.data());
  cv::Mat strength;
  for (const cv::Mat& channel : channels) {
    cv::Mat x;
    cv::Mat y;
    cv::Sobel(channel, x, CV_16S, 1, 0);
    cv::Sobel(channel, y, CV_16S, 0, 1);
    cv::Mat sum = cv::abs(x) + cv::abs(y);
    if (strength.empty()) {
      dx = x;
      dy = y;
      strength = sum;
      continue;
    }
    const cv::Mat stronger = sum > strength;
    x.copyTo(dx, stronger);
    y.copyTo(dy, stronger);
    sum.copyTo(strength, stronger);
  }
}

/// The Hough transform of one course: a row per angle, a column per offset.
cv::Mat accumulate(const cv::Mat& edges, const cv::Mat& along, const cv::Mat& athwart, bool across,
                   int margin) {
  const int length = across ? edges.rows : edges.cols;
  cv::Mat votes(kAngles, length + 2 * margin, CV_32F, cv::Scalar(0));
  std::array<float, kAngles> cosine;
  std::array<float, kAngles> sine;
  for (int a = 0; a < kAngles; ++a) {
    cosine[static_cast<std::size_t>(a)] = static_cast<float>(std::cos(angleOf(a)));
    sine[static_cast<std::size_t>(a)] = static_cast<float>(std::sin(angleOf(a)));
  }
  const auto vote = [&](int u, int v, double normal) {
    // Lines have no direction: a gradient's and its opposite are the same.
    const double turned = normal > 0 ? normal - std::numbers::pi : normal + std::numbers::pi;
    const double tilt = std::abs(normal) <= std::numbers::pi / 2 ? normal : turned;
    const int nearest = cvRound(tilt / kAngleStep) + kAngles / 2;
    const int last = std::min(kAngles - 1, nearest + kVoteSpread);
    for (int a = std::max(0, nearest - kVoteSpread); a <= last; ++a) {
      const auto i = static_cast<std::size_t>(a);
      const int offset =
          cvRound(static_cast<float>(v) * cosine[i] - static_cast<float>(u) * sine[i]);
      const int column = offset + margin;
      if (column >= 0 && column < votes.cols) votes.at<float>(a, column) += 1;
    }
  };
  for (int y = 0; y < edges.rows; ++y) {
    for (int x = 0; x < edges.cols; ++x) {
      if (edges.at<std::uint8_t>(y, x) == 0) continue;
      const double normal = std::atan2(static_cast<float>(-along.at<short>(y, x)),
                                       static_cast<float>(athwart.at<short>(y, x)));
      vote(across ? x : y, across ? y : x, normal);
    }
  }
  return votes;
}

EdgeLine lineAt(int angleStep, double offset, bool across) {
  const double angle = angleOf(angleStep);
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  // In (u along, v athwart): direction (c, s), foot of the normal at offset * (-s, c).
  if (across) return {{c, s}, {-s * offset, c * offset}, 0};
  return {{s, c}, {c * offset, -s * offset}, 0};
}

struct Peak {
  double votes = 0;
  int column = 0;
};

Peak peakOf(const cv::Mat& row) {
  Peak peak;
  cv::Point at;
  cv::minMaxLoc(row, nullptr, &peak.votes, nullptr, &at);
  peak.column = at.x;
  return peak;
}

}  // namespace

EdgeMap::EdgeMap(const cv::Mat& rgb) {
  cv::Mat smooth;
  cv::GaussianBlur(rgb, smooth, cv::Size(3, 3), 0.8);
  strongestDerivatives(smooth, dx_, dy_);
  cv::Mat edges;
  cv::Canny(dx_, dy_, edges, kWeakEdge, kStrongEdge);
  const cv::Mat isAcross = cv::abs(dy_) > cv::abs(dx_);
  cv::bitwise_and(edges, isAcross, across_);
  cv::bitwise_and(edges, ~isAcross, down_);
  cv::dilate(across_, wideAcross_, cv::Mat::ones(3, 1, CV_8U));
  cv::dilate(down_, wideDown_, cv::Mat::ones(1, 3, CV_8U));
}

std::vector<EdgeLine> EdgeMap::lines(Course course, std::size_t most) const {
  const bool across = course == Course::across;
  const int margin = (across ? size().width : size().height) / 2;
  cv::Mat votes = across ? accumulate(across_, dx_, dy_, true, margin)
                         : accumulate(down_, dy_, dx_, false, margin);
  // Pixels of one line fall into two neighbouring offsets.
  cv::blur(votes, votes, cv::Size(3, 1));
  votes *= 3;
  std::vector<Peak> peaks;  // of each angle: a line that is taken changes those of a few only
  for (int a = 0; a < votes.rows; ++a)
    peaks.push_back(peakOf(votes.row(a)));
  std::vector<EdgeLine> lines;
  while (lines.size() < most) {
    const auto peak = std::ranges::max_element(peaks, {}, &Peak::votes);
    if (peak->votes < kLeastVotes) break;
    const cv::Point at(peak->column, static_cast<int>(peak - peaks.begin()));
    lines.push_back(lineAt(at.y, at.x - margin, across));
    lines.back().votes = peak->votes;
    // Lines that pass within two pixels of this one over the picture's length are the same.
    for (int a = std::max(0, at.y - 4); a <= std::min(kAngles - 1, at.y + 4); ++a) {
      const double drift =
          std::sin(std::abs(angleOf(a) - angleOf(at.y))) * (across ? size().width : size().height);
      const double centre =
          at.x - (angleOf(a) - angleOf(at.y)) * (across ? size().width : size().height) / 2;
      const int reach = static_cast<int>(2 + drift / 4);
      const int from = std::clamp(static_cast<int>(centre) - reach, 0, votes.cols - 1);
      const int to = std::clamp(static_cast<int>(centre) + reach, 0, votes.cols - 1);
      votes(cv::Rect(from, a, to - from + 1, 1)).setTo(0);
      peaks[static_cast<std::size_t>(a)] = peakOf(votes.row(a));
    }
  }
  return lines;
}

double EdgeMap::support(Course course, cv::Point2d a, cv::Point2d b) const {
  const cv::Mat& edges = course == Course::across ? wideAcross_ : wideDown_;
  constexpr int kSamples = 48;
  int hits = 0;
  for (int i = 0; i < kSamples; ++i) {
    const double t = kCornerShare + (1 - 2 * kCornerShare) * (i + 0.5) / kSamples;
    const cv::Point at(a + t * (b - a));
    if (at.x < 0 || at.y < 0 || at.x >= edges.cols || at.y >= edges.rows) continue;
    if (edges.at<std::uint8_t>(at) != 0) ++hits;
  }
  return static_cast<double>(hits) / kSamples;
}

cv::Point2d meeting(const EdgeLine& a, const EdgeLine& b) {
  const double cross = a.direction[0] * b.direction[1] - a.direction[1] * b.direction[0];
  const cv::Point2d gap = b.point - a.point;
  const double t = (gap.x * b.direction[1] - gap.y * b.direction[0]) / cross;
  return {a.point.x + t * a.direction[0], a.point.y + t * a.direction[1]};
}

}  // namespace corvana::engine
