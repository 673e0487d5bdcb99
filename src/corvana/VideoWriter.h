#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include <tl/expected.hpp>

#include "corvana/IDError.h"
#include "platform/media/AssetWriter.h"

namespace corvana {

/// A file URL as the caller of the entry gets it.
using FileURL = std::filesystem::path;

/// Writes the one film of a run.
class VideoWriter {
 public:
  /// The container of every recording.
  static inline const platform::AVFileType fileType = platform::kAVFileTypeMP4;

  virtual ~VideoWriter() = default;
  /// Audio queue; dropped while no film is open.
  virtual void writeAudio(const platform::CMSampleBufferRef& sampleBuffer) = 0;
};

}  // namespace corvana
