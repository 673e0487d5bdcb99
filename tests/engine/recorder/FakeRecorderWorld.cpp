#include "engine/recorder/FakeRecorderWorld.h"

#include <atomic>
#include <fstream>

#include "engine/recorder/StateEvents.h"

namespace tests {
namespace {

class FakeFilm final : public platform::AssetWriter {
 public:
  FakeFilm(std::vector<std::string>& log, std::filesystem::path path)
      : log_(log), path_(std::move(path)) {
    std::ofstream(path_) << "film";
    log_.push_back("open " + path_.filename().string());
  }

  bool appendVideo(const platform::CMSampleBufferRef&) override {
    ++frames_;
    return true;
  }
  bool appendAudio(const platform::CMSampleBufferRef&) override { return true; }
  tl::expected<void, std::string> finish() override {
    log_.push_back("finish");
    return {};
  }
  void cancel() override { log_.push_back("cancel"); }
  platform::AssetWriterCounters counters() const override {
    platform::AssetWriterCounters counters;
    counters.videoFramesWritten = frames_;
    return counters;
  }

 private:
  std::vector<std::string>& log_;
  std::filesystem::path path_;
  std::atomic<std::uint64_t> frames_ = 0;
};

}  // namespace

tl::expected<std::shared_ptr<platform::AssetWriter>, std::string> FakeFilms::make(
    const std::filesystem::path& path, const std::optional<platform::WriterSettings>&,
    const std::optional<platform::WriterSettings>&) {
  if (!fault.empty()) return tl::unexpected(fault);
  return std::make_shared<FakeFilm>(log, path);
}

std::shared_ptr<RecorderWorld> RecorderWorld::make() {
  std::shared_ptr<RecorderWorld> world(new RecorderWorld());
  const devices::HostContract promises{
      platform::seconds(corvana::SelfieCapture::options.timeOutSeconds),
      platform::seconds(corvana::IDCapture::options.timeOutSeconds)};
  world->contract = std::make_unique<devices::HostContractValidator>(promises, world->loop.now());
  std::string pattern = std::filesystem::temp_directory_path() / "recorder-XXXXXX";
  world->folder = mkdtemp(pattern.data());
  world->openFilm = *engine::Film::make(world->loop, world->films, {world->folder, false, {}, {}});
  world->recorder = engine::Recorder::make({world->loop,
                                            world->notificationCenter,
                                            world->analyzer,
                                            nullptr,
                                            world->openFilm,
                                            {},
                                            {60, 100, 240, 320},
                                            {20, 400, 320, 202},
                                            {360, 640},
                                            world.get()});
  world->recorder->setDelegate(world);
  return world;
}

RecorderWorld::~RecorderWorld() {
  std::filesystem::remove_all(folder);
}

void RecorderWorld::film(double seconds) {
  const auto frames = static_cast<int>(seconds * 30);
  for (int i = 0; i < frames; ++i) {
    auto frame = std::make_shared<platform::CMSampleBuffer>();
    frame->presentationTime = loop.now();
    recorder->capturedVideo(frame);
    loop.advance(std::chrono::nanoseconds(33'333'333));
  }
}

void RecorderWorld::note(std::string what) {
  heard.push_back(std::move(what));
  heardAt.push_back(loop.now());
}

void RecorderWorld::update(const corvana::SelfieCaptureState& state) {
  note(engine::eventOf(state).name);
}

void RecorderWorld::update(const corvana::IDCaptureState& state) {
  note(engine::eventOf(state).name);
}

void RecorderWorld::foundLiveFace(const std::optional<platform::CGRect>& frame,
                                  const platform::CGSize&, corvana::VideoCaptureMode) {
  if (!frame) note("liveFaceLost");
}

void RecorderWorld::happened(const engine::RecorderEvent& event) {
  // Both enumerations name their first four kinds alike, in this order.
  contract->observe({loop.now(), static_cast<devices::HostEvent::Kind>(event.kind), event.name});
}

}  // namespace tests
