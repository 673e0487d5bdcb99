#pragma once

#include <filesystem>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "platform/foundation/Fault.h"

namespace corvana::app {

/// The words of a report, in one language.
class ReportWords {
 public:
  using Places = std::initializer_list<std::pair<const char*, std::string>>;

  /// `folder` holds a file for each language. The error names the languages that there are.
  static platform::Expected<ReportWords> load(const std::filesystem::path& folder,
                                              const std::string& language);
  /// Codes of the languages in a folder, sorted.
  static std::vector<std::string> languagesIn(const std::filesystem::path& folder);

  /// The words of that key with each {place} filled; a key without words stands for itself.
  std::string of(const std::string& key, Places places = {}) const;
  /// The words of a name that comes from a record, such as that of a decision; else the name.
  std::string name(const char* group, const std::string& name, Places places = {}) const;
  const nlohmann::json& all() const { return words_; }

 private:
  nlohmann::json words_;
};

}  // namespace corvana::app
