#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include "devices/MediaTestSupport.h"

namespace corvana::devices::test {
namespace {

using platform::Duration;
using platform::VirtualRunLoop;
using std::chrono::milliseconds;

class MediaFileTest : public ::testing::Test {
 protected:
  std::filesystem::path make(const char* name, const std::string& options) {
    std::filesystem::path path = folder / name;
    EXPECT_EQ(run("ffmpeg -nostdin -v error -y " + options + " '" + path.string() + "'"), 0);
    return path;
  }

  static constexpr auto kClip =
      "-f lavfi -i testsrc=size=320x240:rate=25:duration=4 "
      "-f lavfi -i \"aevalsrc=exprs='0.5*sin(2*PI*1000*t)*between(t,2,2.5)':s=44100:d=4\" "
      "-c:v libx264 -preset ultrafast -g 10 -c:a aac";
  ScratchFolder folder;
  const std::filesystem::path clip = make("clip.mp4", kClip);
  const std::string input = "-i " + clip.string();
  VirtualRunLoop loop;
};

TEST_F(MediaFileTest, deliversPicturesAndSoundAtTheirTimes) {
  const auto info = probe(clip);
  ASSERT_TRUE(info) << info.error().sentence;
  EXPECT_EQ(info->width, 320);
  EXPECT_EQ(info->height, 240);
  EXPECT_NEAR(info->frameRate, 25, 1e-9);
  EXPECT_NEAR(platform::inSeconds(info->duration), 4, 0.05);

  const Recording played = play(clip);
  ASSERT_EQ(played.pictures.size(), 100u);
  for (std::size_t i = 0; i < 100; ++i) {
    EXPECT_EQ(played.pictures[i]->presentationTime, platform::TimePoint(i * milliseconds(40)));
    EXPECT_EQ(played.pictures[i]->duration, milliseconds(40));
  }
  ASSERT_GE(played.samples.size(), 4u * kSampleRate - 960);
  EXPECT_EQ(played.ends, 1);
  const auto loud = std::ranges::find_if(played.samples, [](int s) { return std::abs(s) > 4000; });
  // The encoder of this file puts 1024 samples before the first, and says so.
  EXPECT_NEAR(static_cast<double>(loud - played.samples.begin()), 2 * kSampleRate, 1200);
}

TEST_F(MediaFileTest, looksWhileItsCallerDoesOtherThings) {
  auto look = MediaProbe::start(clip).value();
  const auto unwanted = MediaProbe::start(clip).value();
  EXPECT_FALSE(MediaProbe::start(folder / "none.mp4"));
  const auto file = MediaFile::open(loop, *look, VideoCodecChoice::automatic).value();
  look.reset();
  EXPECT_EQ(file->info().width, 320);
  EXPECT_TRUE(file->microphone());
}

TEST_F(MediaFileTest, goesOnAtThePresentPlaceLikeALiveDevice) {
  loop.advance(std::chrono::seconds(7));
  const auto file = MediaFile::open(loop, clip).value();
  std::vector<Duration> pictures;
  std::vector<Duration> sounds;
  int loudest = 0;
  const auto timeOf = [](const platform::CMSampleBuffer& sample) {
    return sample.presentationTime.time_since_epoch() - std::chrono::seconds(7);
  };
  const auto start = [&] {
    file->microphone()->start([&](const platform::CMSampleBufferRef& sample) {
      sounds.push_back(timeOf(*sample));
      loudest = std::max<int>(loudest, std::ranges::max(sample->samples));
    });
    loop.advance({});  // the first time it waits for the camera, which is time 0
    file->camera()->start([&](const auto& sample) { pictures.push_back(timeOf(*sample)); });
  };
  start();
  loop.advance(milliseconds(100));
  EXPECT_EQ(pictures, (std::vector<Duration>{milliseconds(0), milliseconds(40), milliseconds(80)}));
  EXPECT_EQ(sounds.size(), 5u);
  file->camera()->stop();
  file->microphone()->stop();
  loop.advance(milliseconds(1905));
  EXPECT_EQ(pictures.size(), 3u);
  EXPECT_EQ(sounds.size(), 5u);
  EXPECT_LT(loudest, 4000);

  start();
  loop.advance(milliseconds(60));
  EXPECT_EQ(pictures.at(3), milliseconds(2000));
  EXPECT_EQ(sounds.at(5), milliseconds(2005));
  EXPECT_GT(loudest, 4000) << "the tone of the file's third second";
}

TEST_F(MediaFileTest, turnsPicturesUprightAndKeepsOddSizesAndUnevenTimes) {
  const auto turned = play(make("turned.mp4", input + " -c copy -metadata:s:v rotate=90"));
  ASSERT_EQ(turned.pictures.size(), 100u);
  EXPECT_EQ(turned.pictures[0]->image->width(), 240);
  EXPECT_EQ(turned.pictures[0]->image->height(), 320);
  EXPECT_EQ(probe(folder / "turned.mp4")->height, 320);

  const auto odd = play(make("odd.mkv", input + " -an -vf scale=161:121 -c:v ffv1"));
  ASSERT_EQ(odd.pictures.size(), 100u);
  EXPECT_EQ(odd.pictures[0]->image->width(), 161);
  EXPECT_EQ(odd.pictures[0]->image->height(), 121);
  EXPECT_TRUE(odd.samples.empty());

  const auto uneven = play(
      make("uneven.mp4", input + " -an -vf \"select='not(mod(n,3))+not(mod(n,5))'\" -vsync vfr"));
  ASSERT_EQ(uneven.pictures.size(), 47u);
  EXPECT_EQ(uneven.pictures[1]->presentationTime, platform::TimePoint(milliseconds(120)));
  EXPECT_EQ(uneven.pictures[1]->duration, milliseconds(80));

  const auto wide = probe(make("wide.mp4", input + " -an -vf setsar=3/2"));
  ASSERT_TRUE(wide) << wide.error().sentence;
  EXPECT_EQ(wide->width, 480);
}

TEST_F(MediaFileTest, saysInOneSentenceWhatIsWrongWithAFile) {
  make("sound.mp4", input + " -vn -c:a copy");
  make("sound.wav", input + " -vn");
  make("picture.png", input + " -frames:v 1");
  make("huge.mkv", "-f lavfi -i color=size=5000x64:duration=0.2 -c:v ffv1");
  writeBytes(folder / "text.mp4", std::string(5000, 'a') + "\n");
  writeBytes(folder / "empty.mp4", "");
  writeBytes(folder / "list.m3u8", "#EXTM3U\n#EXT-X-VERSION:3\n#EXTINF:4,\nclip.mp4\n");
  const std::string bytes = bytesOf(clip);
  writeBytes(folder / "cut.mp4", bytes.substr(0, bytes.size() / 2));

  for (const auto& [name, part] : std::initializer_list<std::pair<const char*, const char*>>{
           {"none.mp4", "There is no file"},
           {".", "is not a file"},
           {"empty.mp4", "is empty"},
           {"/proc/self/mem", "can't be read"},
           {"text.mp4", "is not a video"},
           {"picture.png", "is not a video"},
           {"list.m3u8", "is not a video"},
           {"sound.mp4", "sound but no picture"},
           {"sound.wav", "sound but no picture"},
           {"huge.mkv", "measures 5000x64"},
           {"cut.mp4", "is damaged"},
       }) {
    const auto file = MediaFile::open(loop, folder / name);
    ASSERT_FALSE(file) << name;
    EXPECT_NE(file.error().sentence.find(part), std::string::npos) << file.error().sentence;
    EXPECT_NE(file.error().sentence.find((folder / name).string()), std::string::npos)
        << file.error().sentence;
    EXPECT_EQ(file.error().sentence.back(), '.');
    EXPECT_EQ(std::ranges::count(file.error().sentence, '\n'), 0) << file.error().sentence;
  }
}

TEST_F(MediaFileTest, endsOrFailsWithASentenceWhateverTheBytes) {
  const std::string bytes = bytesOf(make("fast.mp4", input + " -c copy -movflags faststart"));
  std::mt19937 random(7);
  for (int round = 0; round < 12; ++round) {
    std::string damaged = bytes;
    if (round % 2 == 0) damaged.resize(damaged.size() * (round + 4) / 16);
    for (int i = 0; i < 1 << round; ++i) {
      char& byte = damaged[random() % damaged.size()];
      byte = static_cast<char>(byte ^ 1 << random() % 8);
    }
    writeBytes(folder / "damaged.mp4", damaged);
    const Recording played = play(folder / "damaged.mp4");
    EXPECT_EQ(played.ends + static_cast<int>(played.errors.size()), 1) << round;
  }
}

TEST_F(MediaFileTest, dropsAndCountsInRealTimeWhatCameFarTooLate) {
  StallingLoop stalling;
  const auto file = MediaFile::open(stalling, clip);
  ASSERT_TRUE(file) << file.error().sentence;
  int pictures = 0;
  (*file)->camera()->start([&](const auto&) {
    if (++pictures == 10) stalling.stall = std::chrono::seconds(1);
  });
  stalling.inner.advance(std::chrono::seconds(10));
  // Picture 10 is looked at one second late, at 1.4 s. Pictures 10 to 28 are then more than a
  // quarter of a second late; every fifth of them is delivered all the same.
  EXPECT_EQ((*file)->framesDropped(), 16u);
  EXPECT_EQ(pictures, 84);
}

}  // namespace
}  // namespace corvana::devices::test
