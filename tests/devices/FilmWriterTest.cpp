#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>

#include "MediaTestSupport.h"

namespace devices::test {
namespace {

using platform::VirtualRunLoop;

class FilmWriterTest : public ::testing::Test {
 protected:
  void record(platform::AssetWriter& film, std::int64_t frames, platform::Duration soundFrom,
              platform::Duration soundUntil, int strength = 8000) {
    platform::Duration heard = soundFrom;
    for (std::int64_t index = 0; index < frames; ++index) {
      ASSERT_TRUE(film.appendVideo(frame(index)));
      for (; heard + kBuffer <= std::min(frameTime(index), soundUntil); heard += kBuffer) {
        ASSERT_TRUE(film.appendAudio(sound(heard, strength)));
      }
    }
  }

  TemporaryFolder folder;
  const std::filesystem::path path = folder / "film.mp4";
  VirtualRunLoop loop;
};

/// Index of the first sample, from `begin` on, that is louder than noise.
std::int64_t firstLoud(const std::vector<std::int16_t>& samples, std::int64_t begin = 0) {
  for (auto i = static_cast<std::size_t>(begin); i < samples.size(); ++i) {
    if (std::abs(samples[i]) > 2000) return static_cast<std::int64_t>(i);
  }
  return -1;
}

double meanLuma(const platform::CMSampleBuffer& sample) {
  double sum = 0;
  const int count = sample.image->width() * sample.image->height();
  for (int i = 0; i < count; ++i)
    sum += sample.image->plane(0)[i];
  return sum / count;
}

TEST_F(FilmWriterTest, playsAfterAKillBeforeTheSoundHasBegun) {
  ASSERT_EQ(run({KILLED_RECORDER, path.string(), "20", "10"}), -SIGKILL);
  const Recording film = play(path);
  EXPECT_EQ(film.errors, std::vector<std::string>{});
  EXPECT_EQ(film.ends, 1);
  EXPECT_GE(film.pictures.size(), 8u * 30);
  EXPECT_GE(film.samples.size(), 8u * kSampleRate);
  EXPECT_EQ(firstLoud(film.samples), -1);
}

TEST_F(FilmWriterTest, keepsPictureAndLateSoundInStep) {
  const auto film = makeFilm(loop, path);
  platform::Duration heard = std::chrono::seconds(3);
  for (int index = 0; index < 240; ++index) {
    const bool flash = index >= 150 && index < 156;
    ASSERT_TRUE(film->appendVideo(frame(index, flash ? 200 : 40)));
    for (; heard + kBuffer <= frameTime(index); heard += kBuffer) {
      const bool beep = heard >= frameTime(150) && heard < frameTime(156);
      ASSERT_TRUE(film->appendAudio(sound(heard, beep ? 12000 : 0)));
    }
  }
  ASSERT_TRUE(film->finish());

  const auto counters = film->counters();
  EXPECT_EQ(counters.videoFramesWritten, 240u);
  EXPECT_EQ(counters.videoFramesDropped, 0u);
  EXPECT_NEAR(counters.secondsWritten, 8, 1e-6);
  EXPECT_NEAR(counters.secondsOfSilence, 3, 1e-6);
  EXPECT_NEAR(platform::inSeconds(probe(path)->duration), 8, 0.002);

  const Recording played = play(path);
  ASSERT_EQ(played.pictures.size(), 240u);
  for (int index = 0; index < 240; ++index) {
    const auto& picture = *played.pictures[static_cast<std::size_t>(index)];
    const bool flash = index >= 150 && index < 156;
    EXPECT_EQ(meanLuma(picture) > 120, flash) << index;
    EXPECT_NEAR(platform::inSeconds(picture.presentationTime.time_since_epoch()), index / 30.0,
                0.001);
  }
  EXPECT_NEAR(firstLoud(played.samples), 5 * kSampleRate, 0.005 * kSampleRate);
}

TEST_F(FilmWriterTest, fillsGapsSoThatLaterSoundStaysInPlace) {
  const auto film = makeFilm(loop, path);
  platform::Duration heard{};
  for (int index = 0; index < 180; ++index) {
    ASSERT_TRUE(film->appendVideo(frame(index)));
    for (; heard + kBuffer <= frameTime(index); heard += kBuffer) {
      const bool missing = heard >= platform::seconds(1) && heard < platform::seconds(4);
      // 7 samples off the grid of buffers: sound is placed to the sample.
      const platform::Duration shift(7'000'000'000 / kSampleRate);
      if (!missing) {
        ASSERT_TRUE(
            film->appendAudio(sound(heard + shift, heard < platform::seconds(4) ? 0 : 9000)));
      }
    }
  }
  ASSERT_TRUE(film->finish());
  EXPECT_NEAR(firstLoud(play(path).samples), 4 * kSampleRate + 7, 48);
}

TEST_F(FilmWriterTest, hasNoSoundTrackWithoutSettings) {
  const auto film = makeFilm(loop, path, false);
  record(*film, 30, {}, std::chrono::seconds(1));
  ASSERT_TRUE(film->finish());
  EXPECT_FALSE(probe(path)->hasAudio);
  EXPECT_EQ(film->counters().audioBuffersReceived, 48u);
}

TEST_F(FilmWriterTest, writesTheSameBytesForTheSameFrames) {
  std::string first;
  for (const char* name : {"one.mp4", "two.mp4"}) {
    const auto film = makeFilm(loop, folder / name);
    record(*film, 75, std::chrono::seconds(1), std::chrono::seconds(2));
    ASSERT_TRUE(film->finish());
    ASSERT_TRUE(film->finish()) << "a second call repeats the answer";
    const std::string bytes = bytesOf(folder / name);
    if (first.empty()) first = bytes;
    EXPECT_TRUE(bytes == first);
    struct stat status {};
    ASSERT_EQ(::stat((folder / name).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    EXPECT_FALSE(film->appendVideo(frame(80)));
  }
  EXPECT_LT(first.find("moov"), first.find("mdat"));
}

TEST_F(FilmWriterTest, cutsOddSizesAndRefusesASizeThatChanges) {
  const auto film = makeFilm(loop, path);
  for (int index = 0; index < 30; ++index) {
    ASSERT_TRUE(film->appendVideo(frame(index, 100, 241, 179)));
  }
  EXPECT_FALSE(film->appendVideo(frame(30)));
  const auto finished = film->finish();
  ASSERT_FALSE(finished);
  EXPECT_EQ(finished.error(),
            "The camera's picture changed from 241x179 to 320x240 while it was filmed.");
  const Recording played = play(path);
  ASSERT_EQ(played.pictures.size(), 30u);
  EXPECT_EQ(played.pictures[0]->image->width(), 240);
  EXPECT_EQ(played.pictures[0]->image->height(), 178);
}

TEST_F(FilmWriterTest, leavesNothingWhenCancelledOrEmpty) {
  const auto cancelled = makeFilm(loop, path);
  record(*cancelled, 30, {}, std::chrono::seconds(1));
  cancelled->cancel();
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_FALSE(cancelled->appendVideo(frame(31)));
  EXPECT_FALSE(cancelled->finish());
  EXPECT_FALSE(std::filesystem::exists(path));

  const auto empty = makeFilm(loop, path);
  EXPECT_TRUE(empty->appendAudio(sound({}, 0)));
  EXPECT_FALSE(empty->finish());
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(FilmWriterTest, staysPlayableWhenTheDiskIsFull) {
  // A limit on the size of files is the full disk that any user can make.
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{4'000'000, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
  const auto film = makeFilm(loop, path);
  int index = 0;
  while (index < 3000 && film->appendVideo(frame(index)))
    ++index;
  const auto finished = film->finish();
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);

  EXPECT_LT(index, 3000);
  ASSERT_FALSE(finished);
  EXPECT_NE(finished.error().find(path.string()), std::string::npos) << finished.error();
  EXPECT_GE(play(path).pictures.size(), 60u);
}

TEST_F(FilmWriterTest, saysWhyAFilmCannotBeMade) {
  FilmWriterFactory factory(loop);
  writeBytes(folder / "taken.mp4", "x");
  platform::WriterSettings absurd = audioSettings();
  absurd[platform::kAVSampleRateKey] = 7;
  EXPECT_FALSE(factory.make(folder / "taken.mp4", {}, {}));
  EXPECT_FALSE(factory.make(folder / "taken.mp4/film.mp4", {}, {}));
  EXPECT_FALSE(factory.make(folder / "none/film.mp4", {}, {}));
  EXPECT_FALSE(factory.make(path, {}, absurd));
  EXPECT_EQ(bytesOf(folder / "taken.mp4"), "x");
  EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
}  // namespace devices::test
