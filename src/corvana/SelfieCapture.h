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
  /// What it takes for a face to be believed alive.
  enum class Liveness {
    off,      ///< nothing: signs are only reported
    passive,  ///< a sign of life, and no sign of fraud
    active,   ///< the same, and three tasks that are drawn for each run
  };
  struct Options {
    Liveness liveness = Liveness::passive;
    /// Seconds for which a face is watched before it can be believed.
    double livenessWatchSeconds = 3;
    /// Seconds after which a face without a sign of life is asked for one.
    double livenessAskSeconds = 2.5;
    /// Share of the eyes' usual height over width below which both count as closed.
    double livenessBlinkShare = 0.91;
    /// Sine of the turn that a face's relief must be sure to have made against itself.
    double livenessRelief = 0.02;
    /// Difference to an earlier stretch of pictures, over that from one picture to the next, below
    /// which the stretch is the same one again.
    double livenessRepetition = 0.7;
    /// Share of three straight edges around the face that must be seen for a print or display.
    double livenessEdges = 0.88;
    /// Share of the looks with a voice in which the lips rest, above which the voice is taken for
    /// somebody else's.
    double livenessLipsAtRest = 0.5;
    /// Seconds for each task, and for each way back to rest; the selfie's time-out is so much
    /// longer for each task that there is, and once more for one that may be missed.
    double livenessTaskSeconds = 5;
    /// Degrees from rest by which a head that is to turn has to turn.
    double livenessTurnDegrees = 12;
    /// Degrees from rest by which a head that is to look up has to be lifted.
    double livenessLookUpDegrees = 8;
    /// Times the width at rest that a face that is to come nearer has to have.
    double livenessNearerWidth = 1.15;
    /// Greatest distance of unit-length embeddings at which a face is still the selfie's.
    double samePersonThreshold = 0.42;
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
    // What a `DetectedIssue` asks of a face that is fit for a selfie, but not known to be alive.
    std::string blinkEyes = "Blink with both eyes";
    std::string turnHead = "Turn your head a little";
    // The tasks of the active mode.
    std::string turnLeft = "Turn your head to your left";
    std::string turnRight = "Turn your head to your right";
    std::string lookUp = "Look up";
    std::string comeNearer = "Come nearer";
    std::string blinkTwice = "Blink twice, quickly";
    std::string showYourself = "Show your own face, not a picture of it";
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
