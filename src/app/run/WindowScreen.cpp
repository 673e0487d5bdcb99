#include <cstdlib>
#include <utility>

#include "app/run/FlowScreen.h"
#include "devices/loudspeaker/EspeakSynthesizer.h"
#include "devices/loudspeaker/TonePlayer.h"
#include "devices/qtquick/PreviewCamera.h"
#include "devices/qtquick/QtApplication.h"
#include "devices/qtquick/QtRunLoop.h"
#include "devices/qtquick/QtScreen.h"
#include "devices/screen/SpokenHints.h"

namespace corvana::app {
namespace {

struct ApplicationHolder {
  devices::QtApplication application;
};

/// The application object comes before the loop and goes after it.
class WindowLoop final : ApplicationHolder, public devices::QtRunLoop {};

class WindowScreen final : public FlowScreen {
 public:
  WindowScreen(platform::RunLoop& loop, const WindowWishes& wishes, const Resources& resources)
      : loop_(loop),
        screen_(loop,
                {resources.storyboards, resources.module,
                 wishes.size.value_or(devices::QtScreen::comfortableSize()), wishes.fullScreen}) {
    devices::ScreenSettings& settings = screen_.settings();
    settings.textScale = wishes.looks.textScale;
    settings.rightToLeft = wishes.looks.rightToLeft;
    settings.animated = !wishes.looks.reducedMotion;
    for (const auto& [key, word] : wishes.looks.words) {
      if (!word.empty()) settings.words[QString::fromStdString(key)] = QString::fromStdString(word);
    }
    emit settings.changed();
  }

  /// Accepted steps are heard as well, and prompts if that is wanted.
  void addSounds(const WindowLooks& looks) {
    tone_ = std::make_unique<devices::TonePlayer>(loop_);
    if (!looks.spokenHints) return;
    voice_ = std::make_unique<devices::EspeakSynthesizer>(loop_, looks.voice);
    hints_ = std::make_unique<devices::SpokenHints>(loop_, *voice_);
  }

  platform::CGSize size() const override { return screen_.size(); }
  devices::DirectoryBundle::StoryboardMaker makeStoryboards(
      platform::ControllerFactories factories) override {
    return screen_.makeStoryboards(std::move(factories));
  }
  platform::AnimationPlayer* animations() override { return &screen_; }
  void join(devices::ScreenHub& hub) override {
    hub.add(screen_);
    if (hints_) hub.add(*hints_);
  }
  std::unique_ptr<platform::MediaDevices> watch(platform::MediaDevices& devices) override {
    return std::make_unique<devices::PreviewedMediaDevices>(loop_, devices, screen_.feed());
  }
  void play(platform::SystemSoundID sound) override {
    if (sound != platform::kSystemSoundVibrate) return;
    screen_.flash();
    if (tone_) tone_->play();
  }
  void hint(const std::string& words) override {
    screen_.hint(words);
    if (hints_) hints_->hint(words);
  }
  void figures(const std::string& lines) override { screen_.figures(lines); }
  void setOnClose(const std::function<void()>& onClose) override {
    // A block of the main queue makes the loop ask whether the flow is over.
    screen_.onClose = [this, onClose] {
      if (onClose) loop_.mainQueue().async(onClose);
    };
  }
  void lookAtPixels(const PixelUse& use) override {
    const QImage picture = screen_.window().grabWindow().convertToFormat(QImage::Format_RGBA8888);
    if (!picture.isNull()) use(picture.width(), picture.height(), picture.constBits());
  }
  /// Stands in for the camera in the pictures that are saved.
  void setBackdrop(platform::PixelBufferRef picture) { backdrop_ = std::move(picture); }
  bool savePicture(const std::filesystem::path& path) override {
    screen_.feed()->push(backdrop_);
    return screen_.picture().save(QString::fromStdString(path.string()), "PNG");
  }

 private:
  platform::RunLoop& loop_;
  devices::QtScreen screen_;
  platform::PixelBufferRef backdrop_;
  std::unique_ptr<devices::TonePlayer> tone_;
  std::unique_ptr<devices::EspeakSynthesizer> voice_;
  std::unique_ptr<devices::SpokenHints> hints_;
};

}  // namespace

bool windowIsPossible() {
  return devices::QtApplication::isPossible();
}

std::unique_ptr<platform::DrivenLoop> makeWindowLoop() {
  return std::make_unique<WindowLoop>();
}

std::unique_ptr<FlowScreen> makeWindowScreen(platform::RunLoop& loop, const WindowWishes& wishes,
                                             const Resources& resources) {
  auto screen = std::make_unique<WindowScreen>(loop, wishes, resources);
  screen->addSounds(wishes.looks);
  return screen;
}

std::unique_ptr<FlowScreen> makePictureScreen(platform::RunLoop& loop, const WindowWishes& wishes,
                                              const Resources& resources,
                                              const std::filesystem::path& backdrop) {
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  devices::QtApplication::ofProcess();
  auto made = std::make_unique<WindowScreen>(loop, wishes, resources);
  made->setBackdrop(devices::loadPicture(backdrop));
  return made;
}

}  // namespace corvana::app
