#include <utility>
#include <vector>

#include "FlowTest.h"
#include "corvana/CaptureSessionViewController.h"
#include "support/LoopAround.h"

namespace corvana::tests {
namespace {

/// Workers that take what was posted last first, which a global queue may.
class NewestFirstQueue final : public platform::DispatchQueue {
 public:
  explicit NewestFirstQueue(platform::RunLoop& loop) : loop_(loop) {}
  void async(platform::Block block) override { asyncAfter({}, std::move(block)); }
  void asyncAfter(platform::Duration delay, platform::Block block) override {
    waiting_.push_back(std::move(block));
    loop_.mainQueue().asyncAfter(delay, [this] {
      const platform::Block newest = std::move(waiting_.back());
      waiting_.pop_back();
      newest();
    });
  }

 private:
  platform::RunLoop& loop_;
  std::vector<platform::Block> waiting_;
};

class NewestFirstLoop final : public LoopAround {
 public:
  explicit NewestFirstLoop(platform::RunLoop& inner) : LoopAround(inner), global_(inner) {}
  platform::DispatchQueue& globalQueue(platform::QualityOfService) override { return global_; }

 private:
  NewestFirstQueue global_;
};

// Else the camera would stay on after the screen has gone, or dark when it comes back.
TEST(CameraOrder, IsThatOfTheScreenComingAndGoingHoweverManyWorkersThereAre) {
  TestWorld world;
  NewestFirstLoop loop(world.loop);
  platform::Environment environment{.runLoop = loop,
                                    .bundle = world.bundle,
                                    .notificationCenter = world.notificationCenter,
                                    .console = world.console,
                                    .application = world.application,
                                    .mediaDevices = world.mediaDevices,
                                    .speechAuthorization = world.speechAuthorization,
                                    .systemSounds = world.sounds,
                                    .randomness = world.randomness,
                                    .mainScreen = world.environment.mainScreen};
  const auto screen =
      std::make_shared<corvana::CaptureSessionViewController>(environment, world.host);
  screen->viewWillAppear(false);
  screen->viewDidDisappear(false);
  world.advance(0);
  EXPECT_FALSE(world.mediaDevices.camera->isRunning());
  EXPECT_EQ(world.mediaDevices.camera->starts(), 1);

  screen->viewWillAppear(false);
  world.advance(0);
  screen->viewDidDisappear(false);
  screen->viewWillAppear(false);
  world.advance(0);
  EXPECT_TRUE(world.mediaDevices.camera->isRunning());
}

}  // namespace
}  // namespace corvana::tests
