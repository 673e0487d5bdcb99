#pragma once

#include <string>
#include <vector>

#include "platform/foundation/Time.h"

namespace corvana::engine {

/// One thing that is looked for in a face over time, and how far it was seen.
struct LivenessSign {
  enum class SpeaksFor { life, fraud };

  std::string name;
  SpeaksFor speaksFor = SpeaksFor::life;
  double value = 0;
  double limit = 0;
  bool isSeen = false;
};

/// What the pictures so far say of a face.
struct LivenessVerdict {
  enum class Kind { undecided, living, spoof };

  Kind kind = Kind::undecided;
  /// The sign that decided, and so what kind of fraud it is.
  std::string evidence;
  /// How long the same face has been watched without a break.
  platform::Duration watchedFor{};
  std::vector<LivenessSign> signs;
  /// The last look may be the beginning of a sign of life: lids that are down, relief in one look.
  bool isBeginning = false;
  /// 0 (nothing speaks for life) to 1 (all of it, in good pictures).
  float score = 0;
};

}  // namespace corvana::engine
