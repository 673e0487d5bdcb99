#include "devices/qtquick/Animator.h"

#include <algorithm>

namespace corvana::devices {
namespace {

constexpr platform::Duration kStep = std::chrono::milliseconds(16);

/// Starts and ends softly.
double eased(double share) {
  return share * share * (3 - 2 * share);
}

}  // namespace

Animator::~Animator() {
  if (timer_) timer_->invalidate();
}

void Animator::move(QQuickItem& item, const char* property, double to,
                    platform::Duration duration) {
  std::erase_if(movements_, [&](const Movement& movement) {
    return !movement.item || (movement.item == &item && movement.property == property);
  });
  const double from = item.property(property).toDouble();
  if (!animated_ || duration <= platform::Duration::zero() || from == to) {
    item.setProperty(property, to);
    return;
  }
  movements_.push_back({&item, property, from, to, loop_.now(), duration});
  if (!timer_) timer_ = loop_.scheduledTimer(kStep, true, [this] { step(); });
}

bool Animator::advance(const Movement& movement) const {
  if (!movement.item) return false;
  const double share =
      platform::inSeconds(loop_.now() - movement.start) / platform::inSeconds(movement.duration);
  const double value = movement.from + (movement.to - movement.from) * eased(std::min(share, 1.0));
  movement.item->setProperty(movement.property.c_str(), share < 1 ? value : movement.to);
  return share < 1;
}

void Animator::step() {
  std::erase_if(movements_, [this](const Movement& movement) { return !advance(movement); });
  if (!movements_.empty()) return;
  timer_->invalidate();
  timer_.reset();
}

}  // namespace corvana::devices
