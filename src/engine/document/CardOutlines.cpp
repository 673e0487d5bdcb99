#include "engine/document/CardOutlines.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include <opencv2/imgproc.hpp>

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
constexpr std::size_t kMostOutlines = 12;
constexpr double kMostPrintTilt = 0.12;  ///< sine of the angle between print and outline
constexpr double kPrintWeight = 0.3;     ///< against the share of the sides that is seen

constexpr double kLeastPiece = 14;  ///< of a straight edge, pixels
constexpr double kOnOneLine = 2;    ///< pixels beside it
constexpr std::size_t kMostEdges = 60;
constexpr double kMostConvergence = 0.2;  ///< sine of the angle between opposite sides
constexpr double kLeastSine = 0.9;        ///< of the angle between neighbouring sides
constexpr double kLeastSide = 0.1;        ///< of the picture's longer side

cv::Point2d pointOf(platform::CGPoint point) {
  return {point.x, point.y};
}

double distance(const platform::CGPoint& a, const platform::CGPoint& b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

/// The outline with its long sides as width.
Quad lying(Quad quad) {
  if (quad.width() < quad.height())
    std::rotate(quad.corners.begin(), quad.corners.begin() + 1, quad.corners.end());
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

/// A straight edge or a line of print.
struct Segment {
  cv::Point2d from;
  cv::Point2d to;
  double length() const { return cv::norm(to - from); }
  cv::Point2d direction() const { return (to - from) / length(); }
};

double cross(cv::Point2d a, cv::Point2d b) {
  return a.x * b.y - a.y * b.x;
}

/// The lines of print in the small picture, each as a stretch through its letters' middles.
std::vector<Segment> middles(const std::vector<cv::RotatedRect>& print, double factor) {
  std::vector<Segment> lines;
  for (const cv::RotatedRect& box : print) {
    const double angle = box.angle * CV_PI / 180;
    const bool isTall = box.size.height > box.size.width;
    const cv::Point2d along = isTall ? cv::Point2d(-std::sin(angle), std::cos(angle))
                                     : cv::Point2d(std::cos(angle), std::sin(angle));
    // Without what the box has around the letters.
    const double half = (std::max(box.size.width, box.size.height) -
                         0.6 * std::min(box.size.width, box.size.height)) /
                        2;
    const cv::Point2d middle(box.center);
    lines.push_back({(middle - half * along) / factor, (middle + half * along) / factor});
  }
  return lines;
}

/// The search in one small picture.
class OutlineCollector {
 public:
  OutlineCollector(const cv::Mat& small, std::vector<Segment> print)
      : derivatives_(derivatives(small)), size_(small.size()), print_(std::move(print)) {}

  void add(const Quad& outline) {
    const Quad quad = lying(outline);
    if (!hasCardsShape(quad)) return;
    const double share = quad.width() * quad.height() / size_.area();
    if (share < kLeastShareOfPicture) return;
    const double support = supportOf(quad);
    if (support < kLeastSupport) return;
    found_.emplace_back(support + printFit(quad) + 0.05 * std::log(share), quad);
  }

  /// The clearest outlines, no two nearly the same.
  std::vector<Quad> best() {
    std::ranges::stable_sort(found_, std::ranges::greater{}, &std::pair<double, Quad>::first);
    std::vector<Quad> best;
    for (const auto& found : found_) {
      if (best.size() == kMostOutlines) break;
      const bool isKnown = std::ranges::any_of(
          best, [&](const Quad& other) { return areSame(found.second, other); });
      if (!isKnown) best.push_back(found.second);
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

  /// How well the lines of print that touch the outline fit it: those along it within it speak for
  /// a card, those that it cuts or that run another way against one.
  double printFit(const Quad& quad) const {
    const cv::Point2d along = pointOf(quad.corners[1]) - pointOf(quad.corners[0]) +
                              pointOf(quad.corners[2]) - pointOf(quad.corners[3]);
    double fitting = 0;
    double others = 0;
    for (const Segment& line : print_) {
      const bool from = contains(quad, line.from);
      const bool to = contains(quad, line.to);
      if (!from && !to) continue;
      const double sine = std::abs(cross(along / cv::norm(along), line.direction()));
      (from && to && sine < kMostPrintTilt ? fitting : others) += line.length();
    }
    return fitting + others == 0 ? 0 : kPrintWeight * (fitting - 2 * others) / (fitting + others);
  }

  static bool contains(const Quad& quad, cv::Point2d point) {
    for (std::size_t i = 0; i < 4; ++i) {
      const cv::Point2d side = pointOf(quad.corners[(i + 1) % 4]) - pointOf(quad.corners[i]);
      if (cross(side, point - pointOf(quad.corners[i])) < 0) return false;
    }
    return true;
  }

  /// The share of the sides that lies on edges along them, less what lies on such edges beside
  /// them, as all lines in a texture do. Sides beyond the picture don't count.
  double supportOf(const Quad& quad) const {
    double sum = 0;
    int seen = 0;
    for (std::size_t i = 0; i < 4; ++i) {
      const cv::Point2d a = pointOf(quad.corners[i]);
      const cv::Point2d b = pointOf(quad.corners[(i + 1) % 4]);
      const auto own = sideSupport(a, b);
      if (!own) continue;
      const cv::Point2d along = (b - a) / cv::norm(b - a);
      const cv::Point2d beside = cv::Point2d(-along.y, along.x) * kBeside;
      const double texture = std::min(sideSupport(a + beside, b + beside).value_or(0),
                                      sideSupport(a - beside, b - beside).value_or(0));
      sum += *own - 0.5 * texture;
      ++seen;
    }
    return seen < 3 ? 0 : sum / seen;
  }

  /// Absent where most of the side lies beyond the picture.
  std::optional<double> sideSupport(cv::Point2d a, cv::Point2d b) const {
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

  static constexpr int kSamples = 60;
  static constexpr double kBeside = 5;
  /// Of the Sobel operator: a step of ten grey levels, smoothed, gives about 25.
  static constexpr double kLeastSlope = 24;

  cv::Mat derivatives_;
  cv::Size size_;
  std::vector<Segment> print_;
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

/// The longest straight edges, longest first, with pieces of one line joined.
std::vector<Segment> longestEdges(const cv::Mat& rgb) {
  cv::Mat gray;
  cv::cvtColor(rgb, gray, cv::COLOR_RGB2GRAY);
  std::vector<cv::Vec4f> found;
  cv::createLineSegmentDetector()->detect(gray, found);
  std::vector<Segment> pieces;
  for (const cv::Vec4f& line : found)
    pieces.push_back({{line[0], line[1]}, {line[2], line[3]}});
  std::erase_if(pieces, [](const Segment& piece) { return piece.length() < kLeastPiece; });
  std::ranges::stable_sort(pieces, std::ranges::greater{}, &Segment::length);
  std::vector<Segment> edges;
  for (const Segment& piece : pieces) {
    const auto same = std::ranges::find_if(edges, [&](const Segment& edge) {
      const cv::Point2d along = edge.direction();
      return std::abs(cross(along, piece.from - edge.from)) < kOnOneLine &&
             std::abs(cross(along, piece.to - edge.from)) < kOnOneLine;
    });
    if (same == edges.end()) {
      edges.push_back(piece);
      continue;
    }
    const cv::Point2d along = same->direction();
    const auto place = [&](cv::Point2d point) { return along.dot(point - same->from); };
    const auto [first, last] =
        std::minmax({0.0, same->length(), place(piece.from), place(piece.to)});
    *same = {same->from + first * along, same->from + last * along};
  }
  std::ranges::stable_sort(edges, std::ranges::greater{}, &Segment::length);
  if (edges.size() > kMostEdges) edges.resize(kMostEdges);
  return edges;
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

/// Outlines of long straight edges, two and two across each other.
void addEdges(const cv::Mat& rgb, OutlineCollector& found) {
  const double leastGap = kLeastSide * std::max(rgb.cols, rgb.rows);
  const std::vector<Pair> pairs = oppositeSides(longestEdges(rgb), leastGap);
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    for (std::size_t k = i + 1; k < pairs.size(); ++k) {
      const double sine = cross(pairs[i].first.direction(), pairs[k].first.direction());
      if (std::abs(sine) < kLeastSine) continue;
      if (const auto quad = quadOf(pairs[i], pairs[k])) found.add(*quad);
    }
  }
}

}  // namespace

std::vector<Quad> cardOutlines(const cv::Mat& rgb, const std::vector<cv::RotatedRect>& print) {
  const double factor = std::max(1.0, std::max(rgb.cols, rgb.rows) / kSearchSide);
  cv::Mat small;
  cv::resize(rgb, small, {}, 1 / factor, 1 / factor, cv::INTER_AREA);
  OutlineCollector found(small, middles(print, factor));
  addLevels(small, found);
  addEnclosed(small, found);
  addEdges(small, found);
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
