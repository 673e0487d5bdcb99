#pragma once

#include "engine/selfie/PersonCompare.h"

namespace corvana::engine {

/// Judges over time whether the live face is still the selfie's. Pure.
class PersonWatch {
 public:
  enum class Verdict {
    same,     ///< as far as is known
    unknown,  ///< could not be judged for a while
    another,
  };

  void take(const PersonCheck& check, double threshold, platform::TimePoint now);
  Verdict verdict(platform::TimePoint now) const;
  /// Why the face could not be judged for so long that the person should be told.
  std::optional<FaceFlawFound> flaw(platform::TimePoint now) const;

  /// So many comparisons in a row must fail: one may be a grimace.
  static constexpr int kMisses = 2;
  static constexpr platform::Duration kLongestUnjudged = std::chrono::seconds(5);
  /// People look at their card, too; half of the time is left to look up.
  static constexpr platform::Duration kToldAfter = kLongestUnjudged / 2;

 private:
  int misses_ = 0;
  std::optional<platform::TimePoint> judged_;  ///< last, or since when it was tried
  std::optional<FaceFlawFound> flaw_;          ///< since then; another when it was seen twice
  std::optional<FaceFlaw> lastFlaw_;
};

}  // namespace corvana::engine
