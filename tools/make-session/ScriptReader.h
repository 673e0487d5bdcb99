#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/json/JsonObject.h"

namespace corvana::session {

/// Reads the keys of one JSON object into fields: a key that is absent leaves its field alone.
/// Throws `engine::JsonFault`.
class ScriptReader {
 public:
  explicit ScriptReader(engine::JsonObject object) : object_(std::move(object)) {}

  template <class Number>
  void number(const char* key, Number& field, double low, double high) {
    if (has(key)) field = object_.number(key, low, high);
  }
  void seed(const char* key, std::uint64_t& field);
  void flag(const char* key, bool& field) { field = object_.flag(key, field); }
  /// Text of 1 to `longest` bytes without control characters.
  void text(const char* key, std::string& field, std::size_t longest);
  void optionalText(const char* key, std::string& field, std::size_t longest);
  void choice(const char* key, std::string& field, const std::set<std::string>& choices);
  void date(const char* key, std::string& field);
  /// A file that exists; a relative path starts at `folder`.
  void file(const char* key, std::filesystem::path& field, const std::filesystem::path& folder);
  bool has(const char* key) { return object_.has(key); }
  /// An empty one when the key is absent.
  ScriptReader object(const char* key);
  std::vector<ScriptReader> objects(const char* key);
  /// Complains of a key that nobody asked for.
  void finish() const { object_.refuseOtherKeys(); }

 private:
  engine::JsonObject object_;
};

}  // namespace corvana::session
