#include "platform/foundation/NotificationCenter.h"

#include <utility>

namespace corvana::platform {

struct NotificationCenter::Observation::Entry {
  std::string name;
  Handler handler;
  bool active = true;
};

NotificationCenter::Observation::Observation(std::shared_ptr<Entry> entry)
    : entry_(std::move(entry)) {}

NotificationCenter::Observation::~Observation() {
  entry_->active = false;
}

std::unique_ptr<NotificationCenter::Observation> NotificationCenter::addObserver(
    const std::string& name, Handler handler) {
  auto entry = std::make_shared<Observation::Entry>();
  entry->name = name;
  entry->handler = std::move(handler);
  entries_.push_back(entry);
  return std::unique_ptr<Observation>(new Observation(std::move(entry)));
}

void NotificationCenter::post(const Notification& notification) {
  std::erase_if(entries_, [](const auto& entry) { return entry.expired(); });
  const auto entries = entries_;  // A handler may add or remove observers.
  for (const auto& weak : entries) {
    const auto entry = weak.lock();
    if (entry && entry->active && entry->name == notification.name) entry->handler(notification);
  }
}

}  // namespace corvana::platform
