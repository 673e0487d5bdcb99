#include "app/record/JsonMembers.h"

namespace corvana::app {

using nlohmann::json;

const json& memberIn(const json& value, const char* key) {
  static const json kNone;
  if (!value.is_object()) return kNone;
  const auto member = value.find(key);
  return member == value.end() ? kNone : *member;
}

std::optional<std::string> textIn(const json& value, const char* key) {
  const json& member = memberIn(value, key);
  if (!member.is_string()) return std::nullopt;
  return member.get<std::string>();
}

std::optional<double> numberIn(const json& value, const char* key) {
  const json& member = memberIn(value, key);
  if (!member.is_number()) return std::nullopt;
  return member.get<double>();
}

std::optional<bool> flagIn(const json& value, const char* key) {
  const json& member = memberIn(value, key);
  if (!member.is_boolean()) return std::nullopt;
  return member.get<bool>();
}

std::vector<std::string> textsIn(const json& value, const char* key) {
  std::vector<std::string> texts;
  for (const json& element : memberIn(value, key)) {
    if (element.is_string()) texts.push_back(element.get<std::string>());
  }
  return texts;
}

}  // namespace corvana::app
