#pragma once

#include <atomic>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/recorder/Recorder.h"
#include "platform/media/AssetWriter.h"
#include "support/Scratch.h"

namespace corvana::tests {

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
  std::string fault;                           ///< when not empty, no film can be made
  std::optional<platform::Fault> appendFault;  ///< of every sample from now on
  int waiting = 0;                             ///< pictures in front of the encoder

  tl::expected<std::shared_ptr<platform::AssetWriter>, platform::Fault> make(
      const std::filesystem::path& path, const std::optional<platform::WriterSettings>&,
      const std::optional<platform::WriterSettings>&) override {
    if (!fault.empty()) return tl::unexpected(platform::Fault{fault});
    writeBytes(path, "film");
    log.push_back("open " + path.filename().string());
    return std::make_shared<Film>(*this);
  }

 private:
  struct Film final : platform::AssetWriter {
    explicit Film(FakeFilms& maker) : films(maker) {}
    bool appendVideo(const platform::CMSampleBufferRef&) override {
      ++received;
      if (films.appendFault) return false;
      return ++frames > 0;
    }
    bool appendAudio(const platform::CMSampleBufferRef&) override { return !films.appendFault; }
    tl::expected<void, platform::Fault> finish() override {
      films.log.emplace_back("finish");
      return {};
    }
    std::optional<platform::Fault> fault() const override { return films.appendFault; }
    int framesWaiting() const override { return films.waiting; }
    platform::AssetWriterCounters counters() const override {
      return {.videoFramesReceived = received, .videoFramesWritten = frames, .secondsWritten = 1};
    }

    FakeFilms& films;
    std::atomic<std::uint64_t> received = 0;
    std::atomic<std::uint64_t> frames = 0;
  };
};

}  // namespace corvana::tests
