#include "engine/document/CardOutlines.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include <opencv2/imgproc.hpp>

#include "engine/document/CardFinder.h"
#include "engine/document/SideFit.h"
#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

constexpr double kSearchSide = 640;
/// A picture this near to a card's shape may be nothing but the card.
constexpr double kShapeTolerance = 0.08;
constexpr double kLeastShareOfPicture = 0.03;
constexpr double kMostAspectError = 0.22;  ///< of the ratio's logarithm
constexpr double kMostTaper = 1.35;        ///< of a side against the opposite one
constexpr double kLeastFilled = 0.80;      ///< of the outline by the patch that it is drawn around
constexpr double kLeastSupport = 0.45;
constexpr int kLevels = 20;
constexpr double kSameOutline = 0.03;  ///< corners apart, of the width
constexpr std::size_t kMostOutlines = 8;

using Corners = std::array<cv::Point2d, 4>;

cv::Point2d pointOf(platform::CGPoint point) {
  return {point.x, point.y};
}

double distance(const platform::CGPoint& a, const platform::CGPoint& b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

/// The outline with its long sides as width.
Quad lying(Quad quad) {
  if (quad.width() < quad.height()) std::ranges::rotate(quad.corners, quad.corners.begin() + 1);
  return quad;
}

bool hasCardsShape(const Quad& quad) {
  if (!quad.isConvex()) return false;
  const double a = quad.topLength() / quad.bottomLength();
  const double b = quad.leftLength() / quad.rightLength();
  return std::max({a, 1 / a, b, 1 / b}) <= kMostTaper &&
         std::abs(std::log(quad.width() / quad.height() / kCardAspect)) <= kMostAspectError;
}

Quad scaled(const Quad& quad, double factor) {
  Quad result;
  // A pixel of the small picture stands for the middle of those it was made from.
  std::ranges::transform(quad.corners, result.corners.begin(), [&](const auto& corner) {
    return platform::CGPoint{(corner.x + 0.5) * factor - 0.5, (corner.y + 0.5) * factor - 0.5};
  });
  return result;
}

/// How strongly each pixel differs from its neighbours, in the channel that changes most.
cv::Mat edgeStrength(const cv::Mat& rgb) {
  cv::Mat smooth;
  cv::GaussianBlur(rgb, smooth, {3, 3}, 0);
  std::array<cv::Mat, 3> channels;
  cv::split(smooth, channels.data());
  cv::Mat strongest(rgb.size(), CV_32F, cv::Scalar(0));
  for (const cv::Mat& channel : channels) {
    cv::Mat dx;
    cv::Mat dy;
    cv::Mat strength;
    cv::Sobel(channel, dx, CV_32F, 1, 0);
    cv::Sobel(channel, dy, CV_32F, 0, 1);
    cv::magnitude(dx, dy, strength);
    cv::max(strongest, strength, strongest);
  }
  return strongest;
}

/// The search in one small picture.
class OutlineCollector {
 public:
  explicit OutlineCollector(const cv::Mat& small)
      : edges_(edgeStrength(small)), size_(small.size()) {
    cv::Mat dilated;
    cv::dilate(edges_, dilated, cv::Mat::ones(3, 3, CV_8U));
    edges_ = dilated;
  }

  void add(const Quad& outline) {
    const Quad quad = lying(outline);
    if (!hasCardsShape(quad)) return;
    const double share = quad.width() * quad.height() / size_.area();
    if (share < kLeastShareOfPicture) return;
    const double support = supportOf(quad);
    if (support < kLeastSupport) return;
    found_.emplace_back(support + 0.05 * std::log(share), quad);
  }

  /// The clearest outlines, no two nearly the same.
  std::vector<Quad> best() {
    std::ranges::stable_sort(found_, std::ranges::greater{}, &std::pair<double, Quad>::first);
    std::vector<Quad> best;
    for (const auto& [score, quad] : found_) {
      if (best.size() == kMostOutlines) break;
      const bool isKnown =
          std::ranges::any_of(best, [&](const Quad& other) { return areSame(quad, other); });
      if (!isKnown) best.push_back(quad);
    }
    return best;
  }

 private:
  static bool areSame(const Quad& a, const Quad& b) {
    const auto apart = [&](std::size_t turn) {
      double most = 0;
      for (std::size_t i = 0; i < 4; ++i)
        most = std::max(most, distance(a.corners[i], b.corners[(i + turn) % 4]));
      return most;
    };
    return std::min(apart(0), apart(2)) < kSameOutline * a.width();
  }

  /// The share of the sides that lies on edges; what lies on the picture's rim may be cut off.
  double supportOf(const Quad& quad) const {
    constexpr int kSamples = 60;
    constexpr float kEdge = 40;
    int hits = 0;
    int samples = 0;
    for (std::size_t i = 0; i < 4; ++i) {
      const cv::Point2d a = pointOf(quad.corners[i]);
      const cv::Point2d b = pointOf(quad.corners[(i + 1) % 4]);
      for (int k = 0; k < kSamples; ++k) {
        const cv::Point2d place = a + (0.07 + 0.86 * k / kSamples) * (b - a);
        const cv::Point at(cvRound(place.x), cvRound(place.y));
        if (!cv::Rect(2, 2, size_.width - 4, size_.height - 4).contains(at)) continue;
        ++samples;
        if (edges_.at<float>(at) >= kEdge) ++hits;
      }
    }
    return samples < 2 * kSamples ? 0 : double(hits) / samples;
  }

  cv::Mat edges_;
  cv::Size size_;
  std::vector<std::pair<double, Quad>> found_;
};

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

void addPatches(const cv::Mat& mask, OutlineCollector& found) {
  std::vector<std::vector<cv::Point>> patches;
  cv::findContours(mask, patches, cv::RETR_LIST, cv::CHAIN_APPROX_NONE);
  const double least = kLeastShareOfPicture * static_cast<double>(mask.total());
  for (const auto& patch : patches) {
    if (cv::contourArea(patch) < least) continue;
    if (const auto quad = quadAround(patch)) found.add(*quad);
  }
}

/// Patches lighter or darker, or of another colour, than what they lie on.
void addLevels(const cv::Mat& rgb, OutlineCollector& found) {
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
      addPatches(mask, found);
      addPatches(~mask, found);
    }
  }
}

/// Patches enclosed by edges.
void addEnclosed(const cv::Mat& rgb, OutlineCollector& found) {
  cv::Mat smooth;
  cv::GaussianBlur(rgb, smooth, {5, 5}, 0);
  for (const double strong : {30.0, 60.0, 120.0}) {
    cv::Mat edges;
    cv::Canny(smooth, edges, strong / 2, strong);
    cv::dilate(edges, edges, cv::Mat::ones(3, 3, CV_8U));
    addPatches(edges, found);
    addPatches(~edges, found);
  }
}

/// Straight lines of the picture and of it turned by 45°, 90° and 135°: together they are found at
/// any turn.
void addLines(const cv::Mat& rgb, OutlineCollector& found) {
  const double side = std::hypot(rgb.cols, rgb.rows);
  for (const double degrees : {0.0, 45.0, 90.0, 135.0}) {
    const cv::Point2d middle((rgb.cols - 1) / 2.0, (rgb.rows - 1) / 2.0);
    cv::Mat turn = cv::getRotationMatrix2D(middle, degrees, 1);
    const int canvas = cvRound(side);
    turn.at<double>(0, 2) += (canvas - rgb.cols) / 2.0;
    turn.at<double>(1, 2) += (canvas - rgb.rows) / 2.0;
    cv::Mat turned;
    cv::warpAffine(rgb, turned, turn, {canvas, canvas}, cv::INTER_LINEAR, cv::BORDER_REPLICATE);
    const double width = 0.75 * std::max(rgb.cols, rgb.rows);
    const platform::CGRect guide{(canvas - width) / 2, (canvas - width / kCardAspect) / 2, width,
                                 width / kCardAspect};
    const auto sighting = findCard(*pixelBufferFrom(turned), guide);
    if (!sighting.outline) continue;
    cv::Matx23d back;
    cv::invertAffineTransform(turn, back);
    Quad quad;
    std::ranges::transform(sighting.outline->corners, quad.corners.begin(),
                           [&](const auto& corner) {
                             const cv::Vec2d at = back * cv::Vec3d(corner.x, corner.y, 1);
                             return platform::CGPoint{at[0], at[1]};
                           });
    found.add(quad);
  }
}

}  // namespace

std::vector<Quad> cardOutlines(const cv::Mat& rgb) {
  const double factor = std::max(1.0, std::max(rgb.cols, rgb.rows) / kSearchSide);
  cv::Mat small;
  cv::resize(rgb, small, {}, 1 / factor, 1 / factor, cv::INTER_AREA);
  OutlineCollector found(small);
  addLevels(small, found);
  addEnclosed(small, found);
  addLines(small, found);
  std::vector<Quad> outlines;
  for (const Quad& quad : found.best()) {
    outlines.push_back(lying(fitSides(rgb, scaled(quad, factor), 2.5 * factor + 2)));
  }
  const double width = rgb.cols;
  const double height = rgb.rows;
  const Quad whole = lying(Quad{
      {{{-0.5, -0.5}, {width - 0.5, -0.5}, {width - 0.5, height - 0.5}, {-0.5, height - 0.5}}}});
  if (std::abs(std::log(whole.width() / whole.height() / kCardAspect)) <= kShapeTolerance) {
    outlines.push_back(whole);
  }
  return outlines;
}

}  // namespace corvana::engine
