#include "devices/film/FilmFile.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "devices/film/FilmFault.h"
#include "devices/system/DiskSync.h"

namespace corvana::devices {

using platform::Fault;
using platform::FaultCause;

namespace {

Fault faultOf(const std::filesystem::path& path, const char* done, int error) {
  return filmFault(path, done, std::strerror(error), fileFaultCause(error));
}

}  // namespace

FilmFile::FilmFile(std::filesystem::path path, int descriptor,
                   std::shared_ptr<platform::DispatchQueue> queue)
    : path_(std::move(path)), descriptor_(descriptor), queue_(std::move(queue)) {}

FilmFile::~FilmFile() {
  ::close(descriptor_);
}

platform::Expected<std::shared_ptr<FilmFile>> FilmFile::create(
    const std::filesystem::path& path, std::shared_ptr<platform::DispatchQueue> queue) {
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (descriptor < 0 && errno == EEXIST) {
    return platform::failure("The film " + path.string() +
                                 " can't be created where a file of that name is already: "
                                 "choose another folder.",
                             FaultCause::folderLost);
  }
  if (descriptor < 0) return tl::unexpected(faultOf(path, "created", errno));
  std::shared_ptr<FilmFile> file(new FilmFile(path, descriptor, std::move(queue)));
  if (const auto synced = syncFolderOf(path); !synced) return tl::unexpected(synced.error());
  return file;
}

void FilmFile::syncSoon() {
  if (isSyncing_.exchange(true)) return;
  queue_->async([self = shared_from_this()] {
    (void)self->sync();
    self->isSyncing_ = false;
  });
}

platform::Expected<void> FilmFile::sync() {
  auto fault = putOnDisk();
  const std::lock_guard lock(mutex_);
  if (!fault_) fault_ = std::move(fault);
  if (fault_) return tl::unexpected(*fault_);
  return {};
}

std::optional<Fault> FilmFile::putOnDisk() const {
  if (::fdatasync(descriptor_) != 0) return faultOf(path_, "put on the disk", errno);
  struct stat status {};
  if (::fstat(descriptor_, &status) == 0 && status.st_nlink > 0) return {};
  return Fault{
      "The film " + path_.string() + " was removed while it was recorded: use a folder that stays.",
      FaultCause::folderLost};
}

std::optional<Fault> FilmFile::fault() const {
  const std::lock_guard lock(mutex_);
  return fault_;
}

platform::Expected<void> syncFolderOf(const std::filesystem::path& path) {
  const auto folder = path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
  const std::error_code error = syncToDisk(folder);
  if (!error) return {};
  return tl::unexpected(faultOf(path, "named on the disk", error.value()));
}

}  // namespace corvana::devices
