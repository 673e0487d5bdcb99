#include "engine/document/outline/CardFinder.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "engine/document/outline/EdgeLines.h"
#include "engine/document/outline/SideFit.h"
#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

/// Lines are sought in a picture whose longer side is at most this.
constexpr double kSearchSide = 640;
/// Around the guide, in guide widths: cards are seen, to be sent back, as far as this beside it.
constexpr double kSearchMargin = 0.35;
constexpr std::size_t kMostLines = 26;

// A side counts as seen when this share of it lies on an edge. A hand covers one side in part.
constexpr double kLeastSupport = 0.36;
constexpr double kLeastSecondSupport = 0.55;
constexpr double kFullSupport = 1;
constexpr double kLeastScore = 0.66;
/// Small outlines are common in any room; only a clear one counts.
constexpr double kLeastSmallScore = 0.74;
/// Between a page that leans back and a card that leans to the side.
constexpr double kLeastAspect = 1.29;
constexpr double kMostAspect = 1.94;
constexpr double kMostTaper = 1.5;  ///< of a side against the opposite one
/// The sides of a card that is cut off by the picture's edge must be this clear.
constexpr double kLeastCutOffSupport = 0.7;
/// The part of them next to that edge, or what lies beside a card would be taken for its sequel.
constexpr double kEndPart = 0.15;
constexpr double kLeastEndSupport = 0.5;
constexpr double kMostCutOffTaper = 1.25;
/// What is printed on a card that comes too near may pass for a card (up to 0.88). One that is held
/// well is clearer mostly (0.80 and more, half of 1,369 looks above 0.93) and clearer than what may
/// be made of its picture's edges: an outline less clear than this gives way to a cut card that is
/// so much clearer.
constexpr double kSureScore = 0.85;
constexpr double kClearer = 0.05;
constexpr double kSmallestOfGuide = 0.25;

double squared(double value) {
  return value * value;
}

bool hasDocumentsShape(const Quad& quad) {
  return quad.aspect() >= kLeastAspect && quad.aspect() <= kMostAspect &&
         quad.taper() <= kMostTaper;
}

struct Candidate {
  Quad quad;
  double score = 0;
  double preference = 0;
};

platform::CGPoint pointOf(cv::Point2d point) {
  return {point.x, point.y};
}
cv::Point2d pointOf(platform::CGPoint point) {
  return {point.x, point.y};
}

/// What can be said of a card that reaches out of the picture.
struct CutCard {
  CardVerdict verdict = CardVerdict::none;
  double area = 0;     ///< of what is seen of it
  double support = 0;  ///< of its least clear side
};

/// Whether the outline is of something printed on the card that reaches out of the picture.
bool isPrintedOn(const CutCard& card, const Candidate& outline, bool isSmall) {
  if (card.verdict == CardVerdict::none) return false;
  if (card.area < outline.quad.width() * outline.quad.height()) return false;
  return isSmall || card.support > outline.score + kClearer;
}

Quad scaled(const Quad& quad, double factor, cv::Point2d offset) {
  Quad result;
  for (std::size_t i = 0; i < 4; ++i) {
    result.corners[i] = {quad.corners[i].x * factor + offset.x,
                         quad.corners[i].y * factor + offset.y};
  }
  return result;
}

/// The search in one picture: lines across and down, paired to outlines and judged.
class OutlineSearch {
 public:
  OutlineSearch(const cv::Mat& rgb, const platform::CGRect& guide)
      : edges_(rgb),
        guide_(guide),
        across_(edges_.lines(Course::across, kMostLines)),
        down_(edges_.lines(Course::down, kMostLines)) {}

  /// The likeliest outline; its score is 0 when there is none.
  Candidate best() const {
    Candidate best;
    forEachOutline(across_, down_, [&](const Quad& quad) {
      if (!hasDocumentsShape(quad)) return;
      const double preferred = preference(quad);
      const double toBeat = best.score + best.preference;
      // Support is what costs: it is not asked for where even full support would not do.
      if (best.score > 0 && kFullSupport + preferred <= toBeat) return;
      const double support = supportOf(quad);
      if (support == 0) return;
      if (best.score == 0 || support + preferred > toBeat) best = {quad, support, preferred};
    });
    return best;
  }

  /// What to say of a card that reaches out of the picture. `picture` names the edges of the
  /// searched part that are the picture's.
  CutCard cutOff(const CutEdges& picture, const corvana::IDCapture::Options& limits) const {
    const double width = edges_.size().width;
    const double height = edges_.size().height;
    std::vector<EdgeLine> across = across_;
    std::vector<EdgeLine> down = down_;
    if (picture.left) down.push_back({{0, 1}, {0, 0}, 0});
    if (picture.right) down.push_back({{0, 1}, {width - 1, 0}, 0});
    if (picture.bottom) across.push_back({{1, 0}, {0, height - 1}, 0});
    CutCard best;  // the largest: what is printed on a card may look like a smaller one
    forEachOutline(across, down, [&](const Quad& quad) {
      const double area = quad.width() * quad.height();
      if (area <= best.area) return;
      const CutEdges cut = cutsOf(quad, picture);
      if (cut.count() == 0 || quad.taper() > kMostCutOffTaper) return;
      const CardVerdict place = cutCardPlace(quad, cut, guide_, limits);
      if (place == CardVerdict::none) return;
      if (const double support = cutSupport(quad, cut)) best = {place, area, support};
    });
    return best;
  }

 private:
  using LinePair = std::pair<std::size_t, std::size_t>;

  template <typename Visit>
  void forEachOutline(const std::vector<EdgeLine>& across, const std::vector<EdgeLine>& down,
                      Visit visit) const {
    const double minWidth = kSmallestOfGuide * guide_.width;
    const auto columns = pairs(down, false, minWidth);
    const auto corners = meetings(across, down);
    for (const auto& [top, bottom] : pairs(across, true, minWidth / kCardAspect)) {
      for (const auto& [left, right] : columns) {
        const Quad quad{{corners[top][left], corners[top][right], corners[bottom][right],
                         corners[bottom][left]}};
        if (quad.isConvex()) visit(quad);
      }
    }
  }

  /// Where each line across meets each line down.
  static std::vector<std::vector<platform::CGPoint>> meetings(const std::vector<EdgeLine>& across,
                                                              const std::vector<EdgeLine>& down) {
    std::vector<std::vector<platform::CGPoint>> points;
    for (const EdgeLine& line : across) {
      auto& along = points.emplace_back();
      for (const EdgeLine& other : down)
        along.push_back(pointOf(meeting(line, other)));
    }
    return points;
  }

  /// The indices of each line with each that lies at least so far below (or right of) it.
  std::vector<LinePair> pairs(const std::vector<EdgeLine>& lines, bool across,
                              double leastGap) const {
    std::vector<LinePair> result;
    for (std::size_t first = 0; first < lines.size(); ++first) {
      for (std::size_t second = 0; second < lines.size(); ++second) {
        if (gapAt(lines[second], lines[first], across) >= leastGap)
          result.emplace_back(first, second);
      }
    }
    return result;
  }

  /// How far the second line lies below (or right of) the first, at the guide's middle.
  double gapAt(const EdgeLine& second, const EdgeLine& first, bool across) const {
    const auto place = [&](const EdgeLine& line) {
      return across ? line.point.y +
                          (guide_.midX() - line.point.x) * line.direction[1] / line.direction[0]
                    : line.point.x +
                          (guide_.midY() - line.point.y) * line.direction[0] / line.direction[1];
    };
    return place(second) - place(first);
  }

  /// The edges of the picture along which the outline's sides lie.
  CutEdges cutsOf(const Quad& quad, const CutEdges& picture) const {
    const auto& c = quad.corners;
    const double right = edges_.size().width - 1.0;
    const double bottom = edges_.size().height - 1.0;
    return {picture.left && c[0].x <= 0 && c[3].x <= 0,
            picture.right && c[1].x >= right && c[2].x >= right,
            picture.bottom && c[2].y >= bottom && c[3].y >= bottom};
  }

  /// Support of the least clear side within the picture; 0 where one is not clear or does not go on
  /// to the edge that cuts it.
  double cutSupport(const Quad& quad, const CutEdges& cut) const {
    const std::array<bool, 4> hidden{false, cut.right, cut.bottom, cut.left};
    double least = kFullSupport;
    for (std::size_t side = 0; side < hidden.size(); ++side) {
      if (hidden[side]) continue;
      least = std::min(least, sideSupport(quad, side));
      if (least < kLeastCutOffSupport) return 0;
      if (hidden[(side + 1) % 4] && endSupport(quad, side, true) < kLeastEndSupport) return 0;
      if (hidden[(side + 3) % 4] && endSupport(quad, side, false) < kLeastEndSupport) return 0;
    }
    return least;
  }

  /// As `sideSupport`, of the last or the first part of a side.
  double endSupport(const Quad& quad, std::size_t side, bool isLast) const {
    const cv::Point2d a = pointOf(quad.corners[side]);
    const cv::Point2d b = pointOf(quad.corners[(side + 1) % 4]);
    const cv::Point2d between = isLast ? b - kEndPart * (b - a) : a + kEndPart * (b - a);
    const Course course = side % 2 == 0 ? Course::across : Course::down;
    return edges_.support(course, isLast ? between : a, isLast ? b : between);
  }

  /// The mean share of the sides that lies on edges; 0 when a side is not seen.
  double supportOf(const Quad& quad) const {
    std::array<double, 4> supports{};
    for (std::size_t i = 0; i < 4; ++i) {
      supports[i] = sideSupport(quad, i);
      if (supports[i] < kLeastSupport) return 0;
    }
    std::array<double, 4> sorted = supports;
    std::sort(sorted.begin(), sorted.end());
    if (sorted[1] < kLeastSecondSupport) return 0;
    return (supports[0] + supports[1] + supports[2] + supports[3]) / 4;
  }

  double sideSupport(const Quad& quad, std::size_t side) const {
    const Course course = side % 2 == 0 ? Course::across : Course::down;
    return distinctSupport(course, pointOf(quad.corners[side]),
                           pointOf(quad.corners[(side + 1) % 4]));
  }

  /// A side stands out; where lines beside it on both sides lie on edges too, it is mere texture.
  double distinctSupport(Course course, cv::Point2d a, cv::Point2d b) const {
    const double own = edges_.support(course, a, b);
    if (own < kLeastSupport) return own;
    const cv::Point2d along = (b - a) / cv::norm(b - a);
    const cv::Point2d normal(-along.y * 5, along.x * 5);
    const double beside = std::min(edges_.support(course, a + normal, b + normal),
                                   edges_.support(course, a - normal, b - normal));
    return own - 0.5 * beside;
  }

  /// Among supported outlines the one of a card's shape, the outermost, near the guide.
  double preference(const Quad& quad) const {
    const auto center = quad.center();
    const double offset =
        std::hypot(center.x - guide_.midX(), center.y - guide_.midY()) / guide_.width;
    return 0.20 * std::log(quad.width() / guide_.width) - 1.0 * quad.aspectError() -
           0.25 * (quad.taper() - 1) - 0.20 * squared(offset);
  }

  EdgeMap edges_;
  platform::CGRect guide_;
  std::vector<EdgeLine> across_;
  std::vector<EdgeLine> down_;
};

cv::Rect searchWindow(const platform::CGRect& guide, cv::Size picture) {
  const double margin = kSearchMargin * guide.width;
  return pixelRect(
      {guide.x - margin, guide.y - margin, guide.width + 2 * margin, guide.height + 2 * margin},
      picture);
}

}  // namespace

CardSighting findCard(const platform::PixelBuffer& picture, const platform::CGRect& guide,
                      const corvana::IDCapture::Options& limits) {
  const cv::Mat rgb = rgbMat(picture);
  const cv::Rect window = searchWindow(guide, rgb.size());
  if (guide.isEmpty() || window.empty()) return {};
  const double factor = std::max(1.0, std::max(rgb.cols, rgb.rows) / kSearchSide);
  cv::Mat small;
  cv::resize(rgb(window), small, cv::Size(), 1 / factor, 1 / factor, cv::INTER_AREA);
  const platform::CGRect smallGuide{(guide.x - window.x) / factor, (guide.y - window.y) / factor,
                                    guide.width / factor, guide.height / factor};

  const OutlineSearch search(small, smallGuide);
  const Candidate best = search.best();
  const bool isSmall = best.quad.width() < limits.leastCardWidth * smallGuide.width;
  const bool isSeen = best.score >= (isSmall ? kLeastSmallScore : kLeastScore);
  if (!isSeen || isSmall || best.score < kSureScore) {
    const CutEdges edges{window.x == 0, window.br().x == rgb.cols, window.br().y == rgb.rows};
    const CutCard cut = search.cutOff(edges, limits);
    if (!isSeen || isPrintedOn(cut, best, isSmall)) return {cut.verdict, {}};
  }
  // A pixel of the small picture stands for the middle of those it was made from.
  const cv::Point2d offset(window.x + (factor - 1) / 2, window.y + (factor - 1) / 2);
  const Quad quad = fitSides(rgb, scaled(best.quad, factor, offset), 1.5 * factor + 2);
  const platform::CGSize size{static_cast<double>(rgb.cols), static_cast<double>(rgb.rows)};
  return {cardPlace(quad, size, guide, limits), quad, best.score};
}

}  // namespace corvana::engine
