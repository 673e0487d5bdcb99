#pragma once

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "corvana/VideoWriter.h"
#include "engine/recorder/Film.h"

namespace corvana::engine {

/// Gives the microphone's samples to the film, and keeps them for whoever compares them with what
/// is seen.
class SoundTap final : public corvana::VideoWriter {
 public:
  using Samples = std::vector<platform::CMSampleBufferRef>;

  explicit SoundTap(std::shared_ptr<Film> film) : film_(std::move(film)) {}

  void writeAudio(const platform::CMSampleBufferRef& sample) override {
    film_->writeAudio(sample);
    const std::lock_guard lock(mutex_);
    if (samples_.size() < kMost) samples_.push_back(sample);
  }
  /// What came since the last time. Any thread.
  Samples take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(samples_, {});
  }

  /// Buffers that are kept while nobody takes them.
  static constexpr std::size_t kMost = 500;

 private:
  std::shared_ptr<Film> film_;
  std::mutex mutex_;
  Samples samples_;  ///< guarded by mutex_
};

}  // namespace corvana::engine
