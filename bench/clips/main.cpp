// Plays clips of cards that are suddenly held wrong to the recorder, in virtual or real time, and
// prints a line of JSON for each: when the host told what was wrong, and what it told before.

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <string_view>

#include <nlohmann/json.hpp>

#include "Clip.h"
#include "ProgramClock.h"
#include "app/run/FlowLoop.h"
#include "corvana/StateNames.h"
#include "engine/recorder/Recorder.h"
#include "engine/recorder/VisionFrameAnalyzer.h"
#include "engine/vision/MatViews.h"
#include "platform/foundation/RandomSource.h"
#include "platform/foundation/RunLoop.h"

namespace corvana::bench {
namespace {

constexpr double kFrameInterval = 0.1;  // the recorder looks at ten pictures a second
constexpr double kAfter = 1.0;

/// Films that nobody wants.
struct NoFilms final : platform::AssetWriterFactory {
  struct Film final : platform::AssetWriter {
    bool appendVideo(const platform::CMSampleBufferRef&) override { return true; }
    bool appendAudio(const platform::CMSampleBufferRef&) override { return true; }
    platform::Expected<void> finish() override { return {}; }
    std::optional<platform::Fault> fault() const override { return {}; }
    int framesWaiting() const override { return 0; }
    platform::AssetWriterCounters counters() const override { return {}; }
  };
  platform::Expected<std::shared_ptr<platform::AssetWriter>> make(
      const std::filesystem::path&, const std::optional<platform::WriterSettings>&,
      const std::optional<platform::WriterSettings>&) override {
    return std::make_shared<Film>();
  }
};

/// Notes the processor time of the longest look: for so long at least no other begins.
class TimedLooks final : public engine::FrameAnalyzer {
 public:
  explicit TimedLooks(std::shared_ptr<engine::FrameAnalyzer> analyzer)
      : analyzer_(std::move(analyzer)) {}
  engine::Observation analyze(const platform::CMSampleBufferRef& frame,
                              const engine::AnalysisTask& task) override {
    const double start = secondsOn(CLOCK_THREAD_CPUTIME_ID);
    auto observation = analyzer_->analyze(frame, task);
    longest_ = std::max(longest_.load(), secondsOn(CLOCK_THREAD_CPUTIME_ID) - start);
    return observation;
  }
  double takeLongest() { return longest_.exchange(0); }

 private:
  std::shared_ptr<engine::FrameAnalyzer> analyzer_;
  std::atomic<double> longest_ = 0;
};

struct Told {
  double time;
  std::string what;
};

/// All that the host tells of the card.
struct Ear final : engine::RecorderObserver {
  Ear(const platform::RunLoop& clock, platform::TimePoint from) : loop(clock), start(from) {}
  void happened(const engine::RecorderEvent& event) override {
    using Kind = engine::RecorderEvent::Kind;
    if (event.kind != Kind::state && event.kind != Kind::hint) return;
    told.push_back({platform::inSeconds(loop.now() - start), event.name});
  }
  const platform::RunLoop& loop;
  platform::TimePoint start;
  std::vector<Told> told;
};

const std::map<Cause, std::string> kWords{{Cause::tooNear, "idMoveAway"},
                                          {Cause::tooFar, "idMoveCloser"},
                                          {Cause::partlyOutside, "alignRectangle"},
                                          {Cause::glare, "tooMuchGlare"},
                                          {Cause::blur, "blurred"},
                                          {Cause::dark, "tooDark"},
                                          {Cause::finger, "covered"},
                                          {Cause::glareOnWhite, "tooMuchGlare"},
                                          {Cause::strongLight, "nothing"}};

/// A clip's pictures, made before they are played, with their times.
std::vector<std::pair<double, platform::PixelBufferRef>> picturesOf(Clip& clip, double phase) {
  std::vector<std::pair<double, platform::PixelBufferRef>> pictures;
  for (double t = phase; t < clip.wrongAt() + kAfter; t += kFrameInterval)
    pictures.emplace_back(t, engine::pixelBufferFrom(clip.picture(t)));
  return pictures;
}

std::vector<Told> play(Clip& clip, const std::shared_ptr<engine::FrameAnalyzer>& analyzer,
                       double phase, platform::DrivenLoop& loop) {
  const auto pictures = picturesOf(clip, phase);
  platform::NotificationCenter notifications;
  NoFilms films;
  const platform::TimePoint start = loop.now();
  Ear ear(loop, start);
  auto film =
      engine::Film::make(loop, films, {std::filesystem::temp_directory_path(), false, {}, {}, {}});
  platform::SeededRandom randomness(0);
  auto recorder = engine::Recorder::make({.loop = loop,
                                          .notificationCenter = notifications,
                                          .randomness = randomness,
                                          .analyzer = analyzer,
                                          .speechRecognizer = nullptr,
                                          .film = *film,
                                          .captureSession = {},
                                          .selfieOverlayFrame = {60, 100, 240, 320},
                                          .idOverlayFrame = {20, 400, 320, 202},
                                          .screenSize = {360, 640},
                                          .observer = &ear});
  recorder->setMode(corvana::VideoCaptureMode::idCapture);
  const auto wait = [&loop](platform::TimePoint until) {
    loop.runUntil([] { return false; }, until);
  };
  for (const auto& [seconds, image] : pictures) {
    wait(start + platform::seconds(seconds));
    auto frame = std::make_shared<platform::CMSampleBuffer>();
    frame->presentationTime = loop.now();
    frame->image = image;
    recorder->capturedVideo(frame);
  }
  wait(loop.now() + platform::seconds(kFrameInterval));
  recorder.reset();
  wait(loop.now() + platform::seconds(kFrameInterval));
  return ear.told;
}

/// Has the analyzer look at a picture of another run, so that nothing is known of the last clip.
void forget(engine::FrameAnalyzer& analyzer) {
  auto nothing = std::make_shared<platform::CMSampleBuffer>();
  nothing->image = engine::pixelBufferFrom(cv::Mat(128, 72, CV_8UC3, cv::Scalar::all(0)));
  engine::AnalysisTask task;
  task.run = -2;
  analyzer.analyze(nothing, task);
}

nlohmann::ordered_json account(const Clip& clip, Cause cause, std::uint64_t seed,
                               const std::vector<Told>& told) {
  nlohmann::ordered_json line{{"cause", kCauseNames[static_cast<std::size_t>(cause)]},
                              {"seed", seed},
                              {"seconds", nullptr},
                              {"before", nlohmann::json::array()},
                              {"after", nlohmann::json::array()},
                              {"read", false},
                              {"successes", 0}};
  const std::string& wanted = kWords.at(cause);
  for (const Told& one : told) {
    const double after = one.time - clip.wrongAt();
    const bool isComplaint =
        std::ranges::any_of(kWords, [&](const auto& word) { return word.second == one.what; });
    if (one.what == "idSuccess" && one.time < clip.wrongFrom()) line["read"] = true;
    if (one.what == "idSuccess" && after > 0.1)
      line["successes"] = line["successes"].get<int>() + 1;
    if (one.time < clip.wrongFrom()) {
      if (isComplaint) line["before"].push_back(one.what);
    } else if (one.what == wanted) {
      if (line["seconds"].is_null()) line["seconds"] = std::round(after * 1000) / 1000;
    } else if (isComplaint) {
      line["after"].push_back(one.what);
    }
  }
  return line;
}

int run(int count, std::uint64_t seed, const std::string& only, bool inRealTime) {
  auto matter = ClipMatter::read(CORVANA_PHOTO_DATA, CORVANA_PORTRAITS, CORVANA_ENGINE_RESOURCES);
  if (!matter) {
    std::cerr << "guidance-clips: " << matter.error() << '\n';
    return 3;
  }
  const std::filesystem::path models = CORVANA_ENGINE_RESOURCES;
  auto tables = engine::loadDocumentTables({models / "documents"});
  if (!tables) {
    std::cerr << "guidance-clips: " << tables.error().sentence << '\n';
    return 3;
  }
  // In real time the looks take as long as they take.
  const auto loop = app::makeLoop(inRealTime ? app::TimeKind::real : app::TimeKind::media);
  auto analyzer = engine::VisionFrameAnalyzer::load(
      {.faceDetector = models / "face_detection_short_range.tflite",
       .faceLandmarks = models / "face_landmark.tflite",
       .faceEmbedding = CORVANA_FACE_MODEL,
       .text = engine::NetworkTextReader::Models::inFolder(models),
       .documents = std::make_shared<engine::DocumentTables>(std::move(*tables)),
       .readQueue = engine::VisionFrameAnalyzer::makeReadQueue(*loop)});
  if (!analyzer) {
    std::cerr << "guidance-clips: " << analyzer.error().sentence << '\n';
    return 3;
  }
  const auto looks = std::make_shared<TimedLooks>(*analyzer);
  int runs = 0;
  for (std::size_t cause = 0; cause < std::size(kCauseNames); ++cause) {
    if (!only.empty() && only != kCauseNames[cause]) continue;
    for (int i = 0; i < count; ++i, ++runs) {
      const std::uint64_t number = seed * 1000 + static_cast<std::uint64_t>(i);
      Clip clip(*matter, static_cast<Cause>(cause), number);
      // Where the cause falls between two looks is chance.
      const double phase = 0.01 * static_cast<double>(number % 10);
      forget(*looks);
      const auto told = play(clip, looks, phase, *loop);
      auto line = account(clip, static_cast<Cause>(cause), number, told);
      line["longestLook"] = std::round(looks->takeLongest() * 1000) / 1000;
      std::cout << line.dump() << std::endl;
    }
  }
  return 0;
}

}  // namespace
}  // namespace corvana::bench

int main(int argc, char** argv) {
  const int count = argc > 1 ? std::atoi(argv[1]) : 20;
  const auto seed = static_cast<std::uint64_t>(argc > 2 ? std::atoll(argv[2]) : 1);
  const bool inRealTime = argc > 4 && std::string_view(argv[4]) == "real";
  return corvana::bench::run(count, seed, argc > 3 ? argv[3] : "", inRealTime);
}
