#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "engine/speech/SpeechModel.h"
#include "platform/media/Speech.h"

namespace corvana::engine {

/// Listens without end: cuts the sound into utterances at silences and keeps the transcript of all
/// of them. Samples are decoded in chunks of fixed size, so that results depend on the samples
/// alone and not on how they were delivered. One thread at a time.
class Transcriber {
 public:
  /// Receives the whole transcript, final when an utterance has ended.
  using Report = std::function<void(const platform::SFSpeechRecognitionResult& result)>;

  /// Listens with a model, which must outlive this object.
  explicit Transcriber(SpeechModel& model);
  ~Transcriber();
  Transcriber(const Transcriber&) = delete;
  Transcriber& operator=(const Transcriber&) = delete;

  /// Hears samples at `SpeechModel::kSampleRate`, and calls `report` whenever the transcript
  /// changed.
  void append(std::span<const std::int16_t> samples, const Report& report);

 private:
  void decodeChunk(const Report& report);
  platform::SFSpeechRecognitionResult transcript(bool isFinal) const;

  SpeechModel& model_;
  std::vector<std::int16_t> chunk_;
  std::vector<std::string> finished_;
  std::vector<std::string> current_;
  bool heardSpeech_ = false;
};

}  // namespace corvana::engine
