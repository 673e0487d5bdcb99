#include <cmath>
#include <mutex>

#include <gtest/gtest.h>

#include "devices/MediaTestSupport.h"
#include "devices/film/FilmWriter.h"
#include "devices/recorded/EncodedReader.h"

namespace corvana::devices::test {
namespace {

struct Seen {
  std::int64_t ticks = 0;
  std::string bytes;
  std::string codec;
  bool operator==(const Seen&) const = default;
};

/// In the clock in which the muxer writes the track's times down.
std::int64_t ticks(platform::Duration time, FilmTrack track) {
  return std::llround(platform::inSeconds(time) * (track == FilmTrack::video ? 90000 : 48000));
}

class Notes final : public FilmWitness {
 public:
  void began(platform::TimePoint, bool hasSound) override { soundPromised = hasSound; }
  void saw(const EncodedSample& sample) override {
    const std::lock_guard lock(mutex_);
    tracks[sample.track].push_back(
        {ticks(sample.time, sample.track), std::string(sample.bytes), std::string(sample.codec)});
  }
  void ended() override { ++ends; }

  bool soundPromised = false;
  int ends = 0;
  std::map<FilmTrack, std::vector<Seen>> tracks;

 private:
  std::mutex mutex_;
};

std::vector<Seen> read(const std::filesystem::path& film, FilmTrack track) {
  std::vector<Seen> all;
  auto reader = EncodedReader::open(film, track);
  EXPECT_TRUE(reader) << reader.error().sentence;
  for (auto sample = reader->next(); sample && *sample; sample = reader->next())
    all.push_back({ticks((*sample)->time, track), (*sample)->bytes, (*sample)->codec});
  return all;
}

TEST(FilmWitness, SeesWhatTheGrowingAndThePlainFilmHold) {
  const ScratchFolder folder;
  platform::VirtualRunLoop loop;
  FilmWriterFactory factory(loop);
  const auto notes = std::make_shared<Notes>();
  factory.showTo([&] { return notes; });
  const auto film = *factory.make(folder / "film.mp4", std::nullopt, audioSettings());
  platform::Duration heard{};
  for (int index = 0; index < 150; ++index) {
    // A live camera's times lie on no grid.
    auto picture = std::make_shared<platform::CMSampleBuffer>(*frame(index, index));
    picture->presentationTime += std::chrono::nanoseconds(index * 1'234'567 % 9'000'000);
    ASSERT_TRUE(film->appendVideo(picture));
    for (; heard + kBuffer <= frameTime(index); heard += kBuffer)
      ASSERT_TRUE(film->appendAudio(sound(heard, 8000)));
  }
  const std::string growing = bytesOf(folder / "film.mp4");
  writeBytes(folder / "growing.mp4", growing);
  // In the middle of a fragment.
  writeBytes(folder / "cut.mp4", growing.substr(0, growing.size() * 2 / 3));
  ASSERT_TRUE(film->finish());
  EXPECT_TRUE(notes->soundPromised);
  EXPECT_EQ(notes->ends, 1);

  for (const FilmTrack track : {FilmTrack::video, FilmTrack::audio}) {
    const auto& seen = notes->tracks[track];
    EXPECT_FALSE(seen.front().codec.empty());
    EXPECT_TRUE(read(folder / "film.mp4", track) == seen);
    for (const char* name : {"growing.mp4", "cut.mp4"}) {
      const auto found = read(folder / name, track);
      ASSERT_GE(found.size(), 60U) << name;
      ASSERT_LE(found.size(), seen.size()) << name;
      for (std::size_t i = 0; i < found.size(); ++i) {
        ASSERT_EQ(found[i].ticks, seen[i].ticks) << name << i;
        ASSERT_TRUE(found[i] == seen[i]) << name << i;
      }
    }
  }
}

}  // namespace
}  // namespace corvana::devices::test
