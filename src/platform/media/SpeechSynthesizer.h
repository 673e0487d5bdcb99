#pragma once

#include <string>

namespace corvana::platform {

/// A voice that speaks one utterance at a time. Main queue; both calls return at once.
class SpeechSynthesizer {
 public:
  virtual ~SpeechSynthesizer() = default;
  /// In place of what is being said.
  virtual void speak(const std::string& utterance) = 0;
  virtual void stopSpeaking() = 0;
};

}  // namespace corvana::platform
