#include "engine/json/JsonFile.h"

#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <system_error>
#include <vector>

#include "engine/json/FileFault.h"
#include "engine/json/JsonText.h"

namespace corvana::engine {
namespace {

namespace fs = std::filesystem;
using platform::Expected;

constexpr int kDeepestJson = 64;
constexpr std::size_t kChunkBytes = 1 << 16;

Expected<std::string> readStream(const fs::path& path, std::uint64_t maxBytes) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return unreadable(path, lastError());
  std::string content;
  std::vector<char> chunk(kChunkBytes);
  while (file) {
    file.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    if (file.bad()) return unreadable(path, lastError());
    content.append(chunk.data(), static_cast<std::size_t>(file.gcount()));
    if (content.size() > maxBytes) {
      return platform::failure("The file " + inQuotes(path) + " is larger than " +
                               std::to_string(maxBytes) + " bytes; give a smaller one.");
    }
  }
  return content;
}

}  // namespace

std::string inQuotes(const std::string& name) {
  return compactJson(nlohmann::json(name));
}

Expected<std::string> readFile(const fs::path& path, std::uint64_t maxBytes) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (error) return unreadable(path, error);
  if (fs::is_regular_file(status)) return readStream(path, maxBytes);
  return platform::failure(inQuotes(path) + " is not a file but a folder, pipe or device: name " +
                           "a file.");
}

Expected<std::string> readFileOrPipe(const fs::path& path, std::uint64_t maxBytes) {
  std::error_code error;
  return fs::is_fifo(path, error) ? readStream(path, maxBytes) : readFile(path, maxBytes);
}

Expected<nlohmann::json> parseJson(const std::string& text, const std::string& name) {
  using Event = nlohmann::json::parse_event_t;
  bool tooDeep = false;
  std::optional<std::string> twice;
  std::map<int, std::set<std::string>> keys;  // of the object that is open at each depth
  const auto callback = [&](int depth, Event event, const nlohmann::json& parsed) {
    tooDeep = tooDeep || depth > kDeepestJson;
    if (event == Event::object_start) keys[depth + 1].clear();
    if (event == Event::key) {
      const auto& key = parsed.get_ref<const std::string&>();
      if (!keys[depth].insert(key).second) twice = key;
    }
    return !tooDeep;
  };
  try {
    auto value = nlohmann::json::parse(text, callback);
    if (tooDeep)
      return platform::failure(inQuotes(name) + " is nested deeper than any file of this program.");
    if (twice) {
      return platform::failure(inQuotes(name) + " names " + inQuotes(*twice) +
                               " twice in one object; leave one of them.");
    }
    return value;
  } catch (const nlohmann::json::parse_error& error) {
    return platform::failure(inQuotes(name) + " is not valid JSON: the fault is at byte " +
                             std::to_string(error.byte) + ".");
  } catch (const nlohmann::json::exception&) {
    return platform::failure(inQuotes(name) + " holds a number that is too large.");
  }
}

}  // namespace corvana::engine
