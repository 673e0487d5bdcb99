#include "ScriptReader.h"

#include <algorithm>
#include <cstdlib>
#include <map>

#include <glib.h>

namespace corvana::session {
namespace {

constexpr std::size_t kLongestPath = 4096;
constexpr std::size_t kMostObjects = 100;

const nlohmann::json kEmptyObject = nlohmann::json::object();

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

void ScriptReader::seed(const char* key, std::uint64_t& field) {
  if (!has(key)) return;
  const nlohmann::json& value = object_.value(key);
  if (!value.is_number_unsigned()) object_.complain(key, "must be a whole number from 0");
  field = value.get<std::uint64_t>();
}

void ScriptReader::text(const char* key, std::string& field, std::size_t longest) {
  optionalText(key, field, longest);
  if (has(key) && field.empty()) object_.complain(key, "must not be empty");
}

void ScriptReader::optionalText(const char* key, std::string& field, std::size_t longest) {
  if (!has(key)) return;
  field = object_.text(key);
  if (field.size() > longest)
    object_.complain(key, "is longer than " + std::to_string(longest) + " bytes");
  if (hasControlCharacter(field)) object_.complain(key, "contains a control character");
}

void ScriptReader::choice(const char* key, std::string& field,
                          const std::set<std::string>& choices) {
  if (!has(key)) return;
  std::map<std::string, std::string> table;
  for (const std::string& choice : choices)
    table[choice] = choice;
  field = object_.choice(key, table);
}

void ScriptReader::date(const char* key, std::string& field) {
  if (!has(key)) return;
  field = object_.text(key);
  if (!isDate(field)) object_.complain(key, "must be a day of the calendar, as YYYY-MM-DD");
}

void ScriptReader::file(const char* key, std::filesystem::path& field,
                        const std::filesystem::path& folder) {
  std::string name;
  text(key, name, kLongestPath);
  if (name.empty()) return;
  field = (folder / name).lexically_normal();
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(field, ignored))
    object_.complain(key, "there is no file " + field.string() + ": correct the path");
}

ScriptReader ScriptReader::object(const char* key) {
  const std::string& where = object_.where();
  return ScriptReader(
      has(key) ? object_.object(key)
               : engine::JsonObject(kEmptyObject, where + (where.empty() ? "" : ".") + key));
}

std::vector<ScriptReader> ScriptReader::objects(const char* key) {
  std::vector<ScriptReader> readers;
  if (!has(key)) return readers;
  for (engine::JsonObject& object : object_.objects(key, kMostObjects))
    readers.emplace_back(std::move(object));
  return readers;
}

}  // namespace corvana::session
