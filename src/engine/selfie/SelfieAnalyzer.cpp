#include "engine/selfie/SelfieAnalyzer.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>
#include <vector>

#include "corvana/SelfieCapture.h"
#include "engine/vision/FaceCrop.h"
#include "engine/vision/ImageOps.h"
#include "platform/foundation/Require.h"

namespace corvana::engine {
namespace {

using platform::CGRect;
using platform::PixelBuffer;

/// A second face must be this sure to hold up a selfie: patterns now and then look like faces.
constexpr float kOtherPersonScore = 0.75F;

// Limits of a usable face. Low on purpose: they refuse what the matcher cannot use, no more.
constexpr float kLeastPresence = 0.5F;
constexpr double kMostYaw = 35;
constexpr double kMostPitch = 40;
constexpr double kMostRoll = 35;
constexpr double kLeastBrightness = 40;
constexpr double kMostBrightness = 235;
constexpr double kLeastSharpness = 6;
constexpr float kEyesClosed = 0.2F;

double visiblePart(const CGRect& box, const PixelBuffer& frame) {
  const double width = std::min<double>(box.maxX(), frame.width()) - std::max(box.minX(), 0.0);
  const double height = std::min<double>(box.maxY(), frame.height()) - std::max(box.minY(), 0.0);
  return std::max(width, 0.0) * std::max(height, 0.0) / (box.width * box.height);
}

/// 0 at the oval's centre, 1 on its edge.
double offCentre(const CGRect& box, const CGRect& oval) {
  return std::hypot((box.midX() - oval.midX()) / (oval.width / 2),
                    (box.midY() - oval.midY()) / (oval.height / 2));
}

bool showsSeveralPeople(std::span<const Face> faces) {
  return std::ranges::any_of(faces.subspan(1), [&](const Face& face) {
    return face.size() >= kOtherPersonSize * faces.front().size() &&
           face.score >= kOtherPersonScore;
  });
}

/// `good` when the face is where it belongs.
SelfieVerdict placeOf(const Face& face, const PixelBuffer& frame, const CGRect& oval,
                      SelfieVerdict before) {
  if (oval.isEmpty()) return SelfieVerdict::alignFace;
  const auto share = [before](SelfieVerdict told) { return before == told ? kClearly : 0; };
  const double part = face.box.width / oval.width;
  const double least = std::max(kLeastFaceOfGuide, kLeastFaceWidth / oval.width);
  if (part < least * (1 + share(SelfieVerdict::moveCloser))) return SelfieVerdict::moveCloser;
  if (part > kMostFaceOfGuide * (1 - share(SelfieVerdict::moveAway)))
    return SelfieVerdict::moveAway;
  const double mostOff = kMostOffCentre * (1 - share(SelfieVerdict::alignFace));
  if (offCentre(face.box, oval) > mostOff || visiblePart(face.box, frame) < kLeastVisible) {
    return SelfieVerdict::alignFace;
  }
  return SelfieVerdict::good;
}

bool isTurnedAway(const HeadPose& pose) {
  return std::abs(pose.yaw) > kMostYaw || std::abs(pose.pitch) > kMostPitch ||
         std::abs(pose.roll) > kMostRoll;
}

/// Empty when the face is fit for a selfie.
std::string issueOf(const SelfieJudgement& judgement) {
  const FaceDetails& details = *judgement.details;
  const auto& advice = corvana::SelfieCapture::strings;
  const std::pair<bool, const std::string&> issues[] = {
      {details.presence < kLeastPresence, advice.showWholeFace},
      {judgement.brightness < kLeastBrightness, advice.tooDark},
      {judgement.brightness > kMostBrightness, advice.tooBright},
      {judgement.sharpness < kLeastSharpness, advice.blurred},
      {isTurnedAway(details.pose), advice.lookStraight},
      {std::max(details.leftEyeOpen, details.rightEyeOpen) < kEyesClosed, advice.openEyes},
  };
  for (const auto& [found, message] : issues) {
    if (found) return message;
  }
  return {};
}

double ramp(double value, double zero, double full) {
  return std::clamp((value - zero) / (full - zero), 0.0, 1.0);
}

/// A picture of a picture tends to be softer and paler than a face, and seldom more.
float passiveLiveness(float presence, double sharpness, double contrast) {
  return presence * static_cast<float>((ramp(sharpness, kLeastSharpness, 150) +  //
                                        ramp(contrast, 10, 40)) /
                                       2);
}

}  // namespace

SelfieAnalyzer::SelfieAnalyzer(std::shared_ptr<FaceDetector> detector,
                               std::shared_ptr<FaceLandmarks> landmarks)
    : detector_(std::move(detector)), landmarks_(std::move(landmarks)) {
  platform::require(detector_ && landmarks_, "SelfieAnalyzer: needs a detector and landmarks");
}

SelfieJudgement SelfieAnalyzer::analyze(const platform::PixelBufferRef& frame,
                                        const CGRect& guideInFrame, SelfieVerdict before) {
  SelfieJudgement judgement;
  const std::vector<Face> faces = detector_->detect(*frame);
  if (faces.empty()) return judgement;

  const Face& face = faces.front();
  judgement.face = face;
  judgement.verdict = showsSeveralPeople(faces) ? SelfieVerdict::multipleFaces
                                                : placeOf(face, *frame, guideInFrame, before);
  // A face that comes nearer than it should is followed all the same.
  const bool isInPlace = judgement.verdict == SelfieVerdict::good;
  if (!isInPlace && judgement.verdict != SelfieVerdict::moveAway) return judgement;

  judgement.gray = grayPicture(frame);
  const Luma light = luma(*judgement.gray, face.box);
  judgement.details = landmarks_->locate(*frame, face);
  judgement.brightness = light.mean;
  judgement.sharpness = sharpness(*judgement.gray, face.box);
  judgement.passiveLiveness =
      passiveLiveness(judgement.details->presence, judgement.sharpness, light.deviation);
  if (!isInPlace) return judgement;
  judgement.issueMessage = issueOf(judgement);
  if (judgement.issueMessage.empty()) {
    judgement.faceImage = cropFace(*frame, face);
    if (judgement.faceImage == nullptr) {
      judgement.issueMessage = corvana::SelfieCapture::strings.lookStraight;
    }
  }
  if (judgement.faceImage == nullptr) judgement.verdict = SelfieVerdict::issue;
  return judgement;
}

}  // namespace corvana::engine
