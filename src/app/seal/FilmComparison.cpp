#include "app/seal/FilmComparison.h"

#include <algorithm>

#include "app/seal/SampleSum.h"
#include "devices/recorded/EncodedReader.h"

namespace corvana::app {
namespace {

using devices::EncodedReader;
using devices::FilmTrack;
using nlohmann::json;

class TrackComparer {
 public:
  TrackComparer(EncodedReader reader, FilmTrack track)
      : reader_(std::move(reader)), track_(track) {}

  FilmComparison compare(const SealChain& chain) {
    for (const json& period : chain.periods) {
      const auto sum = sumOfNext(period[nameOf(track_)]["samples"].get<std::uint64_t>());
      result_.isCut = !sum;
      if (!sum) return result_;
      result_.differs = *sum != period[nameOf(track_)];
      if (result_.differs) return result_;
      result_.wholeTo = period["t"].get<double>();
    }
    result_.isLonger = chain.ended && next().has_value();
    return result_;
  }

 private:
  std::optional<EncodedReader::Sample> next() {
    auto sample = reader_.next();
    return sample ? std::move(*sample) : std::nullopt;
  }

  /// Absent when the film holds fewer.
  std::optional<json> sumOfNext(std::uint64_t count) {
    SampleSum sum(track_);
    for (std::uint64_t i = 0; i < count; ++i) {
      const auto sample = next();
      if (!sample) return std::nullopt;
      sum.add({track_, sample->time, sample->bytes, sample->codec});
    }
    return json(sum.json());
  }

  EncodedReader reader_;
  const FilmTrack track_;
  FilmComparison result_;
};

FilmComparison compareTrack(const std::filesystem::path& film, const SealChain& chain,
                            FilmTrack track) {
  auto reader = EncodedReader::open(film, track);
  if (!reader) return {0, false, true, false};
  return TrackComparer(std::move(*reader), track).compare(chain);
}

bool hasSound(const SealChain& chain) {
  return std::ranges::all_of(chain.periods,
                             [](const json& period) { return period.contains("audio"); });
}

}  // namespace

FilmComparison compareFilm(const std::filesystem::path& film, const SealChain& chain) {
  if (chain.periods.empty()) return {};
  const FilmComparison video = compareTrack(film, chain, FilmTrack::video);
  if (!hasSound(chain)) return video;
  const FilmComparison audio = compareTrack(film, chain, FilmTrack::audio);
  return {std::min(video.wholeTo, audio.wholeTo), video.differs || audio.differs,
          video.isCut || audio.isCut, video.isLonger || audio.isLonger};
}

}  // namespace corvana::app
