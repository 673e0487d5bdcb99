#pragma once

#include "platform/media/AssetWriter.h"

namespace corvana::app {

/// Films that nobody needs: their pictures and sounds are counted and let go, and an empty file
/// stands where each would lie.
class CountedFilms final : public platform::AssetWriterFactory {
 public:
  platform::Expected<std::shared_ptr<platform::AssetWriter>> make(
      const std::filesystem::path& path, const std::optional<platform::WriterSettings>& video,
      const std::optional<platform::WriterSettings>& audio) override;
};

}  // namespace corvana::app
