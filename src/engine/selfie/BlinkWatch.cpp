#include "engine/selfie/BlinkWatch.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace corvana::engine {
namespace {

/// A blink is over when the eyes are back at this share of the usual, within this time.
constexpr double kReopenedShare = 0.95;
constexpr platform::Duration kLongestBlink = platform::seconds(0.8);
/// A quick blink falls into a single look. It counts when white and iris are hidden as well, whose
/// contrast a blurred or dark picture loses, too, but then the eyes' form stays.
constexpr double kHiddenShare = 0.7;
/// A lid that comes down hides white and iris, and the eye looks otherwise, 0.5 to 0.75 alike. A
/// print's eyes, which the network sees narrower where paper is tilted, stayed alike to 0.98.
constexpr double kMostAlike = 0.85;
/// Frames by which the usual opening is known, and by which it is remembered.
constexpr std::size_t kFewestOpenings = 3;
constexpr std::size_t kMostOpenings = 31;

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::ranges::nth_element(values, middle);
  return *middle;
}

}  // namespace

BlinkWatch::Lids lidsOf(const FaceDetails& face, double likeness) {
  return {face.lidOpening, eyeAspectRatio(face.mesh, false), eyeAspectRatio(face.mesh, true),
          likeness};
}

BlinkWatch::Lids BlinkWatch::usual() const {
  const auto of = [this](double Lids::*field) {
    std::vector<double> values;
    for (const Lids& lids : recent_)
      values.push_back(lids.*field);
    return std::max(median(std::move(values)), 1e-6);
  };
  return {of(&Lids::opening), of(&Lids::rightAspect), of(&Lids::leftAspect)};
}

/// The network follows closing lids only part of the way, late, and trembles: one look in which
/// they are low counts when the eyes were low or looked otherwise in the look before.
bool BlinkWatch::looksClosed(double opening, double aspect, double likeness) {
  const bool isLow = aspect < closedShare_;
  const bool isUnlike = likeness < kMostAlike;
  const bool wasLow = std::exchange(wasLow_, isLow);
  const bool wasUnlike = std::exchange(wasUnlike_, isUnlike);
  // Eyes that stay closed look as they did a moment before.
  const bool haveChanged = closedSince_ || isUnlike || wasUnlike;
  return haveChanged && isLow && (wasLow || wasUnlike || opening < kHiddenShare);
}

void BlinkWatch::open(double aspect) {
  if (closedSince_) {
    leastShare_ = blinks_ == 0 ? closedTo_ : std::min(leastShare_, closedTo_);
    ++blinks_;
  } else if (blinks_ == 0) {
    leastShare_ = aspect;
  }
  closedSince_.reset();
}

void BlinkWatch::add(platform::TimePoint time, const Lids& lids) {
  if (closedSince_ && time - *closedSince_ > kLongestBlink) {
    // No blink: other light, another angle. What is usual has to be learned anew.
    closedSince_.reset();
    recent_.clear();
  }
  if (recent_.size() >= kFewestOpenings) {
    const Lids open = usual();
    const double aspect = std::max(lids.rightAspect / open.rightAspect,  //
                                   lids.leftAspect / open.leftAspect);
    const bool isClosed = looksClosed(lids.opening / open.opening, aspect, lids.likeness);
    if (isClosed && !closedSince_) {
      closedSince_ = time;
      closedTo_ = aspect;
    }
    if (closedSince_) closedTo_ = std::min(closedTo_, aspect);
    if (isClosed || (closedSince_ && aspect <= kReopenedShare)) return;
    if (wasLow_) return;
    this->open(aspect);
  }
  recent_.push_back(lids);
  if (recent_.size() > kMostOpenings) recent_.pop_front();
}

}  // namespace corvana::engine
