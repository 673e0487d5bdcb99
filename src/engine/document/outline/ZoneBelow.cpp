#include "engine/document/outline/ZoneBelow.h"

#include <algorithm>

#include "engine/document/outline/CardWarp.h"

namespace corvana::engine {
namespace {

constexpr double kAround = 1.5;  ///< of the card's sides
/// Of the card's height. One of its lines may have been let in; the zone of another card, below
/// this one, stands lower.
constexpr double kHighestZone = 0.75;
constexpr double kLowestZone = 1.45;
/// A zone's lines, of the width of a document.
constexpr double kLeastLength = 0.5;
/// From a zone to the document's sides and lower edge, of the zone's length.
constexpr double kMargin = 0.04;

}  // namespace

platform::CGRect ZoneBelow::around(int height) {
  return {(1 - kAround) / 2 * kCardWidth, 0, kAround * kCardWidth, kAround * height};
}

platform::CGRect ZoneBelow::onCard(const platform::CGRect& box) const {
  const platform::CGRect seen = around(height_);
  const double across = seen.width / kCardWidth;
  const double down = seen.height / seenHeight_;
  return {seen.x + across * box.x, seen.y + down * box.y, across * box.width, down * box.height};
}

bool ZoneBelow::mayBeOfZone(const TextLine& line) const {
  const platform::CGRect box = onCard(line.box);
  return box.width >= kLeastLength * kCardWidth && box.midY() > kHighestZone * height_ &&
         box.midY() < kLowestZone * height_;
}

platform::CGRect ZoneBelow::document(const std::vector<TextLine>& zone) const {
  double left = kCardWidth;
  double right = 0;
  double bottom = 0;
  for (const TextLine& line : zone) {
    const platform::CGRect box = onCard(line.box);
    left = std::min(left, box.minX());
    right = std::max(right, box.maxX());
    bottom = std::max(bottom, box.maxY());
  }
  const double margin = kMargin * (right - left);
  left = std::min(0.0, left - margin);
  right = std::max<double>(kCardWidth, right + margin);
  return {left, 0, right - left, std::max<double>(height_, bottom + margin)};
}

}  // namespace corvana::engine
