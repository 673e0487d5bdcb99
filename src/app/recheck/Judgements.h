#pragma once

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/recheck/RunEvents.h"

namespace corvana::app {

/// What was found about one thing last, in its phase.
struct Judgement {
  std::string phase;  ///< mode of the flow: "selfieCapture", "idCapture", "readingText"
  /// Of a decision, or "state", "liveness", "samePerson", "time".
  std::string name;
  std::optional<double> value;
  std::optional<double> limit;
  std::optional<bool> passed;
  std::string word;  ///< what was found, where it is none of numbers
};

/// All that was found in an attempt under these options (an object, by their keys), in the order in
/// which it was found last.
std::vector<Judgement> judgementsOf(const RunEvents& events, const nlohmann::json& options);

/// How an attempt ended, as its events tell it: "result", "retry after selfieTimedOut" and so on,
/// or empty when the world around it ended it.
std::string endingOf(const RunEvents& events, bool hasResult);

/// When the reading was ended, by a touch or the countdown, in seconds since the attempt began;
/// absent when it was not reached.
std::optional<double> endOfReading(const RunEvents& events);

}  // namespace corvana::app
