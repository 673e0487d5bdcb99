#pragma once

#include <memory>
#include <optional>
#include <string>

#include "engine/selfie/SelfieVerdict.h"
#include "engine/vision/Face.h"
#include "engine/vision/FaceDetector.h"
#include "engine/vision/FaceLandmarks.h"
#include "platform/geometry/Geometry.h"
#include "platform/media/PixelBuffer.h"
#include "platform/uikit/UIImage.h"

namespace corvana::engine {

/// What one frame says. Measures are filled in as far as the judgement got.
struct SelfieJudgement {
  SelfieVerdict verdict = SelfieVerdict::noFace;
  /// One short sentence for the user, only with `issue`.
  std::string issueMessage;
  /// The main face: the largest. Absent only with `noFace`.
  std::optional<Face> face;
  /// Details of the main face once it is in place, so with `issue` and `good`, or too near.
  std::optional<FaceDetails> details;
  /// The picture's luma, with `details`: for whoever measures it further.
  platform::PixelBufferRef gray;
  double sharpness = 0;   ///< `engine::sharpness` of the face
  double brightness = 0;  ///< mean luma of the face, 0 to 255
  /// What this frame alone speaks for a live face, 0 to 1: weak, since a good picture of a picture
  /// looks alike. `LivenessEvidence` adds what time shows.
  float passiveLiveness = 0;
  /// The face brought to the matcher's pose, only with `good`.
  platform::UIImageRef faceImage;
};

// The limits by which a face is in place. Portraits differ in how much head they show, so they are
// wide; the matcher, not the oval, decides who it is.

/// Face box width over the oval's width: below, come closer; above, move away.
inline constexpr double kLeastFaceOfGuide = 0.45;
inline constexpr double kMostFaceOfGuide = 1.30;
/// How far the face's centre may lie from the oval's, where 1 is the oval's edge.
inline constexpr double kMostOffCentre = 0.7;
/// Part of the face box that must lie inside the picture.
inline constexpr double kLeastVisible = 0.9;
/// By this share more, a face that was out of place is clearly in it: what the detector measures
/// trembles by some hundredths, and at a bare limit the words would come and go with each look.
inline constexpr double kClearly = 0.05;
/// A second face counts as another person from this part of the main face's size on: not a photo on
/// a card, not a picture on the wall.
inline constexpr double kOtherPersonSize = 0.4;

/// Judges single frames for selfie capture, remembering nothing. The detector and landmarks may be
/// shared with others on the same thread.
class SelfieAnalyzer {
 public:
  SelfieAnalyzer(std::shared_ptr<FaceDetector> detector, std::shared_ptr<FaceLandmarks> landmarks);

  /// Judges a frame; `guideInFrame` is the oval's frame in pixels of the picture. An empty one has
  /// no inside: every face is out of place then. Whose face was out of place `before` has to bring
  /// it into place clearly.
  SelfieJudgement analyze(const platform::PixelBufferRef& frame,
                          const platform::CGRect& guideInFrame,
                          SelfieVerdict before = SelfieVerdict::noFace);

 private:
  std::shared_ptr<FaceDetector> detector_;
  std::shared_ptr<FaceLandmarks> landmarks_;
};

}  // namespace corvana::engine
