#include "engine/document/CardTurn.h"

#include <algorithm>
#include <cmath>

namespace corvana::engine {
namespace {

/// Faces upright score 0.95 to 0.98, on their head 0.65 to 0.77.
constexpr double kClearFaceDifference = 0.2;
constexpr double kClear = 0.5;
constexpr double kClearlyMoreSense = 1.4;

}  // namespace

double faceSign(double score, double scoreTurned) {
  return std::clamp((score - scoreTurned) / kClearFaceDifference, -1.0, 1.0);
}

std::optional<CardTurn> cardTurn(const TurnSigns& signs) {
  const double sum = signs.lines + signs.face;
  const bool contradict = signs.lines * signs.face < 0;
  if (contradict || std::abs(sum) < kClear) return {};
  return sum > 0 ? CardTurn::upright : CardTurn::upsideDown;
}

std::optional<CardTurn> cardTurnByReading(double sense, double senseTurned) {
  if (sense > kClearlyMoreSense * senseTurned) return CardTurn::upright;
  if (senseTurned > kClearlyMoreSense * sense) return CardTurn::upsideDown;
  return {};
}

}  // namespace corvana::engine
