#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <variant>

#include <nlohmann/json.hpp>

#include "app/seal/EventSums.h"
#include "corvana/Decision.h"
#include "engine/recorder/RecorderObserver.h"
#include "platform/foundation/Fault.h"
#include "platform/foundation/RunLoop.h"

namespace corvana::app {

/// A number or detail of an event as events.jsonl has it, and all that tells the same: rounded, and
/// null where it is not a number.
nlohmann::ordered_json eventNumber(double value);
nlohmann::ordered_json eventValue(const std::variant<double, bool, std::string>& value);

/// events.jsonl of a run: one JSON object a line, with the time since the start in seconds. Each
/// line reaches the file at once, so that a crash loses none. A line that can't be written is told,
/// and is the end of the file: what stands there is whole. Main queue.
class EventLog final : public engine::RecorderObserver {
 public:
  using OnFault = std::function<void(const platform::Fault&)>;

  /// `onFault` comes once at most, from within `add`. Each line is told to `sums`, if there are
  /// any.
  EventLog(const platform::RunLoop& loop, const std::filesystem::path& path, OnFault onFault,
           std::shared_ptr<EventSums> sums = nullptr);

  /// Each whole line is told to `listener` as well.
  void tellTo(std::function<void(const std::string& line)> listener) {
    listener_ = std::move(listener);
  }
  /// How often the recorder was told to begin anew.
  int retries() const { return retries_; }
  void add(const std::string& event, const nlohmann::ordered_json& fields);

  void happened(const engine::RecorderEvent& event) override;
  void decided(const corvana::Decision& decision);

  static constexpr const char* kFileName = "events.jsonl";

 private:
  void breakOff(const platform::Fault& fault);

  const platform::RunLoop& loop_;
  platform::TimePoint start_;
  const std::filesystem::path path_;
  const OnFault onFault_;
  const std::shared_ptr<EventSums> sums_;
  std::function<void(const std::string&)> listener_;
  std::ofstream file_;
  std::uintmax_t bytes_ = 0;  ///< of all whole lines
  bool broken_ = false;
  int retries_ = 0;
};

}  // namespace corvana::app
