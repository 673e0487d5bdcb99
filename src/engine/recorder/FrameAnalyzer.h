#pragma once

#include <optional>
#include <string>

#include "corvana/CaptureSession.h"
#include "corvana/DetectedData.h"
#include "corvana/Selfie.h"
#include "corvana/VideoCapture.h"
#include "engine/document/CardFinder.h"
#include "engine/document/DocumentClassifier.h"
#include "engine/selfie/SelfieVerdict.h"
#include "platform/foundation/Fault.h"
#include "platform/foundation/Time.h"
#include "platform/geometry/Geometry.h"
#include "platform/media/SampleBuffer.h"

namespace engine {

/// What to look for in a frame.
struct AnalysisTask {
  /// Counts the runs of a flow: an observation of a run that is over is dropped.
  int run = 0;
  corvana::VideoCaptureMode mode = corvana::VideoCaptureMode::selfieCapture;
  corvana::CaptureMode captureMode = corvana::CaptureMode::standard;
  /// Overlay frames on the screen, in points, and the screen's size.
  platform::CGRect selfieOverlayFrame;
  platform::CGRect idOverlayFrame;
  platform::CGSize screenSize;
};

/// What was measured on a face, each 0 to 1.
struct FaceMeasures {
  float leftEyeOpen = 0;
  float rightEyeOpen = 0;
  float livenessScore = 0;
};

/// A frame seen as a selfie.
struct SelfieView {
  SelfieVerdict verdict = SelfieVerdict::noFace;
  std::string issue;  ///< with `SelfieVerdict::issue`
  /// The frame and its face crop, with `SelfieVerdict::good`.
  std::optional<corvana::Selfie> selfie;
  double sharpness = 0;  ///< of the face; comparable between frames of a run
  /// Absent unless a face is in place.
  std::optional<FaceMeasures> measures;
};

/// A frame seen as a picture of a card.
struct DocumentView {
  CardVerdict verdict = CardVerdict::none;
  /// Only judged when a card is found and would be read.
  bool tooMuchGlare = false;
  /// Bounding box of the card, in the analysed picture.
  std::optional<platform::CGRect> location;
  /// What was read, when this frame was read.
  std::optional<corvana::DetectedData> reading;
  /// With a reading: bounding box of the face in the card's photo, in the analysed picture; absent
  /// when there is none.
  std::optional<platform::CGRect> portrait;
  /// With a reading.
  std::optional<FamilyMatches> familyMatches;
};

/// What one frame shows.
struct Observation {
  AnalysisTask task;
  platform::TimePoint frameTime;
  platform::CGSize fullSize;  ///< of the analysed picture, pixels
  /// The live face; absent when it is not seen in this frame.
  std::optional<platform::CGRect> liveFace;
  platform::Duration liveFaceLostFor{};
  std::optional<SelfieView> selfie;      ///< in the selfie mode
  std::optional<DocumentView> document;  ///< in the document mode
};

/// Looks at frames, one at a time, on one queue. It remembers what it needs to follow the live face
/// and to choose the frames worth reading; the judgement over time is the recorder's.
class FrameAnalyzer {
 public:
  virtual ~FrameAnalyzer() = default;
  /// False while its models are being loaded: frames are not looked at before. Any thread.
  virtual bool isReady() const { return true; }
  /// Why it will never be ready. Main queue.
  virtual std::optional<platform::Fault> fault() const { return {}; }
  virtual Observation analyze(const platform::CMSampleBufferRef& frame,
                              const AnalysisTask& task) = 0;
};

}  // namespace engine
