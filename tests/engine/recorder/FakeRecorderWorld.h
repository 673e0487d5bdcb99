#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "devices/scripted/HostContractValidator.h"
#include "engine/recorder/EngineHost.h"
#include "engine/recorder/Recorder.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace tests {

/// Answers each frame with what the test says it shows.
class FakeAnalyzer final : public engine::FrameAnalyzer {
 public:
  std::function<void(engine::Observation&)> fill;
  int looks = 0;

  engine::Observation analyze(const platform::CMSampleBufferRef& frame,
                              const engine::AnalysisTask& task) override {
    ++looks;
    engine::Observation observation;
    observation.task = task;
    observation.frameTime = frame->presentationTime;
    observation.fullSize = {720, 1280};
    if (fill) fill(observation);
    return observation;
  }
};

/// Notes what happens to films; nothing is written but a marker file.
class FakeFilms final : public platform::AssetWriterFactory {
 public:
  std::vector<std::string> log;
  std::string fault;  ///< when not empty, no film can be made

  tl::expected<std::shared_ptr<platform::AssetWriter>, std::string> make(
      const std::filesystem::path& path, const std::optional<platform::WriterSettings>& video,
      const std::optional<platform::WriterSettings>& audio) override;
};

/// Everything a recorder needs, on a virtual clock, and a delegate that writes down what it hears.
class RecorderWorld final : public corvana::VideoCaptureDelegate,
                            public engine::RecorderObserver,
                            public std::enable_shared_from_this<RecorderWorld> {
 public:
  static std::shared_ptr<RecorderWorld> make();
  ~RecorderWorld() override;

  /// Frames at 30 a second for so long.
  void film(double seconds);
  /// Lets pass time without frames.
  void pass(double seconds) { loop.advance(platform::seconds(seconds)); }

  void update(const corvana::SelfieCaptureState& state) override;
  void update(const corvana::IDCaptureState& state) override;
  void foundLiveFace(const std::optional<platform::CGRect>& frame, const platform::CGSize& fullSize,
                     corvana::VideoCaptureMode mode) override;
  void happened(const engine::RecorderEvent& event) override;

  platform::VirtualRunLoop loop;
  platform::NotificationCenter notificationCenter;
  std::filesystem::path folder;
  FakeFilms films;
  std::shared_ptr<FakeAnalyzer> analyzer = std::make_shared<FakeAnalyzer>();
  std::shared_ptr<engine::Film> openFilm;
  std::shared_ptr<engine::Recorder> recorder;
  /// Watches every run of these tests; whoever takes the world away asks for its breaches.
  std::unique_ptr<devices::HostContractValidator> contract;
  /// States by name, live faces only when lost.
  std::vector<std::string> heard;
  std::vector<platform::TimePoint> heardAt;

 private:
  RecorderWorld() = default;
  void note(std::string what);
};

}  // namespace tests
