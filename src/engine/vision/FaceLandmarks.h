#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <span>

#include "engine/vision/Face.h"
#include "engine/vision/TfliteModel.h"
#include "platform/foundation/Fault.h"
#include "platform/geometry/Geometry.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// A point of the face's surface, in pixels of the picture; z points away from the camera, in the
/// same unit, with its zero near the head's middle.
struct SurfacePoint {
  double x = 0;
  double y = 0;
  double z = 0;
};

inline constexpr std::size_t kFaceMeshPoints = 468;
using FaceMesh = std::array<SurfacePoint, kFaceMeshPoints>;
/// Where the corners of the person's eyes stand in the mesh.
inline constexpr std::size_t kRightEyeOuterCorner = 33;
inline constexpr std::size_t kRightEyeInnerCorner = 133;
inline constexpr std::size_t kLeftEyeOuterCorner = 263;
inline constexpr std::size_t kLeftEyeInnerCorner = 362;

/// How the head is turned, in degrees; about zero when it faces the camera upright. Estimated from
/// the network's depth: good for more or less, off by ten degrees in pitch from person to person.
struct HeadPose {
  double yaw = 0;    ///< positive: the nose points to the right of the picture
  double pitch = 0;  ///< positive: the nose points down
  double roll = 0;   ///< positive: tilted clockwise in the picture
};

/// What the landmark network sees of one face. Right and left are the person's own.
struct FaceDetails {
  FaceMesh mesh;
  /// How sure it is that a whole face is there, 0 to 1; a card over the chin lowers it.
  float presence = 0;
  /// How sure it is that the eye is open, 0 to 1; see `eyeOpenProbability`.
  float leftEyeOpen = 0;
  float rightEyeOpen = 0;
  /// A measure that falls when the lids close, by form and by what they hide: mean of both eyes'
  /// aspect ratio times the side-to-side contrast of white and iris. Compare it only between frames
  /// of one person.
  double lidOpening = 0;
  HeadPose pose;
  platform::CGRect mouth;
};

/// The 468-point face surface network and what is read off its points. From one thread at a time.
class FaceLandmarks {
 public:
  static platform::Expected<FaceLandmarks> load(const std::filesystem::path& model);

  /// Looks at the face in a square of one and a half times its box, levelled by its eyes.
  FaceDetails locate(const platform::PixelBuffer& picture, const Face& face);

 private:
  explicit FaceLandmarks(TfliteModel model) : model_(std::move(model)) {}

  TfliteModel model_;
};

/// Height of an eye's opening over its width, mean of two places on the lids.
double eyeAspectRatio(const FaceMesh& mesh, bool left);

/// Probability that an eye of this aspect ratio is open: a logistic curve through one half at 0.15,
/// with scale 0.02. Open eyes measure 0.2 (narrow) to 0.35. The network follows closing lids only
/// part of the way, so a low value is sure and a high one is not: a blink is seen in `lidOpening`.
float eyeOpenProbability(double aspectRatio);

HeadPose headPose(const FaceMesh& mesh);

}  // namespace corvana::engine
