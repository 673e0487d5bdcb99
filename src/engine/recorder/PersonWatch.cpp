#include "engine/recorder/PersonWatch.h"

namespace corvana::engine {

void PersonWatch::take(const PersonCheck& check, double threshold, platform::TimePoint now) {
  if (!judged_ || check.distance) judged_ = now;
  if (check.distance) misses_ = *check.distance > threshold ? misses_ + 1 : 0;
}

PersonWatch::Verdict PersonWatch::verdict(platform::TimePoint now) const {
  if (misses_ >= kMisses) return Verdict::another;
  return judged_ && now - *judged_ > kLongestUnjudged ? Verdict::unknown : Verdict::same;
}

}  // namespace corvana::engine
