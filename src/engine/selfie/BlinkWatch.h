#pragma once

#include <deque>
#include <optional>

#include "engine/vision/FaceLandmarks.h"
#include "platform/foundation/Time.h"

namespace corvana::engine {

/// Looks for a blink: both eyes close, look otherwise then, and open again. Pure; times come with
/// the frames.
class BlinkWatch {
 public:
  struct Lids {
    double opening = 0;                      ///< `FaceDetails::lidOpening`
    double rightAspect = 0, leftAspect = 0;  ///< `eyeAspectRatio` of each eye
    /// `eyesLikeness` to a look a moment before, in which they may still have been open.
    double likeness = 1;
  };

  /// `closedShare`: of the usual aspect ratio; eyes count as closed when both are below it.
  explicit BlinkWatch(double closedShare) : closedShare_(closedShare) {}

  void add(platform::TimePoint time, const Lids& lids);
  /// How often the eyes have blinked.
  int blinks() const { return blinks_; }
  bool isClosed() const { return closedSince_.has_value(); }
  /// The least share of the usual aspect ratio in any blink, or the last look's before the first.
  double leastShare() const { return leastShare_; }

 private:
  Lids usual() const;
  bool looksClosed(double opening, double aspect, double likeness);
  void open(double aspect);

  double closedShare_;
  std::deque<Lids> recent_;
  std::optional<platform::TimePoint> closedSince_;
  double closedTo_ = 1;
  // In the last look.
  bool wasLow_ = false;
  bool wasUnlike_ = false;
  double leastShare_ = 1;
  int blinks_ = 0;
};

/// `likeness` as `Lids` has it.
BlinkWatch::Lids lidsOf(const FaceDetails& face, double likeness);

}  // namespace corvana::engine
