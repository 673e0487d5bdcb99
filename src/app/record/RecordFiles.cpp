#include "app/record/RecordFiles.h"

#include "app/record/Files.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kMostResultBytes = 1 << 20;

}  // namespace

std::string retriedFilmName(std::size_t attempt) {
  return "film.run" + std::to_string(attempt) + ".mp4";
}

std::optional<std::string> filmIn(const fs::path& folder) {
  std::error_code error;
  for (const char* name : {kFilmFileName, kPartialFilmFileName}) {
    if (fs::is_regular_file(folder / name, error)) return name;
  }
  return std::nullopt;
}

Expected<std::string> readResultBytes(const fs::path& folder) {
  return readFile(folder / kResultFileName, kMostResultBytes);
}

Expected<nlohmann::json> parseResult(const std::string& bytes, const fs::path& folder) {
  return parseJson(bytes, (folder / kResultFileName).string());
}

}  // namespace corvana::app
