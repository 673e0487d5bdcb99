#pragma once

#include <any>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace corvana::platform {

struct Notification {
  std::string name;
  /// Absent when the sender gave none.
  std::shared_ptr<const std::map<std::string, std::any>> userInfo;

  /// The value under `key`, or null when it is missing or holds another type.
  template <class T>
  const T* value(const std::string& key) const {
    if (!userInfo) return nullptr;
    const auto entry = userInfo->find(key);
    return entry == userInfo->end() ? nullptr : std::any_cast<T>(&entry->second);
  }
};

inline constexpr const char* kApplicationWillEnterForeground =
    "UIApplicationWillEnterForegroundNotification";

/// Hands notifications to observers, at once, before `post` returns. Main queue only; any sender.
class NotificationCenter {
 public:
  using Handler = std::function<void(const Notification&)>;

  /// Stops observing when it is destroyed.
  class Observation {
   public:
    ~Observation();
    Observation(const Observation&) = delete;
    Observation& operator=(const Observation&) = delete;

   private:
    friend class NotificationCenter;
    struct Entry;
    explicit Observation(std::shared_ptr<Entry> entry);
    std::shared_ptr<Entry> entry_;
  };

  [[nodiscard]] std::unique_ptr<Observation> addObserver(const std::string& name, Handler handler);
  void post(const Notification& notification);

 private:
  std::vector<std::weak_ptr<Observation::Entry>> entries_;
};

}  // namespace corvana::platform
