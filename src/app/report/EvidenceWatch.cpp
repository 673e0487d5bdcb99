#include "app/report/EvidenceWatch.h"

#include <functional>
#include <utility>

namespace corvana::app {
namespace {

class ListenedRecognizer final : public corvana::SpeechRecognizer,
                                 public corvana::SpeechRecognizerDelegate,
                                 public std::enable_shared_from_this<ListenedRecognizer> {
 public:
  using Listener = std::function<void(const platform::SFSpeechRecognitionResult& result)>;

  ListenedRecognizer(std::shared_ptr<corvana::SpeechRecognizer> inner, Listener listener)
      : inner_(std::move(inner)), listener_(std::move(listener)) {}

  bool isAvailable() const override { return inner_->isAvailable(); }
  void setDelegate(std::weak_ptr<corvana::SpeechRecognizerDelegate> delegate) override {
    delegate_ = std::move(delegate);
    inner_->setDelegate(weak_from_this());
  }
  void start() override { inner_->start(); }
  void stop() override { inner_->stop(); }
  void append(const platform::CMSampleBufferRef& samples) override { inner_->append(samples); }

  void speechRecognition(const platform::SFSpeechRecognitionResult& result) override {
    listener_(result);
    if (const auto delegate = delegate_.lock()) delegate->speechRecognition(result);
  }
  void speechRecognition(const corvana::IDError& error) override {
    if (const auto delegate = delegate_.lock()) delegate->speechRecognition(error);
  }

 private:
  const std::shared_ptr<corvana::SpeechRecognizer> inner_;
  const Listener listener_;
  std::weak_ptr<corvana::SpeechRecognizerDelegate> delegate_;
};

}  // namespace

EvidenceWatch::EvidenceWatch(const Reference& reference, std::string text) {
  evidence_.reference = reference;
  evidence_.text = std::move(text);
}

void EvidenceWatch::happened(const engine::RecorderEvent& event) {
  // The next run compares everything anew, and what it does not come to has no evidence.
  if (event.kind == engine::RecorderEvent::Kind::call && event.name == "retry") {
    evidence_ = {.text = std::move(evidence_.text),
                 .heard = {},
                 .spoken = {},
                 .reference = std::move(evidence_.reference),
                 .selfie = {},
                 .front = {},
                 .back = {}};
    bestShare_ = 0;
    selfie_.reset();
    side_.reset();
  }
}

void EvidenceWatch::decided(const corvana::Decision& decision) {
  if (decision.name == "selfieFace") evidence_.selfie = selfie_;
  if (decision.name == "frontFace" || decision.name == "frontText") evidence_.front = side_;
  if (decision.name == "backMrz" || decision.name == "backText") evidence_.back = side_;
}

void EvidenceWatch::heard(const platform::SFSpeechRecognitionResult& result) {
  std::vector<std::string> words;
  for (const auto& segment : result.bestTranscription.segments)
    words.push_back(capture::lowercased(segment.substring));
  const capture::SpokenWordMatch match = capture::matchSpokenWords(words, evidence_.text);
  // As the flow counts: a later, worse guess takes nothing back.
  if (!(match.percentage >= bestShare_)) return;
  bestShare_ = match.percentage;
  evidence_.heard = std::move(words);
  evidence_.spoken = match.ranges;
}

std::shared_ptr<corvana::SpeechRecognizer> listenIn(
    std::shared_ptr<corvana::SpeechRecognizer> inner,
    std::function<void(const platform::SFSpeechRecognitionResult& result)> listener) {
  return std::make_shared<ListenedRecognizer>(std::move(inner), std::move(listener));
}

}  // namespace corvana::app
