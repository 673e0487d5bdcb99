#include "engine/selfie/PersonCompare.h"

#include <algorithm>
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

bool canBeJudged(const platform::PixelBuffer& picture, const Face& face,
                 const FaceDetails& details) {
  return details.presence >= kLeastPresence && std::abs(details.pose.yaw) <= kMostYaw &&
         std::abs(details.pose.pitch) <= kMostPitch && std::abs(details.pose.roll) <= kMostRoll &&
         luma(picture, face.box).mean >= kLeastBrightness &&
         sharpness(picture, face.box) >= kLeastSharpness;
}

}  // namespace

PersonCompare::PersonCompare(std::shared_ptr<FaceLandmarks> landmarks, FaceEmbedder embedder)
    : landmarks_(std::move(landmarks)), embedder_(std::move(embedder)) {}

PersonCheck PersonCompare::compare(const platform::PixelBuffer& picture, const Face& face) {
  if (!canBeJudged(picture, face, landmarks_->locate(picture, face))) return {};
  const auto crop = cropFace(picture, face);
  if (!crop) return {};
  return {distance(embedding_, embedder_.embed(*crop->pixels()))};
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
