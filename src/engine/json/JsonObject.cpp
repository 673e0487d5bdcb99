#include "engine/json/JsonObject.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace corvana::engine {
namespace {

using nlohmann::json;

constexpr std::size_t kLongestText = 20'000;
constexpr std::size_t kMostTexts = 200;
constexpr std::size_t kLongestQuote = 80;

bool isPlain(const std::string& key) {
  return key.size() <= kLongestQuote &&
         std::ranges::all_of(key, [](unsigned char c) { return c > ' ' && c < 0x7F && c != '"'; });
}

}  // namespace

JsonObject::JsonObject(const json& value, std::string where)
    : value_(value), where_(std::move(where)) {
  if (!value.is_object()) {
    throw JsonFault{(where_.empty() ? "the file" : where_) + " must be a JSON object"};
  }
}

void JsonObject::complain(const std::string& key, const std::string& fault) const {
  const std::string place = where_.empty() ? key : where_ + (key.empty() ? "" : "." + key);
  throw JsonFault{place + ": " + fault};
}

std::vector<std::string> JsonObject::keys() {
  std::vector<std::string> all;
  for (const auto& [key, value] : value_.items())
    all.push_back(key);
  asked_.insert(all.begin(), all.end());
  return all;
}

std::string JsonObject::quoted(const std::string& text) {
  std::string shown = json(text).dump();
  if (shown.size() <= kLongestQuote) return shown;
  // Not in the midst of a letter, nor of what stands for one.
  std::size_t end = text.size();
  while (json(text.substr(0, end)).dump(-1, ' ', false, json::error_handler_t::ignore).size() >
         kLongestQuote) {
    end /= 2;
  }
  shown = json(text.substr(0, end)).dump(-1, ' ', false, json::error_handler_t::ignore);
  shown.insert(shown.size() - 1, "...");
  return shown;
}

bool JsonObject::has(const std::string& key) {
  asked_.insert(key);
  return value_.contains(key);
}

const json& JsonObject::value(const std::string& key) {
  if (!has(key)) complain(key, "this key is missing");
  return value_.at(key);
}

std::string JsonObject::text(const std::string& key) {
  const json& found = value(key);
  if (!found.is_string()) complain(key, "must be a text");
  auto result = found.get<std::string>();
  if (result.size() > kLongestText) complain(key, "is longer than 20000 bytes");
  return result;
}

std::optional<std::string> JsonObject::optionalText(const std::string& key) {
  return has(key) ? std::optional(text(key)) : std::nullopt;
}

std::string JsonObject::brief(const std::string& key) {
  const json& found = value(key);
  return found.is_object() ? found.value("type", "other") : text(key);
}

bool JsonObject::flag(const std::string& key, bool otherwise) {
  if (!has(key)) return otherwise;
  const json& found = value(key);
  if (!found.is_boolean()) complain(key, "must be true or false");
  return found.get<bool>();
}

double JsonObject::number(const std::string& key, double lowest, double highest) {
  const json& found = value(key);
  const double result = found.is_number() ? found.get<double>() : std::nan("");
  if (!(result >= lowest && result <= highest)) {
    complain(key, "must be a number from " + json(lowest).dump() + " to " + json(highest).dump());
  }
  return result;
}

std::vector<std::string> JsonObject::texts(const std::string& key) {
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

std::vector<double> JsonObject::numbers(const std::string& key, std::size_t count) {
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

JsonObject JsonObject::object(const std::string& key) {
  return {value(key), where_.empty() ? key : where_ + "." + key};
}

std::vector<JsonObject> JsonObject::objects(const std::string& key, std::size_t most) {
  const json& found = value(key);
  if (!found.is_array() || found.size() > most) {
    complain(key, "must be a list of at most " + std::to_string(most) + " objects");
  }
  std::vector<JsonObject> result;
  for (const json& element : found) {
    const std::string name = key + "[" + std::to_string(result.size()) + "]";
    result.emplace_back(element, where_.empty() ? name : where_ + "." + name);
  }
  return result;
}

void JsonObject::refuseOtherKeys() const {
  for (const auto& [key, value] : value_.items()) {
    if (asked_.contains(key)) continue;
    complain(isPlain(key) ? key : quoted(key), "there is no such key here");
  }
}

}  // namespace corvana::engine
