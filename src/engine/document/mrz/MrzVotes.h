#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "corvana/DetectedData.h"
#include "engine/document/mrz/MrzLayout.h"

namespace corvana::engine {

/// A line of a zone in the zone's letters, as a reader of print gave it.
struct MrzPrint {
  std::string text;
  double confidence = 0;  ///< 0 to 1
};

/// Makes one zone of several readings: at each place the character with the most confidence behind
/// it. One card at a time: a reading that holds by itself and has another document number begins
/// anew.
class MrzVotes {
 public:
  void add(const std::vector<MrzPrint>& lines);
  /// The zone, once the characters with the most votes hold all check digits and none of them is
  /// contested by nearly as many; absent before.
  std::optional<corvana::MRZResult> result() const;

 private:
  using Place = std::map<char, double>;

  const MrzLayout* layout_ = nullptr;
  std::vector<std::vector<Place>> places_;
};

}  // namespace corvana::engine
