#include "engine/selfie/BlinkWatch.h"

#include <algorithm>
#include <vector>

namespace corvana::engine {
namespace {

/// A blink is over when the opening is back at this share of its usual value, within this time.
constexpr double kReopenedShare = 0.85;
constexpr platform::Duration kLongestBlink = platform::seconds(0.8);
/// The network follows closing lids only part of the way: so far at least in each eye. A blurred
/// or dark picture loses contrast, but keeps this.
constexpr double kClosedAspect = 0.93;
/// Frames by which the usual opening is known, and by which it is remembered.
constexpr std::size_t kFewestOpenings = 3;
constexpr std::size_t kMostOpenings = 31;

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::ranges::nth_element(values, middle);
  return *middle;
}

}  // namespace

BlinkWatch::Lids BlinkWatch::usual() const {
  const auto of = [this](double Lids::*field) {
    std::vector<double> values;
    for (const Lids& lids : recent_)
      values.push_back(lids.*field);
    return std::max(median(std::move(values)), 1e-6);
  };
  return {of(&Lids::opening), of(&Lids::rightAspect), of(&Lids::leftAspect)};
}

void BlinkWatch::open(double share, bool wasBlink) {
  closedSince_.reset();
  if (wasBlink) {
    ++blinks_;
    leastShare_ = blinks_ == 1 ? closedTo_ : std::min(leastShare_, closedTo_);
  } else if (blinks_ == 0) {
    leastShare_ = share;
  }
}

void BlinkWatch::add(platform::TimePoint time, const Lids& lids) {
  if (closedSince_ && time - *closedSince_ > kLongestBlink) {
    // No blink: other light, another angle. What is usual has to be learned anew.
    closedSince_.reset();
    recent_.clear();
  }
  if (recent_.size() >= kFewestOpenings) {
    const Lids open = usual();
    const double share = lids.opening / open.opening;
    const bool bothFell = lids.rightAspect < kClosedAspect * open.rightAspect &&
                          lids.leftAspect < kClosedAspect * open.leftAspect;
    if (share < closedShare_ && (bothFell || closedSince_)) {
      if (!closedSince_) closedTo_ = share;
      closedTo_ = std::min(closedTo_, share);
      if (!closedSince_) closedSince_ = time;
      return;
    }
    if (closedSince_ && share <= kReopenedShare) return;
    this->open(share, closedSince_.has_value());
  }
  recent_.push_back(lids);
  if (recent_.size() > kMostOpenings) recent_.pop_front();
}

}  // namespace corvana::engine
