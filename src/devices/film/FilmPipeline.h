#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "devices/film/FilmFile.h"
#include "devices/film/FilmSettings.h"
#include "devices/film/FilmWitness.h"
#include "devices/gstreamer/GstSupport.h"
#include "platform/foundation/Fault.h"
#include "platform/foundation/Time.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::devices {

/// Encoders and muxer of one film. The file only grows, by a whole fragment every half second of
/// film, so that any beginning of it plays. One thread at a time.
class FilmPipeline {
 public:
  /// The witness sees what is encoded; it may be null.
  static platform::Expected<std::unique_ptr<FilmPipeline>> start(
      const FilmFormat& format, std::shared_ptr<FilmFile> file,
      const std::shared_ptr<FilmWitness>& witness = nullptr);
  ~FilmPipeline();

  /// How many frames the encoder has not taken yet.
  int framesWaiting() const;
  /// Blocks until fewer frames wait than `limit`; false after an error.
  bool waitForRoom(int limit);
  /// Encodes a picture, scaled into the film's size, with borders, when it has another.
  void pushVideo(platform::PixelBufferRef image, platform::Duration time,
                 platform::Duration duration);
  /// Encodes sound from `position` on, which counts sample frames from the film's beginning.
  void pushAudio(const std::vector<std::int16_t>& samples, std::int64_t position);
  /// Ends both tracks and writes the last fragment; blocks.
  platform::Expected<void> finish();
  /// The first error; absent when there was none.
  std::optional<platform::Fault> error() const;

 private:
  struct State;

  FilmPipeline(const FilmFormat& format, std::shared_ptr<FilmFile> file);
  static std::string launchLine(const FilmFormat& format);
  void configureSources();
  void show(const std::shared_ptr<FilmWitness>& witness);
  void announce(const platform::PixelBuffer& image);

  const FilmFormat format_;
  const std::shared_ptr<FilmFile> file_;
  std::shared_ptr<State> state_;
  GstPtr<GstElement> pipeline_;
  GstElement* video_ = nullptr;
  GstElement* audio_ = nullptr;
  GstPtr<GstCaps> pictureCaps_;  ///< of the last picture
};

}  // namespace corvana::devices
