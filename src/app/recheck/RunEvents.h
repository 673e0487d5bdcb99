#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/Fault.h"

namespace corvana::app {

/// A line of events.jsonl, as far as a judgement needs it.
struct RunEvent {
  double t = 0;  ///< seconds since the start of the flow
  std::string event;
  std::string name;
  std::string text;
  std::string cause;
  std::optional<double> value;
  std::optional<double> threshold;
  std::optional<bool> passed;  ///< of a decision or, as `seen`, of a sign
};

/// The events of a run's last attempt, which is the one that the film shows: from the mode in which
/// it looks for a face.
struct RunEvents {
  std::vector<RunEvent> all;
  int earlierAttempts = 0;  ///< each of which ended on a retry screen

  /// When the attempt began, in seconds since the start of the flow.
  double start() const { return all.empty() ? 0 : all.front().t; }
};

/// Refuses a file that is missing, of other lines, or in which no flow ever began. The error is one
/// sentence.
platform::Expected<RunEvents> readRunEvents(const std::filesystem::path& file);

}  // namespace corvana::app
