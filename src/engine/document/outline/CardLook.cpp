#include "engine/document/outline/CardLook.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "engine/document/outline/CardWarp.h"
#include "engine/document/text/TextLines.h"

namespace corvana::engine {
namespace {

constexpr double kMostTilt = 6;  ///< degrees; more in a straightened card is print beside it
constexpr double kRim = 5;       ///< print that comes as near to a side goes on beyond it
/// Patterns look like faces too, but seldom so much.
constexpr double kLikeAFace = 0.75;
constexpr double kSureFace = 0.85;
constexpr double kFaceInLines = 3;  ///< a sure face counts like lines of thrice the card's width
/// A line of a machine-readable zone fills so much of the width.
constexpr double kZoneWidth = 0.7;
/// A zone has three lines at most, and a title may be as wide: with more it is a page of print.
constexpr int kMostWideLines = 4;

/// Titles run up or down on some cards: so much, of the level lines' length, speaks for nothing,
/// and more for print that a wrong outline lies across.
constexpr double kMostUpward = 0.3;

bool isWithin(const TextLine& line, int height) {
  return std::abs(line.tilt) <= kMostTilt && line.box.minX() > kRim && line.box.minY() > kRim &&
         line.box.maxX() < kCardWidth - kRim && line.box.maxY() < height - kRim;
}

struct Print {
  double within = 0;  ///< length of the lines that end within the card, in its width
  double all = 0;
  int lines = 0;      ///< that end within
  int wideLines = 0;  ///< of these
  double share() const { return all > 0 ? within / all : 0; }
  bool isOfAPage() const { return wideLines > kMostWideLines; }
};

Print printOf(const std::vector<TextLine>& lines, int height) {
  Print print;
  double upward = 0;
  for (const TextLine& line : lines) {
    const double length = std::max(line.box.width, line.box.height) / kCardWidth;
    if (runsUpOrDown(line) && isWithin(line, height)) {
      upward += length;
      continue;
    }
    print.all += length;
    if (line.box.height >= line.box.width || !isWithin(line, height)) continue;
    print.within += length;
    ++print.lines;
    if (length > kZoneWidth) ++print.wideLines;
  }
  print.all += std::max(0.0, upward - kMostUpward * print.within);
  return print;
}

}  // namespace

bool completes(const Quad& whole, const Quad& part) {
  // As much as a tilt of some fifteen degrees takes from a card's height.
  constexpr double kMostTiltedAway = 0.04;
  constexpr double kMostMeasuredWrong = 0.02;
  const auto around = whole.bounds();
  const auto within = part.bounds();
  const double slack = 0.02 * whole.width();
  const bool liesAround =
      around.minX() < within.minX() + slack && around.minY() < within.minY() + slack &&
      around.maxX() > within.maxX() - slack && around.maxY() > within.maxY() - slack;
  const double shape = whole.documentAspect();
  // A part may look like another size of documents, but a whole one is no less like its own.
  return liesAround && whole.aspectError() < part.aspectError() + kMostMeasuredWrong &&
         whole.aspectErrorFrom(shape) < part.aspectErrorFrom(shape) - kMostTiltedAway;
}

void CardLook::turn() {
  outline = upsideDown(outline);
  std::swap(card, turned);
  std::swap(faceScore, faceScoreTurned);
}

double CardLook::content() const {
  const Print print = printOf(lines, straightenedHeight(outline));
  if (print.isOfAPage()) return 0;
  const double face =
      (std::max(faceScore, faceScoreTurned) - kLikeAFace) / (kSureFace - kLikeAFace);
  return print.share() * (print.within + kFaceInLines * std::clamp(face, 0.0, 1.0));
}

double CardLook::printLength() const {
  return printOf(lines, straightenedHeight(outline)).within * outline.width();
}

double CardLook::fittingPrint() const {
  return printOf(lines, straightenedHeight(outline)).share() * printLength();
}

bool CardLook::hasSureFace() const {
  return std::max(faceScore, faceScoreTurned) >= kSureFace;
}

bool CardLook::mayHaveFace() const {
  return std::max(faceScore, faceScoreTurned) >= kLikeAFace;
}

bool CardLook::isCertainlyACard() const {
  if (barcode) return true;
  constexpr double kMostOfPrint = 0.92;
  constexpr double kEnoughPrint = 0.8;
  constexpr int kEnoughLines = 4;
  const Print print = printOf(lines, straightenedHeight(outline));
  if (print.isOfAPage() || print.share() < kMostOfPrint || print.within < kEnoughPrint)
    return false;
  const bool hasZone = print.wideLines > 0 && print.lines >= kEnoughLines;
  return hasZone || hasSureFace();
}

}  // namespace corvana::engine
