#include "app/run/FlowScreen.h"

#include "devices/headless/HeadlessStoryboard.h"
#include "devices/headless/SceneLayout.h"

namespace corvana::app {
namespace {

class HeadlessScreen final : public FlowScreen {
 public:
  platform::CGSize size() const override { return devices::kHeadlessScreen.size(); }
  devices::DirectoryBundle::StoryboardMaker makeStoryboards(
      platform::ControllerFactories factories) override {
    return devices::headlessStoryboards(std::move(factories));
  }
};

}  // namespace

std::unique_ptr<FlowScreen> makeHeadlessScreen(platform::RunLoop&) {
  return std::make_unique<HeadlessScreen>();
}

}  // namespace corvana::app
