#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/RunLoop.h"
#include "platform/media/SpeechSynthesizer.h"

namespace corvana::devices {

class Loudspeaker;

/// Speaks through the machine's loudspeaker with a voice of eSpeak NG. Main queue.
class EspeakSynthesizer final : public platform::SpeechSynthesizer {
 public:
  /// Why it can't be heard on this machine, and the cure; absent when it can.
  static std::optional<std::string> fault();

  /// `voice` is the code of a language, as "de".
  EspeakSynthesizer(platform::RunLoop& loop, std::string voice);

  void speak(const std::string& utterance) override;
  void stopSpeaking() override;

  /// Rate of what `samples` gives, in Hz.
  static constexpr int kSampleRate = 22050;
  /// The utterance as mono sound; empty when the voice can't be had. Blocks for some hundredths of
  /// a second. One thread at a time.
  static std::vector<std::int16_t> samples(const std::string& utterance, const std::string& voice);

 private:
  std::string voice_;
  std::shared_ptr<platform::DispatchQueue> queue_;
  std::shared_ptr<Loudspeaker> loudspeaker_;
};

}  // namespace corvana::devices
