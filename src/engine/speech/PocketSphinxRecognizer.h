#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "corvana/SpeechRecognizer.h"
#include "engine/speech/SpeechModelPaths.h"
#include "platform/foundation/RunLoop.h"

namespace corvana::engine {

/// Hears the reader with PocketSphinx. The model is built on a queue of its own, at the first
/// `start` if nobody had it built before; sound that comes meanwhile is kept and heard afterwards.
/// Words are reported as the text spells them, in lower case. A model that cannot be built is
/// reported once.
class PocketSphinxRecognizer final : public corvana::SpeechRecognizer {
 public:
  /// Makes a recogniser on a loop that outlives it. `text` is what will be read aloud: its words
  /// are expected, others are still heard; empty means the stock language model. Main queue.
  PocketSphinxRecognizer(platform::RunLoop& loop, SpeechModelPaths paths, std::string text);
  ~PocketSphinxRecognizer() override;

  /// Begins to build the model, for those who need it soon. Main queue.
  void prepare();

  bool isAvailable() const override;
  void setDelegate(std::weak_ptr<corvana::SpeechRecognizerDelegate> delegate) override;
  void start() override;
  void stop() override;
  void append(const platform::CMSampleBufferRef& sampleBuffer) override;

 private:
  class Listener;
  class Worker;

  const SpeechModelPaths paths_;
  const std::shared_ptr<platform::WorkQueue> queue_;
  const std::shared_ptr<Listener> listener_;
  const std::shared_ptr<Worker> worker_;
  std::uint64_t lastRun_ = 0;
};

}  // namespace corvana::engine
