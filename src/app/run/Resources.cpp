#include "app/run/Resources.h"

#include <cstdlib>
#include <system_error>

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

Resources below(const fs::path& folder) {
  return {folder / "capture", folder / "engine", folder / "screen", folder / "report"};
}

}  // namespace

Resources findResources() {
  if (const char* folder = std::getenv("CORVANA_RESOURCES")) return below(folder);
  std::error_code error;
  const fs::path programs = fs::read_symlink("/proc/self/exe", error).parent_path();
  const fs::path place = CORVANA_INSTALLED_RESOURCES;
  // An installed program lies one folder below its prefix, one that was just built lies deeper.
  for (fs::path prefix = programs; prefix.has_relative_path(); prefix = prefix.parent_path()) {
    if (fs::is_directory(prefix / place, error)) return below(prefix / place);
  }
  return below(programs.parent_path() / place);
}

}  // namespace corvana::app
