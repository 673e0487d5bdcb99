#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/record/RunRecord.h"
#include "corvana/Decision.h"
#include "engine/recorder/RecorderObserver.h"
#include "platform/foundation/RunLoop.h"

namespace corvana::app {

/// Keeps account of the parts of a flow that ended: each selfie, each showing of the card, each
/// reading, how it ended and what was measured meanwhile. Main queue.
class AttemptLog final : public engine::RecorderObserver {
 public:
  explicit AttemptLog(const platform::RunLoop& loop) : loop_(loop), start_(loop.now()) {}

  void happened(const engine::RecorderEvent& event) override;
  void decided(const corvana::Decision& decision);
  /// The flow ended; what was still under way ended with it.
  void finish(const Outcome& outcome);

  /// Whether, in the last run that came to the reading, a voice was heard while the lips rested.
  bool lipsWereAtRest() const { return lipsWereAtRest_; }
  /// The field `attempts` of result.json, the first one first.
  const nlohmann::ordered_json& toJson() const { return attempts_; }

 private:
  struct Attempt {
    std::string phase;
    platform::TimePoint from;
    std::string lastState = {};
    std::string issue = {};
    std::vector<std::string> names = {};  ///< of the figures, as they were first measured
    std::map<std::string, nlohmann::ordered_json> figures = {};  ///< the last of each name
  };

  void begin(const std::string& mode);
  void end(const std::string& reason);
  void measure(const std::string& name, nlohmann::ordered_json figure);
  void sawState(const engine::RecorderEvent& event);

  const platform::RunLoop& loop_;
  const platform::TimePoint start_;
  int run_ = 1;
  bool lipsWereAtRest_ = false;
  std::optional<Attempt> open_;
  nlohmann::ordered_json attempts_ = nlohmann::ordered_json::array();
};

}  // namespace corvana::app
