#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include <tl/expected.hpp>

#include "devices/gstreamer/Mp4Dates.h"
#include "platform/foundation/RunLoop.h"
#include "platform/media/AssetWriter.h"

namespace devices {

/// Makes film files, readable by their owner only. Construction is for the main queue.
class FilmWriterFactory final : public platform::AssetWriterFactory {
 public:
  /// Films get the date of their first frame in real time, none in virtual time.
  explicit FilmWriterFactory(platform::RunLoop& loop);
  FilmWriterFactory(platform::RunLoop& loop, WallClock wallClock);

  tl::expected<std::shared_ptr<platform::AssetWriter>, platform::Fault> make(
      const std::filesystem::path& path, const std::optional<platform::WriterSettings>& video,
      const std::optional<platform::WriterSettings>& audio) override;

 private:
  platform::RunLoop& loop_;
  const WallClock wallClock_;
  const std::shared_ptr<platform::DispatchQueue> diskQueue_;
};

}  // namespace devices
