#include "engine/selfie/LipsWatch.h"

#include <algorithm>
#include <cmath>

namespace corvana::engine {
namespace {

constexpr double kFullScale = 32768;
constexpr double kSilence = -120;  // dB
/// Sound is measured in pieces of this length.
constexpr platform::Duration kPiece = std::chrono::milliseconds(100);
/// Sound that is kept for the judgement: the noise of the room is the quietest of it.
constexpr platform::Duration kMemory = std::chrono::seconds(10);

double decibels(const std::int16_t* samples, std::size_t count) {
  double sum = 0;
  for (std::size_t i = 0; i < count; ++i)
    sum += samples[i] / kFullScale * (samples[i] / kFullScale);
  const double power = count == 0 ? 0 : sum / static_cast<double>(count);
  return power > 0 ? 10 * std::log10(power) : kSilence;
}

}  // namespace

void LipsWatch::addMouth(platform::TimePoint time, const MouthLook& look) {
  mouths_.push_back({time, look});
  judge();
}

void LipsWatch::addSound(const platform::CMSampleBuffer& buffer) {
  if (buffer.sampleRate <= 0 || buffer.channels <= 0) return;
  const auto perSecond = static_cast<std::size_t>(buffer.sampleRate * buffer.channels);
  const std::size_t piece = std::max<std::size_t>(
      1, static_cast<std::size_t>(platform::inSeconds(kPiece) * static_cast<double>(perSecond)));
  for (std::size_t from = 0; from < buffer.samples.size(); from += piece) {
    const std::size_t count = std::min(piece, buffer.samples.size() - from);
    const double middle = static_cast<double>(from + count / 2) / static_cast<double>(perSecond);
    sounds_.push_back({buffer.presentationTime + platform::seconds(middle),
                       decibels(&buffer.samples[from], count)});
  }
  judge();
}

bool LipsWatch::hearsVoice(platform::TimePoint time) const {
  const auto after = std::ranges::lower_bound(sounds_, time, {}, &Loudness::time);
  const double quietest = std::ranges::min_element(sounds_, {}, &Loudness::decibels)->decibels;
  return after->decibels > std::max(kLeastLoudness, quietest + kAboveNoise);
}

bool LipsWatch::movesAt(std::size_t index) const {
  MouthChange most;
  for (std::size_t i = index; i-- > 0 && mouths_[i].time >= mouths_[index].time - kReach;) {
    const MouthChange change = changeBetween(mouths_[i].look, mouths_[index].look);
    most = {std::max(most.lips, change.lips), std::max(most.skin, change.skin)};
  }
  return most.lips > kMoves && most.lips > kAboveSkin * most.skin;
}

/// Looks are judged when it is known what was heard then.
void LipsWatch::judge() {
  while (next_ < mouths_.size()) {
    const platform::TimePoint time = mouths_[next_].time;
    if (sounds_.empty() || sounds_.back().time < time) break;
    const std::size_t look = next_++;
    if (!hearsVoice(time)) continue;
    ++voiced_;
    if (!movesAt(look)) ++atRest_;
  }
  while (!sounds_.empty() && sounds_.back().time - sounds_.front().time > kMemory)
    sounds_.pop_front();
  forgetMouths();
}

/// The next look is compared with those within its reach.
void LipsWatch::forgetMouths() {
  while (next_ > 0) {
    const platform::TimePoint next = mouths_[std::min(next_, mouths_.size() - 1)].time;
    if (mouths_.front().time >= next - kReach) break;
    mouths_.pop_front();
    --next_;
  }
}

std::optional<LivenessSign> LipsWatch::sign(double limit) const {
  if (voiced_ < kLeastVoiced) return {};
  const double share = static_cast<double>(atRest_) / voiced_;
  return LivenessSign{"lipsAtRest", LivenessSign::SpeaksFor::fraud, share, limit, share > limit};
}

}  // namespace corvana::engine
