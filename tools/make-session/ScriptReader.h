#pragma once

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace corvana::session {

/// Reads the keys of one JSON object into fields and keeps the first complaint of the whole script.
/// A key that is absent leaves its field alone; `finish` complains of a key that nobody asked for.
class ScriptReader {
 public:
  /// `where`: the object's place in the script, empty for the script itself. `complaint` is shared
  /// by all readers of a script.
  ScriptReader(const nlohmann::json& object, std::string where, std::string& complaint);

  void number(const char* key, double& field, double low, double high);
  void number(const char* key, std::optional<double>& field, double low, double high);
  void seed(const char* key, std::uint64_t& field);
  void flag(const char* key, bool& field);
  /// Text of 1 to `longest` bytes without control characters.
  void text(const char* key, std::string& field, std::size_t longest);
  void optionalText(const char* key, std::string& field, std::size_t longest);
  void choice(const char* key, std::string& field, const std::set<std::string>& choices);
  void date(const char* key, std::string& field);
  /// A file that exists; a relative path starts at `folder`.
  void file(const char* key, std::filesystem::path& field, const std::filesystem::path& folder);
  bool has(const char* key) const { return object_.is_object() && object_.contains(key); }
  ScriptReader object(const char* key);
  /// Each object of a list.
  std::vector<ScriptReader> objects(const char* key);
  void finish();

 private:
  const nlohmann::json* find(const char* key);
  void complain(const char* key, const std::string& what);
  std::string nameOf(const std::string& key) const;

  const nlohmann::json& object_;
  std::string where_;
  std::string& complaint_;
  std::set<std::string> known_;
};

}  // namespace corvana::session
