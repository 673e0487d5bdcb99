#pragma once

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "platform/foundation/Time.h"

namespace corvana::engine {

/// Tells whether what looks show has lasted. A look that shows something else now and then does
/// not break it, but what shows every other time lasts in no case.
template <class Value>
class Persistence {
 public:
  /// Adds a look and says whether its value has been seen for so long. `leastShare` is of the looks
  /// since it was first seen.
  bool lasts(const Value& value, platform::TimePoint now, platform::Duration patience,
             double leastShare = kLeastShare) {
    std::erase_if(looks_, [&](const auto& look) { return now - look.first > patience + kMemory; });
    looks_.emplace_back(now, value);
    const auto isIt = [&](const auto& look) { return look.second == value; };
    const auto first = std::ranges::find_if(looks_, isIt);
    const auto all = static_cast<double>(std::distance(first, looks_.end()));
    const auto such = static_cast<double>(std::count_if(first, looks_.end(), isIt));
    return now - first->first >= patience && such >= leastShare * all;
  }

  static constexpr double kLeastShare = 0.75;

 private:
  /// Looks of other kinds are forgotten after so much more than the patience.
  static constexpr platform::Duration kMemory = std::chrono::milliseconds(200);

  std::vector<std::pair<platform::TimePoint, Value>> looks_;
};

}  // namespace corvana::engine
