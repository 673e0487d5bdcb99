#pragma once

#include <memory>
#include <string>

#include "app/report/Evidence.h"
#include "corvana/Decision.h"
#include "corvana/SpeechRecognizer.h"
#include "engine/recorder/RecorderObserver.h"

namespace corvana::app {

/// Keeps what each decision of the flow was about. Main queue.
class EvidenceWatch final : public engine::RecorderObserver {
 public:
  EvidenceWatch(const Reference& reference, std::string text);

  /// Of the last run of the flow.
  const Evidence& evidence() const { return evidence_; }

  void happened(const engine::RecorderEvent& event) override;
  void selfieTaken(const corvana::Selfie& selfie) override { selfie_ = selfie; }
  void cardRead(const corvana::DetectedData& side) override { side_ = side; }
  void decided(const corvana::Decision& decision);
  void heard(const platform::SFSpeechRecognitionResult& result);

 private:
  Evidence evidence_;
  float bestShare_ = 0;  ///< of the text's words
  // What a decision that comes next is about.
  std::optional<corvana::Selfie> selfie_;
  std::optional<corvana::DetectedData> side_;
};

/// A recogniser that lets somebody listen in: what `inner` hears is told to `listener` before it
/// goes to the delegate. Main queue, but for the samples.
std::shared_ptr<corvana::SpeechRecognizer> listenIn(
    std::shared_ptr<corvana::SpeechRecognizer> inner,
    std::function<void(const platform::SFSpeechRecognitionResult& result)> listener);

}  // namespace corvana::app
