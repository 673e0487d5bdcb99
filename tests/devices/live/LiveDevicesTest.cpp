#include <algorithm>
#include <future>
#include <memory>

#include <gtest/gtest.h>

#include "LivePeer.h"
#include "devices/MediaTestSupport.h"
#include "devices/live/CameraMode.h"
#include "devices/live/CaptureTimes.h"
#include "devices/live/DeviceCatalog.h"
#include "devices/live/InjectionJudge.h"
#include "devices/live/LiveDevices.h"
#include "devices/live/LiveFile.h"
#include "devices/live/LiveStream.h"
#include "devices/system/RealRunLoop.h"

namespace corvana::devices::test {
namespace {

using platform::CMSampleBufferRef;
using platform::TimePoint;
using std::chrono::milliseconds;
using std::chrono::seconds;
using Samples = std::vector<CMSampleBufferRef>;

/// Only ends what hangs: nothing is said about how fast a device or this machine is.
constexpr platform::Duration kAnyTime = std::chrono::minutes(20);
/// In milliseconds: no stall of the machine makes up for so far a jump of a device's clock.
constexpr int kFarJump = 3'600'000;

class LiveDevicesTest : public ::testing::Test {
 protected:
  void open(LiveDevices::Setup setup) {
    setup.patience = kAnyTime;
    auto opened = LiveDevices::open(loop, std::move(setup));
    ASSERT_TRUE(opened) << opened.error().sentence;
    media = *opened;
    media->onError = [&](const platform::Fault& fault) { faults.push_back(fault); };
    media->onWarning = [&](const std::string& sentence) { warnings.push_back(sentence); };
    media->camera()->start(into(pictures));
    if (media->microphone()) media->microphone()->start(into(sounds));
  }
  platform::AVCaptureDevice::SampleHandler into(Samples& samples) {
    return [this, &samples](const CMSampleBufferRef& sample) {
      loop.mainQueue().async([&samples, sample] { samples.push_back(sample); });
    };
  }
  void waitFor(const std::function<bool()>& condition) {
    const auto look = loop.scheduledTimer(milliseconds(5), true, [] {});
    EXPECT_EQ(loop.runUntil(condition, loop.now() + kAnyTime), RealRunLoop::Stop::condition);
    look->invalidate();
  }
  /// In which what must not happen would happen, on any machine that is not too slow to show it.
  void passTime() {
    bool passed = false;
    loop.mainQueue().asyncAfter(milliseconds(600), [&] { passed = true; });
    waitFor([&] { return passed; });
  }

  bool warned(const std::string& words) const {
    return std::ranges::any_of(warnings,
                               [&](const auto& w) { return w.find(words) != std::string::npos; });
  }

  RealRunLoop loop;
  LivePeer camera = LivePeer::camera(320, 240);
  LivePeer microphone = LivePeer::microphone();
  std::shared_ptr<LiveDevices> media;
  std::vector<platform::Fault> faults;
  std::vector<std::string> warnings;
  Samples pictures, sounds;
};

TEST_F(LiveDevicesTest, DeliversUprightPicturesOfAnySizeAndRateWithGrowingTimes) {
  const struct {
    int width, height, rate;
    CameraTurn turn;
  } cases[] = {{640, 480, 15, CameraTurn::none},
               {1280, 720, 60, CameraTurn::right},
               {1920, 1080, 24, CameraTurn::left},
               {161, 121, 30, CameraTurn::around}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.width);
    LivePeer peer = LivePeer::camera(c.width, c.height, c.rate);
    open({.camera = peer.source(), .turn = c.turn});
    pictures.clear();
    // Two at one time, and one from the future.
    for (const auto& [time, count] : {std::pair(40, 1u), {40, 2u}, {800, 3u}}) {
      peer.push(time);
      waitFor([&, expected = count] { return pictures.size() == expected; });
    }
    const bool turned = c.turn == CameraTurn::left || c.turn == CameraTurn::right;
    TimePoint before{};
    for (const auto& picture : pictures) {
      EXPECT_EQ(picture->image->width(), turned ? c.height : c.width);
      EXPECT_EQ(picture->image->height(), turned ? c.width : c.height);
      EXPECT_NEAR(platform::inSeconds(picture->duration), 1.0 / c.rate, 1e-6);
      EXPECT_GT(picture->presentationTime, std::exchange(before, picture->presentationTime));
      EXPECT_LE(picture->presentationTime, loop.now());
    }
  }
}

TEST_F(LiveDevicesTest, KeepsTheFirstSizeWithBordersWhenTheCameraChanges) {
  open({.camera = camera.source()});
  camera.changeTo(240, 320);
  camera.push(40, 200);
  camera.changeTo(640, 480);
  camera.push(80, 200);
  waitFor([&] { return pictures.size() == 2; });
  for (const auto& picture : pictures) {
    ASSERT_EQ(picture->image->width(), 320);
    ASSERT_EQ(picture->image->height(), 240);
    EXPECT_EQ(picture->image->bytes()[120 * 320 + 160], 200);
  }
  EXPECT_LE(pictures[0]->image->bytes()[120 * 320], 16) << "beside a picture on end it is black";
  EXPECT_EQ(pictures[1]->image->bytes()[120 * 320], 200);
  camera.push(kFarJump);
  waitFor([&] { return warned("changed its size") && warned("set its clock anew"); });
  passTime();
  EXPECT_EQ(warnings.size(), 2u) << "each once";
  EXPECT_TRUE(faults.empty());
}

TEST_F(LiveDevicesTest, TellsOfAStreamThatLooksFedInOnce) {
  open({.camera = camera.source()});
  std::vector<CameraSign> told;
  media->onCameraSign = [&](const CameraSign& sign) { told.push_back(sign); };
  // One after another: pictures that are left out would hide how regular the times are.
  for (std::size_t number = 1; number <= InjectionJudge::kIntervals + 1; ++number) {
    camera.push(static_cast<int>(33 * number), 40 + static_cast<int>(number));
    waitFor([&] { return pictures.size() == number; });
  }
  waitFor([&] { return !told.empty(); });
  passTime();
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0].name, "regularTimes");
  EXPECT_EQ(media->cameraSigns().size(), 1U);
}

TEST_F(LiveDevicesTest, ReportsALostCameraOnce) {
  const std::pair<std::function<void(LivePeer&)>, const char*> cases[] = {
      {[](LivePeer& peer) { peer.fail(GST_RESOURCE_ERROR_READ); }, "failed (Out of order)"},
      {[](LivePeer& peer) { peer.end(); }, "has stopped"},
      {[](LivePeer&) {}, "no pictures any more"}};
  for (const auto& [lose, sentence] : cases) {
    faults.clear();
    LivePeer peer = LivePeer::camera(320, 240);
    open({.camera = peer.source()});
    lose(peer);
    waitFor([&] { return !faults.empty(); });
    passTime();
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0].cause, platform::FaultCause::cameraLost);
    EXPECT_NE(faults[0].sentence.find(sentence), std::string::npos) << faults[0].sentence;
    EXPECT_TRUE(warnings.empty());
  }
}

TEST_F(LiveDevicesTest, ConvertsSoundAndGoesOnWithoutIt) {
  open({.camera = camera.source(), .microphone = microphone.source()});
  int time = 0;
  const auto feed = [&](int value) {
    microphone.push(time += 100, value);
    camera.push(time);
  };
  waitFor([&] { return feed(1), sounds.size() >= 25; });
  TimePoint before{};
  for (const auto& sound : sounds) {
    EXPECT_EQ(sound->samples.size(), 960u);
    EXPECT_EQ(sound->sampleRate, kSampleRate);
    EXPECT_EQ(sound->duration, milliseconds(20));
    EXPECT_GT(sound->presentationTime, std::exchange(before, sound->presentationTime));
  }
  waitFor([&] { return feed(0), warned("nothing but silence"); });
  time += kFarJump;
  for (const char* device : {"microphone", "camera"}) {
    const std::string jumped = std::string(device) + " \"Peer\" set its clock anew";
    waitFor([&] { return feed(0), warned(jumped); });
  }
  microphone.end();
  waitFor([&] { return camera.push(time), warned("goes on without sound"); });
  passTime();
  EXPECT_EQ(warnings.size(), 4u) << "each once";
  EXPECT_TRUE(faults.empty());
}

TEST_F(LiveDevicesTest, DropsTheOldestWhenTheHandlerIsSlowAndStopsAtOnce) {
  open({.camera = camera.source()});
  media->camera()->stop();
  std::promise<void> goOn;
  std::atomic<int> calls = 0;
  media->camera()->start([&, wait = goOn.get_future().share()](const auto&) {
    ++calls;
    wait.wait();
    if (calls == 3) media->camera()->stop();
  });
  camera.push(40);
  waitFor([&] { return calls == 1; });
  for (int i = 1; i <= 12; ++i)
    camera.push(40 + i);
  waitFor([&] { return media->framesDropped() >= 8; });
  goOn.set_value();
  waitFor([&] { return calls == 3; });
  passTime();
  EXPECT_EQ(calls, 3) << "it stopped itself";
  media->camera()->start(into(pictures));
  camera.push(80);
  waitFor([&] { return pictures.size() == 1; });
}

TEST_F(LiveDevicesTest, RefusesADeviceThatDeliversNothing) {
  using Opening = LivePeer::Opening;
  const struct {
    Opening opening;
    platform::Duration patience;
    const char* words;
  } cases[] = {{Opening::isBusy, kAnyTime, "another program"},
               {Opening::deliversNothing, milliseconds(300), "delivers nothing"}};
  for (const auto& [opening, patience, words] : cases) {
    const auto opened =
        LiveDevices::open(loop, {.camera = camera.source(opening), .patience = patience});
    ASSERT_FALSE(opened);
    EXPECT_NE(opened.error().sentence.find(words), std::string::npos) << opened.error().sentence;
  }
  const GError error{GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_OPEN_READ_WRITE, nullptr};
  EXPECT_NE(liveFault("camera", "C", error, "system error: Permission denied").find("group video"),
            std::string::npos);
}

TEST_F(LiveDevicesTest, PlaysAFileOverAndOverInStepWithItsSound) {
  const ScratchFolder folder;
  const std::string clip = folder / "clip.mp4";
  // Each picture's brightness tells its number; the second half of the sound is loud.
  ASSERT_EQ(
      run("ffmpeg -nostdin -v error -f lavfi -i "
          "\"color=black:size=64x64:rate=25:d=0.8,format=yuv420p,geq=lum=20+10*N:cb=128:cr=128\" "
          "-f lavfi -i \"aevalsrc=exprs='0.5*sin(2*PI*1000*t)*gt(t,0.4)':s=48000:d=0.8\" "
          "-c:v libx264 -qp 1 -pix_fmt yuv420p -c:a aac " +
          clip),
      0);
  // Times count anew when the machine stood still for seconds: such a round says nothing.
  do {
    auto file = openLiveFile(clip);
    ASSERT_TRUE(file) << file.error().sentence;
    media.reset();
    passTime();
    pictures.clear(), sounds.clear(), warnings.clear();
    open({.camera = file->camera, .microphone = file->microphone});
    waitFor([&] {
      return !sounds.empty() &&
             sounds.back()->presentationTime > sounds.front()->presentationTime + seconds(3);
    });
    passTime();
  } while (warned("set its clock anew"));
  // One picture fixes the origin; whichever were dropped, all others must agree.
  const auto round = probe(clip)->duration;
  const auto numberOf = [](const auto& p) { return (p->image->bytes()[0] - 20 + 5) / 10; };
  const auto moving = std::ranges::find_if(pictures, [&](auto& p) { return numberOf(p) > 0; });
  ASSERT_NE(moving, pictures.end());
  const auto origin = (*moving)->presentationTime - milliseconds(40 * numberOf(*moving));
  for (auto picture = moving; picture != pictures.end(); ++picture) {
    const auto place = ((*picture)->presentationTime - origin + milliseconds(1)) % round;
    EXPECT_EQ(numberOf(*picture), place / milliseconds(40));
  }
  for (const auto& sound : sounds) {
    if (sound->presentationTime < origin + round) continue;  // silence was read ahead
    const auto place = (sound->presentationTime - origin) % round;
    if (place % milliseconds(400) > milliseconds(360)) continue;  // here it changes
    EXPECT_EQ(std::ranges::max(sound->samples) > 8000, place > milliseconds(400)) << place.count();
  }
}

TEST(CaptureTimes, FollowTheDeviceUntilItsClockJumps) {
  CaptureTimes times;
  const struct {
    int captured, arrival, time;
    bool jumped;
  } cases[] = {{-9'000'000, 100, 100, false},  // wherever its clock stands
               {-8'999'960, 150, 140, false},   {-8'999'920, 180, 180, false},
               {-8'999'780, 200, 200, false},    // not yet
               {-8'997'600, 2550, 2500, false},  // both stood still
               {-8'990'000, 2600, 2600, true},  {-8'989'960, 2700, 2640, false},
               {-8'999'000, 2750, 2750, true},  {-8'998'960, 5750, 5750, true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.captured);
    const auto placed =
        times.place(TimePoint(milliseconds(c.captured)), TimePoint(milliseconds(c.arrival)));
    EXPECT_EQ(placed.time, TimePoint(milliseconds(c.time)));
    EXPECT_EQ(placed.jumped, c.jumped);
  }
  EXPECT_EQ(times.place({}, TimePoint(milliseconds(5800))).time, TimePoint(milliseconds(5800)));
}

TEST(Cameras, AreToldFromVirtualOnes) {
  for (const auto& [driver, bus, isVirtual] :
       std::initializer_list<std::tuple<const char*, const char*, bool>>{
           {"uvcvideo", "usb-0000:00:14.0-11", false},
           {"uvcvideo", "usb-3f980000.usb-1.3", false},
           {"bcm2835 mmal", "platform:bcm2835-v4l2-0", false},
           {"ipu3-cio2", "PCI:0000:00:14.3", false},
           {"v4l2 loopback", "platform:v4l2loopback-000", true},
           {"vivid", "platform:vivid-000", true},
           {"vimc", "platform:vimc", true},
           {"akvcam", "platform:akvcam-0", true},
           {"uvcvideo", "usb-vhci_hcd.0-1", true},
           {"uvcvideo", "usb-dummy_hcd.0-1", true},
           {"something", "", true}}) {
    EXPECT_EQ(isVirtualCamera(driver, bus), isVirtual) << driver << ' ' << bus;
  }
}

TEST(Cameras, TakeTheNearestMode) {
  const std::vector<OfferedMode> offers{{{1280, 720, 10}, "YUY2"},      {{1280, 720, 30}, "MJPEG"},
                                        {{1280, 720, 30}, "H.264"},     {{640, 480, 30}, "YUY2"},
                                        {{1920, 1080, 29.97}, "MJPEG"}, {{640, 480, 60}, "MJPEG"}};
  for (const auto& [wanted, chosen] : {std::pair("1280x720", 1),
                                       {"1920x1080@30", 4},
                                       {"3000x2000@24", 4},
                                       {"640x480@60", 5},
                                       {"640x480@15", 3},
                                       {"1280x720@8", 0}}) {
    EXPECT_EQ(nearestMode(offers, parseCameraMode(wanted).value()), &offers[chosen]) << wanted;
  }
  EXPECT_EQ(nearestMode({}, {}), nullptr);
  for (const char* text :
       {"", "x", "1280", "1280x", "1280x720@", "1280x720@0", "9x9@30", "1280x720@30!", "99999x720"})
    EXPECT_FALSE(parseCameraMode(text)) << text;
}

}  // namespace
}  // namespace corvana::devices::test
