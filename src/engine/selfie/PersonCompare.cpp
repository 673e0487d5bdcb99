#include "engine/selfie/PersonCompare.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "engine/vision/FaceCrop.h"
#include "engine/vision/ImageOps.h"

namespace corvana::engine {
namespace {

// What the embedding can judge; beyond it one person's pictures begin to look like strangers'.
constexpr float kLeastPresence = 0.5F;
constexpr double kMostYaw = 22;
constexpr double kMostPitch = 30;
constexpr double kMostRoll = 25;
constexpr double kLeastSharpness = 15;
constexpr double kLeastBrightness = 30;

using Found = std::optional<FaceFlawFound>;

Found below(FaceFlaw flaw, double value, double limit) {
  return value < limit ? Found({flaw, value, limit}) : Found();
}

Found above(FaceFlaw flaw, double value, double limit) {
  return value > limit ? Found({flaw, value, limit}) : Found();
}

/// The flaw that is to be mended first: of a face that is far or in the dark nothing else is known.
Found flawOf(const platform::PixelBuffer& picture, const Face& face, const FaceDetails& details) {
  const std::array flaws{below(FaceFlaw::tooFar, face.box.width, kLeastFaceWidth),
                         below(FaceFlaw::tooDark, luma(picture, face.box).mean, kLeastBrightness),
                         below(FaceFlaw::hidden, details.presence, kLeastPresence),
                         above(FaceFlaw::turnedAway, std::abs(details.pose.yaw), kMostYaw),
                         above(FaceFlaw::turnedAway, std::abs(details.pose.pitch), kMostPitch),
                         above(FaceFlaw::turnedAway, std::abs(details.pose.roll), kMostRoll),
                         below(FaceFlaw::blurred, sharpness(picture, face.box), kLeastSharpness)};
  const auto first = std::ranges::find_if(flaws, &Found::has_value);
  return first == flaws.end() ? Found() : *first;
}

}  // namespace

const char* nameOf(FaceFlaw flaw) {
  switch (flaw) {
    case FaceFlaw::tooFar:
      return "faceTooFar";
    case FaceFlaw::tooDark:
      return "faceTooDark";
    case FaceFlaw::hidden:
      return "faceHidden";
    case FaceFlaw::turnedAway:
      return "faceTurnedAway";
    case FaceFlaw::blurred:
      return "faceBlurred";
    case FaceFlaw::outOfSight:
      return "faceOutOfSight";
  }
  return "";
}

PersonCompare::PersonCompare(std::shared_ptr<FaceLandmarks> landmarks, FaceEmbedder embedder)
    : landmarks_(std::move(landmarks)), embedder_(std::move(embedder)) {}

PersonCheck PersonCompare::compare(const platform::PixelBuffer& picture, const Face& face) {
  const FaceDetails details = landmarks_->locate(picture, face);
  if (const auto flaw = flawOf(picture, face, details)) return {.flaw = flaw};
  const auto crop = cropFace(picture, face);
  // It is large enough, so its eyes are not seen.
  if (!crop) return {.flaw = FaceFlawFound{FaceFlaw::hidden, details.presence, kLeastPresence}};
  return {.distance = distance(embedding_, embedder_.embed(*crop->pixels()))};
}

std::optional<PersonCheck> PersonCompare::look(platform::TimePoint time,
                                               const platform::PixelBuffer& picture,
                                               const Face& face, const Wanted& wanted) {
  if (!wanted.selfie) return {};
  const bool isNew = std::exchange(selfie_, wanted.selfie) != wanted.selfie;
  if (isNew) embedding_ = embedder_.embed(*wanted.selfie->pixels());
  const bool hasJumped = place_.hasJumped(face.box);
  if (!isNew && !hasJumped && next_ && time < *next_) return {};
  const PersonCheck check = compare(picture, face);
  const bool isSame = check.distance && *check.distance <= wanted.threshold;
  next_ = time + (isSame ? kInterval : kSoon);
  return check;
}

}  // namespace corvana::engine
