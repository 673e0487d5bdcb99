#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include <opencv2/core.hpp>

#include "Result.h"

namespace corvana::session {

/// Writes the film: H.264 and AAC in MP4, its bytes fixed by what goes in. One thread.
class FilmEncoder {
 public:
  /// sound: all of it, one channel of kSoundRate samples a second.
  static Result<FilmEncoder> create(const std::filesystem::path& file,
                                    const std::vector<float>& sound);
  FilmEncoder(FilmEncoder&&) noexcept;
  ~FilmEncoder();

  /// picture: the next frame as I420 (one plane, three halves as high as the picture). Waits while
  /// the encoder is behind.
  void add(const cv::Mat& picture);
  /// After the last frame; the file is complete only if this succeeds.
  Result<void> finish();

 private:
  struct State;
  explicit FilmEncoder(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

}  // namespace corvana::session
