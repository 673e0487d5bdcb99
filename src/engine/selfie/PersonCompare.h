#pragma once

#include <memory>
#include <optional>

#include "engine/selfie/PlaceWatch.h"
#include "engine/vision/Face.h"
#include "engine/vision/FaceEmbedder.h"
#include "engine/vision/FaceLandmarks.h"
#include "platform/foundation/Time.h"
#include "platform/media/PixelBuffer.h"
#include "platform/uikit/UIImage.h"

namespace corvana::engine {

/// Why a face cannot be judged.
enum class FaceFlaw { tooFar, tooDark, hidden, turnedAway, blurred, outOfSight };

/// "faceTooFar", "faceTooDark", "faceHidden", "faceTurnedAway", "faceBlurred", "faceOutOfSight".
const char* nameOf(FaceFlaw flaw);

/// What was measured, and the limit that it does not keep: width in pixels, mean luma, presence 0
/// to 1, degrees, `sharpness`, or seconds.
struct FaceFlawFound {
  FaceFlaw flaw = FaceFlaw::hidden;
  double value = 0;
  double limit = 0;
};

/// One try to compare the live face with the selfie's.
struct PersonCheck {
  /// Of both faces' embeddings; absent when the live face could not be judged.
  std::optional<double> distance{};
  /// Why it could not.
  std::optional<FaceFlawFound> flaw{};
};

/// Compares the live face with the selfie's, about once a second and when it jumps. Costs one pass
/// of the landmark and one of the embedding network each time. One thread.
class PersonCompare {
 public:
  PersonCompare(std::shared_ptr<FaceLandmarks> landmarks, FaceEmbedder embedder);

  /// The face that is wanted.
  struct Wanted {
    const platform::UIImageRef& selfie;  ///< the accepted one's face crop; null before
    double threshold = 0;                ///< greatest distance at which a face is the same
  };

  /// Absent when it is not time to compare.
  std::optional<PersonCheck> look(platform::TimePoint time, const platform::PixelBuffer& picture,
                                  const Face& face, const Wanted& wanted);

  /// Between two comparisons; after one that failed or could not be made the next comes sooner.
  static constexpr platform::Duration kInterval = std::chrono::milliseconds(1000);
  static constexpr platform::Duration kSoon = std::chrono::milliseconds(300);

 private:
  PersonCheck compare(const platform::PixelBuffer& picture, const Face& face);

  std::shared_ptr<FaceLandmarks> landmarks_;
  FaceEmbedder embedder_;
  platform::UIImageRef selfie_;
  FaceEmbedding embedding_;  ///< of the selfie
  std::optional<platform::TimePoint> next_;
  PlaceWatch place_;
};

}  // namespace corvana::engine
