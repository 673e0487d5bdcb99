#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <tl/expected.hpp>

#include "devices/gstreamer/FilmFormat.h"
#include "devices/gstreamer/GstSupport.h"
#include "platform/foundation/Fault.h"
#include "platform/foundation/Time.h"
#include "platform/media/PixelBuffer.h"

namespace devices {

/// Encoders, muxer and file of one film. The file's index is renewed every half second of film, so
/// that it plays whenever the process dies. One thread at a time.
class FilmPipeline {
 public:
  /// Room for the index is set aside at the film's start; running out of it would be fatal.
  static constexpr platform::Duration kLongestFilm = std::chrono::minutes(15);

  static tl::expected<std::unique_ptr<FilmPipeline>, platform::Fault> start(
      const FilmFormat& format);
  ~FilmPipeline();

  /// Frames that the encoder has not taken yet.
  int framesWaiting() const;
  /// Blocks until fewer frames wait than `limit`; false after an error.
  bool waitForRoom(int limit);
  void pushVideo(platform::PixelBufferRef image, platform::Duration time,
                 platform::Duration duration);
  /// `position` counts sample frames from the film's beginning.
  void pushAudio(const std::vector<std::int16_t>& samples, std::int64_t position);
  /// Ends both tracks and closes the file; blocks.
  tl::expected<void, platform::Fault> finish();
  /// The first error.
  std::optional<platform::Fault> error() const;

 private:
  struct State;

  explicit FilmPipeline(const FilmFormat& format);
  static std::string launchLine(const FilmFormat& format);
  void configureSources();

  const FilmFormat format_;
  std::shared_ptr<State> state_;
  GstPtr<GstElement> pipeline_;
  GstElement* video_ = nullptr;
  GstElement* audio_ = nullptr;
};

}  // namespace devices
