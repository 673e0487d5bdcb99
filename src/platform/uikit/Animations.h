#pragma once

#include <optional>

#include "platform/foundation/Time.h"

namespace corvana::platform {

class UIView;

/// Plays animations between states; implemented by the screen. Main queue. Completions are none of
/// its business: the run loop keeps them, and they come after the duration, played or not.
class AnimationPlayer {
 public:
  virtual ~AnimationPlayer() = default;
  /// Called before the values change, and when a screen begins to come or go.
  virtual void willAnimate(Duration duration) = 0;
  virtual void willFlip(UIView& view, Duration duration) = 0;
};

/// The animations of one screen: who plays them, and which one is being described. Main queue.
class Animations {
 public:
  Animations() = default;
  /// `player` may be null: then only final states are shown.
  Animations(AnimationPlayer* player) : player_(player) {}

  AnimationPlayer* player() const { return player_; }
  /// When the animation ends whose values are being set; absent when none is being described.
  const std::optional<TimePoint>& end() const { return end_; }
  void begin(TimePoint end) { end_ = end; }
  void commit() { end_.reset(); }

 private:
  AnimationPlayer* player_ = nullptr;
  std::optional<TimePoint> end_;
};

}  // namespace corvana::platform
