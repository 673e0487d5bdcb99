#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>

#include "app/keys/Sha256.h"
#include "platform/foundation/Time.h"

namespace corvana::app {

/// Sums over the beginning of a growing log of events. Any thread.
class EventSums {
 public:
  struct Beginning {
    std::uint64_t bytes = 0;
    std::string sha256 = sha256Of({});
  };

  /// The next line, with its end; times never go back.
  void add(platform::TimePoint time, std::string_view line);
  /// All lines from before that time, which is not earlier than at the last call.
  Beginning before(platform::TimePoint time);

 private:
  struct Line {
    platform::TimePoint time;
    Beginning upToHere;
  };

  std::mutex mutex_;
  Sha256 sum_;
  std::uint64_t bytes_ = 0;
  std::deque<Line> ahead_;  ///< not asked for yet
  Beginning last_;
};

}  // namespace corvana::app
