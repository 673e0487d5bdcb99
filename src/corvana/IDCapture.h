#pragma once

#include <optional>
#include <string>
#include <variant>

#include "corvana/Appearance.h"
#include "corvana/DetectedData.h"

namespace corvana {

struct AutofillResult {
  std::map<std::string, std::string> fields;
};

/// Progress of reading one side of a card.
struct IDCaptureState {
  struct DetectingBox {};
  struct DetectedBox {
    DetectedData data;
  };
  struct ClassifiedDocument {
    DetectedData data;
  };
  struct Success {
    DetectedData data;
  };
  struct TimedOut {
    DetectedData data;
  };
  struct Failed {
    DetectedData data;
  };
  struct Autofill {
    std::optional<AutofillResult> result;
  };
  struct TooMuchGlare {};
  struct MoveCloser {};
  struct MoveAway {};
  struct AlignRectangle {};
  using Value = std::variant<DetectingBox, DetectedBox, ClassifiedDocument, Success, TimedOut,
                             Failed, Autofill, TooMuchGlare, MoveCloser, MoveAway, AlignRectangle>;

  Value value;
};

/// Hears the progress of document capture; any thread.
class IDCaptureDelegate {
 public:
  virtual ~IDCaptureDelegate() = default;
  virtual void update(const IDCaptureState& state) = 0;
};

/// Tables of document capture: one writer, before the entry.
struct IDCapture {
  /// Which cards are not accepted because they look like copies.
  enum class RejectUnreal {
    off,   ///< none: scores are only reported
    sure,  ///< those of which there is no reasonable doubt
    all,   ///< the suspect ones too, and with them some true cards
  };
  struct Options {
    /// Analyse the camera picture at its full size instead of at most 1280 pixels a side.
    bool capture4K = false;
    /// Seconds from the accepted selfie until cards that were not accepted time out, both sides
    /// together.
    double timeOutSeconds = 30;
    // What a card has to keep to be read; a host that sees for itself tells its user otherwise.
    double leastCardWidth = 0.55;    ///< of the frame's width
    double mostCardWidth = 1.30;     ///< of the frame's width
    double mostCardOffset = 0.30;    ///< of the card's middle from the frame's, in frame widths
    double mostCardRoll = 18;        ///< degrees
    double mostCardTaper = 1.25;     ///< of a side by the opposite one, as a card leans away
    double mostGlare = 0.012;        ///< of the card's area
    double leastSharpness = 0.17;    ///< of the print's edges, 0 to about 0.4
    double leastBrightness = 0.24;   ///< of the lightest tenth, 0 to 1
    double mostCoveredPrint = 0.04;  ///< of the print that was seen before
    RejectUnreal rejectUnreal = RejectUnreal::sure;
    /// Seconds for which a card has to be wrong before the user is told.
    double patienceSeconds = 0.15;
  };
  struct Strings {
    std::string captureFront = "Show the Front of Your ID";
    std::string captureBack = "Show the Back of Your ID";
    std::string useFront = "Show the front side";
    std::string flipToBack = "Turn your ID over";
    std::string frontBackMismatch = "This back does not belong to the front";
    std::string moveCloser = "Move the ID closer";
    std::string moveAway = "Move the ID away";
    std::string tooMuchGlare = "Too much glare";
    std::string alignRectangle = "Align your ID with the frame";
    std::string makeSurePhotoTextVisible = "Make sure photo and text are visible";
    std::string makeSureBarcodeVisible = "Make sure the barcode is visible";
    std::string scanBarcode = "Scanning the barcode";
    // Hints of the host's own, for which no state exists.
    std::string tooDark = "It is too dark to read the ID";
    std::string blurred = "Hold still, the ID is blurred";
    std::string covered = "Take your fingers off the print";
    std::string copy = "Show the ID itself, not a copy of it";
    std::string retryScreenText = "Your ID could not be read. Please try again";
    std::string retryButtonText = "Try Again";
    std::string cancelButtonText = "Cancel";
  };
  struct Images {
    platform::UIImageRef retryScreenImage;
    platform::UIImageRef frontSilhouetteImage;
    platform::UIImageRef backSilhouetteImage;
  };

  static Options options;
  static Strings strings;
  static Colors colors;
  static Fonts fonts;
  static Images images;
  static Layout layout;
};

inline IDCapture::Options IDCapture::options;
inline IDCapture::Strings IDCapture::strings;
inline Colors IDCapture::colors;
inline Fonts IDCapture::fonts;
inline IDCapture::Images IDCapture::images;
inline Layout IDCapture::layout;

}  // namespace corvana
