#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <tl/expected.hpp>

#include "corvana/CaptureSession.h"
#include "corvana/IDCapture.h"
#include "corvana/IDError.h"
#include "corvana/SelfieCapture.h"
#include "corvana/SpeechRecognizer.h"
#include "corvana/VideoWriter.h"
#include "platform/geometry/Geometry.h"
#include "platform/media/WriterSettings.h"

namespace corvana {

/// What the recorder is looking for at the moment.
enum class VideoCaptureMode { selfieCapture, idCapture, readingText, liveFaceLost };

/// Hears everything a recorder reports; any thread.
class VideoCaptureDelegate : public SelfieCaptureDelegate, public IDCaptureDelegate {
 public:
  using SelfieCaptureDelegate::update;
  using IDCaptureDelegate::update;
  /// The live face in a camera picture of `fullSize` pixels; absent when it is lost.
  virtual void foundLiveFace(const std::optional<platform::CGRect>& frame,
                             const platform::CGSize& fullSize, VideoCaptureMode mode) = 0;
};

/// The recorder: writes the film, watches the live face, and runs selfie and document capture on
/// the camera's frames. docs/host-contract.md says what it owes its delegate. Main queue, except
/// for the frames (capture queue) and the two accessors that the audio queue uses as well.
class VideoCapture : public CaptureSessionDelegate {
 public:
  struct Options {
    /// Greatest embedding distance at which the live face is the one on the card.
    float idToSelfieMatchThreshold = 0.44F;
    /// Greatest embedding distance at which two pictures of the card show the same photo.
    float idToIdPhotoMatchThreshold = 0.44F;
    /// Greatest share of characters that may differ between two readings of the front.
    float frontLevenshteinThreshold = 0.4F;
    /// The same for a back without a machine-readable zone.
    float backLevenshteinThreshold = 0.4F;
    /// Seconds to read the text aloud.
    int readTextCountdownSeconds = 20;
    /// Least share of the text's words that must be heard.
    float readTextWordMatchThreshold = 0.6F;
    /// Seconds that the live face may be out of sight once the selfie was accepted. A hand that
    /// turns a card over passes before the face for less than one.
    double liveFaceLostSeconds = 2;
    bool isDebugMode = false;
  };
  struct Strings {
    std::string doneButton = "Done";
    std::string faceDoesNotMatch = "The face does not match the ID";
    std::string idDoesNotMatch = "This is not the same ID";
  };
  static Options options;
  static Strings strings;

  using StopCompletion = std::function<void(const tl::expected<FileURL, IDError>&)>;

  /// Held weakly.
  virtual void setDelegate(std::weak_ptr<VideoCaptureDelegate> delegate) = 0;
  /// Null when the host has none. Main and audio queue: the same object for the recorder's life.
  virtual SpeechRecognizer* speechRecognizer() = 0;
  /// Audio queue.
  virtual VideoWriter& videoWriter() = 0;
  virtual VideoCaptureMode mode() const = 0;
  /// `mode()` gives it at once.
  virtual void setMode(VideoCaptureMode mode) = 0;
  /// Ends the film; the completion (may be null) comes once, on the main queue. Safe to call again.
  virtual void stopVideoWriter(StopCompletion completion) = 0;
  /// Starts a new film, the selfie mode, fresh time-outs and speech from nothing.
  virtual void retry() = 0;
  /// A card of another type than the front's is in view.
  virtual void typeMismatch() = 0;
};

inline VideoCapture::Options VideoCapture::options;
inline VideoCapture::Strings VideoCapture::strings;

}  // namespace corvana
