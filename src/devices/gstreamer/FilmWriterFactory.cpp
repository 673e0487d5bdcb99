#include "devices/gstreamer/FilmWriterFactory.h"

#include <utility>

#include "devices/gstreamer/FilmSettings.h"
#include "devices/gstreamer/FilmWriter.h"

namespace devices {

using platform::Fault;

FilmWriterFactory::FilmWriterFactory(platform::RunLoop& loop)
    : FilmWriterFactory(loop, [isVirtual = loop.isVirtual()] {
        return isVirtual ? CreationTime() : std::chrono::system_clock::now();
      }) {}

FilmWriterFactory::FilmWriterFactory(platform::RunLoop& loop, WallClock wallClock)
    : loop_(loop),
      wallClock_(std::move(wallClock)),
      diskQueue_(loop.makeSerialQueue("FilmDisk", platform::QualityOfService::utility)) {}

tl::expected<std::shared_ptr<platform::AssetWriter>, Fault> FilmWriterFactory::make(
    const std::filesystem::path& path, const std::optional<platform::WriterSettings>& video,
    const std::optional<platform::WriterSettings>& audio) {
  auto format = filmFormat(video, audio);
  if (!format) return tl::unexpected(Fault{format.error(), platform::FaultCause::filmFailed});
  auto file = FilmFile::create(path, diskQueue_);
  if (!file) return tl::unexpected(file.error());
  return std::make_shared<FilmWriter>(loop_, std::move(*format), std::move(*file), wallClock_);
}

}  // namespace devices
