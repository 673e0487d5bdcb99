#pragma once

#include <optional>
#include <span>

#include "engine/vision/Face.h"
#include "platform/foundation/Time.h"
#include "platform/geometry/Geometry.h"

namespace corvana::engine {

/// Keeps an eye on one live face from frame to frame. A portrait printed on a card is not taken for
/// it: it is much smaller than the live face was, or far from where that was. Pure: times come with
/// the frames; how long a loss may last is the caller's to judge.
class LiveFaceTracker {
 public:
  struct Sighting {
    /// The live face in this frame; absent when it is not seen.
    std::optional<platform::CGRect> box;
    /// Time since the face was last seen; zero when it is seen now.
    platform::Duration lostFor{};
  };

  /// Starts over with the face to follow.
  void start(const platform::CGRect& box, platform::TimePoint now);
  void stop() { last_.reset(); }
  bool isFollowing() const { return last_.has_value(); }
  /// Where the face was last seen; only while following.
  const platform::CGRect& box() const { return last_.value(); }

  /// Takes the next frame's faces; only while following, and times must not go back.
  Sighting update(std::span<const Face> faces, platform::TimePoint now);

 private:
  bool mayBeLive(const platform::CGRect& box, platform::Duration unseen) const;
  double likeness(const platform::CGRect& box) const;

  std::optional<platform::CGRect> last_;
  double usualSize_ = 0;
  platform::TimePoint lastSeen_;
};

}  // namespace corvana::engine
