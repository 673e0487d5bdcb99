#include <algorithm>
#include <csignal>
#include <numeric>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include "MediaTestSupport.h"

namespace devices::test {
namespace {

using platform::seconds;

class FilmWriterTest : public ::testing::Test {
 protected:
  std::shared_ptr<platform::AssetWriter> open() { return openFilm(loop, path).value(); }
  /// Frames, and behind each the buffers of sound until then of the strength that `strengthAt`
  /// gives for their time; none where it gives nothing.
  template <class StrengthAt>
  void record(platform::AssetWriter& film, int frames, const StrengthAt& strengthAt,
              int flashFrom = -1) {
    platform::Duration heard{};
    for (int index = 0; index < frames; ++index) {
      const bool flash = flashFrom >= 0 && index >= flashFrom && index < flashFrom + 6;
      ASSERT_TRUE(film.appendVideo(frame(index, flash ? 200 : 40)));
      for (; heard + kBuffer <= frameTime(index); heard += kBuffer) {
        const std::optional<int> strength = strengthAt(heard);
        // 7 samples off the grid of buffers: sound is placed to the sample.
        const auto time = heard + platform::Duration(7'000'000'000 / kSampleRate);
        if (!strength) continue;
        ASSERT_TRUE(film.appendAudio(sound(time, *strength)));
      }
    }
  }

  ScratchFolder folder;
  const std::filesystem::path path = folder / "film.mp4";
  platform::VirtualRunLoop loop;
};

constexpr auto kTone = [](platform::Duration) { return 8000; };

/// Index of the first sample that is louder than noise.
std::ptrdiff_t firstLoud(const std::vector<std::int16_t>& samples) {
  return std::ranges::find_if(samples, [](int s) { return std::abs(s) > 2000; }) - samples.begin();
}

double meanLuma(const platform::PixelBuffer& image) {
  const int count = image.width() * image.height();
  return std::accumulate(image.plane(0), image.plane(0) + count, 0.0) / count;
}

TEST_F(FilmWriterTest, playsAfterAKillBeforeTheSoundHasBegun) {
  EXPECT_EQ(WTERMSIG(run(KILLED_RECORDER " '" + path.string() + "'")), SIGKILL);
  const Recording film = play(path);
  EXPECT_EQ(film.errors, std::vector<std::string>{});
  EXPECT_EQ(film.ends, 1);
  EXPECT_GE(film.pictures.size(), 8u * 30);
  EXPECT_GE(film.samples.size(), 8u * kSampleRate);
  EXPECT_EQ(firstLoud(film.samples), std::ssize(film.samples));
}

TEST_F(FilmWriterTest, keepsPictureAndSoundInStepWhenSoundIsLateOrHasGaps) {
  const auto film = open();
  const auto beepAfterAGap = [](platform::Duration time) -> std::optional<int> {
    if (time < seconds(1) || (time >= seconds(2) && time < seconds(5))) return {};
    return time < seconds(5) ? 0 : 12000;
  };
  record(*film, 240, beepAfterAGap, 150);
  ASSERT_TRUE(film->finish());
  ASSERT_TRUE(film->finish()) << "a second call repeats the answer";
  EXPECT_FALSE(film->appendVideo(frame(241)));

  const auto counters = film->counters();
  EXPECT_EQ(counters.videoFramesWritten, 240u);
  EXPECT_EQ(counters.videoFramesDropped, 0u);
  EXPECT_NEAR(counters.secondsWritten, 8, 1e-6);
  EXPECT_NEAR(counters.secondsOfSilence, 1, 0.001);
  EXPECT_NEAR(platform::inSeconds(probe(path)->duration), 8, 0.002);

  const std::string bytes = bytesOf(path);
  EXPECT_LT(bytes.find("moov"), bytes.find("mdat"));
  constexpr auto kOwners = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
  EXPECT_EQ(std::filesystem::status(path).permissions(), kOwners);

  const Recording played = play(path);
  ASSERT_EQ(played.pictures.size(), 240u);
  for (std::size_t index = 0; index < 240; ++index) {
    const auto& picture = *played.pictures[index];
    EXPECT_EQ(meanLuma(*picture.image) > 120, index >= 150 && index < 156) << index;
    EXPECT_NEAR(platform::inSeconds(picture.presentationTime.time_since_epoch()),
                static_cast<double>(index) / 30, 0.001);
  }
  EXPECT_NEAR(static_cast<double>(firstLoud(played.samples)), 5 * kSampleRate + 7, 48);
}

TEST_F(FilmWriterTest, cutsOddSizesRefusesASizeThatChangesAndHasNoSoundWithoutSettings) {
  const auto film = openFilm(loop, path, std::nullopt).value();
  for (int index = 0; index < 30; ++index)
    ASSERT_TRUE(film->appendVideo(frame(index, 100, 241, 179)));
  EXPECT_TRUE(film->appendAudio(sound({}, 8000)));
  EXPECT_FALSE(film->appendVideo(frame(30)));
  const auto finished = film->finish();
  ASSERT_FALSE(finished);
  EXPECT_EQ(finished.error().sentence,
            "The camera's picture changed from 241x179 to 320x240 while it was filmed.");
  EXPECT_FALSE(probe(path)->hasAudio);
  const Recording played = play(path);
  ASSERT_EQ(played.pictures.size(), 30u);
  EXPECT_EQ(played.pictures[0]->image->width(), 240);
  EXPECT_EQ(played.pictures[0]->image->height(), 178);
}

TEST_F(FilmWriterTest, leavesNothingWhenCancelledOrEmpty) {
  const auto cancelled = open();
  record(*cancelled, 30, kTone);
  cancelled->cancel();
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_FALSE(cancelled->appendVideo(frame(31)));
  EXPECT_FALSE(cancelled->finish());
  EXPECT_FALSE(std::filesystem::exists(path));

  const auto empty = open();
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
  const auto film = open();
  int index = 0;
  while (index < 3000 && film->appendVideo(frame(index)))
    ++index;
  const auto finished = film->finish();
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);

  EXPECT_LT(index, 3000);
  ASSERT_FALSE(finished);
  EXPECT_NE(finished.error().sentence.find(path.string()), std::string::npos) << finished.error().sentence;
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
