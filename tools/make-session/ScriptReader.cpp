#include "ScriptReader.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <sstream>
#include <utility>

#include <glib.h>

namespace corvana::session {
namespace {

const nlohmann::json kEmptyObject = nlohmann::json::object();

std::string shown(double value) {
  std::ostringstream text;
  text << value;
  return text.str();
}

bool isDate(const std::string& text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return false;
  for (std::size_t i = 0; i < text.size(); ++i)
    if (i != 4 && i != 7 && (text[i] < '0' || text[i] > '9')) return false;
  const int year = std::atoi(text.substr(0, 4).c_str());
  const int month = std::atoi(text.substr(5, 2).c_str());
  const int day = std::atoi(text.substr(8, 2).c_str());
  if (year < 1900 || month < 1 || month > 12) return false;
  return g_date_valid_dmy(static_cast<GDateDay>(day), static_cast<GDateMonth>(month),
                          static_cast<GDateYear>(year)) != 0;
}

bool hasControlCharacter(const std::string& text) {
  return std::any_of(text.begin(), text.end(),
                     [](unsigned char c) { return c < 0x20 || c == 0x7f; });
}

}  // namespace

ScriptReader::ScriptReader(const nlohmann::json& object, std::string where, std::string& complaint)
    : object_(object), where_(std::move(where)), complaint_(complaint) {
  if (!object_.is_object() && complaint_.empty())
    complaint_ = (where_.empty() ? "the script" : "\"" + where_ + "\"") +
                 std::string(" has to be an object in braces");
}

std::string ScriptReader::nameOf(const std::string& key) const {
  return where_.empty() ? key : where_ + "." + key;
}

void ScriptReader::complain(const char* key, const std::string& what) {
  if (complaint_.empty()) complaint_ = "\"" + nameOf(key) + "\" " + what;
}

const nlohmann::json* ScriptReader::find(const char* key) {
  known_.insert(key);
  return has(key) ? &object_.at(key) : nullptr;
}

void ScriptReader::number(const char* key, double& field, double low, double high) {
  const nlohmann::json* value = find(key);
  if (value == nullptr) return;
  if (!value->is_number() || value->get<double>() < low || value->get<double>() > high)
    return complain(key, "has to be a number from " + shown(low) + " to " + shown(high));
  field = value->get<double>();
}

void ScriptReader::number(const char* key, std::optional<double>& field, double low, double high) {
  double value = 0.0;
  number(key, value, low, high);
  if (has(key)) field = value;
}

void ScriptReader::seed(const char* key, std::uint64_t& field) {
  const nlohmann::json* value = find(key);
  if (value == nullptr) return;
  if (!value->is_number_unsigned()) return complain(key, "has to be a whole number from 0");
  field = value->get<std::uint64_t>();
}

void ScriptReader::flag(const char* key, bool& field) {
  const nlohmann::json* value = find(key);
  if (value == nullptr) return;
  if (!value->is_boolean()) return complain(key, "has to be true or false");
  field = value->get<bool>();
}

void ScriptReader::text(const char* key, std::string& field, std::size_t longest) {
  optionalText(key, field, longest);
  if (has(key) && field.empty()) complain(key, "must not be empty");
}

void ScriptReader::optionalText(const char* key, std::string& field, std::size_t longest) {
  const nlohmann::json* value = find(key);
  if (value == nullptr) return;
  if (!value->is_string()) return complain(key, "has to be text");
  std::string given = value->get<std::string>();
  if (given.size() > longest)
    return complain(key, "is longer than " + std::to_string(longest) + " bytes");
  if (hasControlCharacter(given)) return complain(key, "contains a control character");
  field = std::move(given);
}

void ScriptReader::choice(const char* key, std::string& field,
                          const std::set<std::string>& choices) {
  const nlohmann::json* value = find(key);
  if (value == nullptr) return;
  if (value->is_string() && choices.count(value->get<std::string>()) != 0) {
    field = value->get<std::string>();
    return;
  }
  std::string list;
  for (const std::string& choice : choices)
    list += (list.empty() ? "" : ", ") + choice;
  complain(key, "has to be one of " + list);
}

void ScriptReader::date(const char* key, std::string& field) {
  const nlohmann::json* value = find(key);
  if (value == nullptr) return;
  if (!value->is_string() || !isDate(value->get<std::string>()))
    return complain(key, "has to be a day of the calendar written as YYYY-MM-DD");
  field = value->get<std::string>();
}

void ScriptReader::file(const char* key, std::filesystem::path& field,
                        const std::filesystem::path& folder) {
  std::string name;
  text(key, name, 4096);
  if (name.empty()) return;
  std::filesystem::path path = (folder / name).lexically_normal();
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored))
    return complain(key, "names " + path.string() + ", which is not a file: correct the path");
  field = std::move(path);
}

ScriptReader ScriptReader::object(const char* key) {
  const nlohmann::json* value = find(key);
  return ScriptReader(value == nullptr ? kEmptyObject : *value, nameOf(key), complaint_);
}

std::vector<ScriptReader> ScriptReader::objects(const char* key) {
  std::vector<ScriptReader> objects;
  const nlohmann::json* value = find(key);
  if (value == nullptr) return objects;
  if (!value->is_array()) {
    complain(key, "has to be a list in brackets");
    return objects;
  }
  for (const nlohmann::json& object : *value)
    objects.emplace_back(object, nameOf(key), complaint_);
  return objects;
}

void ScriptReader::finish() {
  if (!object_.is_object()) return;
  for (const auto& item : object_.items())
    if (known_.count(item.key()) == 0) complain(item.key().c_str(), "is not a key of the script");
}

}  // namespace corvana::session
