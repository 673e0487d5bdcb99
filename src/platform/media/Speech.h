#pragma once

#include <functional>
#include <string>
#include <vector>

namespace corvana::platform {

struct SFTranscriptionSegment {
  std::string substring;
};

struct SFTranscription {
  std::vector<SFTranscriptionSegment> segments;
};

/// What a recogniser has heard since its start, best guess; each result replaces the one before.
struct SFSpeechRecognitionResult {
  SFTranscription bestTranscription;
  bool isFinal = false;
};

enum class SFSpeechRecognizerAuthorizationStatus { notDetermined, denied, restricted, authorized };

/// Asks for leave to recognise speech. Main queue. The answer comes once, on any thread, perhaps
/// before `request` returns. The capture screen asks each time that it appears: a user who has
/// answered is not to be asked again.
class SpeechAuthorization {
 public:
  virtual ~SpeechAuthorization() = default;
  virtual void request(
      std::function<void(SFSpeechRecognizerAuthorizationStatus status)> answer) = 0;
};

}  // namespace corvana::platform
