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

Expected<bool> hasFile(const fs::path& folder, const char* name) {
  std::error_code error;
  const bool isThere = fs::is_regular_file(folder / name, error);
  if (error != std::errc::permission_denied) return isThere;
  return platform::failure("The folder " + inQuotes(folder) +
                           " can't be read, as you lack the right to enter it: run this as its "
                           "owner, or have its rights changed.");
}

Expected<void> checkOutside(const fs::path& folder, const fs::path& output) {
  std::error_code ignored;  // What does not exist yet has no links in its name.
  const fs::path record = fs::weakly_canonical(folder, ignored);
  const fs::path place = fs::weakly_canonical(fs::absolute(output, ignored), ignored);
  const fs::path way = place.lexically_relative(record);
  if (way.empty() || *way.begin() == "..") return {};
  return platform::failure(inQuotes(output) + " lies within the record " + inQuotes(folder) +
                           ", which would be spoilt by it: name a place outside.");
}

Expected<void> checkNewFile(const fs::path& folder, const fs::path& file,
                            const std::string& option) {
  std::error_code error;
  if (fs::exists(file, error)) {
    return platform::failure("There is a file " + inQuotes(file) +
                             " already: name a new one with " + option +
                             ", so that nothing is overwritten.");
  }
  return checkOutside(folder, file);
}

Expected<std::string> readResultBytes(const fs::path& folder) {
  return readFile(folder / kResultFileName, kMostResultBytes);
}

Expected<nlohmann::json> parseResult(const std::string& bytes, const fs::path& folder) {
  return parseJson(bytes, (folder / kResultFileName).string());
}

}  // namespace corvana::app
