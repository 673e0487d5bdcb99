#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "engine/document/text/LineDoubts.h"

namespace corvana::engine {

/// The text of one line.
struct LineReading {
  std::string text;           ///< UTF-8
  double confidence = 0;      ///< mean of the letters', 0 to 1
  double leastConfident = 0;  ///< the least of the letters', 0 to 1
  /// The answers at which the first and the last letter of each word between blanks stand.
  std::vector<std::pair<std::size_t, std::size_t>> words{};
  /// What the line may say as well, as far as the network was unsure of letters; the likeliest
  /// first.
  std::vector<std::string> others{};
};

/// Makes a text of what the network answers along a line. Pure.
class LineDecoder {
 public:
  /// `letters` are the network's, in its order.
  explicit LineDecoder(std::vector<std::string> letters);

  /// Values that the network gives for each answer.
  std::size_t classes() const { return letters_.size() + 1; }
  /// The answers one after the other: of each the share of a pause and of every letter. Where the
  /// network takes a letter that it has seldom seen for a pause, or for one that looks like it, its
  /// doubt tells, and the letter is put right.
  LineReading read(std::span<const float> answers) const;

 private:
  /// A letter for which the network takes a rare one.
  struct Lookalike {
    std::size_t letter;
    std::size_t rare;
    std::vector<std::size_t> signs;  ///< letters whose shares speak for the rare one
    float least;
  };
  struct Letter {
    std::size_t index = 0;  ///< 0: a pause
    float share = 0;
  };
  /// An answer among its neighbours.
  struct Around {
    std::size_t at = 0;
    std::size_t before = 0;
    Letter seen{};
    std::size_t after = 0;
    bool isWithin = false;  ///< neither the first answer nor the last
  };
  struct Draft;

  std::optional<std::size_t> indexOf(const std::string& letter) const;
  void addLookalike(const std::string& letter, const std::string& rare,
                    const std::vector<std::string>& signs, float least);
  Letter likeliest(std::span<const float> answer, bool isPauseAllowed) const;
  Letter rareInPlaceOf(Letter seen, std::span<const float> answer) const;
  bool hidesALetter(std::span<const float> pause) const;
  void addOthers(std::span<const float> answer, LineDoubts& doubts) const;
  void readLetter(const Around& around, std::span<const float> answer, Draft& draft) const;
  void readPause(const Around& around, std::span<const float> answer, Draft& draft) const;

  std::vector<std::string> letters_;
  std::vector<bool> isMarked_;
  std::vector<Lookalike> lookalikes_;
};

}  // namespace corvana::engine
