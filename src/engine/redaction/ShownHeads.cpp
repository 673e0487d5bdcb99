#include "engine/redaction/ShownHeads.h"

#include <chrono>

namespace corvana::engine {
namespace {

using std::chrono::milliseconds;

/// Two pictures before and behind at the usual rate.
constexpr platform::Duration kHeadSpan = milliseconds(75);
/// Reaches over two close looks to either side.
constexpr platform::Duration kCoverSpan = milliseconds(210);

/// The pictures from the first to behind the last that lie so near in time.
struct Span {
  std::size_t begin;
  std::size_t end;
};

Span spanAround(const std::vector<HeadSighting>& all, std::size_t index, platform::Duration reach) {
  Span span{index, index + 1};
  const auto time = all[index].time;
  while (span.begin > 0 && time - all[span.begin - 1].time <= reach)
    --span.begin;
  while (span.end < all.size() && all[span.end].time - time <= reach)
    ++span.end;
  return span;
}

}  // namespace

ShownParts shownPartsAt(const std::vector<HeadSighting>& sightings, std::size_t index) {
  ShownParts parts;
  bool hasCloseLook = false;
  bool isCrowded = false;
  const Span around = spanAround(sightings, index, kCoverSpan);
  for (std::size_t i = around.begin; i < around.end; ++i) {
    const HeadSighting& sighting = sightings[i];
    hasCloseLook |= sighting.isClose;
    isCrowded |= sighting.isCrowded;
    parts.covered.insert(parts.covered.end(), sighting.print.begin(), sighting.print.end());
    if (sighting.card) parts.cards.push_back(*sighting.card);
  }
  if (!hasCloseLook || isCrowded) return parts;
  const Span near = spanAround(sightings, index, kHeadSpan);
  for (std::size_t i = near.begin; i < near.end; ++i) {
    if (!sightings[i].face) {
      parts.faces.clear();
      break;
    }
    parts.faces.push_back(*sightings[i].face);
  }
  return parts;
}

}  // namespace corvana::engine
