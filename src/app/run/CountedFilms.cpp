#include "app/run/CountedFilms.h"

#include <mutex>

#include "app/record/Files.h"

namespace corvana::app {
namespace {

class CountedFilm final : public platform::AssetWriter {
 public:
  bool appendVideo(const platform::CMSampleBufferRef& sample) override {
    const std::lock_guard lock(mutex_);
    if (ended_) return false;
    if (counters_.videoFramesReceived == 0) start_ = sample->presentationTime;
    ++counters_.videoFramesReceived;
    ++counters_.videoFramesWritten;
    counters_.secondsWritten =
        platform::inSeconds(sample->presentationTime + sample->duration - start_);
    return true;
  }
  bool appendAudio(const platform::CMSampleBufferRef&) override {
    const std::lock_guard lock(mutex_);
    if (ended_) return false;
    ++counters_.audioBuffersReceived;
    return true;
  }
  platform::Expected<void> finish() override {
    const std::lock_guard lock(mutex_);
    ended_ = true;
    return {};
  }
  std::optional<platform::Fault> fault() const override { return {}; }
  int framesWaiting() const override { return 0; }
  platform::AssetWriterCounters counters() const override {
    const std::lock_guard lock(mutex_);
    return counters_;
  }

 private:
  mutable std::mutex mutex_;
  platform::TimePoint start_{};
  platform::AssetWriterCounters counters_;
  bool ended_ = false;
};

}  // namespace

platform::Expected<std::shared_ptr<platform::AssetWriter>> CountedFilms::make(
    const std::filesystem::path& path, const std::optional<platform::WriterSettings>&,
    const std::optional<platform::WriterSettings>&) {
  if (auto written = writeFile(path, {}); !written) return tl::unexpected(written.error());
  return std::make_shared<CountedFilm>();
}

}  // namespace corvana::app
