#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "devices/film/FilmingDevice.h"
#include "devices/recorded/FileTimeline.h"
#include "devices/recorded/StreamReader.h"

namespace corvana::devices {

/// The sound of a recorded file as a microphone's. It is silent where the file holds no
/// sound, and ends with the file.
class FileMicrophone final : public FilmingMicrophone,
                             public std::enable_shared_from_this<FileMicrophone> {
 public:
  /// `error` is called on a thread of the device.
  FileMicrophone(platform::RunLoop& loop, std::shared_ptr<FileTimeline> timeline,
                 platform::Duration fileDuration, std::unique_ptr<AudioReader> reader,
                 std::function<void(platform::Fault)> error);

  std::string localizedName() const override { return "Recorded microphone"; }
  bool open() override;
  void start(SampleHandler handler) override;
  void stop() override;

 private:
  static constexpr std::int64_t kBufferSamples = AudioReader::kSampleRate / 50;

  void follow();
  void schedule();
  void deliver();
  platform::TimePoint instantOf(std::int64_t position) const;

  platform::RunLoop& loop_;
  const std::shared_ptr<FileTimeline> timeline_;
  const platform::Duration fileDuration_;
  const std::unique_ptr<AudioReader> reader_;
  const std::function<void(platform::Fault)> reportError_;

  /// Guards what follows; recursive, since a handler may stop the device that calls it.
  std::recursive_mutex mutex_;
  SampleHandler handler_;
  std::uint64_t run_ = 0;  ///< counts starts and stops: an older event is void
  platform::TimePoint origin_{};
  std::int64_t position_ = 0;  ///< samples since the origin
  bool failed_ = false;
};

}  // namespace corvana::devices
