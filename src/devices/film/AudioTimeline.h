#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "platform/media/SampleBuffer.h"

namespace corvana::devices {

/// The film's sound track before it is encoded: microphone buffers are laid on the film's time line
/// by their presentation time, to the sample, and digital silence stands wherever there is none.
/// A live microphone's times jitter: a buffer that should begin within `kJitter` of the last one's
/// end follows it without gap or cut; one that strays further is laid where its time says, so sound
/// never drifts away from the picture.
///
/// The muxer waits for both tracks, so the sound must follow the picture: what the microphone has
/// not delivered `kPatience` after the picture of its time has come is silence, and comes too late
/// after that. Not thread safe.
class AudioTimeline {
 public:
  /// How much sound a server may hold back.
  static constexpr platform::Duration kPatience = std::chrono::milliseconds(300);
  /// Before the microphone has begun, nothing but its very first sound can come late.
  static constexpr platform::Duration kStartPatience = std::chrono::milliseconds(100);
  static constexpr platform::Duration kJitter = std::chrono::milliseconds(20);
  /// Sound that runs ahead of the picture by more than this is left out.
  static constexpr platform::Duration kAheadLimit = std::chrono::seconds(30);

  AudioTimeline(int sampleRate, int channels) : sampleRate_(sampleRate), channels_(channels) {}

  /// Sets the instant of the film's first frame; sound before it is left out.
  void begin(platform::TimePoint origin);
  void add(const platform::CMSampleBuffer& buffer);

  /// The samples (interleaved) that follow those taken before, up to the end of the picture that
  /// came last: sound as far as there is any, silence as far as nothing can come any more.
  std::vector<std::int16_t> take(platform::Duration pictureStart, platform::Duration pictureEnd);
  /// The samples that are left, up to `frames` sample frames from the film's beginning.
  std::vector<std::int16_t> takeRest(std::int64_t frames);

  /// How many sample frames were taken so far.
  std::int64_t position() const { return position_; }
  double secondsOfSilenceAtStart() const;
  std::int64_t framesIn(platform::Duration time) const;

 private:
  struct Run {
    std::int64_t start;
    std::vector<std::int16_t> samples;
  };

  void place(const platform::CMSampleBuffer& buffer);
  void takeSilence(std::int64_t end, std::vector<std::int16_t>& out);
  void takeSound(std::int64_t end, std::vector<std::int16_t>& out);
  std::int64_t framesOf(const Run& run) const;

  const int sampleRate_;
  const int channels_;
  bool begun_ = false;
  platform::TimePoint origin_{};
  std::deque<platform::CMSampleBuffer> early_;  ///< came before the first frame
  std::deque<Run> runs_;                        ///< in order, without overlap, from `position_` on
  std::optional<std::int64_t> expected_;        ///< where the last buffer ended
  std::int64_t position_ = 0;
  std::int64_t silenceAtStart_ = 0;
  bool heard_ = false;
};

}  // namespace corvana::devices
