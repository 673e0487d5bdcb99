#pragma once

#include <optional>
#include <string>

#include "corvana/CaptureSession.h"
#include "corvana/DetectedData.h"
#include "corvana/Selfie.h"
#include "corvana/VideoCapture.h"
#include "engine/document/DocumentClassifier.h"
#include "engine/document/guidance/CardQuality.h"
#include "engine/document/outline/CardFinder.h"
#include "engine/selfie/Challenge.h"
#include "engine/selfie/Liveness.h"
#include "engine/selfie/MouthLook.h"
#include "engine/selfie/PersonCompare.h"
#include "engine/selfie/SelfieVerdict.h"
#include "platform/foundation/Fault.h"
#include "platform/foundation/Time.h"
#include "platform/geometry/Geometry.h"
#include "platform/media/SampleBuffer.h"

namespace corvana::engine {

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
  /// The face of the selfie that succeeded last; null before.
  platform::UIImageRef selfieFace;
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
  std::string issue;  ///< what to tell the user, with `SelfieVerdict::issue`
  /// The frame and its face crop, with `SelfieVerdict::good`.
  std::optional<corvana::Selfie> selfie;
  double sharpness = 0;  ///< how sharp the face is; comparable between frames of a run
  /// What was measured on the face; absent unless one is in place, or nearer.
  std::optional<FaceMeasures> measures;
  /// What the looks so far say of its life; absent as they are.
  std::optional<LivenessVerdict> liveness;
  /// How the head is held; absent as they are.
  std::optional<HeadLook> head;
};

/// A frame seen as a picture of a card.
struct DocumentView {
  CardVerdict verdict = CardVerdict::none;
  /// How well the card can be seen; absent unless one is in its place and held still.
  std::optional<CardQuality> quality;
  /// `brightnessOf` the whole picture, where no card is seen in it.
  std::optional<double> surroundings;
  /// Bounding box of the card, in the analysed picture.
  std::optional<platform::CGRect> location;
  /// What was read, when this frame was read.
  std::optional<corvana::DetectedData> reading;
  /// Bounding box of the face in the card's photo, in the analysed picture; only when this frame
  /// was read and a face was found.
  std::optional<platform::CGRect> portrait;
  /// How well the card speaks for each family, when this frame was read.
  std::optional<FamilyMatches> familyMatches;
};

/// What one frame shows.
struct Observation {
  AnalysisTask task;
  platform::TimePoint frameTime;
  platform::CGSize fullSize;  ///< size of the analysed picture, pixels
  /// The live face; absent when it is not seen in this frame.
  std::optional<platform::CGRect> liveFace;
  platform::Duration liveFaceLostFor{};
  /// Whether the live face is the selfie's, when it was time to compare them.
  std::optional<PersonCheck> person;
  /// The live face's mouth; only while a text is read, and from a face that is seen well.
  std::optional<MouthLook> mouth;
  std::optional<SelfieView> selfie;      ///< present in the selfie mode
  std::optional<DocumentView> document;  ///< present in the document mode
};

/// Looks at frames, one at a time, on one queue. It remembers what it needs to follow the live face
/// and to choose the frames worth reading; the judgement over time is the recorder's.
class FrameAnalyzer {
 public:
  virtual ~FrameAnalyzer() = default;
  /// Whether its models are loaded; frames are not looked at before. Any thread.
  virtual bool isReady() const { return true; }
  /// Why it will never be ready. Main queue.
  virtual std::optional<platform::Fault> fault() const { return {}; }
  virtual Observation analyze(const platform::CMSampleBufferRef& frame,
                              const AnalysisTask& task) = 0;
};

}  // namespace corvana::engine
