#pragma once

#include <map>
#include <string>
#include <vector>

#include "engine/recorder/RecorderObserver.h"
#include "engine/selfie/Challenge.h"
#include "engine/selfie/Liveness.h"

namespace corvana::engine {

/// Turns what is known of a face look by look into events: a sign when it comes or goes, and all of
/// them with their figures when the verdict changes. Pure.
class LivenessEvents {
 public:
  /// `asks`: whether the person is asked for a sign of life.
  std::vector<RecorderEvent> take(const LivenessVerdict& verdict, bool asks);

 private:
  LivenessVerdict::Kind kind_ = LivenessVerdict::Kind::undecided;
  std::map<std::string, bool> seen_;
  bool asked_ = false;
};

/// A sign with its figure and limit.
RecorderEvent eventOf(const LivenessSign& sign);
RecorderEvent eventOf(const TaskEvent& event);
/// One event for each task that was drawn.
std::vector<RecorderEvent> eventsOf(const Challenge& drawn);

}  // namespace corvana::engine
