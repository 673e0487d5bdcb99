#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include <nlohmann/json.hpp>

#include "corvana/Decision.h"
#include "engine/recorder/RecorderObserver.h"
#include "platform/foundation/RunLoop.h"

namespace app {

/// events.jsonl of a run: one JSON object a line, with the time since the start in seconds. Each
/// line reaches the file at once, so that a crash loses none. Main queue.
class EventLog final : public engine::RecorderObserver, public corvana::DecisionObserver {
 public:
  EventLog(const platform::RunLoop& loop, const std::filesystem::path& path);

  /// How often the recorder was told to begin anew.
  int retries() const { return retries_; }
  void add(const std::string& event, nlohmann::ordered_json fields);

  void happened(const engine::RecorderEvent& event) override;
  void decided(const corvana::Decision& decision) override;

  static constexpr const char* kFileName = "events.jsonl";

 private:
  const platform::RunLoop& loop_;
  platform::TimePoint start_;
  std::ofstream file_;
  int retries_ = 0;
};

}  // namespace app
