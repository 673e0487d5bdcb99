#include "devices/film/AudioTimeline.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace corvana::devices {
namespace {

/// Enough for buffers that overlap the first frame; older ones lie before the film.
constexpr std::size_t kEarlyBuffers = 64;

}  // namespace

std::int64_t AudioTimeline::framesIn(platform::Duration time) const {
  return std::llround(platform::inSeconds(time) * sampleRate_);
}

std::int64_t AudioTimeline::framesOf(const Run& run) const {
  return static_cast<std::int64_t>(run.samples.size()) / channels_;
}

double AudioTimeline::secondsOfSilenceAtStart() const {
  return static_cast<double>(silenceAtStart_) / sampleRate_;
}

void AudioTimeline::begin(platform::TimePoint origin) {
  origin_ = origin;
  begun_ = true;
  for (const platform::CMSampleBuffer& buffer : std::exchange(early_, {}))
    place(buffer);
}

void AudioTimeline::add(const platform::CMSampleBuffer& buffer) {
  if (begun_) {
    place(buffer);
    return;
  }
  early_.push_back(buffer);
  if (early_.size() > kEarlyBuffers) early_.pop_front();
}

void AudioTimeline::place(const platform::CMSampleBuffer& buffer) {
  Run run{framesIn(buffer.presentationTime - origin_), buffer.samples};
  run.samples.resize(run.samples.size() / channels_ * channels_);
  if (expected_ && std::abs(run.start - *expected_) <= framesIn(kJitter)) run.start = *expected_;
  expected_ = run.start + framesOf(run);
  const std::int64_t free = runs_.empty() ? position_ : runs_.back().start + framesOf(runs_.back());
  const std::int64_t overlap = std::clamp<std::int64_t>(free - run.start, 0, framesOf(run));
  run.samples.erase(run.samples.begin(), run.samples.begin() + overlap * channels_);
  run.start += overlap;
  if (run.samples.empty() || run.start > position_ + framesIn(kAheadLimit)) return;
  runs_.push_back(std::move(run));
}

void AudioTimeline::takeSilence(std::int64_t end, std::vector<std::int16_t>& out) {
  if (end <= position_) return;
  if (!heard_) silenceAtStart_ += end - position_;
  out.resize(out.size() + static_cast<std::size_t>((end - position_) * channels_), 0);
  position_ = end;
}

void AudioTimeline::takeSound(std::int64_t end, std::vector<std::int16_t>& out) {
  while (!runs_.empty() && position_ < end) {
    Run& run = runs_.front();
    takeSilence(std::min(run.start, end), out);
    const std::int64_t count = std::min(framesOf(run), end - run.start);
    if (count <= 0) return;
    const auto last = run.samples.begin() + count * channels_;
    out.insert(out.end(), run.samples.begin(), last);
    run.samples.erase(run.samples.begin(), last);
    run.start += count;
    position_ = run.start;
    heard_ = true;
    if (run.samples.empty()) runs_.pop_front();
  }
}

std::vector<std::int16_t> AudioTimeline::take(platform::Duration pictureStart,
                                              platform::Duration pictureEnd) {
  std::vector<std::int16_t> out;
  takeSound(framesIn(pictureEnd), out);
  if (runs_.empty())
    takeSilence(framesIn(pictureStart - (heard_ ? kPatience : kStartPatience)), out);
  return out;
}

std::vector<std::int16_t> AudioTimeline::takeRest(std::int64_t frames) {
  std::vector<std::int16_t> out;
  takeSound(frames, out);
  takeSilence(frames, out);
  return out;
}

}  // namespace corvana::devices
