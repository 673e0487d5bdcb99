#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "capture/FlowTest.h"

// What a programmer who fits the module into an application may get wrong: the program stops and
// names it.
namespace corvana::tests {
namespace {

struct Part {
  enum class Kind { view, constraint, collection, action };

  std::string scene;
  Kind kind;
  std::string name;
};

/// Writes down what a controller wants connected, and connects nothing.
class Inventory final : public platform::OutletBinder {
 public:
  Inventory(std::string scene, std::vector<Part>& parts)
      : scene_(std::move(scene)), parts_(parts) {}

  void constraint(const std::string& name,
                  platform::Outlet<platform::NSLayoutConstraint>&) override {
    parts_.push_back({scene_, Part::Kind::constraint, name});
  }
  void collection(const std::string& name, platform::OutletCollection<platform::UIView>&) override {
    parts_.push_back({scene_, Part::Kind::collection, name});
  }
  void collection(const std::string& name,
                  platform::OutletCollection<platform::UIButton>&) override {
    parts_.push_back({scene_, Part::Kind::collection, name});
  }
  void action(const std::string& name, std::function<void()>) override {
    parts_.push_back({scene_, Part::Kind::action, name});
  }

 protected:
  void connect(const std::string& name, ViewKind,
               const std::function<void(std::shared_ptr<platform::UIView>)>&) override {
    parts_.push_back({scene_, Part::Kind::view, name});
  }

 private:
  std::string scene_;
  std::vector<Part>& parts_;
};

class Contract : public FlowTest {
 protected:
  std::vector<Part> parts() {
    std::vector<Part> parts;
    for (const auto& [scene, make] : world.factories) {
      Inventory inventory(scene, parts);
      make(world.environment)->declareOutlets(inventory);
    }
    return parts;
  }

  void takeAway(const Part& part) {
    auto& scene = *std::ranges::find(world.scenes, part.scene, &devices::SceneLayout::identifier);
    switch (part.kind) {
      case Part::Kind::view:
        for (devices::SceneView& view : scene.views) {
          if (view.name == part.name) view.name = "nobody";
          if (view.parent == part.name) view.parent = "nobody";
        }
        return;
      case Part::Kind::constraint:
        std::erase(scene.constraints, part.name);
        return;
      case Part::Kind::collection:
        scene.collections.erase(part.name);
        return;
      case Part::Kind::action:
        for (devices::SceneView& view : scene.views) {
          if (view.action == part.name) view.action.clear();
        }
    }
  }

  std::shared_ptr<platform::UIViewController> instantiate(const std::string& scene) {
    return world.bundle.storyboard(world.environment, "VideoCapture")
        ->instantiateViewController(scene);
  }
  devices::SceneView& viewOfTheCaptureScene(const std::string& name) {
    return *std::ranges::find(world.scenes[0].views, name, &devices::SceneView::name);
  }
};

TEST_F(Contract, AStoryboardThatLacksAnOutletOrAnActionIsNamed) {
  const auto all = parts();
  ASSERT_EQ(all.size(), 44u);
  for (const Part& part : all) {
    const auto build = [&] { takeAway(part), instantiate(part.scene)->view(); };
    EXPECT_DEATH(build(), part.scene + "\" has no .*\"" + part.name + "\"");
  }
}

TEST_F(Contract, AViewOfAnotherKindOrAnUnknownActionIsNamed) {
  const std::string scene = world.scenes[0].identifier;
  viewOfTheCaptureScene("captureLabel").kind = devices::SceneView::Kind::imageView;
  EXPECT_NE(instantiate(scene), nullptr) << "unseen it stops nothing";
  EXPECT_DEATH(instantiate(scene)->view(),
               scene + "\" has no outlet of the right kind \"captureLabel\"");

  viewOfTheCaptureScene("captureLabel").kind = devices::SceneView::Kind::label;
  world.scenes[0].views.push_back({.name = "helpButton",
                                   .kind = devices::SceneView::Kind::button,
                                   .frame = {},
                                   .action = "help"});
  EXPECT_DEATH(instantiate(scene)->view(),
               scene + "\" does not offer the action \"help\" of \"helpButton\"");
}

TEST_F(Contract, AScreenWithoutAStoryboardIsNotShown) {
  platform::Outlet<platform::UILabel> outlet;
  outlet.connect("captureLabel", nullptr);
  EXPECT_DEATH(outlet->text(), "the outlet \"captureLabel\" is not connected");
  EXPECT_DEATH(capture::VideoCaptureViewController(world.environment, world.host, nullptr).view(),
               "not connected");
  EXPECT_DEATH(capture::VideoRetryViewController(world.environment).view(), "not connected");
}

TEST_F(Contract, ATypeTooShortForAFamilyIsNamedOnceTheBackIsClassified) {
  front.type = "FRONT";  // five characters; "_FRONT" alone, of six, would do
  enter();
  passSelfie();
  passFront();
  EXPECT_DEATH(card(ID::ClassifiedDocument{back}), "the document type \"FRONT\" is too short");
}

}  // namespace
}  // namespace corvana::tests
