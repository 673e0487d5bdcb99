#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace corvana::engine {

/// What is wrong with a file: thrown while it is read, caught where it is loaded.
struct JsonFault {
  std::string sentence;
};

/// One JSON object of a file that people write, which knows where it stands. Every reading checks
/// type and range; the keys that nobody asked for are refused at the end.
class JsonObject {
 public:
  JsonObject(const nlohmann::json& value, std::string where);

  const std::string& where() const { return where_; }
  /// Where every key is allowed: all of them.
  std::vector<std::string> keys();
  bool has(const std::string& key);
  std::string text(const std::string& key);
  std::optional<std::string> optionalText(const std::string& key);
  /// A text as it is; an object by its key "type", or as "other".
  std::string brief(const std::string& key);
  bool flag(const std::string& key, bool otherwise);
  double number(const std::string& key, double lowest, double highest);
  std::vector<std::string> texts(const std::string& key);
  /// The numbers at `key`, which must be as many as `count` says.
  std::vector<double> numbers(const std::string& key, std::size_t count);
  JsonObject object(const std::string& key);
  std::vector<JsonObject> objects(const std::string& key, std::size_t most);
  const nlohmann::json& value(const std::string& key);

  /// The value in the table under the text at `key`; the complaint lists the table.
  template <class Value>
  Value choice(const std::string& key, const std::map<std::string, Value>& table) {
    const std::string name = text(key);
    const auto entry = table.find(name);
    if (entry != table.end()) return entry->second;
    std::string all;
    for (const auto& [known, value] : table)
      all += (all.empty() ? "" : ", ") + known;
    complain(key, quoted(name) + " is not one of " + all);
  }

  void refuseOtherKeys() const;
  /// A text of the file as a sentence can have it: on one line, and not too long.
  static std::string quoted(const std::string& text);
  /// "steps[3].state: " and so on.
  [[noreturn]] void complain(const std::string& key, const std::string& fault) const;

 private:
  const nlohmann::json& value_;
  std::string where_;
  std::set<std::string> asked_;
};

}  // namespace corvana::engine
