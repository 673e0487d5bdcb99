#include "devices/gstreamer/FilmWriterFactory.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "devices/gstreamer/FilmSettings.h"
#include "devices/gstreamer/FilmWriter.h"

namespace devices {

using platform::Fault;
using Cause = platform::FaultCause;

tl::expected<std::shared_ptr<platform::AssetWriter>, platform::Fault> FilmWriterFactory::make(
    const std::filesystem::path& path, const std::optional<platform::WriterSettings>& video,
    const std::optional<platform::WriterSettings>& audio) {
  auto format = filmFormat(video, audio);
  if (!format) return tl::unexpected(Fault{format.error(), Cause::filmFailed});
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (file < 0) {
    return tl::unexpected(Fault{"The film " + path.string() + " can't be created (" +
                                    std::strerror(errno) + "): check its folder.",
                                errno == ENOSPC ? Cause::diskFull : Cause::folderLost});
  }
  ::close(file);
  format->path = path;
  return std::make_shared<FilmWriter>(!loop_.isVirtual(), std::move(*format));
}

}  // namespace devices
