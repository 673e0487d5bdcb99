#include <algorithm>
#include <csignal>
#include <numeric>
#include <random>
#include <string_view>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include "MediaTestSupport.h"
#include "devices/gstreamer/AudioTimeline.h"

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

/// Ends of the boxes of that type at the top of an MP4 file.
std::vector<std::size_t> boxEnds(const std::string& bytes, std::string_view type) {
  std::vector<std::size_t> ends;
  for (std::size_t at = 0; at + 8 <= bytes.size();) {
    std::size_t size = 0;
    for (int i = 0; i < 4; ++i)
      size = size << 8 | static_cast<std::uint8_t>(bytes[at + static_cast<std::size_t>(i)]);
    if (bytes.compare(at + 4, 4, type) == 0) ends.push_back(at + size);
    at += std::max<std::size_t>(size, 8);
  }
  return ends;
}

TEST_F(FilmWriterTest, playsWhateverBeginningOfItAPowerLossLeaves) {
  ASSERT_EQ(WTERMSIG(run(KILLED_RECORDER " '" + path.string() + "'")), SIGKILL);
  const std::string bytes = bytesOf(path);
  const std::filesystem::path cut = folder / "cut.mp4";
  const auto secondsIn = [&](std::size_t size) {
    writeBytes(cut, bytes.substr(0, size));
    const Recording film = play(cut);
    EXPECT_EQ(film.errors, std::vector<std::string>{}) << size;
    return std::min(static_cast<double>(film.pictures.size()) / 30,
                    static_cast<double>(film.samples.size()) / kSampleRate);
  };
  std::minstd_rand random(7);
  double last = 0;
  const auto ends = boxEnds(bytes, "mdat");
  ASSERT_GT(ends.size(), 30u);
  // Pictures and sound have fragments by turns.
  for (std::size_t i = 1; i + 2 < ends.size(); i += 2) {
    const double whole = secondsIn(ends[i]);
    EXPECT_LE(whole - last, 0.6) << "a fragment is never long";
    EXPECT_GE(secondsIn(ends[i] + random() % (ends[i + 2] - ends[i])), whole);
    last = whole;
  }
  EXPECT_GE(last, 8);
}

/// As many details as any bit rate can take, without a cut between scenes.
platform::CMSampleBufferRef noise(std::int64_t index) {
  std::minstd_rand still(1);
  std::minstd_rand moving(static_cast<unsigned>(index) + 2);
  auto sample = std::make_shared<platform::CMSampleBuffer>(*frame(index));
  std::vector<std::uint8_t> bytes = sample->image->bytes();
  std::generate_n(bytes.begin(), 320 * 240, [&] { return still() % 160 + moving() % 24; });
  sample->image = std::make_shared<platform::PixelBuffer>(320, 240, platform::PixelFormat::i420,
                                                          std::move(bytes));
  return sample;
}

TEST_F(FilmWriterTest, obeysItsSettings) {
  using platform::WriterSettings;
  const struct {
    const char* profile;
    const char* codec;
    int bitRate, keyFrameInterval, width, height;
    const char* probed;
  } cases[] = {
      {"H264_Baseline_AutoLevel", "avc1", 600'000, 10, 320, 240,
       "h264,Constrained Baseline,320,240"},
      {"H264_Main_AutoLevel", "avc1", 1'200'000, 45, 160, 240, "h264,Main,160,240"},
      {"H264_High_AutoLevel", "avc1", 2'400'000, 90, 640, 360, "h264,High,640,360"},
      {"HEVC_Main_AutoLevel", "hvc1", 1'000'000, 30, 320, 240, "hevc,Main,320,240"},
  };
  for (const auto& wanted : cases) {
    SCOPED_TRACE(wanted.profile);
    const WriterSettings video{
        {platform::kAVVideoCodecKey, std::string(wanted.codec)},
        {platform::kAVVideoWidthKey, wanted.width},
        {platform::kAVVideoHeightKey, wanted.height},
        {platform::kAVVideoCompressionPropertiesKey,
         WriterSettings{{platform::kAVVideoAverageBitRateKey, wanted.bitRate},
                        {platform::kAVVideoMaxKeyFrameIntervalKey, wanted.keyFrameInterval},
                        {platform::kAVVideoProfileLevelKey, std::string(wanted.profile)}}}};
    std::string first;
    for (const bool again : {false, true}) {
      // 2026-01-02 03:04:05 UTC
      FilmWriterFactory factory(
          loop, [] { return CreationTime(std::chrono::system_clock::from_time_t(1'767'323'045)); });
      const auto film = factory.make(path, video, {}).value();
      for (int index = 0; index < 180; ++index)
        ASSERT_TRUE(film->appendVideo(noise(index)));
      ASSERT_TRUE(film->finish());
      EXPECT_TRUE(!again || bytesOf(path) == first) << "the same pictures give the same bytes";
      first = bytesOf(path);
      if (!again) std::filesystem::remove(path);
    }
    EXPECT_EQ(probed(path, "-show_entries stream=codec_name,profile,width,height"),
              wanted.probed + std::string("\n"));
    EXPECT_EQ(probed(path, "-show_entries format_tags=creation_time"),
              "2026-01-02T03:04:05.000000Z\n");
    EXPECT_NEAR(std::stod(probed(path, "-show_entries format=bit_rate")), wanted.bitRate,
                0.15 * wanted.bitRate);
    const std::string flags = probed(path, "-show_entries packet=flags");
    EXPECT_EQ(std::ranges::count(flags, 'K'),
              (180 + wanted.keyFrameInterval - 1) / wanted.keyFrameInterval);
    std::filesystem::remove(path);
  }
}

TEST_F(FilmWriterTest, takesPicturesAndSoundThatChangeTheirForm) {
  const auto film = openFilm(loop, path).value();
  const auto odd = openFilm(loop, folder / "odd.mp4", std::nullopt, std::nullopt).value();
  for (int index = 0; index < 120; ++index) {
    auto picture = frame(index, 100, index < 60 ? 320 : 241, index < 60 ? 240 : 99);
    ASSERT_TRUE(odd->appendVideo(frame(index, 100, 241, 179)));
    if (index >= 90) {
      auto grey = std::make_shared<platform::CMSampleBuffer>(*picture);
      grey->image = std::make_shared<platform::PixelBuffer>(
          99, 99, platform::PixelFormat::gray8, std::vector<std::uint8_t>(99 * 99, 200));
      picture = grey;
    }
    ASSERT_TRUE(film->appendVideo(picture));
    // One second each of 48 kHz, 44.1 kHz in stereo, 16 kHz, and what no microphone delivers.
    auto heard = std::make_shared<platform::CMSampleBuffer>(*sound(frameTime(index), 0));
    const int rates[] = {48000, 44100, 16000, -1};
    heard->sampleRate = rates[index / 30];
    heard->channels = index / 30 == 1 ? 2 : 1;
    heard->samples.assign(
        static_cast<std::size_t>(std::max(heard->sampleRate, 0) / 30 * heard->channels),
        index % 30 < 15 ? 0 : 9000);
    ASSERT_TRUE(film->appendAudio(heard));
  }
  ASSERT_TRUE(film->finish());
  ASSERT_TRUE(odd->finish());
  EXPECT_EQ(film->counters().audioBuffersDropped, 30u);

  const Recording cut = play(folder / "odd.mp4");
  ASSERT_EQ(cut.pictures.size(), 120u);
  EXPECT_EQ(cut.pictures[0]->image->width(), 240);
  EXPECT_EQ(cut.pictures[0]->image->height(), 178);

  const Recording played = play(path);
  ASSERT_EQ(played.pictures.size(), 120u);
  const auto lumaAt = [&](std::size_t index, int x, int y) {
    const auto& image = *played.pictures[index]->image;
    return image.plane(0)[y * image.stride(0) + x];
  };
  EXPECT_NEAR(lumaAt(70, 160, 120), 112, 20);
  EXPECT_NEAR(lumaAt(70, 160, 20), 16, 8) << "a border above the flat picture";
  EXPECT_NEAR(lumaAt(110, 160, 120), 200, 20);
  EXPECT_NEAR(lumaAt(110, 20, 120), 16, 8) << "a border beside the square picture";
  for (const int second : {0, 1, 2}) {
    const auto from = played.samples.begin() + second * kSampleRate;
    const auto loud = std::find_if(from, played.samples.end(), [](int s) { return s > 4500; });
    EXPECT_NEAR(static_cast<double>(loud - from), 0.5 * kSampleRate, 240) << second;
  }
  EXPECT_LT(std::abs(played.samples[static_cast<std::size_t>(3.9 * kSampleRate)]), 100);
}

TEST(AudioTimelineTest, laysJitteringSoundOnWithoutGapsAndLetsItNotDrift) {
  const auto startsOf = [](const auto& lateness) {
    AudioTimeline timeline(kSampleRate, 1);
    timeline.begin({});
    std::vector<std::int16_t> samples;
    for (int index = 0; index < 500; ++index) {
      auto buffer = *sound(index * kBuffer + std::chrono::microseconds(lateness(index)), 0);
      std::ranges::fill(buffer.samples, static_cast<std::int16_t>(index + 1));
      timeline.add(buffer);
      const auto taken = timeline.take(index * kBuffer, (index + 1) * kBuffer);
      samples.insert(samples.end(), taken.begin(), taken.end());
    }
    return samples;
  };
  const auto jittering = startsOf([](int index) { return index == 0 ? 0 : index * 7919 % 19000; });
  EXPECT_EQ(std::ranges::count(jittering, 0), 0);
  const auto interrupted = startsOf([](int index) { return index < 100 ? 0 : 30'000; });
  EXPECT_EQ(std::ranges::count(interrupted, 0), kSampleRate * 30 / 1000);
  // A clock that is one percent fast or slow, as no microphone's is.
  for (const int drift : {-200, 200}) {
    const auto drifting = startsOf([drift](int index) { return index * drift; });
    for (int index = 100; index < 400; index += 50) {
      const auto found = std::ranges::find(drifting, index + 1) - drifting.begin();
      EXPECT_NEAR(static_cast<double>(found) / kSampleRate, index * (0.02 + drift * 1e-6), 0.0201);
    }
  }
}

TEST_F(FilmWriterTest, countsWhatComesLateAndOldFrames) {
  StallingLoop stalling;
  const auto film = openFilm(stalling, path).value();
  for (int index = 0; index < 30; ++index) {
    stalling.stall = index < 20 ? std::chrono::milliseconds(90) : std::chrono::milliseconds(110);
    ASSERT_TRUE(film->appendVideo(frame(index)));
    stalling.inner.advance(frameTime(1));
  }
  ASSERT_TRUE(film->appendVideo(frame(29)));
  ASSERT_TRUE(film->finish());
  EXPECT_EQ(film->counters().videoFramesLate, 11u);
  EXPECT_EQ(film->counters().videoFramesDropped, 1u);
  EXPECT_EQ(film->counters().videoFramesWritten, 30u);
}

TEST_F(FilmWriterTest, noticesThatItsFolderIsGone) {
  const std::filesystem::path inner = folder / "run";
  std::filesystem::create_directory(inner);
  const auto film = openFilm(loop, inner / "film.mp4").value();
  ASSERT_TRUE(film->appendVideo(frame(0)));
  loop.advance(seconds(1));
  ASSERT_FALSE(film->fault());
  std::filesystem::remove_all(inner);
  ASSERT_TRUE(film->appendVideo(frame(1)));
  loop.advance(seconds(1));
  EXPECT_FALSE(film->appendVideo(frame(2)));
  ASSERT_FALSE(film->finish());
  EXPECT_EQ(film->fault()->cause, platform::FaultCause::folderLost) << film->fault()->sentence;
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
  EXPECT_NE(finished.error().sentence.find(path.string()), std::string::npos)
      << finished.error().sentence;
  EXPECT_GE(play(path).pictures.size(), 60u);
}

TEST_F(FilmWriterTest, saysWhyAFilmCannotBeMade) {
  FilmWriterFactory factory(loop);
  writeBytes(folder / "taken.mp4", "x");
  EXPECT_FALSE(factory.make(folder / "taken.mp4", {}, {}));
  EXPECT_FALSE(factory.make(folder / "taken.mp4/film.mp4", {}, {}));
  EXPECT_FALSE(factory.make(folder / "none/film.mp4", {}, {}));
  using platform::WriterSettings;
  const WriterSettings videos[] = {
      {{platform::kAVVideoCodecKey, std::string("vp09")}},
      {{platform::kAVVideoCodecKey, 7}},
      {{platform::kAVVideoWidthKey, 320}},
      {{platform::kAVVideoWidthKey, 321}, {platform::kAVVideoHeightKey, 240}},
      {{platform::kAVVideoCompressionPropertiesKey, 1}},
      {{platform::kAVVideoCompressionPropertiesKey,
        WriterSettings{{platform::kAVVideoAverageBitRateKey, 1}}}},
      {{platform::kAVVideoCompressionPropertiesKey,
        WriterSettings{{platform::kAVVideoProfileLevelKey, std::string("HEVC_Main_AutoLevel")}}}},
  };
  for (const WriterSettings& video : videos)
    EXPECT_FALSE(factory.make(path, video, {})) << &video - videos;
  const WriterSettings sounds[] = {{{platform::kAVSampleRateKey, 7}},
                                   {{platform::kAVFormatIDKey, std::string("opus")}}};
  for (const WriterSettings& sound : sounds)
    EXPECT_FALSE(factory.make(path, {}, sound)) << &sound - sounds;
  EXPECT_EQ(bytesOf(folder / "taken.mp4"), "x");
  EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
}  // namespace devices::test
