#pragma once

#include <memory>

#include "corvana/IDError.h"
#include "platform/media/SampleBuffer.h"
#include "platform/media/Speech.h"

namespace corvana {

/// Hears what the recogniser understood. Called on the main queue only.
class SpeechRecognizerDelegate {
 public:
  virtual ~SpeechRecognizerDelegate() = default;
  virtual void speechRecognition(const platform::SFSpeechRecognitionResult& result) = 0;
  virtual void speechRecognition(const IDError& error) = 0;
};

/// Turns microphone samples into words.
class SpeechRecognizer {
 public:
  virtual ~SpeechRecognizer() = default;
  /// Model and library can be loaded; says nothing about whether the model is built yet. Main
  /// queue, while a screen appears: soon done.
  virtual bool isAvailable() const = 0;
  /// Held weakly. Main queue.
  virtual void setDelegate(std::weak_ptr<SpeechRecognizerDelegate> delegate) = 0;
  /// Begins with an empty transcript. Main queue; a second start starts afresh.
  virtual void start() = 0;
  /// Main queue; harmless when not started. No result is delivered afterwards.
  virtual void stop() = 0;
  /// Audio queue. Dropped when not started.
  virtual void append(const platform::CMSampleBufferRef& sampleBuffer) = 0;
};

}  // namespace corvana
