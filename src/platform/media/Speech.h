#pragma once

#include <functional>
#include <string>
#include <vector>

namespace platform {

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

/// Asks for leave to recognise speech; the answer may come on any thread, once.
class SpeechAuthorization {
 public:
  virtual ~SpeechAuthorization() = default;
  virtual void request(
      std::function<void(SFSpeechRecognizerAuthorizationStatus status)> answer) = 0;
};

}  // namespace platform
