#include <atomic>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "devices/scripted/ScriptedMedia.h"
#include "platform/foundation/VirtualRunLoop.h"
#include "platform/media/CaptureSession.h"

namespace corvana::tests {
namespace {

/// A microphone whose session is stopped by someone else while it starts.
class SlowMicrophone final : public devices::ScriptedCaptureDevice {
 public:
  using ScriptedCaptureDevice::ScriptedCaptureDevice;
  platform::AVCaptureSession* session = nullptr;
  std::thread other;
  bool overtaken = false;

  void start(SampleHandler) override {
    std::atomic<bool> begun = false;
    other = std::thread([&, this] {
      begun = true;
      session->stopRunning();
    });
    while (!begun)
      std::this_thread::yield();
    for (int i = 0; i < 1000 && stops() == 0; ++i)
      std::this_thread::yield();
    overtaken = stops() > 0;
  }
};

// A device may take long to start, and the screen that wanted it may be going by then.
TEST(CaptureSession, StopsADeviceOnlyWhenItHasStarted) {
  platform::VirtualRunLoop loop;
  const auto microphone = std::make_shared<SlowMicrophone>(platform::AVMediaType::audio);
  platform::AVCaptureSession session;
  microphone->session = &session;
  session.addInput(*platform::AVCaptureDeviceInput::make(microphone));
  session.addOutput(std::make_shared<platform::AVCaptureAudioDataOutput>(loop));
  session.startRunning();
  microphone->other.join();
  EXPECT_FALSE(microphone->overtaken);
  EXPECT_EQ(microphone->stops(), 1);
  EXPECT_FALSE(session.isRunning());
}

struct Delegate final : platform::AVCaptureSampleBufferDelegate {
  void captureOutput(platform::AVCaptureOutput&, const platform::CMSampleBufferRef&) override {
    ++samples;
  }
  int samples = 0;
};

// A user may answer the question for the microphone when the session runs already.
TEST(CaptureSession, StartsWhatIsConnectedWhileItRuns) {
  platform::VirtualRunLoop loop;
  const auto microphone =
      std::make_shared<devices::ScriptedCaptureDevice>(platform::AVMediaType::audio);
  const auto output = std::make_shared<platform::AVCaptureAudioDataOutput>(loop);
  const auto delegate = std::make_shared<Delegate>();
  output->setSampleBufferDelegate(
      delegate, loop.makeSerialQueue("audio", platform::QualityOfService::unspecified));
  platform::AVCaptureSession session;
  session.startRunning();
  session.addInput(*platform::AVCaptureDeviceInput::make(microphone));
  session.addOutput(output);
  EXPECT_FALSE(microphone->isRunning()) << "starting may take time: not on this queue";
  loop.advance(platform::seconds(0));
  microphone->push(std::make_shared<platform::CMSampleBuffer>());
  loop.advance(platform::seconds(0));
  EXPECT_EQ(delegate->samples, 1);
  session.stopRunning();
  EXPECT_FALSE(microphone->isRunning());
  session.startRunning();
  EXPECT_TRUE(microphone->isRunning());
  EXPECT_EQ(microphone->starts(), 2);

  platform::AVCaptureSession stopped;
  const auto late = std::make_shared<devices::ScriptedCaptureDevice>(platform::AVMediaType::audio);
  stopped.addOutput(std::make_shared<platform::AVCaptureAudioDataOutput>(loop));
  stopped.startRunning();
  stopped.addInput(*platform::AVCaptureDeviceInput::make(late));
  stopped.stopRunning();  // before its turn comes
  loop.advance(platform::seconds(0));
  EXPECT_EQ(late->starts(), 0);
}

// A delegate that stands still must not fill the memory with pictures.
TEST(CaptureSession, DropsAndCountsWhatADelegateThatFellBehindCannotTake) {
  platform::VirtualRunLoop loop;
  const auto camera =
      std::make_shared<devices::ScriptedCaptureDevice>(platform::AVMediaType::video);
  const auto output = std::make_shared<platform::AVCaptureVideoDataOutput>(loop);
  const auto delegate = std::make_shared<Delegate>();
  output->setSampleBufferDelegate(
      delegate, loop.makeSerialQueue("capture", platform::QualityOfService::unspecified));
  platform::AVCaptureSession session;
  session.addInput(*platform::AVCaptureDeviceInput::make(camera));
  session.addOutput(output);
  session.startRunning();
  for (int i = 0; i < 120; ++i) {
    camera->push(std::make_shared<platform::CMSampleBuffer>());
    if (i % 40 == 39) loop.advance(platform::seconds(0));
  }
  EXPECT_EQ(delegate->samples, 90);
  EXPECT_EQ(output->samplesDropped(), 30U);
}

}  // namespace
}  // namespace corvana::tests
