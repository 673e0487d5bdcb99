#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace corvana::engine {

/// What the network answered along a line, letter by letter, with what it nearly answered instead.
/// Pure.
class LineDoubts {
 public:
  /// A letter of the text; empty for a place at which there may be one more.
  void add(std::string letter);
  /// What may stand at the last place as well; empty where it may be no letter at all.
  void addOther(const std::string& letter, float share);

  /// The texts that the line may have as well, those with the likeliest letters first; at most
  /// `kMostTexts`.
  std::vector<std::string> otherTexts() const;

  static constexpr std::size_t kMostTexts = 31;

 private:
  struct Place {
    std::string letter;
    std::map<std::string, float> others;
  };

  std::vector<Place> places_;
};

}  // namespace corvana::engine
