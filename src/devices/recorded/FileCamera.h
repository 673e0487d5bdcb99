#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "devices/film/FilmingDevice.h"
#include "devices/recorded/FileTimeline.h"
#include "devices/recorded/StreamReader.h"

namespace corvana::devices {

/// The pictures of a recorded file as a camera's.
class FileCamera final : public FilmingCamera, public std::enable_shared_from_this<FileCamera> {
 public:
  /// What is told of the file, on a thread of the device.
  struct Reports {
    std::function<void()> end;
    std::function<void(platform::Fault)> error;
  };

  /// `first` is the first picture that `reader` gave.
  FileCamera(platform::RunLoop& loop, std::shared_ptr<FileTimeline> timeline, const MediaInfo& info,
             std::unique_ptr<VideoReader> reader, VideoReader::Picture first,
             VideoCodecChoice codecChoice, Reports reports);

  std::string localizedName() const override { return "Recorded camera"; }
  bool open() override;
  void start(SampleHandler handler) override;
  void stop() override;

  std::uint64_t framesDropped() const { return framesDropped_; }

 private:
  PictureSize pictureSize() const override { return {info_.width, info_.height}; }
  void schedule();
  void deliver();
  void skipTo(platform::Duration place);
  void advance();
  void endAfter(platform::Duration lastFrame);
  bool isTooLate();
  platform::Duration durationOfCurrent() const;

  platform::RunLoop& loop_;
  const std::shared_ptr<FileTimeline> timeline_;
  const MediaInfo info_;
  const std::unique_ptr<VideoReader> reader_;
  const Reports reports_;

  /// Guards what follows; recursive, since a handler may stop the device that calls it.
  mutable std::recursive_mutex mutex_;
  SampleHandler handler_;
  std::uint64_t run_ = 0;  ///< counts starts and stops: an older event is void
  platform::TimePoint origin_{};
  std::optional<VideoReader::Picture> current_;
  std::optional<VideoReader::Picture> next_;
  std::optional<platform::Fault> error_;  ///< met while decoding `next_`
  bool over_ = false;
  int droppedInARow_ = 0;
  std::atomic<std::uint64_t> framesDropped_ = 0;
};

}  // namespace corvana::devices
