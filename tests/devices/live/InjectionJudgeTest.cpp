#include <filesystem>
#include <random>

#include <gtest/gtest.h>

#include "devices/live/InjectionJudge.h"
#include "support/Scratch.h"

namespace corvana::devices::test {
namespace {

namespace fs = std::filesystem;
using platform::Duration;
using Names = std::vector<std::string>;

/// Twenty seconds of a stream of 30 pictures a second, as `change` makes it.
Names signsOf(const std::function<void(int number, InjectionJudge::Picture& picture)>& change,
              const InjectionJudge::Limits& limits = {}) {
  InjectionJudge judge(limits);
  for (int number = 0; number < 600; ++number) {
    InjectionJudge::Picture picture{.time = Duration(33'333'333LL * number),
                                    .interval = Duration(33'333'333),
                                    .fingerprint = 7919U * static_cast<unsigned>(number),
                                    .hasDetail = true};
    change(number, picture);
    judge.add(picture);
  }
  Names names;
  for (const CameraSign& sign : judge.signs())
    names.push_back(sign.name);
  return names;
}

TEST(InjectionJudge, KnowsWhatNoSensorDoes) {
  std::minstd_rand random(5);
  std::normal_distribution<double> microseconds(0, 40);
  const auto stray = [&](InjectionJudge::Picture& picture) {
    picture.time += Duration(static_cast<long>(1000 * microseconds(random)));
  };
  EXPECT_EQ(signsOf([&](int, auto& picture) { stray(picture); }), Names{}) << "a sensor";
  EXPECT_EQ(signsOf([](int, auto&) {}), Names{"regularTimes"});
  EXPECT_EQ(signsOf([&](int number, auto& picture) {
              stray(picture);
              // A film of 24 pictures, handed over in bursts.
              picture.time =
                  Duration(33'333'333LL * (number / 4 * 4)) + Duration(9'000'000LL * (number % 4));
              stray(picture);
            }),
            Names{"foreignTimes"});
  EXPECT_EQ(signsOf([&](int number, auto& picture) {
              stray(picture);
              picture.fingerprint = static_cast<unsigned>(number % 60);
            }),
            Names{"identicalPictures"})
      << "a film that begins again";
  EXPECT_EQ(signsOf([&](int, auto& picture) {
              stray(picture);
              picture.fingerprint = 1;
            }),
            Names{"identicalPictures"})
      << "a still";
}

TEST(InjectionJudge, ItsLimitsAreOptions) {
  const auto keepTime = [](int, InjectionJudge::Picture&) {};
  EXPECT_EQ(signsOf(keepTime, {.regularMicroseconds = 0}), Names{});
  EXPECT_EQ(signsOf(keepTime, {.regularMicroseconds = 0, .shortInterval = 1.1}),
            Names{"foreignTimes"});
  const auto repeat = [](int number, InjectionJudge::Picture& picture) {
    picture.fingerprint = static_cast<unsigned>(number % 60);
  };
  EXPECT_EQ(signsOf(repeat, {.regularMicroseconds = 0}), Names{"identicalPictures"});
  EXPECT_EQ(signsOf(repeat, {.regularMicroseconds = 0, .mostIdentical = 1}), Names{});
}

TEST(InjectionJudge, ForgivesASensorInTheDark) {
  std::minstd_rand random(6);
  std::normal_distribution<double> microseconds(0, 40);
  const auto dark = [&](int number, InjectionJudge::Picture& picture) {
    // Ten pictures a second, each of them handed over twice.
    picture.time = Duration(50'000'000LL * number + static_cast<long>(1000 * microseconds(random)));
    picture.fingerprint = static_cast<unsigned>(number / 2);
  };
  EXPECT_EQ(signsOf(dark), Names{});
  EXPECT_EQ(signsOf([&](int number, auto& picture) {
              dark(number, picture);
              picture.fingerprint = 1;
              picture.hasDetail = false;
            }),
            Names{})
      << "behind a lid";
}

TEST(InjectionJudge, TellsPicturesApartByTheLeastNoise) {
  std::vector<std::uint8_t> bytes(
      platform::PixelBuffer::byteCount(64, 48, platform::PixelFormat::i420), 90);
  const auto looked = [&] { return look({64, 48, platform::PixelFormat::i420, bytes}); };
  const auto plain = looked();
  EXPECT_FALSE(plain.hasDetail);
  bytes[8 * 64 + 5] = 150;
  EXPECT_TRUE(looked().hasDetail);
  EXPECT_NE(looked().fingerprint, plain.fingerprint);
  const auto before = looked().fingerprint;
  EXPECT_EQ(looked().fingerprint, before);
  bytes[16 * 64 + 40] = 91;
  EXPECT_NE(looked().fingerprint, before);
}

TEST(InjectionJudge, AsksTheSystemWhetherAUsbCameraIsPluggedIn) {
  const tests::ScratchFolder sysfs;
  const auto plugIn = [&](const char* node, const std::string& hardware) {
    fs::create_directories(sysfs / hardware);
    fs::create_directories(sysfs / "class/video4linux" / node);
    fs::create_directory_symlink(sysfs / hardware, sysfs / "class/video4linux" / node / "device");
    tests::writeBytes(sysfs / node, "");
    return (sysfs / node).string();
  };
  const std::string real = plugIn("video0", "devices/pci0000:00/0000:00:14.0/usb1/1-4/1-4:1.0");
  const std::string fake = plugIn("video1", "devices/virtual/video");
  EXPECT_FALSE(claimsUsb(real, "usb-0000:00:14.0-4", sysfs.path()));
  EXPECT_TRUE(claimsUsb(fake, "usb-0000:00:14.0-4", sysfs.path()));
  EXPECT_FALSE(claimsUsb(fake, "platform:virtual", sysfs.path())) << "it does not claim it";
  EXPECT_TRUE(claimsUsb(sysfs / "video9", "usb-0000:00:14.0-4", sysfs.path()));
}

}  // namespace
}  // namespace corvana::devices::test
