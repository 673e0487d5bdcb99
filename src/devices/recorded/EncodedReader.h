#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "devices/film/FilmWitness.h"
#include "platform/foundation/Fault.h"

namespace corvana::devices {

class StreamReader;

/// The encoded samples of a film's track, as they lie in its file, whether it was made plain or
/// still grew when its recording was cut off. One thread at a time.
class EncodedReader {
 public:
  struct Sample {
    platform::Duration time{};
    std::string bytes;
    std::string codec;  ///< with the first one
  };

  /// The error is one sentence: no such file, not a video.
  static platform::Expected<EncodedReader> open(const std::filesystem::path& film, FilmTrack track);
  ~EncodedReader();
  EncodedReader(EncodedReader&&) noexcept;

  /// The next sample; absent at the end. The error: the rest of the file is damaged or missing.
  platform::Expected<std::optional<Sample>> next();

 private:
  explicit EncodedReader(std::unique_ptr<StreamReader> reader);

  std::unique_ptr<StreamReader> reader_;
  bool isFirst_ = true;
};

}  // namespace corvana::devices
