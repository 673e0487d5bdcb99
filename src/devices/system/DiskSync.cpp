#include "devices/system/DiskSync.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace corvana::devices {

std::error_code syncToDisk(const std::filesystem::path& path) {
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  // Some network file systems can't sync a folder and say so: they have no caches of names.
  const bool isSynced = descriptor >= 0 && (::fsync(descriptor) == 0 || errno == EINVAL);
  const int error = isSynced ? 0 : errno;
  if (descriptor >= 0) ::close(descriptor);
  return {error, std::generic_category()};
}

}  // namespace corvana::devices
