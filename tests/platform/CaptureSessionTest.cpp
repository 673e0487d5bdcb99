#include <atomic>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "platform/foundation/VirtualRunLoop.h"
#include "platform/media/CaptureSession.h"

namespace {

/// A microphone whose session is stopped by someone else while it starts.
class SlowMicrophone final : public platform::AVCaptureDevice {
 public:
  platform::AVCaptureSession* session = nullptr;
  std::thread other;
  bool overtaken = false;
  std::atomic<bool> stopped = false;

  std::string localizedName() const override { return "slow"; }
  platform::AVMediaType mediaType() const override { return platform::AVMediaType::audio; }
  bool open() override { return true; }
  void start(SampleHandler) override {
    std::atomic<bool> begun = false;
    other = std::thread([&, this] {
      begun = true;
      session->stopRunning();
    });
    while (!begun)
      std::this_thread::yield();
    for (int i = 0; i < 1000 && !stopped; ++i)
      std::this_thread::yield();
    overtaken = stopped;
  }
  void stop() override { stopped = true; }
  std::vector<platform::AVVideoCodecType> availableVideoCodecTypes(
      const platform::AVFileType&) const override {
    return {};
  }
  bool recommendedVideoSettings(const platform::AVVideoCodecType&, const platform::AVFileType&,
                                platform::WriterSettings&) const override {
    return false;
  }
  bool recommendedAudioSettings(const platform::AVFileType&,
                                platform::WriterSettings&) const override {
    return false;
  }
};

// A device may take long to start, and the screen that wanted it may be going by then.
TEST(CaptureSession, StopsADeviceOnlyWhenItHasStarted) {
  platform::VirtualRunLoop loop;
  const auto microphone = std::make_shared<SlowMicrophone>();
  platform::AVCaptureSession session;
  microphone->session = &session;
  session.addInput(*platform::AVCaptureDeviceInput::make(microphone));
  session.addOutput(std::make_shared<platform::AVCaptureAudioDataOutput>(loop));
  session.startRunning();
  microphone->other.join();
  EXPECT_FALSE(microphone->overtaken);
  EXPECT_TRUE(microphone->stopped);
  EXPECT_FALSE(session.isRunning());
}

}  // namespace
