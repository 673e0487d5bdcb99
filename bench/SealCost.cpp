// Says what sealing a film costs: takes the samples of a recorded film and seals them again, as
// fast as the machine can. Usage: seal-cost FILM

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <vector>

#include "app/keys/Jws.h"
#include "app/seal/RunSeal.h"
#include "devices/recorded/EncodedReader.h"
#include "platform/foundation/VirtualRunLoop.h"
#include "support/Scratch.h"

namespace corvana {
namespace {

using devices::FilmTrack;
using Sample = devices::EncodedReader::Sample;

constexpr int kRounds = 20;

double processorSeconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

struct TrackSample {
  FilmTrack track;
  Sample sample;
};

/// Both tracks in the order of time.
std::vector<TrackSample> samplesOf(const std::filesystem::path& film) {
  std::vector<TrackSample> all;
  for (const FilmTrack track : {FilmTrack::video, FilmTrack::audio}) {
    auto reader = devices::EncodedReader::open(film, track);
    if (!reader) continue;
    for (auto sample = reader->next(); sample && *sample; sample = reader->next())
      all.push_back({track, std::move(**sample)});
  }
  std::ranges::stable_sort(all, {}, [](const TrackSample& each) { return each.sample.time; });
  return all;
}

void seal(const std::vector<TrackSample>& samples, const app::SigningKey& key) {
  const tests::ScratchFolder scratch;
  platform::VirtualRunLoop loop;
  const app::RunSeal run(loop, scratch.path(), key, nlohmann::ordered_json::object(),
                         [](const platform::Fault&) {});
  const auto film = run.witnesses()();
  film->began(loop.now(), true);
  for (const auto& [track, sample] : samples)
    film->saw({track, sample.time, sample.bytes, sample.codec});
  film->ended();
}

int measure(const std::filesystem::path& path) {
  const auto samples = samplesOf(path);
  if (samples.empty()) {
    std::cerr << "seal-cost: " << path.string() << " is no film.\n";
    return EXIT_FAILURE;
  }
  const tests::ScratchFolder scratch;
  const auto key = *app::SigningKey::create(scratch / "key");
  const double filmSeconds = platform::inSeconds(samples.back().sample.time);
  const double before = processorSeconds();
  for (int round = 0; round < kRounds; ++round)
    seal(samples, key);
  const double film = (processorSeconds() - before) / kRounds;
  const std::string result(4096, 'x');
  const double start = processorSeconds();
  for (int round = 0; round < kRounds; ++round)
    (void)app::sealDetached(key, result);
  const double end = (processorSeconds() - start) / kRounds;
  std::cout << "film of " << filmSeconds << " s: " << film * 1e3 << " ms of processor time, "
            << 100 * film / filmSeconds << " % of a core; at the end " << end * 1e3 << " ms\n";
  return EXIT_SUCCESS;
}

}  // namespace
}  // namespace corvana

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: seal-cost FILM\n";
    return EXIT_FAILURE;
  }
  return corvana::measure(arguments[1]);
}
