#include "app/seal/EventSums.h"

namespace corvana::app {

void EventSums::add(platform::TimePoint time, std::string_view line) {
  const std::lock_guard lock(mutex_);
  sum_.add(line);
  bytes_ += line.size();
  ahead_.push_back({time, {bytes_, sum_.hexadecimal()}});
}

EventSums::Beginning EventSums::before(platform::TimePoint time) {
  const std::lock_guard lock(mutex_);
  for (; !ahead_.empty() && ahead_.front().time < time; ahead_.pop_front())
    last_ = ahead_.front().upToHere;
  return last_;
}

}  // namespace corvana::app
