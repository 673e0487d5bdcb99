#include <algorithm>
#include <csignal>
#include <numeric>
#include <random>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "devices/MediaTestSupport.h"
#include "devices/film/AudioTimeline.h"

namespace corvana::devices::test {
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

TEST_F(FilmWriterTest, takesPicturesHoweverFastWhileTheirSoundIsAwaited) {
  constexpr int kPerSecond = 240;
  const auto film = open();
  platform::Duration heard{};
  for (int index = 0; index < 2 * kPerSecond; ++index) {
    auto picture = *frame(index);
    picture.presentationTime = platform::TimePoint(index * seconds(1) / kPerSecond);
    picture.duration = seconds(1) / kPerSecond;
    ASSERT_TRUE(film->appendVideo(std::make_shared<platform::CMSampleBuffer>(picture)))
        << film->fault()->sentence;
    for (; heard + kBuffer <= picture.presentationTime.time_since_epoch(); heard += kBuffer) {
      if (heard > seconds(1) / 2 && heard < seconds(3) / 2) continue;
      ASSERT_TRUE(film->appendAudio(sound(heard, 8000)));
    }
  }
  ASSERT_TRUE(film->finish());
  EXPECT_EQ(play(path).pictures.size(), 2u * kPerSecond);
}

TEST_F(FilmWriterTest, playsWhateverBeginningAKillOrAPowerLossLeaves) {
  const auto film = open();
  const auto neverHeard = [](platform::Duration) { return std::optional<int>(); };
  record(*film, 300, neverHeard);
  const std::string bytes = bytesOf(path);
  const auto secondsIn = [&](std::size_t size) {
    writeBytes(folder / "cut.mp4", bytes.substr(0, size));
    const Recording played = play(folder / "cut.mp4");
    EXPECT_EQ(played.errors, std::vector<std::string>{}) << size;
    EXPECT_EQ(played.ends, 1);
    EXPECT_EQ(firstLoud(played.samples), std::ssize(played.samples));
    return std::min(static_cast<double>(played.pictures.size()) / 30,
                    static_cast<double>(played.samples.size()) / kSampleRate);
  };
  std::vector<std::size_t> fragments;
  for (auto at = bytes.find("moof"); at != bytes.npos; at = bytes.find("moof", at + 1))
    fragments.push_back(at - 4);
  std::minstd_rand random(7);
  double last = 0;
  // Sound and picture have fragments by turns.
  for (std::size_t i = 2; i + 2 < fragments.size(); i += 2) {
    const double whole = secondsIn(fragments[i]);
    EXPECT_LE(whole - last, 0.6) << "a fragment is never long";
    EXPECT_GE(secondsIn(fragments[i] + random() % (fragments[i + 2] - fragments[i])), whole);
    last = whole;
  }
  EXPECT_GE(secondsIn(bytes.size()), 8);
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
  const auto probed = [&](const std::string& entries) {
    run("ffprobe -v error -of csv=p=0 -show_entries " + entries + " '" + path.string() + "' > '" +
        (folder / "answer").string() + "'");
    return bytesOf(folder / "answer");
  };
  // 2026-01-02 03:04:05 UTC
  FilmWriterFactory factory(
      loop, [] { return CreationTime(std::chrono::system_clock::from_time_t(1'767'323'045)); });
  for (const auto& wanted : cases) {
    SCOPED_TRACE(wanted.profile);
    WriterSettings video = videoSettings(wanted.codec, wanted.width, wanted.height);
    video[platform::kAVVideoCompressionPropertiesKey] =
        WriterSettings{{platform::kAVVideoAverageBitRateKey, wanted.bitRate},
                       {platform::kAVVideoMaxKeyFrameIntervalKey, wanted.keyFrameInterval},
                       {platform::kAVVideoProfileLevelKey, std::string(wanted.profile)}};
    const auto film = factory.make(path, video, {}).value();
    for (int index = 0; index < 180; ++index)
      ASSERT_TRUE(film->appendVideo(noise(index)));
    ASSERT_TRUE(film->finish());
    EXPECT_EQ(probed("stream=codec_name,profile,width,height:"
                     "format_tags=creation_time"),
              wanted.probed + std::string("\n2026-01-02T03:04:05.000000Z\n"));
    EXPECT_NEAR(std::stod(probed("format=bit_rate")), wanted.bitRate, 0.15 * wanted.bitRate);
    const std::string flags = probed("packet=flags");
    EXPECT_EQ(std::ranges::count(flags, 'K'),
              (180 + wanted.keyFrameInterval - 1) / wanted.keyFrameInterval);
    std::filesystem::remove(path);
  }
}

TEST_F(FilmWriterTest, takesPicturesAndSoundThatChangeTheirForm) {
  const auto film = openFilm(loop, path, audioSettings(), std::nullopt).value();
  auto grey = *frame(0);
  grey.image = std::make_shared<platform::PixelBuffer>(99, 99, platform::PixelFormat::gray8,
                                                       std::vector<std::uint8_t>(99 * 99, 200));
  for (int index = 0; index < 120; ++index) {
    // Odd sizes lose a row and a column.
    const auto picture = frame(index, 100, 241, 179);
    grey.presentationTime = picture->presentationTime;
    ASSERT_TRUE(
        film->appendVideo(index < 60 ? picture : std::make_shared<platform::CMSampleBuffer>(grey)));
    // One second each of 48 kHz, 44.1 kHz in stereo, 16 kHz, and what no microphone delivers.
    const int rates[] = {48000, 44100, 16000, 0};
    auto heard = *sound(frameTime(index), 0);
    heard.sampleRate = rates[index / 30];
    heard.channels = index / 30 == 1 ? 2 : 1;
    heard.samples.assign(static_cast<std::size_t>(heard.sampleRate / 30 * heard.channels),
                         index % 30 < 15 ? 0 : 9000);
    ASSERT_TRUE(film->appendAudio(std::make_shared<platform::CMSampleBuffer>(heard)));
  }
  ASSERT_TRUE(film->finish());
  EXPECT_EQ(film->counters().audioBuffersDropped, 30u);

  const Recording played = play(path);
  ASSERT_EQ(played.pictures.size(), 120u);
  const platform::PixelBuffer& last = *played.pictures.back()->image;
  EXPECT_EQ(last.width(), 240);
  EXPECT_EQ(last.height(), 178);
  EXPECT_NEAR(last.plane(0)[89 * 240 + 120], 200, 20);
  EXPECT_NEAR(last.plane(0)[89 * 240 + 12], 16, 8) << "a border beside the square picture";
  for (const int second : {0, 1, 2}) {
    const auto from = played.samples.begin() + second * kSampleRate;
    const auto loud = std::find_if(from, played.samples.end(), [](int s) { return s > 4500; });
    EXPECT_NEAR(static_cast<double>(loud - from), 0.5 * kSampleRate, 240) << second;
  }
  EXPECT_LT(std::abs(played.samples[static_cast<std::size_t>(3.9 * kSampleRate)]), 100);
}

TEST(AudioTimelineTest, laysJitteringSoundOnWithoutGapsAndLetsItNotDrift) {
  const struct {
    int (*lateness)(int);  // of each buffer, in microseconds
    int silence;           // in samples
  } cases[] = {{[](int index) { return index == 0 ? 0 : index * 7919 % 19000; }, 0},
               {[](int index) { return index < 100 ? 0 : 30'000; }, 1440},
               {[](int index) { return index * 200; }, 4 * 970},  // placed anew four times
               {[](int index) { return index * -200; }, 0}};
  for (const auto& [lateness, silence] : cases) {
    AudioTimeline timeline(kSampleRate, 1);
    timeline.begin({});
    std::vector<std::int16_t> samples;
    for (int index = 0; index < 500; ++index) {
      auto buffer = *sound(index * kBuffer + std::chrono::microseconds(lateness(index)), 0);
      std::ranges::fill(buffer.samples, static_cast<std::int16_t>(index + 1));
      timeline.add(buffer);
      std::ranges::copy(timeline.take(index * kBuffer, (index + 1) * kBuffer),
                        std::back_inserter(samples));
    }
    EXPECT_NEAR(static_cast<double>(std::ranges::count(samples, 0)), silence, 4);
    for (int index = 50; index < 490; index += 50) {
      const auto found = std::ranges::find(samples, index + 1) - samples.begin();
      EXPECT_NEAR(static_cast<double>(found) / kSampleRate, index * 0.02 + lateness(index) * 1e-6,
                  0.0201);
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

TEST_F(FilmWriterTest, tellsThatItsFolderIsGoneAndKeepsAFilmThatCannotBeCompleted) {
  std::filesystem::create_directory(folder / "run");
  const auto lost = openFilm(loop, folder / "run/film.mp4").value();
  const auto kept = open();
  record(*kept, 60, kTone);
  for (int index = 0; index < 2; ++index) {
    EXPECT_EQ(lost->appendVideo(frame(index)), index == 0);
    std::filesystem::remove_all(folder / "run");
    loop.advance(seconds(1));
  }
  EXPECT_EQ(lost->fault()->cause, platform::FaultCause::folderLost) << lost->fault()->sentence;
  EXPECT_FALSE(lost->finish());

  std::filesystem::create_directory(path.string() + ".plain");
  EXPECT_FALSE(kept->finish());
  EXPECT_EQ(play(path).pictures.size(), 60u);
}

TEST_F(FilmWriterTest, leavesNothingWhenEmpty) {
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
}  // namespace corvana::devices::test
