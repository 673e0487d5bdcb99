#include "engine/document/kinds/DataFolder.h"

#include <algorithm>
#include <system_error>

#include "engine/json/JsonFile.h"

namespace corvana::engine {

namespace fs = std::filesystem;

platform::Expected<std::vector<fs::path>> dataFilesIn(const fs::path& folderOrFile) {
  constexpr std::size_t kMostFiles = 1000;
  std::error_code error;
  if (fs::is_regular_file(folderOrFile, error)) return std::vector{folderOrFile};
  std::vector<fs::path> files;
  for (fs::directory_iterator entry(folderOrFile, error), end; !error && entry != end;
       entry.increment(error)) {
    if (entry->path().extension() == ".json") files.push_back(entry->path());
    if (files.size() > kMostFiles) {
      return platform::failure(inQuotes(folderOrFile) +
                               " holds more than 1000 files of data; name another folder.");
    }
  }
  if (error) {
    return platform::failure("There is no folder " + inQuotes(folderOrFile) +
                             " that could be read: " + error.message() + ".");
  }
  std::ranges::sort(files);
  return files;
}

}  // namespace corvana::engine
