#pragma once

#include <functional>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "app/stamp/UtcTime.h"

namespace corvana::app {

/// A look at the wall clock, and whether the machine keeps it in step with others.
struct ClockReading {
  UtcTime time;
  bool isSynchronised = false;
};

/// What tells this run from all others, and when it takes place.
struct RunIdentity {
  std::optional<std::string> session;
  std::optional<std::string> subject;  ///< whom the caller takes the person for; never printed
  std::optional<std::string> host;
  /// Null where time is virtual.
  std::function<ClockReading()> clock;
};

/// The names that the caller gave. Where time is real, the machine's name and clock come
/// with them, and a session without a name gets one of its own; where it is virtual they do not, so
/// that the same session gives the same bytes.
RunIdentity identify(const std::optional<std::string>& session,
                     const std::optional<std::string>& subject, bool timeIsVirtual);

/// The fields `session`, `host` and `clock`, as far as they are known.
nlohmann::ordered_json identityToJson(const RunIdentity& identity,
                                      const std::optional<ClockReading>& start,
                                      const std::optional<ClockReading>& end);

}  // namespace corvana::app
