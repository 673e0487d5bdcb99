#include "engine/json/JsonFile.h"

#include <fstream>
#include <sstream>
#include <system_error>

namespace corvana::engine {
namespace {

namespace fs = std::filesystem;
using platform::Expected;

constexpr int kDeepestJson = 64;

std::string quoted(const fs::path& path) {
  return "\"" + path.string() + "\"";
}

}  // namespace

Expected<std::string> readFile(const fs::path& path, std::uint64_t maxBytes) {
  std::error_code error;
  if (!fs::exists(path, error)) return platform::failure("There is no file " + quoted(path) + ".");
  if (!fs::is_regular_file(path, error)) return platform::failure(quoted(path) + " is not a file.");
  if (fs::file_size(path, error) > maxBytes) {
    return platform::failure("The file " + quoted(path) + " is larger than " +
                             std::to_string(maxBytes) + " bytes; give a smaller one.");
  }
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  if (!file) return platform::failure("The file " + quoted(path) + " could not be read.");
  return content.str();
}

Expected<nlohmann::json> parseJson(const std::string& text, const std::string& name) {
  bool tooDeep = false;
  const auto callback = [&](int depth, nlohmann::json::parse_event_t, nlohmann::json&) {
    tooDeep = tooDeep || depth > kDeepestJson;
    return !tooDeep;
  };
  try {
    auto value = nlohmann::json::parse(text, callback);
    if (tooDeep)
      return platform::failure("\"" + name + "\" is nested deeper than any file of this program.");
    return value;
  } catch (const nlohmann::json::parse_error& error) {
    return platform::failure("\"" + name + "\" is not valid JSON: the fault is at byte " +
                             std::to_string(error.byte) + ".");
  } catch (const nlohmann::json::exception&) {
    return platform::failure("\"" + name + "\" holds a number that is too large.");
  }
}

}  // namespace corvana::engine
