#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include <tl/expected.hpp>

#include "platform/foundation/RunLoop.h"
#include "platform/media/AssetWriter.h"

namespace devices {

/// Makes film files, readable by their owner only.
class FilmWriterFactory final : public platform::AssetWriterFactory {
 public:
  explicit FilmWriterFactory(platform::RunLoop& loop) : loop_(loop) {}

  tl::expected<std::shared_ptr<platform::AssetWriter>, platform::Fault> make(
      const std::filesystem::path& path, const std::optional<platform::WriterSettings>& video,
      const std::optional<platform::WriterSettings>& audio) override;

 private:
  platform::RunLoop& loop_;
};

}  // namespace devices
