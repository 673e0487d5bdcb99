#pragma once

#include <optional>
#include <string>
#include <vector>

#include "corvana/DetectedData.h"
#include "engine/document/mrz/MrzVotes.h"
#include "engine/document/text/TextReader.h"

namespace corvana::engine {

/// What earlier pictures told of a card that has been held still since, and what of it may be taken
/// as read. One thread at a time.
struct CardMemory {
  bool isUpsideDown = false;           ///< the outline's upper side is the card's lower one
  std::vector<TextLine> lines;         ///< all print, as last read
  MrzVotes votes;                      ///< of its machine-readable zone
  bool hasOpenZone = false;            ///< one that was seen and not read yet
  int repeats = 0;                     ///< how often in a row settled lines were taken as read
  std::vector<std::string> confirmed;  ///< lines that two readings in a row had alike
  std::optional<corvana::RealnessScores> realness;  ///< as last measured

  /// Counts a reading of the card, whose print looks as it did or not. True: its settled lines may
  /// be taken as read this time.
  bool repeatsFor(bool looksAsRead);
  /// Whether the line would be read alike again.
  bool isSettled(const TextLine& line) const;
  /// What was read again is of the remembered card: so much of its print was still found.
  bool isOf(const std::vector<TextLine>& readAgain) const;
  /// Confirms those of the remembered lines that were read alike now.
  void confirmBy(const std::vector<TextLine>& readAgain);
  /// Nothing is taken as read any more.
  void unsettle();
};

}  // namespace corvana::engine
