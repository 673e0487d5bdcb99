#include "engine/document/CardLook.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "engine/document/CardWarp.h"

namespace corvana::engine {
namespace {

constexpr double kMostTilt = 6;  ///< degrees; more in a straightened card is print beside it
constexpr double kRim = 5;       ///< print that comes as near to a side goes on beyond it
constexpr double kSureFace = 0.75;
constexpr double kFaceInLines = 0.5;  ///< a face counts like a line of half the card's width
/// A line of a machine-readable zone fills so much of the width.
constexpr double kZoneWidth = 0.7;

bool isWithin(const TextLine& line) {
  return std::abs(line.tilt) <= kMostTilt && line.box.width > line.box.height &&
         line.box.minX() > kRim && line.box.minY() > kRim && line.box.maxX() < kCardWidth - kRim &&
         line.box.maxY() < kCardHeight - kRim;
}

struct Lines {
  double within = 0;  ///< length of those that end within the card, in its width
  double all = 0;
  double share() const { return all > 0 ? within / all : 0; }
};

Lines lengthsOf(const std::vector<TextLine>& lines) {
  Lines lengths;
  for (const TextLine& line : lines) {
    const double length = std::max(line.box.width, line.box.height) / kCardWidth;
    lengths.all += length;
    if (isWithin(line)) lengths.within += length;
  }
  return lengths;
}

}  // namespace

bool completes(const Quad& whole, const Quad& part) {
  // As much as a tilt of some fifteen degrees takes from a card's height.
  constexpr double kMostTiltedAway = 0.04;
  const auto strangeness = [](const Quad& quad) {
    return std::abs(std::log(quad.width() / quad.height() / kCardAspect));
  };
  const auto around = whole.bounds();
  const auto within = part.bounds();
  const double slack = 0.02 * whole.width();
  const bool liesAround =
      around.minX() < within.minX() + slack && around.minY() < within.minY() + slack &&
      around.maxX() > within.maxX() - slack && around.maxY() > within.maxY() - slack;
  return liesAround && strangeness(whole) < strangeness(part) - kMostTiltedAway;
}

void CardLook::turn() {
  outline = upsideDown(outline);
  std::swap(card, turned);
  std::swap(faceScore, faceScoreTurned);
}

double CardLook::content() const {
  const Lines lengths = lengthsOf(lines);
  const bool hasFace = std::max(faceScore, faceScoreTurned) >= kSureFace;
  return lengths.share() * (lengths.within + (hasFace ? kFaceInLines : 0));
}

bool CardLook::isCertainlyACard() const {
  constexpr double kMostOfPrint = 0.92;
  constexpr double kEnoughPrint = 0.8;
  const Lines lengths = lengthsOf(lines);
  const bool hasZone = std::ranges::any_of(lines, [](const TextLine& line) {
    return isWithin(line) && line.box.width > kZoneWidth * kCardWidth;
  });
  const bool hasFace = std::max(faceScore, faceScoreTurned) >= kSureFace;
  return lengths.share() >= kMostOfPrint && lengths.within >= kEnoughPrint && (hasFace || hasZone);
}

}  // namespace corvana::engine
