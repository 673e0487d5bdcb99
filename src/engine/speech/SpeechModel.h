#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "engine/speech/SpeechModelPaths.h"
#include "platform/foundation/Fault.h"

namespace corvana::engine {

/// PocketSphinx with an acoustic model, a dictionary and a language model: turns one utterance
/// after the other into words. One thread at a time.
class SpeechModel {
 public:
  /// Rate of the samples that it hears, in Hz.
  static constexpr int kSampleRate = 16000;

  /// Loads the stock model; when a text is expected, its words are learnt and its pairs of words
  /// are preferred to others. Takes seconds: for a worker.
  static platform::Expected<std::unique_ptr<SpeechModel>> load(const SpeechModelPaths& paths,
                                                               const std::string& expectedText);
  ~SpeechModel();
  SpeechModel(const SpeechModel&) = delete;
  SpeechModel& operator=(const SpeechModel&) = delete;

  /// Forgets the speaker and the room: what follows is heard as by a model just loaded.
  void reset();
  void startUtterance();
  /// Hears 16-bit mono samples; decoding them takes about a third of their duration.
  void process(std::span<const std::int16_t> samples);
  /// Whether someone was speaking at the end of the last samples.
  bool inSpeech() const;
  /// Best guess of the words since `startUtterance`, spelt as in the text or the dictionary.
  std::vector<std::string> words() const;
  /// Takes a second, more careful look at the utterance; `words` then gives the better guess.
  void endUtterance();

 private:
  struct Decoder;
  explicit SpeechModel(std::unique_ptr<Decoder> decoder);

  std::unique_ptr<Decoder> decoder_;
};

}  // namespace corvana::engine
