#pragma once

#include <optional>
#include <utility>

#include "engine/vision/Face.h"

namespace corvana::engine {

/// Notices a face that is elsewhere all at once: it may be another's. Pure.
class PlaceWatch {
 public:
  /// Takes the face's box in the next look, and says whether it has jumped there.
  bool hasJumped(const platform::CGRect& box) {
    const auto last = std::exchange(last_, box);
    return last && overlap(*last, box) < kSamePlace;
  }

  /// A head that moves as fast as it can overlaps its place of a tenth of a second before by more.
  static constexpr double kSamePlace = 0.3;

 private:
  std::optional<platform::CGRect> last_;
};

}  // namespace corvana::engine
