#pragma once

#include <QPointer>
#include <QQuickItem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/foundation/RunLoop.h"

namespace corvana::devices {

/// Moves numbers of items from one value to another over the run loop's time, so that a replay in
/// virtual time shows the same pictures as a window. Main queue.
class Animator {
 public:
  explicit Animator(platform::RunLoop& loop) : loop_(loop) {}
  ~Animator();

  /// Says whether numbers move, instead of jumping to their ends at once.
  void setAnimated(bool animated) { animated_ = animated; }

  /// Moves a number from its present value; a movement of the same number that is under way ends
  /// where it is.
  void move(QQuickItem& item, const char* property, double to, platform::Duration duration);

 private:
  struct Movement {
    QPointer<QQuickItem> item;
    std::string property;
    double from;
    double to;
    platform::TimePoint start;
    platform::Duration duration;
  };

  void step();
  bool advance(const Movement& movement) const;

  platform::RunLoop& loop_;
  bool animated_ = true;
  std::vector<Movement> movements_;
  std::shared_ptr<platform::Timer> timer_;
};

}  // namespace corvana::devices
