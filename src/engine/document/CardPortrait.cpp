#include "engine/document/CardPortrait.h"

#include <algorithm>
#include <cmath>

#include "engine/vision/FaceCrop.h"
#include "engine/vision/ImageOps.h"

namespace corvana::engine {

platform::CGRect photoAround(const platform::CGRect& face) {
  const double side = std::max(face.width, face.height);
  return {face.midX() - 0.95 * side, face.midY() - 1.25 * side, 1.9 * side, 2.4 * side};
}

platform::UIImageRef faceImageOf(const platform::PixelBuffer& card, const Face& face) {
  constexpr double kLeastPrintedWidth = 48;
  if (face.box.width >= kLeastFaceWidth) return cropFace(card, face);
  if (face.box.width < kLeastPrintedWidth) return nullptr;
  const double factor = 1.05 * kLeastFaceWidth / face.box.width;
  const auto larger = resized(card, static_cast<int>(std::lround(card.width() * factor)),
                              static_cast<int>(std::lround(card.height() * factor)));
  return cropFace(*larger, scaled(face, factor));
}

bool isUpright(const Face& face) {
  const auto& right = face.keypoints[Face::rightEye];
  const auto& left = face.keypoints[Face::leftEye];
  const auto& mouth = face.keypoints[Face::mouth];
  const double across = left.x - right.x;
  return across > std::abs(left.y - right.y) && mouth.y > (left.y + right.y) / 2;
}

}  // namespace corvana::engine
