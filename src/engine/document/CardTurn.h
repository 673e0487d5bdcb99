#pragma once

#include <optional>

namespace corvana::engine {

/// What tells which way up a card lies, each from -1 (on its head) to 1 (upright); 0 tells nothing.
struct TurnSigns {
  double lines = 0;  ///< of its lines of print, by their length
  double face = 0;   ///< of its face: a detector finds faces on their head too, but is less sure
};

enum class CardTurn { upright, upsideDown };

/// The sign of a face that was found with these scores (0: not at all) as the card lies, and
/// turned.
double faceSign(double score, double scoreTurned);

/// Which way up the card lies; absent while the signs are weak or against each other.
std::optional<CardTurn> cardTurn(const TurnSigns& signs);

/// Which way up the card lies by what was read both ways: confidence times letters. Absent where
/// neither makes much more sense than the other.
std::optional<CardTurn> cardTurnByReading(double sense, double senseTurned);

}  // namespace corvana::engine
