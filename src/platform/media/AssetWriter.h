#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <tl/expected.hpp>

#include "platform/foundation/Fault.h"
#include "platform/media/SampleBuffer.h"
#include "platform/media/WriterSettings.h"

namespace corvana::platform {

/// What a film has taken in so far.
struct AssetWriterCounters {
  std::uint64_t videoFramesReceived = 0;
  std::uint64_t videoFramesWritten = 0;
  std::uint64_t videoFramesDropped = 0;
  /// Came more than 100 ms after their presentation time, in real time: the machine was behind.
  std::uint64_t videoFramesLate = 0;
  std::uint64_t audioBuffersReceived = 0;
  std::uint64_t audioBuffersDropped = 0;  ///< nothing could be made of their rate or channels
  double secondsWritten = 0;              ///< from the first frame to the end of the last
  double secondsOfSilence = 0;            ///< digital silence before the first microphone buffer
};

/// One film on disk. It begins with its first video frame; sound that lies before it is left out,
/// and digital silence stands in for sound that has not come yet, so that the file plays whenever
/// the process dies. Without audio settings it has no sound track. Picture, sound and end may come
/// from three threads at once.
class AssetWriter {
 public:
  virtual ~AssetWriter() = default;

  /// One thread at a time for each of the two; false after an error, and after the end, when a
  /// sample that was under way is dropped.
  virtual bool appendVideo(const CMSampleBufferRef& sample) = 0;
  virtual bool appendAudio(const CMSampleBufferRef& sample) = 0;
  /// Ends the film and closes the file; blocks until that is done, so not on the main queue in real
  /// time. A second call returns the same answer.
  virtual Expected<void> finish() = 0;
  /// The first error; absent while all is well. Any thread.
  virtual std::optional<Fault> fault() const = 0;
  /// Pictures that the encoder has not taken yet. Any thread.
  virtual int framesWaiting() const = 0;
  virtual AssetWriterCounters counters() const = 0;
};

/// Makes films; implemented by the device floor.
class AssetWriterFactory {
 public:
  virtual ~AssetWriterFactory() = default;
  /// `path` must not exist yet. Absent settings mean the maker's defaults for video and no sound
  /// track for audio. Any thread, one film at a time.
  virtual Expected<std::shared_ptr<AssetWriter>> make(
      const std::filesystem::path& path, const std::optional<WriterSettings>& video,
      const std::optional<WriterSettings>& audio) = 0;
};

}  // namespace corvana::platform
