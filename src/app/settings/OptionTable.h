#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "platform/foundation/Fault.h"
namespace corvana::app {

/// Every tunable of the host's tables, by key: one row each for reading, writing and describing it.
/// The tables are static: written before the entry, by one writer.
struct OptionInfo {
  std::string key;   ///< "videoCapture.readTextCountdownSeconds"
  std::string unit;  ///< "" for a flag
  std::string meaning;
  nlohmann::json defaultValue;
  nlohmann::json value;
};

/// All options with their present values.
std::vector<OptionInfo> listOptions();

/// Sets the options of a JSON object {key: value}. Nothing is set when one key is unknown or one
/// value absurd; the error is one sentence naming it.
platform::Expected<void> applyOptions(const nlohmann::json& object);

/// {key: value} of all options, for the record of a run.
nlohmann::json currentOptions();

}  // namespace corvana::app
