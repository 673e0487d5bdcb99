#include "engine/speech/PocketSphinxRecognizer.h"

#include <atomic>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/speech/MonoResampler.h"
#include "engine/speech/SpeechModel.h"
#include "engine/speech/Transcriber.h"

namespace corvana::engine {
namespace {

/// The number of no run.
constexpr std::uint64_t kStopped = 0;

/// Sound that may wait to be heard: far more than the building of a model takes. Beyond it the
/// machine is too slow for speech, and memory counts more.
constexpr platform::Duration kMostWaiting = std::chrono::seconds(60);

/// What a chunk of sound takes at most where nothing else is to be done: 0.15 s at an utterance's
/// end, a hundredth of a second else.
constexpr platform::Duration kUsualHearing = std::chrono::milliseconds(200);

platform::Duration soundLength(const platform::CMSampleBuffer& buffer) {
  if (buffer.sampleRate < 1 || buffer.channels < 1) return {};
  const double frames = static_cast<double>(buffer.samples.size()) / buffer.channels;
  return platform::seconds(frames / buffer.sampleRate);
}

}  // namespace

/// The main queue's side: knows the delegate and which run may still reach it.
class PocketSphinxRecognizer::Listener {
 public:
  explicit Listener(platform::RunLoop& loop) : loop_(loop) {}

  void setDelegate(std::weak_ptr<corvana::SpeechRecognizerDelegate> delegate) {
    delegate_ = std::move(delegate);
  }
  void setRun(std::uint64_t run) { run_ = run; }

  template <class Message>
  void deliver(std::uint64_t run, const Message& message) {
    if (run != run_) return;
    platform::callDelegate(loop_, delegate_,
                           [&](auto& delegate) { delegate.speechRecognition(message); });
  }

 private:
  platform::RunLoop& loop_;
  std::weak_ptr<corvana::SpeechRecognizerDelegate> delegate_;
  std::uint64_t run_ = kStopped;
};

/// The work queue's side; the two atomics are shared with the main and the audio queue.
class PocketSphinxRecognizer::Worker {
 public:
  Worker(SpeechModelPaths paths, std::string text, std::shared_ptr<Listener> listener)
      : paths_(std::move(paths)), text_(std::move(text)), listener_(std::move(listener)) {}

  std::uint64_t run() const { return run_; }
  void setRun(std::uint64_t run) { run_ = run; }

  /// Audio queue. False when too much is waiting already.
  bool reserve(platform::Duration length) {
    if (waiting_.load() + length.count() > kMostWaiting.count()) return false;
    waiting_ += length.count();
    return true;
  }

  platform::Block begin(std::uint64_t run) {
    transcriber_.reset();
    if (run != run_) return {};
    build();
    resampler_.reset();
    if (model_) transcriber_.emplace(*model_);
    return complaint(run);
  }

  void end() { transcriber_.reset(); }

  /// Once.
  void build() {
    if (std::exchange(built_, true)) return;
    auto model = SpeechModel::load(paths_, text_);
    if (model) {
      model_ = std::move(*model);
    } else {
      fault_ = std::move(model.error());
    }
  }

  platform::Block hear(std::uint64_t run, const platform::CMSampleBuffer& buffer) {
    waiting_ -= soundLength(buffer).count();
    if (run != run_ || !transcriber_) return {};
    std::vector<platform::SFSpeechRecognitionResult> results;
    transcriber_->append(resampler_.convert(buffer),
                         [&](const auto& result) { results.push_back(result); });
    if (results.empty()) return {};
    return [listener = listener_, run, results = std::move(results)] {
      for (const auto& result : results)
        listener->deliver(run, result);
    };
  }

 private:
  /// Tells why the model could not be built, once.
  platform::Block complaint(std::uint64_t run) {
    const auto fault = std::exchange(fault_, std::nullopt);
    if (!fault) return {};
    return [listener = listener_, run, error = corvana::IDError(*fault)] {
      listener->deliver(run, error);
    };
  }

  const SpeechModelPaths paths_;
  const std::string text_;
  const std::shared_ptr<Listener> listener_;
  std::atomic<std::uint64_t> run_{kStopped};
  std::atomic<platform::Duration::rep> waiting_{0};

  bool built_ = false;
  std::unique_ptr<SpeechModel> model_;
  std::optional<platform::Fault> fault_;  ///< that was not told yet
  MonoResampler resampler_{SpeechModel::kSampleRate};
  std::optional<Transcriber> transcriber_;
};

PocketSphinxRecognizer::PocketSphinxRecognizer(platform::RunLoop& loop, SpeechModelPaths paths,
                                               std::string text)
    : paths_(std::move(paths)),
      queue_(loop.makeWorkQueue("SpeechRecognizerQueue", platform::QualityOfService::utility,
                                kUsualHearing)),
      listener_(std::make_shared<Listener>(loop)),
      worker_(std::make_shared<Worker>(paths_, std::move(text), listener_)) {}

PocketSphinxRecognizer::~PocketSphinxRecognizer() {
  stop();
}

void PocketSphinxRecognizer::prepare() {
  queue_->async([worker = worker_] {
    worker->build();
    return platform::Block();
  });
}

bool PocketSphinxRecognizer::isAvailable() const {
  return !paths_.findFault();
}

void PocketSphinxRecognizer::setDelegate(
    std::weak_ptr<corvana::SpeechRecognizerDelegate> delegate) {
  listener_->setDelegate(std::move(delegate));
}

void PocketSphinxRecognizer::start() {
  const std::uint64_t run = ++lastRun_;
  listener_->setRun(run);
  worker_->setRun(run);
  queue_->async([worker = worker_, run] { return worker->begin(run); });
}

void PocketSphinxRecognizer::stop() {
  listener_->setRun(kStopped);
  worker_->setRun(kStopped);
  queue_->async([worker = worker_] {
    worker->end();
    return platform::Block();
  });
}

void PocketSphinxRecognizer::append(const platform::CMSampleBufferRef& sampleBuffer) {
  const std::uint64_t run = worker_->run();
  if (run == kStopped || !sampleBuffer || !worker_->reserve(soundLength(*sampleBuffer))) return;
  queue_->async([worker = worker_, run, sampleBuffer] { return worker->hear(run, *sampleBuffer); });
}

}  // namespace corvana::engine
