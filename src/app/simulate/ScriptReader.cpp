#include "app/simulate/ScriptReader.h"

#include <cmath>
#include <utility>

namespace corvana::app {
namespace {

using nlohmann::json;

constexpr std::size_t kLongestText = 20'000;
constexpr std::size_t kMostTexts = 200;

}  // namespace

ScriptObject::ScriptObject(const json& value, std::string where)
    : value_(value), where_(std::move(where)) {
  if (!value.is_object()) {
    throw ScriptFault{(where_.empty() ? "the script" : where_) + " must be a JSON object"};
  }
}

void ScriptObject::complain(const std::string& key, const std::string& fault) const {
  const std::string place = where_.empty() ? key : where_ + (key.empty() ? "" : "." + key);
  throw ScriptFault{place + ": " + fault};
}

bool ScriptObject::has(const std::string& key) {
  asked_.insert(key);
  return value_.contains(key);
}

const json& ScriptObject::value(const std::string& key) {
  if (!has(key)) complain(key, "this key is missing");
  return value_.at(key);
}

std::string ScriptObject::text(const std::string& key) {
  const json& found = value(key);
  if (!found.is_string()) complain(key, "must be a text");
  auto result = found.get<std::string>();
  if (result.size() > kLongestText) complain(key, "is longer than 20000 bytes");
  return result;
}

std::optional<std::string> ScriptObject::optionalText(const std::string& key) {
  return has(key) ? std::optional(text(key)) : std::nullopt;
}

std::string ScriptObject::brief(const std::string& key) {
  const json& found = value(key);
  return found.is_object() ? found.value("type", "other") : text(key);
}

bool ScriptObject::flag(const std::string& key, bool otherwise) {
  if (!has(key)) return otherwise;
  const json& found = value(key);
  if (!found.is_boolean()) complain(key, "must be true or false");
  return found.get<bool>();
}

double ScriptObject::number(const std::string& key, double lowest, double highest) {
  const json& found = value(key);
  const double result = found.is_number() ? found.get<double>() : std::nan("");
  if (!(result >= lowest && result <= highest)) {
    complain(key, "must be a number from " + json(lowest).dump() + " to " + json(highest).dump());
  }
  return result;
}

std::vector<std::string> ScriptObject::texts(const std::string& key) {
  const json& found = value(key);
  if (!found.is_array() || found.size() > kMostTexts) {
    complain(key, "must be a list of at most 200 texts");
  }
  std::vector<std::string> result;
  for (const json& element : found) {
    if (!element.is_string()) complain(key, "must be a list of texts");
    result.push_back(element.get<std::string>());
    if (result.back().size() > kLongestText) complain(key, "holds more than 20000 bytes");
  }
  return result;
}

std::vector<double> ScriptObject::numbers(const std::string& key, std::size_t count) {
  const json& found = value(key);
  std::vector<double> result;
  for (const json& element : found) {
    if (element.is_number()) result.push_back(element.get<double>());
  }
  if (!found.is_array() || found.size() != count || result.size() != count) {
    complain(key, "must be a list of " + std::to_string(count) + " numbers");
  }
  return result;
}

ScriptObject ScriptObject::object(const std::string& key) {
  return {value(key), where_.empty() ? key : where_ + "." + key};
}

std::vector<ScriptObject> ScriptObject::objects(const std::string& key, std::size_t most) {
  const json& found = value(key);
  if (!found.is_array() || found.size() > most) {
    complain(key, "must be a list of at most " + std::to_string(most) + " objects");
  }
  std::vector<ScriptObject> result;
  for (const json& element : found) {
    const std::string name = key + "[" + std::to_string(result.size()) + "]";
    result.emplace_back(element, where_.empty() ? name : where_ + "." + name);
  }
  return result;
}

void ScriptObject::refuseOtherKeys() const {
  for (const auto& [key, value] : value_.items()) {
    if (!asked_.contains(key)) complain(key, "there is no such key here");
  }
}

}  // namespace corvana::app
