#include "engine/vision/LiveFaceTracker.h"

#include <algorithm>
#include <cmath>

#include "platform/foundation/Require.h"

namespace corvana::engine {
namespace {

using platform::CGRect;

/// Against the usual size. A hand or card over the chin shrinks the found box by up to a third; the
/// photo on a card held at arm's length is about half of the face or less.
constexpr double kSmallestRatio = 0.62;
constexpr double kLargestRatio = 1.7;

/// How far the centre may lie from the last place, in usual sizes: at once, more for each second
/// unseen, and at most.
constexpr double kReach = 0.6;
constexpr double kReachPerSecond = 0.6;
constexpr double kLargestReach = 1.5;

/// The usual size follows the seen one with this time constant: fast enough for a person who leans
/// forward, too slow for a face half hidden for a moment.
constexpr double kSizeSeconds = 2;

double sizeOf(const CGRect& box) {
  return std::max(box.width, box.height);
}

double distance(const CGRect& a, const CGRect& b) {
  return std::hypot(a.midX() - b.midX(), a.midY() - b.midY());
}

}  // namespace

void LiveFaceTracker::start(const CGRect& box, platform::TimePoint now) {
  last_ = box;
  usualSize_ = sizeOf(box);
  lastSeen_ = now;
}

bool LiveFaceTracker::mayBeLive(const CGRect& box, platform::Duration unseen) const {
  const double ratio = sizeOf(box) / usualSize_;
  const double reach =
      std::min(kReach + kReachPerSecond * platform::inSeconds(unseen), kLargestReach);
  return ratio >= kSmallestRatio && ratio <= kLargestRatio &&
         distance(box, *last_) <= reach * usualSize_;
}

double LiveFaceTracker::likeness(const CGRect& box) const {
  const double sizeStep = std::abs(std::log(sizeOf(box) / usualSize_));
  return overlap(box, *last_) - sizeStep - distance(box, *last_) / usualSize_;
}

LiveFaceTracker::Sighting LiveFaceTracker::update(std::span<const Face> faces,
                                                  platform::TimePoint now) {
  platform::require(isFollowing(), "LiveFaceTracker: update without a face to follow");
  const platform::Duration unseen = now - lastSeen_;
  const Face* live = nullptr;
  for (const Face& face : faces) {
    if (!mayBeLive(face.box, unseen)) continue;
    if (live == nullptr || likeness(face.box) > likeness(live->box)) live = &face;
  }
  if (live == nullptr) return {std::nullopt, unseen};

  const double follow = 1 - std::exp(-platform::inSeconds(unseen) / kSizeSeconds);
  usualSize_ += follow * (sizeOf(live->box) - usualSize_);
  last_ = live->box;
  lastSeen_ = now;
  return {last_, platform::Duration::zero()};
}

}  // namespace corvana::engine
