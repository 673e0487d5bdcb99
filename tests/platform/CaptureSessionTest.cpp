#include <latch>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "devices/scripted/ScriptedMedia.h"
#include "platform/foundation/VirtualRunLoop.h"
#include "platform/media/CaptureSession.h"

namespace {

// A device may take seconds to start: the screen that asked for it may be going by then.
TEST(CaptureSession, StartsAndStopsItsDeviceByTurnsFromAnyThread) {
  platform::VirtualRunLoop loop;
  const auto device =
      std::make_shared<devices::ScriptedCaptureDevice>(platform::AVMediaType::audio);
  platform::AVCaptureSession session;
  session.addInput(*platform::AVCaptureDeviceInput::make(device));
  session.addOutput(std::make_shared<platform::AVCaptureAudioDataOutput>(loop));

  constexpr int kTimes = 100'000;
  std::latch ready(2);
  std::thread starter([&] {
    ready.arrive_and_wait();
    for (int i = 0; i < kTimes; ++i)
      session.startRunning();
  });
  ready.arrive_and_wait();
  for (int i = 0; i < kTimes; ++i)
    session.stopRunning();
  starter.join();
  EXPECT_EQ(device->isRunning(), session.isRunning());
  EXPECT_EQ(device->starts() - device->stops(), session.isRunning() ? 1 : 0);
}

}  // namespace
