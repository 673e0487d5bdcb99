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
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  const fs::path installed = program.parent_path().parent_path() / CORVANA_INSTALLED_RESOURCES;
  if (fs::is_directory(installed, error)) return below(installed);
  const fs::path source = CORVANA_SOURCE_DIR;
  return {source / "src/capture/resources", source / "src/engine/resources",
          source / "src/devices/qtquick/qml", source / "src/app/report/resources"};
}

}  // namespace corvana::app
