#pragma once

#include <optional>
#include <string>
#include <variant>

#include "corvana/Appearance.h"
#include "corvana/Selfie.h"

namespace corvana {

/// Progress of selfie capture.
struct SelfieCaptureState {
  struct DetectedIssue {
    std::string message;
  };
  struct Success {
    Selfie selfie;
  };
  struct TimedOut {
    std::optional<Selfie> selfie;
  };
  struct Failed {
    std::optional<Selfie> selfie;
    std::optional<float> score;
  };
  struct DetectingFace {};
  struct MultipleFacesDetected {};
  struct MoveCloser {};
  struct MoveAway {};
  struct AlignFace {};
  struct CapturingFace {};
  using Value = std::variant<DetectedIssue, Success, TimedOut, Failed, DetectingFace,
                             MultipleFacesDetected, MoveCloser, MoveAway, AlignFace, CapturingFace>;

  Value value;
};

/// Hears the progress of selfie capture; any thread.
class SelfieCaptureDelegate {
 public:
  virtual ~SelfieCaptureDelegate() = default;
  virtual void update(const SelfieCaptureState& state) = 0;
};

/// Tables of selfie capture: one writer, before the entry.
struct SelfieCapture {
  struct Options {
    /// Analyse the camera picture at its full size instead of at most 1280 pixels a side.
    bool capture4K = false;
    /// Seconds from the start of a run until an unaccepted selfie times out.
    double timeOutSeconds = 20;
  };
  struct Strings {
    std::string captureSelfie = "Take a Selfie";
    std::string moveCloser = "Move closer";
    std::string moveAway = "Move away";
    std::string alignOval = "Center your face in the oval";
    std::string multipleFacesDetected = "Only one face, please";
    std::string capturingFace = "Hold still";
    std::string realFace = "Face accepted";
    // What a `DetectedIssue` says of a face that is in its place but not fit for a selfie.
    std::string showWholeFace = "Show your whole face";
    std::string tooDark = "It is too dark here";
    std::string tooBright = "It is too bright here";
    std::string blurred = "Hold still, the picture is blurred";
    std::string lookStraight = "Look straight into the camera";
    std::string openEyes = "Open your eyes";
    std::string retryScreenText = "Your face could not be captured. Please try again";
    std::string retryButtonText = "Try Again";
    std::string cancelButtonText = "Cancel";
  };
  struct Images {
    platform::UIImageRef retryScreenImage;
  };

  static Options options;
  static Strings strings;
  static Colors colors;
  static Fonts fonts;
  static Images images;
  static Layout layout;
};

inline SelfieCapture::Options SelfieCapture::options;
inline SelfieCapture::Strings SelfieCapture::strings;
inline Colors SelfieCapture::colors;
inline Fonts SelfieCapture::fonts;
inline SelfieCapture::Images SelfieCapture::images;
inline Layout SelfieCapture::layout;

}  // namespace corvana
