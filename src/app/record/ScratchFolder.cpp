#include "app/record/ScratchFolder.h"

#include <cstdlib>
#include <string>
#include <system_error>
#include <utility>

namespace corvana::app {

namespace fs = std::filesystem;

platform::Expected<ScratchFolder> ScratchFolder::make() {
  std::error_code error;
  const fs::path parent = fs::temp_directory_path(error);
  std::string name = (parent / "videoid-XXXXXX").string();
  if (!error && ::mkdtemp(name.data())) return ScratchFolder(name);
  return platform::failure(
      "There is no folder for temporary files: set TMPDIR to one that can be written.");
}

ScratchFolder::~ScratchFolder() {
  if (path_.empty()) return;
  std::error_code ignored;  // What stays is for the system to tidy up.
  fs::remove_all(path_, ignored);
}

ScratchFolder::ScratchFolder(ScratchFolder&& other) noexcept
    : path_(std::exchange(other.path_, {})) {}

}  // namespace corvana::app
