#include "engine/recorder/PersonWatch.h"

#include <utility>

namespace corvana::engine {

void PersonWatch::take(const PersonCheck& check, double threshold, platform::TimePoint now) {
  if (!judged_ || check.distance) judged_ = now;
  if (check.distance) misses_ = *check.distance > threshold ? misses_ + 1 : 0;
  if (!check.flaw) {
    flaw_.reset();
    lastFlaw_.reset();
    return;
  }
  const bool isSeenTwice = std::exchange(lastFlaw_, check.flaw->flaw) == check.flaw->flaw;
  if (!flaw_ || isSeenTwice) flaw_ = check.flaw;
}

std::optional<FaceFlawFound> PersonWatch::flaw(platform::TimePoint now) const {
  const bool isTold = judged_ && now - *judged_ > kToldAfter;
  return isTold ? flaw_ : std::nullopt;
}

PersonWatch::Verdict PersonWatch::verdict(platform::TimePoint now) const {
  if (misses_ >= kMisses) return Verdict::another;
  return judged_ && now - *judged_ > kLongestUnjudged ? Verdict::unknown : Verdict::same;
}

}  // namespace corvana::engine
