#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "app/seal/EventSums.h"
#include "app/seal/SampleSum.h"
#include "app/seal/SealLog.h"
#include "devices/film/FilmWitness.h"

namespace corvana::app {

/// Seals one film while it is recorded: for each period of it one line with the sums of its encoded
/// samples and of the events so far.
class FilmSeal final : public devices::FilmWitness {
 public:
  /// `head` is what the chain's first line says. Of a recording that is killed one period is lost
  /// at most beside what its film loses, which is more than half a second.
  FilmSeal(std::shared_ptr<SealLog> log, std::shared_ptr<EventSums> events,
           nlohmann::ordered_json head, platform::Duration period);

  void began(platform::TimePoint origin, bool hasSound) override;
  void saw(const devices::EncodedSample& sample) override;
  void ended() override;

 private:
  struct Track {
    devices::FilmTrack kind;
    std::int64_t period = 0;        ///< of the sample that came last
    std::deque<SampleSum> periods;  ///< those that no line tells of yet

    SampleSum take();
  };

  void writeWholePeriods();
  void writeLine(platform::TimePoint eventsBefore, bool isLast);

  const std::shared_ptr<SealLog> log_;
  const std::shared_ptr<EventSums> events_;
  const nlohmann::ordered_json head_;
  const platform::Duration period_;
  std::mutex mutex_;
  platform::TimePoint origin_{};
  platform::Duration lastTime_{};  ///< of any sample
  std::vector<Track> tracks_;
  std::int64_t written_ = 0;  ///< periods of which a line tells
};

}  // namespace corvana::app
