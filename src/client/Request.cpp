#include "client/Request.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace corvana::client {
namespace {

using nlohmann::json;

tl::unexpected<std::string> refuse(const std::string& sentence) {
  return tl::unexpected("The request " + sentence);
}

/// As the program's long options are made of.
bool isOptionName(const std::string& key) {
  const auto fits = [](char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9') || letter == '-';
  };
  return !key.empty() && key.front() != '-' && std::ranges::all_of(key, fits);
}

std::string textOf(const json& value) {
  return value.is_string() ? value.get<std::string>() : value.dump();
}

}  // namespace

tl::expected<std::vector<std::string>, std::string> argumentsOf(
    std::string_view request, const std::string& command,
    const std::vector<std::string>& positionals) {
  const json wishes = json::parse(request, nullptr, false);
  if (!wishes.is_object()) return refuse("is no JSON object.");
  std::vector<std::string> arguments{command};
  std::vector<std::string> alone(positionals.size());
  for (const auto& [key, value] : wishes.items()) {
    if (!isOptionName(key)) return refuse("has a key that is no option's name: \"" + key + "\".");
    if (value.is_structured()) return refuse("has a list or an object as \"" + key + "\".");
    const bool isLeftOut = value.is_null() || value == false;
    const std::string text = textOf(value);
    if (text.find('\0') != std::string::npos) return refuse("has a zero byte in \"" + key + "\".");
    const auto positional = std::ranges::find(positionals, key);
    if (positional != positionals.end()) {
      alone[positional - positionals.begin()] = value.is_string() ? text : "";
    } else if (value == true) {
      arguments.push_back("--" + key);
    } else if (!isLeftOut) {
      arguments.push_back("--" + key + "=" + text);
    }
  }
  const auto missing = std::ranges::find(alone, "");
  if (missing != alone.end()) {
    return refuse("lacks \"" + positionals[missing - alone.begin()] + "\".");
  }
  if (!alone.empty()) arguments.emplace_back("--");
  arguments.insert(arguments.end(), alone.begin(), alone.end());
  return arguments;
}

}  // namespace corvana::client
