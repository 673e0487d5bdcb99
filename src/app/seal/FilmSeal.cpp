#include "app/seal/FilmSeal.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace corvana::app {

using devices::FilmTrack;
using nlohmann::ordered_json;

FilmSeal::FilmSeal(std::shared_ptr<SealLog> log, std::shared_ptr<EventSums> events,
                   ordered_json head, platform::Duration period)
    : log_(std::move(log)), events_(std::move(events)), head_(std::move(head)), period_(period) {}

SampleSum FilmSeal::Track::take() {
  if (periods.empty()) return SampleSum(kind);
  SampleSum sum = std::move(periods.front());
  periods.pop_front();
  return sum;
}

void FilmSeal::began(platform::TimePoint origin, bool hasSound) {
  const std::lock_guard lock(mutex_);
  origin_ = origin;
  tracks_.push_back({FilmTrack::video, 0, {}});
  if (hasSound) tracks_.push_back({FilmTrack::audio, 0, {}});
  log_->add(head_);
}

void FilmSeal::saw(const devices::EncodedSample& sample) {
  const std::lock_guard lock(mutex_);
  Track& track = *std::ranges::find(tracks_, sample.track, &Track::kind);
  // A picture that comes out of the encoder behind a later one belongs to that one's period.
  lastTime_ = std::max(lastTime_, sample.time);
  track.period = std::max(track.period, sample.time / period_);
  while (written_ + std::ssize(track.periods) <= track.period)
    track.periods.emplace_back(track.kind);
  track.periods.back().add(sample);
  writeWholePeriods();
}

void FilmSeal::writeWholePeriods() {
  const std::int64_t whole = std::ranges::min(tracks_, {}, &Track::period).period;
  while (written_ < whole)
    writeLine(origin_ + (written_ + 1) * period_, false);
}

void FilmSeal::ended() {
  const std::lock_guard lock(mutex_);
  const std::int64_t last = std::ranges::max(tracks_, {}, &Track::period).period;
  while (written_ < last)
    writeLine(origin_ + (written_ + 1) * period_, false);
  writeLine(platform::TimePoint::max(), true);
}

void FilmSeal::writeLine(platform::TimePoint eventsBefore, bool isLast) {
  ++written_;
  const auto reached = isLast ? lastTime_ : written_ * period_;
  ordered_json line = {{"t", std::round(platform::inSeconds(reached) * 1000) / 1000}};
  for (Track& track : tracks_)
    line[nameOf(track.kind)] = track.take().json();
  const EventSums::Beginning events = events_->before(eventsBefore);
  line["events"] = {{"bytes", events.bytes}, {"sha256", events.sha256}};
  if (isLast) line["end"] = true;
  log_->add(line);
}

}  // namespace corvana::app
